// Converting many projected points to latitude and longitude: our per-point path through
// PointToLatLongTransform against GDAL's Transform on the whole array, on the same points; and
// the kind of a projected system asked again (cached) against its first, uncached call.
#include "BenchRatios.h"

#include "coordinates/RKCoordinateSystem.h"
#include "frame/GDALErrorHandler.h"

#include <QElapsedTimer>
#include <ogr_spatialref.h>

#include <chrono>
#include <cstdio>
#include <vector>

namespace {
using rkBase::RKCoordinateSystem;

constexpr int pointCount = 1000000;

const RKCoordinateSystem& utm()
{
    static const RKCoordinateSystem cs("+proj=utm +zone=31 +datum=WGS84 +units=m +no_defs");
    return cs;
}

// Points over a 100 km square of zone 31.
const std::vector<double>& eastings()
{
    static const std::vector<double> v = [] {
        std::vector<double> out(pointCount);
        for (int i = 0; i < pointCount; ++i)
            out[i] = 450000.0 + (i % 1000) * 100.0;
        return out;
    }();
    return v;
}
const std::vector<double>& northings()
{
    static const std::vector<double> v = [] {
        std::vector<double> out(pointCount);
        for (int i = 0; i < pointCount; ++i)
            out[i] = 5000000.0 + (i / 1000) * 100.0;
        return out;
    }();
    return v;
}

void BM_PointToLatLong(benchmark::State& state)
{
    const auto t = utm().transform_point_to_lat_long(QString());
    const auto& xs = eastings();
    const auto& ys = northings();
    for (auto _ : state) {
        double sum = 0;
        for (int i = 0; i < pointCount; ++i)
            sum += t->transform(xs[i], ys[i]).first;
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_PointToLatLong)->Unit(benchmark::kMillisecond);

void BM_GdalTransformArray(benchmark::State& state)
{
    OGRSpatialReference* own = utm().reference();
    OGRSpatialReference geographic;
    geographic.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    geographic.CopyGeogCSFrom(own);
    OGRCoordinateTransformation* t = OGRCreateCoordinateTransformation(own, &geographic);
    std::vector<double> xs, ys;
    for (auto _ : state) {
        state.PauseTiming();
        xs = eastings();
        ys = northings();
        state.ResumeTiming();
        t->Transform(pointCount, xs.data(), ys.data(), nullptr);
        benchmark::DoNotOptimize(ys.data());
    }
    OGRCoordinateTransformation::DestroyCT(t);
}
BENCHMARK(BM_GdalTransformArray)->Unit(benchmark::kMillisecond);

// The first call of a fresh object: reference built, transformation checked.
void BM_KindFirstCall(benchmark::State& state)
{
    const std::string text = utm().wkt();
    for (auto _ : state) {
        RKCoordinateSystem cs;
        cs.wkt(text);
        benchmark::DoNotOptimize(cs.coord_system_type());
    }
}
BENCHMARK(BM_KindFirstCall);

void BM_KindCached(benchmark::State& state)
{
    RKCoordinateSystem cs;
    cs.wkt(utm().wkt());
    cs.coord_system_type();
    for (auto _ : state)
        benchmark::DoNotOptimize(cs.coord_system_type());
}
BENCHMARK(BM_KindCached);
} // namespace

int main(int argc, char** argv)
{
    GDALErrorHandler::instance();
    {
        // The state plane tables are built on first use; their cost is printed, not compared.
        QElapsedTimer timer;
        timer.start();
        const int states = RKCoordinateSystem::states(true).size() + RKCoordinateSystem::states(false).size();
        std::printf("state plane tables: %d states, built in %lld ms\n", states,
                    static_cast<long long>(timer.elapsed()));
    }
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    // The cached kind must be at least 100 times faster than the first call: ratio <= 0.01.
    reporter.printRatios({{"BM_PointToLatLong", "BM_GdalTransformArray"}, {"BM_KindCached", "BM_KindFirstCall"}},
                         {1.5, 0.01});
    return 0;
}
