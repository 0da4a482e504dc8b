// The loop that one writes by hand: std::lower_bound and the figures of each interval.

#include "support/foundation_inputs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <limits>

namespace
{

constexpr std::size_t kSamples = 10000000;

void BM_Histogram_LowerBound(benchmark::State& state)
{
    const auto samples = norvek_benchmark::RandomSamples(kSamples);
    const auto boundaries = norvek_benchmark::Boundaries(static_cast<std::size_t>(state.range(0)));
    std::vector<double> weights(boundaries.size() + 1);
    std::vector<double> averages(boundaries.size() + 1);
    for (auto _ : state) {
        std::fill(weights.begin(), weights.end(), 0.0);
        std::fill(averages.begin(), averages.end(), 0.0);
        double total = 0.0;
        double lowest = std::numeric_limits<double>::max();
        double highest = std::numeric_limits<double>::lowest();
        for (const double value : samples) {
            const auto found = std::lower_bound(boundaries.begin(), boundaries.end(), value);
            const auto i = static_cast<std::size_t>(found - boundaries.begin());
            averages[i] = (weights[i] * averages[i] + value) / (weights[i] + 1.0);
            weights[i] += 1.0;
            total += 1.0;
            lowest = std::min(lowest, value);
            highest = std::max(highest, value);
        }
        benchmark::DoNotOptimize(total + lowest + highest + averages[0]);
    }
}
BENCHMARK(BM_Histogram_LowerBound)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// Nothing but the count of each interval.
void BM_Histogram_CountOnly(benchmark::State& state)
{
    const auto samples = norvek_benchmark::RandomSamples(kSamples);
    const auto boundaries = norvek_benchmark::Boundaries(static_cast<std::size_t>(state.range(0)));
    std::vector<std::size_t> counts(boundaries.size() + 1);
    for (auto _ : state) {
        for (const double value : samples)
            ++counts[static_cast<std::size_t>(
                std::lower_bound(boundaries.begin(), boundaries.end(), value) -
                boundaries.begin())];
        benchmark::DoNotOptimize(counts.data());
    }
}
BENCHMARK(BM_Histogram_CountOnly)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace
