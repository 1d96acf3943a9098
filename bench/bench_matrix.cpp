// Building an attribute table row by row (a root, one group, ten columns as leaves), beside a
// bare QHash<int, QVariant> per column filled with the same cells in the same run: what the
// tree, the typing and the bookkeeping cost on top of the storage itself. Also the growth
// ratio (200k rows over 100k: linear building gives 2) and the heap bytes per cell at 1M rows.
#include "BenchRatios.h"

#include "matrix/MatrixData.h"

#include <QHash>
#include <QVariant>

#include <malloc.h>

#include <memory>
#include <vector>

namespace {

constexpr int kColumns = 10;

std::unique_ptr<rkBase::MatrixData> buildTable(int rows)
{
    auto root = std::make_unique<rkBase::MatrixData>(QStringLiteral("table"), 0, 1, QVariant::Double, false);
    auto* group = new rkBase::MatrixData(QStringLiteral("group"), 0, 1, QVariant::Double, false);
    root->appendChild(group, false);
    std::vector<rkBase::MatrixData*> columns;
    for (int c = 0; c < kColumns; ++c) {
        auto* leaf = new rkBase::MatrixData(QStringLiteral("c%1").arg(c), 0, 1, QVariant::Double, true);
        group->appendChild(leaf, false);
        columns.push_back(leaf);
    }
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < kColumns; ++c)
            columns[size_t(c)]->setDouble(r, 0, r * 0.5 + c); // a write past the end adds the row
    return root;
}

std::vector<QHash<int, QVariant>> buildBare(int rows)
{
    std::vector<QHash<int, QVariant>> columns(kColumns);
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < kColumns; ++c)
            columns[size_t(c)].insert(r, QVariant(r * 0.5 + c));
    return columns;
}

void BM_BuildTable(benchmark::State& state)
{
    for (auto _ : state) {
        auto table = buildTable(int(state.range(0)));
        benchmark::DoNotOptimize(table.get());
        state.PauseTiming();
        table.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_BuildTable)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_BareHash(benchmark::State& state)
{
    for (auto _ : state) {
        auto columns = buildBare(int(state.range(0)));
        benchmark::DoNotOptimize(columns.data());
        state.PauseTiming();
        columns.clear();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_BareHash)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond)->Iterations(10);

size_t heapInUse()
{
    const struct mallinfo2 m = mallinfo2();
    return m.uordblks + m.hblkhd;
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    // Whatever runs first would pay for growing the heap: warm it with both kinds once.
    buildTable(200000).reset();
    buildBare(200000).clear();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios({{"BM_BuildTable/100000/iterations:10", "BM_BareHash/100000/iterations:10"},
                          {"BM_BuildTable/200000/iterations:10", "BM_BareHash/200000/iterations:10"},
                          {"BM_BuildTable/200000/iterations:10", "BM_BuildTable/100000/iterations:10"},
                          {"BM_BareHash/200000/iterations:10", "BM_BareHash/100000/iterations:10"}},
                         {2.0, 2.0, 2.3, 0.0});
    const int rows = 1000000;
    size_t before = heapInUse();
    {
        auto table = buildTable(rows);
        const size_t ours = heapInUse() - before;
        table.reset();
        before = heapInUse();
        auto bare = buildBare(rows);
        const size_t theirs = heapInUse() - before;
        std::printf("\nheap bytes per cell at %d rows x %d columns: table %.1f, bare QHash %.1f\n", rows, kColumns,
                    double(ours) / (double(rows) * kColumns), double(theirs) / (double(rows) * kColumns));
    }
    return 0;
}
