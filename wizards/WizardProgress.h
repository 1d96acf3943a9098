#pragma once

#include "frame/AbstractProgress.h"

#include <QElapsedTimer>

#include <atomic>

namespace rkBase {

class Wizard;

/// \brief The progress row of a Wizard as an AbstractProgress.
///
/// Every reporting operation emits a signal that reaches the wizard's progress hooks on the
/// wizard's thread, so a worker thread may report directly (its calls are queued and return at
/// once). Values are percentages. The cancel flag is safe to read from any thread.
class RKBASEQT_EXPORT WizardProgress : public AbstractProgress {
    Q_OBJECT

public:
    /// Reports into `wizard`, which owns this object (see Wizard::get_progress).
    explicit WizardProgress(Wizard* wizard);
    ~WizardProgress() override;

    /// Emits caption_changed().
    void set_caption(const QString& caption) override;
    /// Records `value` and returns true once cancelled. progress_changed() follows for the values
    /// worth showing: at most one every 20 ms from a busy loop, and always the latest one (from
    /// another thread, or after a skipped value, through one queued call).
    bool set_progress(int value) override;
    /// The last value passed to set_progress.
    int get_progress() override;
    /// Clears a former cancel and emits progress_started().
    void start_progress(bool canCancel) override;
    /// Emits progress_finished().
    void finish_progress() override;
    /// Emits progress_paused().
    void pause_progress() override;
    /// True after cancel_progress() until the next start.
    bool is_cancelled() override;
    /// True from start_progress to finish_progress.
    bool is_started() override;
    /// Runs the event loop on the wizard's thread, when shouldProcessEvents() and the stride says
    /// so, at most every 50 ms.
    void processEvents(int current, int interval) override;
    /// Emits determinate_changed().
    void set_non_determinate(bool flag) override;

    /// Starts a run (with the present can-cancel flag) unless one is running.
    void ensure_progress_is_started();
    /// Whether processEvents() may run the event loop (true by default; false when the caller
    /// runs it already, as with a worker thread).
    void setProcessEvents(bool flag) { m_processEvents = flag; }
    /// See setProcessEvents().
    bool shouldProcessEvents() const { return m_processEvents; }
    /// Sets the cancelled flag and emits progress_cancelled(). Safe from any thread.
    void cancel_progress();

signals:
    /// The running step's text.
    void caption_changed(const QString& caption);
    /// A new value.
    void progress_changed(int value);
    /// A run began.
    void progress_started(bool canCancel);
    /// The run ended.
    void progress_finished();
    /// The run paused.
    void progress_paused();
    /// The user cancelled.
    void progress_cancelled();
    /// Busy display on (`true`) or off.
    void determinate_changed(bool indeterminate);

private slots:
    void on_caption_changed(const QString& caption);
    void on_progress_changed(int value);
    void on_progress_started(bool canCancel);
    void on_progress_finished();
    void on_progress_paused();
    void on_determinate_changed(bool indeterminate);
    void show_latest_value();

private:
    void setup_connections();

    Wizard* m_wizard;
    std::atomic<int> m_value{0};
    std::atomic<bool> m_cancelled{false};
    std::atomic<bool> m_started{false};
    bool m_processEvents = true;
    std::atomic<bool> m_flushQueued{false};
    QElapsedTimer m_sinceEvents;
    QElapsedTimer m_sinceShown;
};

} // namespace rkBase
