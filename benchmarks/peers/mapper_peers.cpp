// The same fits by Eigen, which gets its two matrices ready-made.

#include "support/mapper_inputs.h"

#include <Eigen/Geometry>
#include <benchmark/benchmark.h>

namespace
{

Eigen::Matrix3Xd ToColumns(const std::vector<MMPoint3d<double>>& points)
{
    return Eigen::Map<const Eigen::Matrix3Xd>(&points[0].x, 3,
                                              static_cast<Eigen::Index>(points.size()));
}

void BM_MapPoints_EigenUmeyama(benchmark::State& state)
{
    const auto points = norvek_benchmark::MakePairs(static_cast<std::size_t>(state.range(0)));
    const Eigen::Matrix3Xd first = ToColumns(points.first);
    const Eigen::Matrix3Xd second = ToColumns(points.second);
    for (auto _ : state) {
        const Eigen::Matrix4d motion = Eigen::umeyama(second, first, false);
        benchmark::DoNotOptimize(motion.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_MapPoints_EigenUmeyama)->Arg(10)->Arg(1000)->Arg(100000)->Arg(1000000);

} // namespace
