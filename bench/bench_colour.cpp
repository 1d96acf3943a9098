// Colouring a 4096 x 4096 grid of values: through value_to_color for every value, and through a
// 256-entry table from getColorTable with an index per value, in the same run. Prints values
// per second of both and their ratio.
#include "BenchRatios.h"

#include "colour/RKColormap.h"

#include <cmath>
#include <vector>

namespace {

constexpr int kSide = 4096;

const std::vector<double>& grid()
{
    static const std::vector<double> values = [] {
        std::vector<double> v(size_t(kSide) * kSide);
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x)
                v[size_t(y) * kSide + x] = std::sin(x * 0.003) * std::cos(y * 0.002) * 1000.0;
        return v;
    }();
    return values;
}

rkBase::RKColormap spectrum()
{
    rkBase::RKColormap m;
    m.fill_spectrum_color_list(-1000.0, 1000.0, 12, true);
    return m;
}

void BM_ValueToColor(benchmark::State& state)
{
    const rkBase::RKColormap m = spectrum();
    const std::vector<double>& values = grid();
    std::vector<unsigned int> out(values.size());
    for (auto _ : state)
        for (size_t i = 0; i < values.size(); ++i)
            out[i] = m.value_to_color(values[i]).rgba();
    benchmark::DoNotOptimize(out.data());
    state.SetItemsProcessed(state.iterations() * int64_t(values.size()));
}
BENCHMARK(BM_ValueToColor)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_TableLookup(benchmark::State& state)
{
    const rkBase::RKColormap m = spectrum();
    QVector<unsigned int> table;
    m.getColorTable(table, 256);
    const double min = m.min_value(), scale = 254.0 / (m.max_value() - min);
    const std::vector<double>& values = grid();
    std::vector<unsigned int> out(values.size());
    for (auto _ : state)
        for (size_t i = 0; i < values.size(); ++i)
            out[i] = table[int((values[i] - min) * scale + 0.5)];
    benchmark::DoNotOptimize(out.data());
    state.SetItemsProcessed(state.iterations() * int64_t(values.size()));
}
BENCHMARK(BM_TableLookup)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    grid();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios({{"BM_ValueToColor/iterations:1", "BM_TableLookup/iterations:3"}}, {0.0});
    return 0;
}
