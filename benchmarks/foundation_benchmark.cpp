// Counting samples in the intervals of a histogram.

#include "support/foundation_inputs.h"

#include <norvek/foundation/histogram.h>

#include <benchmark/benchmark.h>

namespace
{

constexpr std::size_t kSamples = 10000000;

void BM_Histogram(benchmark::State& state)
{
    const auto samples = norvek_benchmark::RandomSamples(kSamples);
    MHistogram histogram;
    histogram.SetIntervals(norvek_benchmark::Boundaries(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) {
        histogram.ClearValues();
        for (const double value : samples)
            histogram.AddValue(value, 1.0);
        benchmark::DoNotOptimize(histogram.GetAverageValue());
    }
}
BENCHMARK(BM_Histogram)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace
