#pragma once

#include "frame/AbstractProgress.h"

#include <QPointer>

class QProgressDialog;

namespace rkBase {

/// \brief Progress shown in a modal QProgressDialog over the active window.
///
/// GUI thread only. Each run gets a new dialog, made by start_progress and deleted by
/// finish_progress; outside a run every operation does nothing and reports 0 or false.
class RKBASEQT_EXPORT QDefaultProgress : public AbstractProgress {
    Q_OBJECT

public:
    /// `range` is the value that stands for "done" (the dialog's maximum).
    explicit QDefaultProgress(int range);
    ~QDefaultProgress() override;

    /// Changes the maximum of the running dialog. Without a run only the stored range changes,
    /// and the next run uses it.
    void set_range(int range);

    /// Window title and label of the dialog; kept for the next run as well.
    void set_caption(const QString& caption) override;
    /// Shows `value`; true when the user pressed Cancel. False without a run.
    bool set_progress(int value) override;
    /// The dialog's value, 0 without a run.
    int get_progress() override;
    /// Replaces any earlier dialog with a new one, with a Cancel button only when `canCancel`.
    void start_progress(bool canCancel) override;
    /// Deletes the dialog.
    void finish_progress() override;
    /// Does nothing: a modal dialog has no paused state.
    void pause_progress() override;
    /// True after Cancel was pressed in the running dialog.
    bool is_cancelled() override;
    /// True while a dialog exists.
    bool is_started() override;
    /// Switches the dialog to a busy bar (range 0..0) and back to 0..range.
    void set_non_determinate(bool flag) override;

private:
    int m_range;
    QPointer<QProgressDialog> m_dialog;
    QString m_caption;
};

} // namespace rkBase
