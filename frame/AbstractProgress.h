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
    AbstractProgress();
    ~AbstractProgress() override;

    virtual void set_caption(const QString& caption) = 0;
    /// Returns true when the user has cancelled.
    virtual bool set_progress(int value) = 0;
    virtual int get_progress() = 0;
    virtual void start_progress(bool canCancel) = 0;
    virtual void finish_progress() = 0;
    virtual void pause_progress() = 0;
    virtual bool is_cancelled() = 0;
    virtual bool is_started() = 0;
    /// Runs the event loop when `current` is a whole, non-zero multiple of `interval`.
    virtual void processEvents(int current, int interval);
    virtual void set_non_determinate(bool flag) = 0;

    bool can_cancel() const { return m_canCancel; }
    void set_can_cancel(bool flag) { m_canCancel = flag; }
    bool is_non_determinate() const { return m_nonDeterminate; }

protected:
    void setNonDeterminateFlag(bool flag) { m_nonDeterminate = flag; }

private:
    bool m_canCancel = true;
    bool m_nonDeterminate = false;
};

} // namespace rkBase
