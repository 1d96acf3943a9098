#pragma once

#include "frame/AbstractProgress.h"

#include <QElapsedTimer>

namespace rktool {

/// \brief Progress bar on stderr for long verbs.
///
/// Draws "caption [#####.....]  50%" in place when stderr is a terminal, and nothing otherwise,
/// so piped output stays clean. Values run from 0 to the range (100 by default). While a run is
/// in progress, Ctrl-C asks the operation to stop (set_progress returns true) instead of killing
/// the process half-way through a write; a second Ctrl-C ends it at once.
class TerminalProgress : public rkBase::AbstractProgress {
    Q_OBJECT

public:
    explicit TerminalProgress(int range = 100);
    ~TerminalProgress() override;

    void setRange(int range) { m_range = range > 0 ? range : 1; }
    bool drawing() const { return m_drawing; }

    void set_caption(const QString& caption) override;
    bool set_progress(int value) override;
    int get_progress() override { return m_value; }
    void start_progress(bool canCancel) override;
    void finish_progress() override;
    void pause_progress() override;
    bool is_cancelled() override;
    bool is_started() override { return m_started; }
    void set_non_determinate(bool flag) override;

private:
    void draw(bool force);

    int m_range;
    int m_value = 0;
    int m_lastPercent = -1;
    bool m_started = false;
    bool m_drawing;
    QString m_caption;
    QElapsedTimer m_sinceDraw;
};

} // namespace rktool
