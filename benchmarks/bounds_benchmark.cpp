// Boxes: the union of many points and the test against triangles.

#include "support/bounds_inputs.h"

#include <norvek/bounds/bounding_box.h>
#include <norvek/bounds/bounding_box_nd.h>

#include <benchmark/benchmark.h>

namespace
{

void BM_BoxUnion(benchmark::State& state)
{
    const auto points = norvek_benchmark::RandomPoints(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        M3DBoundingBox<double> box;
        for (const MMPoint3d<double>& point : points)
            box.AddPoint(point);
        benchmark::DoNotOptimize(box);
    }
}
BENCHMARK(BM_BoxUnion)->Arg(1000)->Arg(100000)->Arg(1000000);

void BM_BoxUnionND(benchmark::State& state)
{
    const auto points = norvek_benchmark::RandomPoints(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        MBoundingBox3DDouble box;
        for (const MMPoint3d<double>& point : points)
            box.AddPoint(point);
        benchmark::DoNotOptimize(box);
    }
}
BENCHMARK(BM_BoxUnionND)->Arg(1000)->Arg(100000)->Arg(1000000);

void BM_BoxTriangle(benchmark::State& state)
{
    const auto triangles =
        norvek_benchmark::RandomTriangles(static_cast<std::size_t>(state.range(0)));
    const M3DBoundingBox<double> box(-20, -20, -20, 20, 20, 20);
    for (auto _ : state) {
        int hits = 0;
        for (const auto& triangle : triangles)
            hits += box.DoesIntersectTriangle(triangle.data()) ? 1 : 0;
        benchmark::DoNotOptimize(hits);
    }
}
BENCHMARK(BM_BoxTriangle)->Arg(1000)->Arg(10000)->Arg(100000);

} // namespace
