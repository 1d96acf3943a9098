// The terminal progress bar: drawn only on a terminal, throttled, and Ctrl-C turns into a
// cancel request instead of killing the operation half-way.
#include "TerminalProgress.h"

#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

using rktool::TerminalProgress;

namespace {

// Points stderr at a pseudo-terminal for the life of the object; `drain` reads what was drawn.
struct StderrOnTerminal {
    int master = -1, slave = -1, saved = -1;
    StderrOnTerminal()
    {
        if (::openpty(&master, &slave, nullptr, nullptr, nullptr) == 0) {
            ::fcntl(master, F_SETFL, O_NONBLOCK);
            saved = ::dup(2);
            ::dup2(slave, 2);
        }
    }
    ~StderrOnTerminal()
    {
        if (saved < 0)
            return;
        ::dup2(saved, 2);
        ::close(saved);
        ::close(master);
        ::close(slave);
    }
    QByteArray drain()
    {
        QByteArray all;
        char buffer[4096];
        for (ssize_t n; (n = ::read(master, buffer, sizeof buffer)) > 0;)
            all.append(buffer, static_cast<int>(n));
        return all;
    }
};

} // namespace

class TestTerminalProgress : public QObject {
    Q_OBJECT

private slots:
    void drawsOnATerminal();
    void interruptCancelsAndIsRestored();
};

void TestTerminalProgress::drawsOnATerminal()
{
    // ctest gives the test a pipe or a file: nothing is drawn there.
    QVERIFY(!::isatty(2) && !TerminalProgress().drawing());
    StderrOnTerminal terminal;
    if (terminal.saved < 0)
        QSKIP("no pseudo-terminal available");
    TerminalProgress p(200);
    QVERIFY(p.drawing());
    p.start_progress(false);
    p.set_caption(QStringLiteral("Reading"));
    p.set_progress(100);
    QByteArray shown = terminal.drain();
    QVERIFY2(shown.contains("Reading [###############...............]  50%"), shown.constData());

    // The same percentage again within the throttle interval draws nothing new.
    p.set_progress(101);
    QVERIFY(terminal.drain().isEmpty());
    p.set_progress(200);
    QVERIFY(terminal.drain().contains("100%"));

    // Finishing clears the line so that later output starts clean.
    p.finish_progress();
    QVERIFY(terminal.drain().endsWith("\r\033[K"));
}

void TestTerminalProgress::interruptCancelsAndIsRestored()
{
    auto* before = std::signal(SIGINT, SIG_IGN);
    std::signal(SIGINT, before);
    {
        TerminalProgress p;
        p.start_progress(true);
        QVERIFY(!p.set_progress(10));
        std::raise(SIGINT); // the process survives: the bar asks the operation to stop
        QVERIFY(p.is_cancelled());
        QVERIFY(p.set_progress(11));
        p.finish_progress();
        QVERIFY(!p.is_cancelled());
    }
    // The handler in force before the run is back.
    QVERIFY(std::signal(SIGINT, SIG_DFL) == before);
    std::signal(SIGINT, before);

    // A run that cannot be cancelled leaves Ctrl-C alone.
    TerminalProgress q;
    q.start_progress(false);
    QVERIFY(std::signal(SIGINT, before) == before);
    q.finish_progress();
}

QTEST_GUILESS_MAIN(TestTerminalProgress)
#include "tst_terminalprogress.moc"
