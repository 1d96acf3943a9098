#include "frame/ProgressWidget.h"
#include "frame/QDefaultProgress.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QThread>
#include <QtTest>

#include <atomic>

using namespace rkBase;

namespace {

// Counts how often the event loop really ran: one posted call per probe, delivered only when
// someone processes events.
struct LoopProbe {
    int delivered = 0;
    QObject context;
    void post()
    {
        QMetaObject::invokeMethod(&context, [this] { ++delivered; }, Qt::QueuedConnection);
    }
};

struct StrideProgress : AbstractProgress {
    void set_caption(const QString&) override {}
    bool set_progress(int) override { return false; }
    int get_progress() override { return 0; }
    void start_progress(bool) override {}
    void finish_progress() override {}
    void pause_progress() override {}
    bool is_cancelled() override { return false; }
    bool is_started() override { return false; }
    void set_non_determinate(bool) override {}
};

QList<QProgressDialog*> progressDialogs()
{
    QList<QProgressDialog*> found;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* d = qobject_cast<QProgressDialog*>(w))
            found << d;
    return found;
}

} // namespace

class TestProgress : public QObject {
    Q_OBJECT

private slots:
    void strideRunsTheLoop_data()
    {
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("interval");
        QTest::addColumn<bool>("runs");
        QTest::newRow("first step") << 0 << 100 << false;
        QTest::newRow("one stride") << 100 << 100 << true;
        QTest::newRow("three strides") << 300 << 100 << true;
        QTest::newRow("between strides") << 150 << 100 << false;
        QTest::newRow("no stride") << 50 << 0 << false;
        QTest::newRow("stride of one") << 7 << 1 << true;
    }
    void strideRunsTheLoop()
    {
        QFETCH(int, current);
        QFETCH(int, interval);
        QFETCH(bool, runs);
        StrideProgress progress;
        LoopProbe probe;
        probe.post();
        progress.processEvents(current, interval);
        QCOMPARE(probe.delivered, runs ? 1 : 0);
        QCoreApplication::processEvents(); // leave no posted call behind for the next row
    }

    void defaultProgressOutsideARun()
    {
        QDefaultProgress progress(50);
        QVERIFY(!progress.set_progress(10));
        QCOMPARE(progress.get_progress(), 0);
        QVERIFY(!progress.is_started());
        QVERIFY(!progress.is_cancelled());
        progress.set_range(80); // only remembered; used by the next run
        progress.set_caption(QStringLiteral("Reading"));
        progress.start_progress(true);
        QProgressDialog* dialog = progressDialogs().value(0);
        QVERIFY(dialog);
        QCOMPARE(dialog->maximum(), 80);
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Reading"));
        progress.finish_progress();
        QVERIFY(progressDialogs().isEmpty());
    }

    void defaultProgressRun()
    {
        QDefaultProgress progress(100);
        progress.start_progress(false);
        QPointer<QProgressDialog> first = progressDialogs().value(0);
        QVERIFY(first);
        QVERIFY(!first->findChild<QPushButton*>()); // no Cancel when it cannot cancel
        progress.start_progress(true); // a second start replaces the dialog
        QVERIFY(first.isNull());
        QCOMPARE(progressDialogs().size(), 1);
        QProgressDialog* dialog = progressDialogs().value(0);
        QVERIFY(!progress.set_progress(100));
        QCOMPARE(progress.get_progress(), 100); // reaching the maximum does not reset the value
        dialog->cancel();
        QVERIFY(progress.is_cancelled());
        QVERIFY(progress.set_progress(40));
        QVERIFY(progress.is_started()); // a cancelled dialog stays until finish
        progress.finish_progress();
        QVERIFY(!progress.is_started());
        QVERIFY(progressDialogs().isEmpty());
    }

    void widgetRun()
    {
        ProgressWidgetImpl impl;
        impl.setDontProcessEvents(true);
        ProgressWidget progress(&impl);
        QVERIFY(!progress.is_started());
        progress.start_progress(false);
        QVERIFY(progress.is_started());
        QVERIFY(impl.cancelButton()->isHidden());
        progress.set_caption(QStringLiteral("Clipping"));
        QCOMPARE(impl.caption(), QStringLiteral("Clipping"));
        QVERIFY(!progress.set_progress(42));
        QCOMPARE(progress.get_progress(), 42);

        progress.start_progress(true);
        QVERIFY(!impl.cancelButton()->isHidden());
        QCOMPARE(impl.caption(), QString()); // a new run starts without the old caption
        QCOMPARE(progress.get_progress(), 0);
        impl.cancelButton()->click();
        QVERIFY(progress.is_cancelled());
        QVERIFY(!progress.is_started()); // cancelling hides the bar
        QVERIFY(progress.set_progress(50));
        progress.start_progress(true);
        QVERIFY(!progress.is_cancelled());
        progress.cancel();
        progress.finish_progress();
        QVERIFY(!progress.is_cancelled());
    }

