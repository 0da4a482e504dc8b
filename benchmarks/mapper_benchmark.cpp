// Rigid fits over paired points. The list of pointers exists before the clock starts, its nodes one
// after the other in memory as a loop of insertions leaves them; the fit alone is timed.

#include "support/mapper_inputs.h"

#include <norvek/search/point_mappers.h>
#include <norvek/search/registered_points_tree.h>

#include <benchmark/benchmark.h>

namespace
{

MBasePointMapper::PairList MakeList(norvek_benchmark::PairedPoints& points)
{
    MBasePointMapper::PairList pairs;
    for (std::size_t i = 0; i < points.first.size(); ++i)
        pairs.emplace_back(&points.first[i], &points.second[i]);
    return pairs;
}

void BM_MapPoints(benchmark::State& state)
{
    auto points = norvek_benchmark::MakePairs(static_cast<std::size_t>(state.range(0)));
    const auto pairs = MakeList(points);
    MMOrthoTransform motion;
    for (auto _ : state) {
        benchmark::DoNotOptimize(MMapper3DPoints::MapPoints(motion, pairs));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_MapPoints)->Arg(10)->Arg(1000)->Arg(100000)->Arg(1000000);

// Along a line, where the residuals are summed as well.
void BM_MapElongatedPoints(benchmark::State& state)
{
    auto points = norvek_benchmark::MakePairs(static_cast<std::size_t>(state.range(0)));
    for (std::size_t i = 0; i < points.first.size(); ++i) {
        points.first[i].x *= 100.0;
        points.second[i].x *= 100.0;
    }
    const auto pairs = MakeList(points);
    MMOrthoTransform motion;
    for (auto _ : state) {
        benchmark::DoNotOptimize(MMapper3DPoints::MapPoints(motion, pairs));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_MapElongatedPoints)->Arg(10)->Arg(1000)->Arg(1000000);

void BM_MapPointsScale(benchmark::State& state)
{
    auto points = norvek_benchmark::MakePairs(static_cast<std::size_t>(state.range(0)));
    const auto pairs = MakeList(points);
    double scale = 0.0;
    MMPoint3d<double> centre;
    for (auto _ : state) {
        benchmark::DoNotOptimize(MMapper3DPointsScale::MapPoints(scale, centre, pairs));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_MapPointsScale)->Arg(1000)->Arg(1000000);

// A dense table of costs; quadratic in the number of sets.
void BM_RegistrationTree(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    MDataArray2D<MRegistrationCostInfo> costs(count, count);
    for (std::size_t k = 0; k < count * count; ++k)
        costs(k % count, k / count)
            .SetInfo(static_cast<unsigned int>(k * 7919 % 1009), 1009, static_cast<double>(k));
    const MDataArray2D<MMTransformMatrix> pairwise(count, count);
    const std::vector<MMTransformMatrix> absolute(count);
    MRegistered3DPointsTree tree;
    for (auto _ : state) {
        tree.Build(costs, pairwise, absolute);
        tree.UpdateWcsTransforms();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_RegistrationTree)->Arg(10)->Arg(100)->Arg(1000);

} // namespace
