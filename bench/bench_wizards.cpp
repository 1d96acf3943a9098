// The cost of reporting progress into a shown wizard from a tight loop, beside the same loop
// with no reporting and beside a bare QProgressBar fed the same values in the same run.
//
// 1M calls per iteration. "Percent" passes what a well-behaved operation passes (a percentage,
// changing 100 times); "EveryValue" changes the value at every call, the worst case. The target
// is under 1 s added over the bare loop for 1M calls of either kind. A bare QProgressBar
// repaints at every change, so it gets 1/100 of the calls (10k) to finish in reasonable time.
#include "BenchRatios.h"

#include "wizards/AbstractSheet.h"
#include "wizards/Wizard.h"
#include "wizards/WizardProgress.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>

namespace {

constexpr int kCalls = 1000000;

class BenchSheet : public rkBase::AbstractSheet {
public:
    explicit BenchSheet(rkBase::AbstractSheetHandler* h)
        : AbstractSheet(h)
    {
        auto* w = new QLabel(QStringLiteral("Working"));
        w->setWindowTitle(QStringLiteral("Work"));
        setWidget(w);
    }
};

class BenchWizard : public rkBase::Wizard {
public:
    void populate_sheets() override { add_sheet(new BenchSheet(this)); }
};

BenchWizard& wizard()
{
    static BenchWizard* w = [] {
        auto* made = new BenchWizard;
        made->show();
        QApplication::processEvents();
        return made;
    }();
    return *w;
}

void BM_BareLoop(benchmark::State& state)
{
    for (auto _ : state) {
        int cancelled = 0;
        for (int i = 0; i < kCalls; ++i) {
            int v = i % 101;
            benchmark::DoNotOptimize(v);
            cancelled += v < 0;
        }
        benchmark::DoNotOptimize(cancelled);
    }
}
BENCHMARK(BM_BareLoop)->Unit(benchmark::kMillisecond);

template <bool everyValue> void BM_WizardProgress(benchmark::State& state)
{
    rkBase::WizardProgress* progress = wizard().get_progress();
    for (auto _ : state) {
        progress->start_progress(true);
        int cancelled = 0;
        for (int i = 0; i < kCalls; ++i)
            cancelled += progress->set_progress(everyValue ? i % 101 : int(qint64(i) * 100 / kCalls));
        progress->finish_progress();
        benchmark::DoNotOptimize(cancelled);
    }
}
BENCHMARK_TEMPLATE(BM_WizardProgress, false)->Name("BM_WizardProgressPercent")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_WizardProgress, true)->Name("BM_WizardProgressEveryValue")->Unit(benchmark::kMillisecond);

void BM_QProgressBar10kValues(benchmark::State& state)
{
    static QProgressBar* bar = [] {
        auto* b = new QProgressBar;
        b->setRange(0, 100);
        b->show();
        QApplication::processEvents();
        return b;
    }();
    for (auto _ : state)
        for (int i = 0; i < kCalls / 100; ++i)
            bar->setValue(i % 101);
}
BENCHMARK(BM_QProgressBar10kValues)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    // For information: the 1 s target reads directly off the times above.
    reporter.printRatios({{"BM_WizardProgressPercent", "BM_BareLoop"},
                          {"BM_WizardProgressEveryValue", "BM_BareLoop"},
                          {"BM_WizardProgressEveryValue", "BM_QProgressBar10kValues"}},
                         {0.0, 0.0, 0.0});
    return 0;
}
