#include "frame/ProgressWidget.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <QVBoxLayout>

namespace rkBase {

namespace {

// One throttle for every bar of the process: an operation may report at every step of a loop,
// and several bars may run at once, yet the event loop is entered at most twice a second. A
// monotonic clock read under an atomic needs no timer object whose lifetime would have to
// follow the application object's.
constexpr qint64 kEventInterval = 500;

bool eventLoopDue()
{
    static const QElapsedTimer clock = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    static std::atomic<qint64> last{-kEventInterval};
    const qint64 now = clock.elapsed();
    qint64 before = last.load();
    if (now - before < kEventInterval)
        return false;
    return last.compare_exchange_strong(before, now);
}

} // namespace

ProgressWidgetImpl::ProgressWidgetImpl(QWidget* parent)
    : QWidget(parent)
    , m_box(new QGroupBox(tr("Caption"), this))
    , m_label(new QLabel(tr("Processing:"), m_box))
    , m_bar(new QProgressBar(m_box))
    , m_cancel(new QPushButton(tr("Cancel"), m_box))
{
    setObjectName(QStringLiteral("ProgressWidget"));
    resize(288, 74);
    m_box->setMinimumHeight(56);
    m_bar->setRange(0, 100);
    m_bar->setValue(0);
    auto* row = new QHBoxLayout(m_box);
    row->addWidget(m_label);
    row->addWidget(m_bar, 1);
    row->addWidget(m_cancel);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(m_box);
    // The form's texts only help whoever lays the form out; at run time the operation names itself.
    m_box->setTitle(QString());
    m_label->setText(QString());
    connect(m_cancel, &QPushButton::clicked, this, &ProgressWidgetImpl::signal_cancel);
}

ProgressWidgetImpl::~ProgressWidgetImpl() = default;

QPushButton* ProgressWidgetImpl::cancelButton() { return m_cancel; }

void ProgressWidgetImpl::setCaption(const QString& caption) { m_box->setTitle(caption); }

void ProgressWidgetImpl::setOrientation(Qt::Orientation orientation) { m_bar->setOrientation(orientation); }

void ProgressWidgetImpl::setValue(int value)
{
    m_bar->setValue(value);
    if (!m_dontProcessEvents && eventLoopDue())
        QCoreApplication::processEvents();
}

void ProgressWidgetImpl::set_non_determinate(bool flag) { m_bar->setRange(0, flag ? 0 : 100); }

int ProgressWidgetImpl::value() const { return m_bar->value(); }

QString ProgressWidgetImpl::caption() const { return m_box->title(); }

// --- ProgressWidget ---------------------------------------------------------------------------

ProgressWidget::ProgressWidget(ProgressWidgetImpl* impl)
    : m_impl(impl)
{
    connect(m_impl->cancelButton(), &QPushButton::clicked, this, &ProgressWidget::widgetCanceled);
}

ProgressWidget::~ProgressWidget() = default;

void ProgressWidget::widgetCanceled() { cancel(); }

void ProgressWidget::cancel()
{
    m_cancelled = true;
    m_impl->hide();
}

void ProgressWidget::setDontProcessEvents(bool flag) { m_impl->setDontProcessEvents(flag); }

void ProgressWidget::set_caption(const QString& caption) { m_impl->setCaption(caption); }

bool ProgressWidget::set_progress(int value)
{
    m_impl->setValue(value);
    return m_cancelled;
}

int ProgressWidget::get_progress() { return m_impl->value(); }

void ProgressWidget::start_progress(bool canCancel)
{
    m_cancelled = false;
    set_can_cancel(canCancel);
    m_impl->cancelButton()->setVisible(canCancel);
    m_impl->setCaption(QString());
    m_impl->setValue(0);
    m_impl->show();
    if (!m_impl->dontProcessEvents())
        QCoreApplication::processEvents();
}

void ProgressWidget::finish_progress()
{
    m_impl->hide();
    m_cancelled = false;
}

void ProgressWidget::pause_progress() {}

bool ProgressWidget::is_cancelled() { return m_cancelled; }

bool ProgressWidget::is_started() { return m_impl->isVisible(); }

void ProgressWidget::set_non_determinate(bool flag)
{
    setNonDeterminateFlag(flag);
    m_impl->set_non_determinate(flag);
}

// --- ProgressWidgetContainer ------------------------------------------------------------------

ProgressWidgetContainer::ProgressWidgetContainer(ProgressWidgetImpl* impl)
    : m_widget(impl)
    , m_guiThread(QThread::currentThread())
{
    setup_connections();
}

ProgressWidgetContainer::~ProgressWidgetContainer() = default;

void ProgressWidgetContainer::setup_connections()
{
    using C = ProgressWidgetContainer;
    connect(this, &C::progress_changed, this, &C::set_progress_slot, Qt::QueuedConnection);
    connect(this, &C::caption_changed, this, &C::set_caption_slot, Qt::QueuedConnection);
    connect(this, &C::progress_started, this, &C::start_progress_slot, Qt::QueuedConnection);
    connect(this, &C::progress_finished, this, &C::finish_progress_slot, Qt::QueuedConnection);
    connect(this, &C::progress_paused, this, &C::pause_progress_slot, Qt::QueuedConnection);
    connect(this, &C::progress_changed_worker, this, &C::set_progress_slot, Qt::BlockingQueuedConnection);
    connect(this, &C::caption_changed_worker, this, &C::set_caption_slot, Qt::BlockingQueuedConnection);
    connect(this, &C::progress_started_worker, this, &C::start_progress_slot, Qt::BlockingQueuedConnection);
    connect(this, &C::progress_finished_worker, this, &C::finish_progress_slot, Qt::BlockingQueuedConnection);
    connect(this, &C::progress_paused_worker, this, &C::pause_progress_slot, Qt::BlockingQueuedConnection);
    // The GUI thread runs its own loop while a worker reports; the bar must never re-enter it.
    m_widget.setDontProcessEvents(true);
}

bool ProgressWidgetContainer::onGuiThread() const { return QThread::currentThread() == m_guiThread; }

void ProgressWidgetContainer::cancel()
{
    m_widget.cancel();
    emit progress_cancelled();
}

void ProgressWidgetContainer::set_caption(const QString& caption)
{
    if (onGuiThread())
        emit caption_changed(caption);
    else
        emit caption_changed_worker(caption);
}

bool ProgressWidgetContainer::set_progress(int value)
{
    m_value = value;
    if (onGuiThread())
        emit progress_changed(value);
    else
        emit progress_changed_worker(value);
    return m_widget.is_cancelled();
}

int ProgressWidgetContainer::get_progress() { return m_value; }

void ProgressWidgetContainer::start_progress(bool canCancel)
{
    set_can_cancel(canCancel);
    m_value = 0;
    m_started = true;
    if (onGuiThread())
        emit progress_started(canCancel);
    else
        emit progress_started_worker(canCancel);
}

void ProgressWidgetContainer::finish_progress()
{
    m_started = false;
    if (onGuiThread())
        emit progress_finished();
    else
        emit progress_finished_worker();
}

void ProgressWidgetContainer::pause_progress()
{
    if (onGuiThread())
        emit progress_paused();
    else
        emit progress_paused_worker();
}

bool ProgressWidgetContainer::is_cancelled() { return m_widget.is_cancelled(); }

bool ProgressWidgetContainer::is_started() { return m_started; }

void ProgressWidgetContainer::processEvents(int current, int interval) { m_widget.processEvents(current, interval); }

void ProgressWidgetContainer::set_non_determinate(bool flag)
{
    setNonDeterminateFlag(flag);
    m_widget.set_non_determinate(flag);
}

void ProgressWidgetContainer::set_progress_slot(int value) { m_widget.set_progress(value); }
void ProgressWidgetContainer::set_caption_slot(const QString& caption) { m_widget.set_caption(caption); }
void ProgressWidgetContainer::start_progress_slot(bool canCancel) { m_widget.start_progress(canCancel); }
void ProgressWidgetContainer::finish_progress_slot() { m_widget.finish_progress(); }
void ProgressWidgetContainer::pause_progress_slot() { m_widget.pause_progress(); }

} // namespace rkBase
