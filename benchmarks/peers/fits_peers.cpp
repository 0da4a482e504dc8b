// The same plane from Eigen: a loop over the moments and the closed-form eigen-solver.

#include "support/fits_inputs.h"

#include <Eigen/Dense>
#include <benchmark/benchmark.h>

namespace
{

void BM_PlaneFit_Eigen(benchmark::State& state)
{
    const auto points = norvek_benchmark::ScannedSlab(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Eigen::Vector3d sum = Eigen::Vector3d::Zero();
        Eigen::Matrix3d moments = Eigen::Matrix3d::Zero();
        for (const MMPoint3d<double>& point : points) {
            const Eigen::Map<const Eigen::Vector3d> p(&point.x);
            sum += p;
            moments += p * p.transpose();
        }
        const auto n = static_cast<double>(points.size());
        const Eigen::Matrix3d scatter = moments - sum * sum.transpose() / n;
        Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver;
        solver.computeDirect(scatter);
        const Eigen::Vector3d normal = solver.eigenvectors().col(0);
        benchmark::DoNotOptimize(normal.dot(sum / n));
    }
}
BENCHMARK(BM_PlaneFit_Eigen)->Arg(1000)->Arg(100000)->Arg(10000000);

} // namespace
