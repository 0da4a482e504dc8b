// Least-squares planes.

#include "support/fits_inputs.h"

#include <norvek/primitives/least_squares_plane.h>

#include <benchmark/benchmark.h>

namespace
{

void BM_PlaneFit(benchmark::State& state)
{
    const auto points = norvek_benchmark::ScannedSlab(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        MMLeastSquarePlane fit;
        fit.Calculate(points);
        benchmark::DoNotOptimize(fit.GetPlane());
    }
}
BENCHMARK(BM_PlaneFit)->Arg(1000)->Arg(100000)->Arg(10000000);

void BM_PlaneFitOneByOne(benchmark::State& state)
{
    const auto points = norvek_benchmark::ScannedSlab(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        MMLeastSquarePlane fit;
        for (const MMPoint3d<double>& point : points)
            fit.AddPoint(point.x, point.y, point.z);
        benchmark::DoNotOptimize(fit.GetPlane());
    }
}
BENCHMARK(BM_PlaneFitOneByOne)->Arg(1000)->Arg(100000)->Arg(10000000);

} // namespace
