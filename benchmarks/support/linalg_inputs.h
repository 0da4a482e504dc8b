#pragma once

#include <array>
#include <cstddef>
#include <random>
#include <vector>

namespace norvek_benchmark
{

/// `count` values uniform in [-1, 1), the same in every run.
inline std::vector<double> RandomValues(std::size_t count)
{
    std::mt19937_64 engine(7);
    std::vector<double> values(count);
    for (double& value : values)
        value = static_cast<double>(engine() >> 11) * 0x1p-52 - 1.0;
    return values;
}

/// The scatter matrices of small random point sets, nine values each, row by row.
inline std::vector<std::array<double, 9>> ScatterMatrices(std::size_t count)
{
    constexpr std::size_t points = 8;
    const std::vector<double> values = RandomValues(count * points * 3);
    std::vector<std::array<double, 9>> matrices(count);
    for (std::size_t m = 0; m < count; ++m) {
        matrices[m].fill(0.0);
        for (std::size_t p = 0; p < points; ++p) {
            const double* const v = values.data() + (m * points + p) * 3;
            for (std::size_t i = 0; i < 9; ++i)
                matrices[m][i] += v[i / 3] * v[i % 3];
        }
    }
    return matrices;
}

/// A symmetric matrix of random values, row by row. With `diagonal` added to its diagonal it is
/// positive definite from about the root of the order on.
inline std::vector<double> SymmetricValues(std::size_t order, double diagonal)
{
    std::vector<double> values = RandomValues(order * order);
    for (std::size_t i = 0; i < order; ++i) {
        values[i * order + i] += diagonal;
        for (std::size_t j = 0; j < i; ++j)
            values[j * order + i] = values[i * order + j];
    }
    return values;
}

} // namespace norvek_benchmark