    void widgetBusyRangeIsAlwaysPercent()
    {
        ProgressWidgetImpl impl;
        ProgressWidget progress(&impl);
        auto* bar = impl.findChild<QProgressBar*>();
        QVERIFY(bar);
        bar->setRange(0, 5000); // a caller's own range is not restored
        progress.set_non_determinate(true);
        QCOMPARE(bar->maximum(), 0);
        QVERIFY(progress.is_non_determinate());
        progress.set_non_determinate(false);
        QCOMPARE(bar->maximum(), 100);
        QVERIFY(!progress.is_non_determinate());
    }

    void valueThrottlesTheEventLoop()
    {
        // Two bars fed in a tight loop for 1.2 s. Each run of the event loop delivers every probe
        // posted so far, so the number of jumps in the delivered count is the number of runs: about
        // two a second over both bars together, never one per value.
        ProgressWidgetImpl a, b;
        LoopProbe probe;
        QElapsedTimer clock;
        clock.start();
        int calls = 0, runs = 0, lastDelivered = 0;
        while (clock.elapsed() < 1200) {
            probe.post();
            (calls % 2 ? a : b).setValue(calls % 101);
            ++calls;
            if (probe.delivered != lastDelivered) {
                ++runs;
                lastDelivered = probe.delivered;
            }
        }
        QVERIFY(calls > 1000);
        QVERIFY2(runs >= 2 && runs <= 4, qPrintable(QString::number(runs)));

        a.setDontProcessEvents(true);
        const int before = probe.delivered;
        clock.restart();
        while (clock.elapsed() < 600) {
            probe.post();
            a.setValue(int(clock.elapsed() % 101));
        }
        QCOMPARE(probe.delivered, before); // never with dontProcessEvents
        QCoreApplication::processEvents();
    }

    void containerFromAWorker()
    {
        ProgressWidgetImpl impl;
        ProgressWidgetContainer progress(&impl);
        std::atomic<int> mismatches{0};
        std::atomic<bool> sawCancel{false};
        std::atomic<int> lastValue{-1};
        QThread* worker = QThread::create([&] {
            progress.start_progress(true);
            progress.set_caption(QStringLiteral("Warping"));
            if (impl.caption() != QStringLiteral("Warping"))
                ++mismatches; // a worker's call returns only after the GUI showed it
            for (int v = 0; v <= 100000; ++v) {
                const int shown = v % 101;
                if (progress.set_progress(shown)) {
                    sawCancel = true;
                    break;
                }
                if (impl.value() != shown)
                    ++mismatches;
                lastValue = shown;
            }
            progress.finish_progress();
        });
        worker->start();
        // The GUI thread keeps its loop running and cancels once the worker is well under way.
        QTRY_VERIFY_WITH_TIMEOUT(lastValue >= 50 || worker->isFinished(), 20000);
        QVERIFY(progress.is_started() || worker->isFinished());
        progress.cancel();
        QTRY_VERIFY_WITH_TIMEOUT(worker->isFinished(), 20000);
        worker->wait();
        delete worker;
        QCOMPARE(mismatches.load(), 0);
        QVERIFY(sawCancel);
        QVERIFY(impl.isHidden());
        QVERIFY(!progress.is_started());
    }

    void containerOnTheGuiThreadIsQueued()
    {
        ProgressWidgetImpl impl;
        ProgressWidgetContainer progress(&impl);
        QSignalSpy cancelled(&progress, &ProgressWidgetContainer::progress_cancelled);
        progress.start_progress(false);
        progress.set_progress(30);
        QCOMPARE(progress.get_progress(), 30);
        QVERIFY(progress.is_started());
        QVERIFY(impl.isHidden()); // not shown until the loop runs
        QCoreApplication::processEvents();
        QVERIFY(!impl.isHidden());
        QCOMPARE(impl.value(), 30);
        QVERIFY(impl.cancelButton()->isHidden());
        progress.cancel();
        QCOMPARE(cancelled.count(), 1);
        QVERIFY(progress.is_cancelled());
        progress.finish_progress();
        QCoreApplication::processEvents();
        QVERIFY(!progress.is_cancelled());
    }
};

QTEST_MAIN(TestProgress)
#include "tst_progress.moc"
