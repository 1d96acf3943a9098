#include "wizards/WizardProgress.h"

#include "wizards/Wizard.h"

#include <QCoreApplication>
#include <QThread>

namespace rkBase {

namespace {
constexpr qint64 kEventInterval = 50; // ms between event-loop runs during a busy loop
// ms between two values shown: a QProgressBar repaints at once on every change (about 35 us
// each here), so a loop that changes the value at every step would spend its time painting.
constexpr qint64 kShowInterval = 20;
} // namespace

WizardProgress::WizardProgress(Wizard* wizard)
    : m_wizard(wizard)
{
    setParent(wizard);
    setup_connections();
}

WizardProgress::~WizardProgress() = default;

void WizardProgress::setup_connections()
{
    // Automatic connections: direct on the wizard's thread, queued from a worker.
    using P = WizardProgress;
    connect(this, &P::caption_changed, this, &P::on_caption_changed);
    connect(this, &P::progress_changed, this, &P::on_progress_changed);
    connect(this, &P::progress_started, this, &P::on_progress_started);
    connect(this, &P::progress_finished, this, &P::on_progress_finished);
    connect(this, &P::progress_paused, this, &P::on_progress_paused);
    connect(this, &P::determinate_changed, this, &P::on_determinate_changed);
}

void WizardProgress::set_caption(const QString& caption) { emit caption_changed(caption); }

bool WizardProgress::set_progress(int value)
{
    if (m_value.exchange(value) == value)
        return m_cancelled;
    if (QThread::currentThread() == thread() && (!m_sinceShown.isValid() || m_sinceShown.elapsed() >= kShowInterval)) {
        m_sinceShown.start();
        emit progress_changed(value);
    } else {
        // Shown later, by one queued call that reads whatever value is latest by then: a worker
        // never floods the wizard's queue, and the last value always reaches the bar.
        if (!m_flushQueued.exchange(true))
            QMetaObject::invokeMethod(this, &WizardProgress::show_latest_value, Qt::QueuedConnection);
    }
    return m_cancelled;
}

void WizardProgress::show_latest_value()
{
    m_flushQueued = false;
    m_sinceShown.start();
    emit progress_changed(m_value);
}

int WizardProgress::get_progress() { return m_value; }

void WizardProgress::start_progress(bool canCancel)
{
    set_can_cancel(canCancel);
    m_cancelled = false;
    m_started = true;
    m_value = 0;
    if (QThread::currentThread() == thread())
        m_sinceEvents.invalidate();
    emit progress_started(canCancel);
}

void WizardProgress::finish_progress()
{
    m_started = false;
    emit progress_finished();
}

void WizardProgress::pause_progress() { emit progress_paused(); }

bool WizardProgress::is_cancelled() { return m_cancelled; }

bool WizardProgress::is_started() { return m_started; }

void WizardProgress::processEvents(int current, int interval)
{
    if (!m_processEvents || QThread::currentThread() != thread())
        return;
    if (interval == 0 || interval > current || current % interval != 0)
        return;
    if (m_sinceEvents.isValid() && m_sinceEvents.elapsed() < kEventInterval)
        return;
    m_sinceEvents.start();
    QCoreApplication::processEvents();
}

void WizardProgress::set_non_determinate(bool flag)
{
    setNonDeterminateFlag(flag);
    emit determinate_changed(flag);
}

void WizardProgress::ensure_progress_is_started()
{
    if (!m_started)
        start_progress(can_cancel());
}

void WizardProgress::cancel_progress()
{
    m_cancelled = true;
    emit progress_cancelled();
}

void WizardProgress::on_caption_changed(const QString& caption) { m_wizard->progress_caption_impl(caption); }
void WizardProgress::on_progress_changed(int value) { m_wizard->progress_changed_impl(value); }
void WizardProgress::on_progress_started(bool canCancel) { m_wizard->progress_started_impl(canCancel); }
void WizardProgress::on_progress_finished() { m_wizard->progress_finished_impl(); }
void WizardProgress::on_progress_paused() { m_wizard->progress_paused_impl(); }
void WizardProgress::on_determinate_changed(bool indeterminate)
{
    m_wizard->progress_determinate_changed_impl(indeterminate);
}

} // namespace rkBase
