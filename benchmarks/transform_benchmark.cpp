#include "support/transform_inputs.h"

#include <norvek/transform/transform_matrix.h>

#include <benchmark/benchmark.h>

namespace
{

using norvek_benchmark::kAffineRows;
using norvek_benchmark::kAngles;
using norvek_benchmark::kTranslation;
using norvek_benchmark::RandomPoints;

MMTransformMatrix Rigid()
{
    MMTransformMatrix matrix;
    matrix.MakeRotationXYZ(kAngles[0], kAngles[1], kAngles[2]);
    matrix.FillInTranslation(kTranslation);
    return matrix;
}

void BM_Points(benchmark::State& state)
{
    const auto in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    std::vector<MMPoint3d<double>> out(in.size());
    const MMTransformMatrix matrix = Rigid();
    for (auto _ : state) {
        matrix.Transform(out, in);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Points)->Arg(1000)->Arg(100000)->Arg(10000000);

void BM_PointsInPlace(benchmark::State& state)
{
    auto points = RandomPoints(static_cast<std::size_t>(state.range(0)));
    const MMTransformMatrix matrix = Rigid();
    for (auto _ : state) {
        matrix.Transform(points);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_PointsInPlace)->Arg(1000)->Arg(100000);

void BM_Product(benchmark::State& state)
{
    MMTransformMatrix a = Rigid();
    MMTransformMatrix b;
    b.MakeFromDouble12(kAffineRows);
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        MMTransformMatrix product = a * b;
        benchmark::DoNotOptimize(product);
    }
}
BENCHMARK(BM_Product);

void BM_RigidInverse(benchmark::State& state)
{
    MMTransformMatrix matrix = Rigid();
    for (auto _ : state) {
        benchmark::DoNotOptimize(matrix);
        matrix.ComputeInverse();
        benchmark::DoNotOptimize(matrix);
    }
}
BENCHMARK(BM_RigidInverse);

} // namespace
