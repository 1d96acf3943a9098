// printValue and parseValue against the bare QString calls they are built on, on the same
// numbers: the unit layer should cost little on top of formatting and reading a number.
#include "BenchRatios.h"

#include "frame/rkProductInfo.h"
#include "units/UnitRegistry.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <vector>

namespace {

using rkBase::UnitRegistry;

const std::vector<double>& numbers()
{
    static const std::vector<double> values = {0.0, 1.5, -12.25, 1234.5678, 98765.4321, -0.001, 3.0e5, 42.0};
    return values;
}

const QStringList& texts()
{
    static const QStringList values = {
        QStringLiteral("0"),          QStringLiteral("1.5"),    QStringLiteral("-12.25"), QStringLiteral("1234.5678"),
        QStringLiteral("98765.4321"), QStringLiteral("-0.001"), QStringLiteral("3.0e5"),  QStringLiteral("42")};
    return values;
}

UnitRegistry& registry()
{
    static UnitRegistry* r = [] {
        auto* reg = new UnitRegistry;
        reg->insert_property("bench_elevation", UnitRegistry::REAL_SYSTEM_TYPE, 0, QColor(),
                             UnitRegistry::CATEGORY_ELEVATION, -1, -1);
        return reg;
    }();
    return *r;
}

// Bare formatting with the same width, notation and decimals that printValue uses (xy: one
// decimal, field width one).
void BM_BareArg(benchmark::State& state)
{
    const QString pattern = QStringLiteral("%1");
    for (auto _ : state)
        for (double v : numbers())
            benchmark::DoNotOptimize(pattern.arg(v, 1, 'f', 1, QLatin1Char(' ')));
}
BENCHMARK(BM_BareArg);

void BM_PrintValue(benchmark::State& state)
{
    const auto xy = registry().getXyUnitManager();
    for (auto _ : state)
        for (double v : numbers())
            benchmark::DoNotOptimize(xy->printValue(v));
}
BENCHMARK(BM_PrintValue);

// The whole registry path: property lookup by name, conversion, formatting, tag.
void BM_RegistryPrintValue(benchmark::State& state)
{
    const UnitRegistry& r = registry();
    const std::string property = "bench_elevation";
    QString out;
    for (auto _ : state)
        for (double v : numbers()) {
            r.printValue(out, v, property);
            benchmark::DoNotOptimize(out);
        }
}
BENCHMARK(BM_RegistryPrintValue);

void BM_BareToDouble(benchmark::State& state)
{
    bool ok = false;
    for (auto _ : state)
        for (const QString& t : texts())
            benchmark::DoNotOptimize(t.toDouble(&ok));
}
BENCHMARK(BM_BareToDouble);

// parseValue on the same numbers wrapped as `prefix + number + suffix`.
void parseWrapped(benchmark::State& state, const QString& prefix, const QString& suffix)
{
    const auto xy = registry().getXyUnitManager();
    QStringList wrapped;
    for (const QString& t : texts())
        wrapped << prefix + t + suffix;
    double value = 0;
    for (auto _ : state)
        for (const QString& t : wrapped)
            benchmark::DoNotOptimize(xy->parseValue(t, value));
}
void BM_ParseValue(benchmark::State& state) { parseWrapped(state, QString(), QString()); }
void BM_ParseValueWithTag(benchmark::State& state) { parseWrapped(state, QString(), QStringLiteral(" km")); }
// Text outside the common "<number> [tag]" shapes is read by the full pattern.
void BM_ParseValueThroughPattern(benchmark::State& state)
{
    parseWrapped(state, QStringLiteral("~"), QStringLiteral("km"));
}
BENCHMARK(BM_ParseValue);
BENCHMARK(BM_ParseValueWithTag);

// The strict reading of the command line on the same texts with a tag: it must not cost the
// stated parseValue anything (they share no code), and is shown beside it for information.
void BM_ParseValueStrictWithTag(benchmark::State& state)
{
    const auto xy = registry().getXyUnitManager();
    QStringList wrapped;
    for (const QString& t : texts())
        wrapped << t + QStringLiteral(" km");
    double value = 0;
    for (auto _ : state)
        for (const QString& t : wrapped)
            benchmark::DoNotOptimize(xy->parseValueStrict(t, value));
}
BENCHMARK(BM_ParseValueStrictWithTag);
BENCHMARK(BM_ParseValueThroughPattern);

void BM_RegistryParseValue(benchmark::State& state)
{
    const UnitRegistry& r = registry();
    const std::string property = "bench_elevation";
    double value = 0;
    for (auto _ : state)
        for (const QString& t : texts())
            benchmark::DoNotOptimize(r.parseValue(t, value, property));
}
BENCHMARK(BM_RegistryParseValue);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    rkBase::rkProductInfo::instance().init("rkbench");
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios({{"BM_PrintValue", "BM_BareArg"},
                          {"BM_RegistryPrintValue", "BM_BareArg"},
                          {"BM_ParseValue", "BM_BareToDouble"},
                          {"BM_ParseValueWithTag", "BM_BareToDouble"},
                          {"BM_RegistryParseValue", "BM_BareToDouble"},
                          {"BM_ParseValueThroughPattern", "BM_BareToDouble"},
                          {"BM_ParseValueStrictWithTag", "BM_ParseValueWithTag"}},
                         {2.0, 2.0, 3.0, 3.0, 3.0, 0.0, 0.0});
    return 0;
}
