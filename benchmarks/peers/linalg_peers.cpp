// Eigen over the same matrices.

#include "support/linalg_inputs.h"

#include <Eigen/Dense>
#include <benchmark/benchmark.h>

namespace
{

Eigen::MatrixXd RandomMatrix(Eigen::Index rows, Eigen::Index columns)
{
    const auto values = norvek_benchmark::RandomValues(static_cast<std::size_t>(rows * columns));
    using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    return Eigen::Map<const RowMajor>(values.data(), rows, columns);
}

Eigen::VectorXd RandomVector(Eigen::Index count)
{
    const auto values = norvek_benchmark::RandomValues(static_cast<std::size_t>(count));
    return Eigen::Map<const Eigen::VectorXd>(values.data(), count);
}

Eigen::MatrixXd SymmetricMatrix(Eigen::Index order, double diagonal)
{
    const auto values =
        norvek_benchmark::SymmetricValues(static_cast<std::size_t>(order), diagonal);
    return Eigen::Map<const Eigen::MatrixXd>(values.data(), order, order);
}

void BM_Eigen3x3_Eigen(benchmark::State& state)
{
    const auto inputs = norvek_benchmark::ScatterMatrices(1000);
    std::vector<Eigen::Matrix3d> matrices;
    for (const auto& input : inputs)
        matrices.emplace_back(Eigen::Map<const Eigen::Matrix3d>(input.data()));
    for (auto _ : state) {
        for (const Eigen::Matrix3d& matrix : matrices) {
            Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver;
            solver.computeDirect(matrix);
            benchmark::DoNotOptimize(solver);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(matrices.size()));
}
BENCHMARK(BM_Eigen3x3_Eigen);

void BM_LUSolve_Eigen(benchmark::State& state)
{
    const Eigen::MatrixXd a = RandomMatrix(state.range(0), state.range(0));
    const Eigen::VectorXd right = RandomVector(state.range(0));
    for (auto _ : state) {
        const Eigen::VectorXd x = a.partialPivLu().solve(right);
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(BM_LUSolve_Eigen)->Arg(4)->Arg(10)->Arg(50)->Arg(200)->Arg(500);

void BM_QRLeastSquares_Eigen(benchmark::State& state)
{
    const Eigen::MatrixXd a = RandomMatrix(state.range(1), state.range(0));
    const Eigen::VectorXd right = RandomVector(state.range(1));
    for (auto _ : state) {
        const Eigen::VectorXd x = a.householderQr().solve(right);
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(BM_QRLeastSquares_Eigen)
    ->Args({4, 4})
    ->Args({10, 10})
    ->Args({50, 50})
    ->Args({200, 200})
    ->Args({500, 500})
    ->Args({10, 20})
    ->Args({200, 400});

void BM_CholeskySolve_Eigen(benchmark::State& state)
{
    const Eigen::MatrixXd a = SymmetricMatrix(state.range(0), static_cast<double>(state.range(0)));
    const Eigen::VectorXd right = RandomVector(state.range(0));
    for (auto _ : state) {
        const Eigen::VectorXd x = a.llt().solve(right);
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(BM_CholeskySolve_Eigen)->Arg(4)->Arg(10)->Arg(50)->Arg(200)->Arg(500);

void BM_SymmetricEigen_Eigen(benchmark::State& state)
{
    const Eigen::MatrixXd a = SymmetricMatrix(state.range(0), 0.0);
    for (auto _ : state) {
        const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(a);
        benchmark::DoNotOptimize(solver.eigenvalues().data());
        benchmark::DoNotOptimize(solver.eigenvectors().data());
    }
}
BENCHMARK(BM_SymmetricEigen_Eigen)->Arg(4)->Arg(10)->Arg(50)->Arg(200);

} // namespace
