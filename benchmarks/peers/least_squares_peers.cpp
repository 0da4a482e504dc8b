// LAPACK's banded Cholesky solver on the normal equations of the same dense matrices.

#include "support/least_squares_inputs.h"

#include <benchmark/benchmark.h>

#include <algorithm>

extern "C" void dpbsv_(const char* uplo, const int* n, const int* kd, const int* nrhs, double* ab,
                       const int* ldab, double* b, const int* ldb, int* info);

namespace
{

constexpr std::size_t kOrder = 4;

// The lower band of A'A, column by column, and A'b.
struct NormalEquations
{
    std::vector<double> band;
    std::vector<double> right;

    void Add(const double* run, std::size_t first, double b)
    {
        double* const column = band.data() + first * kOrder;
        for (std::size_t i = 0; i < kOrder; ++i) {
            for (std::size_t j = 0; i + j < kOrder; ++j)
                column[i * kOrder + j] += run[i] * run[i + j];
            right[first + i] += run[i] * b;
        }
    }
};

// The run of every row is looked for, from the place of the one above it, and the rest of the row
// is seen to be zero: a solver that is handed a dense matrix knows nothing else about it.
std::size_t FirstOfRun(const double* row, std::size_t columns, std::size_t first)
{
    const auto isZero = [](double value) {
        return value == 0.0;
    };
    if (!std::all_of(row, row + first, isZero))
        return columns;
    while (first + kOrder < columns && row[first] == 0.0)
        ++first;
    return std::all_of(row + first + kOrder, row + columns, isZero) ? first : columns;
}

template <bool kIsTold>
void Solve(benchmark::State& state)
{
    const auto rows = static_cast<std::size_t>(state.range(0));
    const auto columns = static_cast<std::size_t>(state.range(1));
    const auto a = norvek_benchmark::CollocationMatrix(rows, columns);
    const auto samples = norvek_benchmark::Samples(rows);
    std::vector<std::size_t> told(rows);
    for (std::size_t i = 0; i < rows; ++i)
        told[i] = FirstOfRun(a.data() + i * columns, columns, i == 0 ? 0 : told[i - 1]);
    for (auto _ : state) {
        std::vector<double> b(samples);
        NormalEquations normal{std::vector<double>(columns * kOrder), std::vector<double>(columns)};
        std::size_t first = 0;
        for (std::size_t i = 0; i < rows; ++i) {
            const double* const row = a.data() + i * columns;
            first = kIsTold ? told[i] : FirstOfRun(row, columns, first);
            if (first == columns) {
                state.SkipWithError("no band");
                return;
            }
            normal.Add(row + first, first, b[i]);
        }
        const auto n = static_cast<int>(columns);
        const int below = kOrder - 1;
        const int one = 1;
        const int room = kOrder;
        int info = 0;
        dpbsv_("L", &n, &below, &one, normal.band.data(), &room, normal.right.data(), &n, &info);
        if (info != 0)
            state.SkipWithError("not solved");
        benchmark::DoNotOptimize(normal.right.data());
    }
}

void BM_LeastSquaresBanded_LAPACK(benchmark::State& state)
{
    Solve<false>(state);
}
BENCHMARK(BM_LeastSquaresBanded_LAPACK)
    ->Args({2000, 200})
    ->Args({200000, 10})
    ->Args({1448, 1448})
    ->Unit(benchmark::kMicrosecond);

// Told where the runs are.
void BM_LeastSquaresBandedTold_LAPACK(benchmark::State& state)
{
    Solve<true>(state);
}
BENCHMARK(BM_LeastSquaresBandedTold_LAPACK)
    ->Args({2000, 200})
    ->Args({200000, 10})
    ->Args({1448, 1448})
    ->Unit(benchmark::kMicrosecond);

} // namespace
