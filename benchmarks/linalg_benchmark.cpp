// Matrices: eigenvalues and eigenvectors of 3x3, and the factorisations with their solvers.

#include "support/linalg_inputs.h"

#include <norvek/linalg/jacobi_eigenvectors.h>
#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/lu_matrix.h>
#include <norvek/linalg/matrix3x3.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <benchmark/benchmark.h>

#include <algorithm>

namespace
{

MGeneralMatrix RandomMatrix(unsigned int rows, unsigned int columns)
{
    const auto values = norvek_benchmark::RandomValues(std::size_t{rows} * columns);
    auto* const array = new double[values.size()];
    std::copy(values.begin(), values.end(), array);
    return {rows, columns, array};
}

MSymmetricMatrix SymmetricMatrix(unsigned int order, double diagonal)
{
    const auto values = norvek_benchmark::SymmetricValues(order, diagonal);
    MSymmetricMatrix matrix(order);
    for (unsigned int i = 0; i < order; ++i) {
        for (unsigned int j = 0; j <= i; ++j)
            matrix(i, j) = values[std::size_t{i} * order + j];
    }
    return matrix;
}

void BM_Eigen3x3(benchmark::State& state)
{
    const auto inputs = norvek_benchmark::ScatterMatrices(1000);
    std::vector<MMatrix3x3> matrices(inputs.size());
    for (std::size_t m = 0; m < inputs.size(); ++m) {
        for (unsigned int i = 0; i < 9; ++i)
            matrices[m].Element(i / 3, i % 3) = inputs[m][i];
    }
    for (auto _ : state) {
        for (const MMatrix3x3& matrix : matrices) {
            double values[3];
            MMPoint3d<double> vectors[3];
            matrix.GetEigenValues(values);
            matrix.GetEigenVectors(vectors, values);
            benchmark::DoNotOptimize(values);
            benchmark::DoNotOptimize(vectors);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(matrices.size()));
}
BENCHMARK(BM_Eigen3x3);

void BM_LUSolve(benchmark::State& state)
{
    const auto n = static_cast<unsigned int>(state.range(0));
    const MGeneralMatrix a = RandomMatrix(n, n);
    const auto right = norvek_benchmark::RandomValues(n);
    for (auto _ : state) {
        MGeneralMatrix work(a);
        MLUMatrix lu;
        std::vector<double> x(right);
        benchmark::DoNotOptimize(work.FactoriseLU(lu));
        benchmark::DoNotOptimize(lu.SolveLUxy(x.data()));
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(BM_LUSolve)->Arg(4)->Arg(10)->Arg(50)->Arg(200)->Arg(500);

void BM_QRLeastSquares(benchmark::State& state)
{
    const auto n = static_cast<unsigned int>(state.range(0));
    const auto m = static_cast<unsigned int>(state.range(1));
    const MGeneralMatrix a = RandomMatrix(m, n);
    auto right = norvek_benchmark::RandomValues(m);
    for (auto _ : state) {
        std::vector<double> x(n);
        benchmark::DoNotOptimize(a.SolveLeastSquare(right.data(), x.data()));
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(BM_QRLeastSquares)
    ->Args({4, 4})
    ->Args({10, 10})
    ->Args({50, 50})
    ->Args({200, 200})
    ->Args({500, 500})
    ->Args({10, 20})
    ->Args({200, 400});

void BM_CholeskySolve(benchmark::State& state)
{
    const auto n = static_cast<unsigned int>(state.range(0));
    const MSymmetricMatrix a = SymmetricMatrix(n, n);
    const auto right = norvek_benchmark::RandomValues(n);
    for (auto _ : state) {
        MSymmetricMatrix work(a);
        MLowerTriangularMatrix g;
        std::vector<double> x(right);
        benchmark::DoNotOptimize(work.FACTORISE_CHOLESKY(g));
        benchmark::DoNotOptimize(g.SOLVE_G_TG_X_B(x.data()));
        benchmark::DoNotOptimize(x.data());
    }
}
BENCHMARK(BM_CholeskySolve)->Arg(4)->Arg(10)->Arg(50)->Arg(200)->Arg(500);

void BM_SymmetricEigen(benchmark::State& state)
{
    const MSymmetricMatrix a = SymmetricMatrix(static_cast<unsigned int>(state.range(0)), 0.0);
    for (auto _ : state) {
        std::vector<double> values;
        MGeneralMatrix vectors;
        benchmark::DoNotOptimize(a.CalculateEigenVectors(values, vectors));
        benchmark::DoNotOptimize(values.data());
    }
}
BENCHMARK(BM_SymmetricEigen)->Arg(4)->Arg(10)->Arg(50)->Arg(200);

void BM_Jacobi(benchmark::State& state)
{
    const auto n = static_cast<unsigned int>(state.range(0));
    const MSymmetricMatrix a = SymmetricMatrix(n, 0.0);
    std::vector<double> values(n);
    MJacobiEigenVectors vectors(n);
    for (auto _ : state) {
        a.GetEigensJacobi(vectors.Receive(), values.data(), 1e-12);
        benchmark::DoNotOptimize(values.data());
    }
}
BENCHMARK(BM_Jacobi)->Arg(4)->Arg(10)->Arg(50);

} // namespace
