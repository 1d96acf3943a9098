#pragma once

#include "rkbaseqt_export.h"

#include <QObject>
#include <QString>

namespace rkBase {

/// \brief How a long operation reports progress, without knowing how it is shown.
///
/// Call order from the operation's side: `start_progress`, then `set_caption` and
/// `set_progress` any number of times (stop when `set_progress` returns true: the user
/// cancelled), and last `finish_progress`.
class RKBASEQT_EXPORT AbstractProgress : public QObject {
    Q_OBJECT

public:
    /// Cancelling allowed, determinate display.
    AbstractProgress();
    ~AbstractProgress() override;

    /// The text shown with the bar.
    virtual void set_caption(const QString& caption) = 0;
    /// Returns true when the user has cancelled.
    virtual bool set_progress(int value) = 0;
    /// The value last shown.
    virtual int get_progress() = 0;
    /// Shows the display; `canCancel` offers the user a way to cancel.
    virtual void start_progress(bool canCancel) = 0;
    /// Ends the display; the object may be started again.
    virtual void finish_progress() = 0;
    /// Suspends the display (a modal question is about to be asked, say).
    virtual void pause_progress() = 0;
    /// True once the user has cancelled.
    virtual bool is_cancelled() = 0;
    /// True between start_progress and finish_progress.
    virtual bool is_started() = 0;
    /// Runs the event loop when `current` is a whole, non-zero multiple of `interval`.
    virtual void processEvents(int current, int interval);
    /// Switches to a busy display with no value (`true`) and back.
    virtual void set_non_determinate(bool flag) = 0;

    /// Whether the user may cancel.
    bool can_cancel() const { return m_canCancel; }
    /// Sets whether the user may cancel.
    void set_can_cancel(bool flag) { m_canCancel = flag; }
    /// Whether the display is a busy one with no value.
    bool is_non_determinate() const { return m_nonDeterminate; }

protected:
    /// For subclasses: records the busy-display state that is_non_determinate() reports.
    void setNonDeterminateFlag(bool flag) { m_nonDeterminate = flag; }

private:
    bool m_canCancel = true;
    bool m_nonDeterminate = false;
};

} // namespace rkBase
