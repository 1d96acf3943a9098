#include "TerminalProgress.h"

#include <QByteArray>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace rktool {

namespace {
std::atomic<bool> g_interrupted{false};
using Handler = void (*)(int);
Handler g_previous = SIG_DFL;

extern "C" void onInterrupt(int)
{
    if (g_interrupted.exchange(true))
        std::_Exit(130); // second Ctrl-C: the user really means it
}

constexpr int kBarWidth = 30;
} // namespace

TerminalProgress::TerminalProgress(int range) : m_range(range > 0 ? range : 1), m_drawing(::isatty(2) == 1) {}

TerminalProgress::~TerminalProgress()
{
    if (m_started)
        finish_progress();
}

void TerminalProgress::set_caption(const QString& caption)
{
    m_caption = caption;
    draw(true);
}

bool TerminalProgress::set_progress(int value)
{
    m_value = value;
    draw(false);
    return is_cancelled();
}

void TerminalProgress::start_progress(bool canCancel)
{
    set_can_cancel(canCancel);
    m_started = true;
    m_value = 0;
    m_lastPercent = -1;
    g_interrupted = false;
    if (canCancel)
        g_previous = std::signal(SIGINT, onInterrupt);
    m_sinceDraw.start();
    draw(true);
}

void TerminalProgress::finish_progress()
{
    if (!m_started)
        return;
    if (can_cancel())
        std::signal(SIGINT, g_previous);
    m_started = false;
    if (m_drawing) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
    }
}

void TerminalProgress::pause_progress()
{
    if (m_drawing && m_started) {
        std::fputs("\n", stderr);
        std::fflush(stderr);
    }
}

bool TerminalProgress::is_cancelled() { return m_started && can_cancel() && g_interrupted.load(); }

void TerminalProgress::set_non_determinate(bool flag)
{
    setNonDeterminateFlag(flag);
    draw(true);
}

void TerminalProgress::draw(bool force)
{
    if (!m_drawing || !m_started)
        return;
    const int percent = is_non_determinate() ? -1 : qBound(0, static_cast<int>(100LL * m_value / m_range), 100);
    // Redraw on a new percentage, and at most every 100 ms otherwise, so a tight loop that
    // reports each step costs next to nothing.
    if (!force && percent == m_lastPercent && m_sinceDraw.elapsed() < 100)
        return;
    m_lastPercent = percent;
    m_sinceDraw.restart();

    QByteArray line = "\r\033[K";
    line += m_caption.left(40).toUtf8();
    line += " [";
    if (percent < 0) {
        const int pos = static_cast<int>((m_sinceDraw.msecsSinceReference() / 100) % kBarWidth);
        for (int i = 0; i < kBarWidth; ++i)
            line += (i == pos ? '#' : '.');
        line += "]";
    } else {
        const int filled = percent * kBarWidth / 100;
        line += QByteArray(filled, '#') + QByteArray(kBarWidth - filled, '.');
        line += "] " + QByteArray::number(percent).rightJustified(3) + "%";
    }
    std::fputs(line.constData(), stderr);
    std::fflush(stderr);
}

} // namespace rktool
