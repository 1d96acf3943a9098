#pragma once

#include "frame/AbstractProgress.h"

#include <QWidget>

#include <atomic>

class QGroupBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QThread;

namespace rkBase {

/// \brief The bar that ProgressWidget drives: a titled box with a label, a bar and Cancel.
///
/// Embed it in a window where the progress of a long operation is to be seen. ProgressWidget
/// shows it when a run starts and hides it at the end. GUI thread only.
class RKBASEQT_EXPORT ProgressWidgetImpl : public QWidget {
    Q_OBJECT

public:
    /// Builds the form (288 x 74) with empty caption and label.
    explicit ProgressWidgetImpl(QWidget* parent = nullptr);
    ~ProgressWidgetImpl() override;

    /// The form's Cancel button, for connecting.
    QPushButton* cancelButton();
    /// True when setValue must never run the event loop (the caller's loop already runs).
    bool dontProcessEvents() const { return m_dontProcessEvents; }
    /// See dontProcessEvents().
    void setDontProcessEvents(bool flag) { m_dontProcessEvents = flag; }
    /// Title of the box around the bar.
    void setCaption(const QString& caption);
    /// Orientation of the bar.
    void setOrientation(Qt::Orientation orientation);
    /// Shows `value` (a percentage unless the range was changed). Unless dontProcessEvents() is
    /// set, lets the event loop run, at most twice a second over all bars of the process.
    void setValue(int value);
    /// A busy bar with no value (range 0..0) when `flag`, otherwise the range 0..100.
    void set_non_determinate(bool flag);

    /// The bar's present value.
    int value() const;
    /// The box's title.
    QString caption() const;

signals:
    /// The user pressed Cancel.
    void signal_cancel();

private:
    QGroupBox* m_box;
    QLabel* m_label;
    QProgressBar* m_bar;
    QPushButton* m_cancel;
    bool m_dontProcessEvents = false;
};

/// \brief AbstractProgress shown in an embedded ProgressWidgetImpl, driven on the GUI thread.
///
/// Values are percentages (0..100). Cancel hides the bar and stays set until the next start or
/// finish. For a worker thread use ProgressWidgetContainer instead.
class RKBASEQT_EXPORT ProgressWidget : public AbstractProgress {
    Q_OBJECT

public:
    /// Drives `impl`, which stays owned by its window and must outlive this object.
    explicit ProgressWidget(ProgressWidgetImpl* impl);
    ~ProgressWidget() override;

    /// As if the user pressed Cancel: sets the flag and hides the bar.
    void cancel();
    /// Forwards to ProgressWidgetImpl::setDontProcessEvents.
    void setDontProcessEvents(bool flag);

    /// Title of the box around the bar.
    void set_caption(const QString& caption) override;
    /// Shows `value`; true once cancelled.
    bool set_progress(int value) override;
    /// The bar's value.
    int get_progress() override;
    /// Clears a former cancel, shows or hides Cancel, sets 0 and shows the bar.
    void start_progress(bool canCancel) override;
    /// Hides the bar and clears the cancelled flag.
    void finish_progress() override;
    /// Does nothing.
    void pause_progress() override;
    /// True after Cancel until the next start or finish. Safe to read from any thread.
    bool is_cancelled() override;
    /// True while the bar is visible.
    bool is_started() override;
    /// Busy bar (0..0) when `flag`, otherwise 0..100 (not a custom range).
    void set_non_determinate(bool flag) override;

private slots:
    void widgetCanceled();

private:
    ProgressWidgetImpl* m_impl;
    std::atomic<bool> m_cancelled{false};
};

/// \brief ProgressWidget that a worker thread may drive.
///
/// Build it on the GUI thread. Calls from that thread are queued and return at once; calls of
/// set_caption, set_progress, start_progress, finish_progress and pause_progress from another
/// thread block until the GUI thread has shown them, so the GUI thread must keep its event loop
/// running while a worker reports (waiting for the worker without it deadlocks). One worker at a
/// time. set_progress returns the cancel flag at once, without a round trip.
class RKBASEQT_EXPORT ProgressWidgetContainer : public AbstractProgress {
    Q_OBJECT

public:
    /// Drives `impl` (not owned) through an inner ProgressWidget; the event loop is never run
    /// by the bar itself.
    explicit ProgressWidgetContainer(ProgressWidgetImpl* impl);
    ~ProgressWidgetContainer() override;

    /// Sets the cancelled flag, hides the bar and emits progress_cancelled().
    void cancel();

    /// See AbstractProgress; queued to the GUI thread.
    void set_caption(const QString& caption) override;
    /// Queued to the GUI thread; returns the cancel flag directly.
    bool set_progress(int value) override;
    /// The last value passed to set_progress in this run.
    int get_progress() override;
    /// Queued to the GUI thread; also records `canCancel`.
    void start_progress(bool canCancel) override;
    /// Queued to the GUI thread.
    void finish_progress() override;
    /// Queued to the GUI thread.
    void pause_progress() override;
    /// The cancel flag; safe from any thread.
    bool is_cancelled() override;
    /// True from start_progress to finish_progress as called, before the GUI has caught up.
    bool is_started() override;
    /// Forwards to the inner widget's stride test.
    void processEvents(int current, int interval) override;
    /// Switches the bar's range; call it on the GUI thread.
    void set_non_determinate(bool flag) override;

signals:
    /// GUI-side value change (queued).
    void progress_changed(int value);
    /// GUI-side caption change (queued).
    void caption_changed(const QString& caption);
    /// GUI-side start (queued).
    void progress_started(bool canCancel);
    /// GUI-side finish (queued).
    void progress_finished();
    /// GUI-side pause (queued).
    void progress_paused();
    /// Emitted by cancel().
    void progress_cancelled();
    /// Worker-side value change (blocks until shown).
    void progress_changed_worker(int value);
    /// Worker-side caption change (blocks until shown).
    void caption_changed_worker(const QString& caption);
    /// Worker-side start (blocks until shown).
    void progress_started_worker(bool canCancel);
    /// Worker-side finish (blocks until shown).
    void progress_finished_worker();
    /// Worker-side pause (blocks until shown).
    void progress_paused_worker();
    /// Reserved for a cancel reported from the worker side.
    void progress_cancelled_worker();

private slots:
    void set_progress_slot(int value);
    void set_caption_slot(const QString& caption);
    void start_progress_slot(bool canCancel);
    void finish_progress_slot();
    void pause_progress_slot();

private:
    void setup_connections();
    bool onGuiThread() const;

    ProgressWidget m_widget;
    QThread* m_guiThread;
    std::atomic<int> m_value{0};
    std::atomic<bool> m_started{false};
};

} // namespace rkBase
