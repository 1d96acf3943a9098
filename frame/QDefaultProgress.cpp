#include "frame/QDefaultProgress.h"

#include <QApplication>
#include <QProgressDialog>

namespace rkBase {

QDefaultProgress::QDefaultProgress(int range)
    : m_range(range)
{
}

QDefaultProgress::~QDefaultProgress() { delete m_dialog.data(); }

void QDefaultProgress::set_range(int range)
{
    m_range = range;
    // The dialog may already be gone (its parent window closed): then only the stored range changes.
    if (m_dialog)
        m_dialog->setMaximum(range);
}

void QDefaultProgress::set_caption(const QString& caption)
{
    m_caption = caption;
    if (m_dialog) {
        m_dialog->setWindowTitle(caption);
        m_dialog->setLabelText(caption);
    }
}

bool QDefaultProgress::set_progress(int value)
{
    if (!m_dialog)
        return false;
    m_dialog->setValue(value);
    return m_dialog->wasCanceled();
}

int QDefaultProgress::get_progress() { return m_dialog ? m_dialog->value() : 0; }

void QDefaultProgress::start_progress(bool canCancel)
{
    delete m_dialog.data();
    m_dialog = new QProgressDialog(QString(), canCancel ? tr("Cancel") : QString(), 0, m_range,
                                   QApplication::activeWindow());
    m_dialog->setWindowTitle(m_caption);
    // A QProgressDialog restarts itself on reaching the maximum and may reset its value; keep it
    // as the operation left it until finish_progress.
    m_dialog->setAutoReset(false);
    m_dialog->setAutoClose(false);
    if (!canCancel)
        m_dialog->setCancelButton(nullptr);
    m_dialog->show();
    set_can_cancel(canCancel);
}

void QDefaultProgress::finish_progress()
{
    delete m_dialog.data();
    m_dialog = nullptr;
}

void QDefaultProgress::pause_progress() {}

bool QDefaultProgress::is_cancelled() { return m_dialog && m_dialog->wasCanceled(); }

bool QDefaultProgress::is_started() { return !m_dialog.isNull(); }

void QDefaultProgress::set_non_determinate(bool flag)
{
    setNonDeterminateFlag(flag);
    if (m_dialog)
        m_dialog->setRange(0, flag ? 0 : m_range);
}

} // namespace rkBase
