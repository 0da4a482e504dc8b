// The least-squares service on collocation matrices of splines, handed over as dense matrices: the
// time includes finding the runs.

#include "platform/least_squares.h"
#include "support/least_squares_inputs.h"

#include <benchmark/benchmark.h>

namespace
{

void BM_LeastSquaresBanded(benchmark::State& state)
{
    const auto rows = static_cast<std::size_t>(state.range(0));
    const auto columns = static_cast<std::size_t>(state.range(1));
    const auto a = norvek_benchmark::CollocationMatrix(rows, columns);
    const auto samples = norvek_benchmark::Samples(rows);
    for (auto _ : state) {
        std::vector<double> b(samples);
        if (!Norvek::Math::Core::SolveDenseLeastSquares({rows, columns, a.data()},
                                                        {rows, 1, b.data()}))
            state.SkipWithError("not solved");
        benchmark::DoNotOptimize(b.data());
    }
}
BENCHMARK(BM_LeastSquaresBanded)
    ->Args({2000, 200})
    ->Args({200000, 10})
    ->Args({1448, 1448})
    ->Unit(benchmark::kMicrosecond);

} // namespace
