#pragma once

#include <cstddef>
#include <random>
#include <vector>

/// The inputs that our benchmarks of histograms and the plain loops share.
namespace norvek_benchmark
{

inline std::vector<double> RandomSamples(std::size_t count)
{
    std::mt19937_64 engine(9);
    std::normal_distribution<double> sample(500.0, 200.0);
    std::vector<double> samples(count);
    for (double& value : samples)
        value = sample(engine);
    return samples;
}

inline std::vector<double> Boundaries(std::size_t intervals)
{
    std::vector<double> boundaries(intervals - 1);
    for (std::size_t i = 0; i < boundaries.size(); ++i)
        boundaries[i] = 1000.0 * static_cast<double>(i + 1) / static_cast<double>(intervals);
    return boundaries;
}

} // namespace norvek_benchmark
