#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace norvek_benchmark
{

/// The collocation matrix of a clamped uniform cubic B-spline with `columns` control points: one
/// row for each of `rows` parameters, four values a row, row by row with all its zeros. This is the
/// system of a curve fitted to measured points. The parameters are spread like the control points'
/// own (Greville's abscissae); evenly spread ones would make a square system singular to working
/// precision from 189 columns on.
inline std::vector<double> CollocationMatrix(std::size_t rows, std::size_t columns)
{
    constexpr std::size_t degree = 3;
    const std::size_t spans = columns - degree;
    const auto knot = [&](std::size_t i) {
        return static_cast<double>(std::clamp(i, degree, columns) - degree);
    };
    const auto greville = [&](std::size_t i) {
        return (knot(i + 1) + knot(i + 2) + knot(i + 3)) / degree;
    };
    std::vector<double> values(rows * columns);
    for (std::size_t i = 0; i < rows; ++i) {
        const std::size_t index = i * (columns - 1) / (rows - 1);
        const double share =
            static_cast<double>(i * (columns - 1) % (rows - 1)) / static_cast<double>(rows - 1);
        const double at = greville(index) + share * (greville(index + 1) - greville(index));
        const std::size_t first = std::min(static_cast<std::size_t>(at), spans - 1);
        // Cox and de Boor's recurrence.
        double* const basis = values.data() + i * columns + first;
        basis[0] = 1.0;
        for (std::size_t d = 1; d <= degree; ++d) {
            double saved = 0.0;
            for (std::size_t r = 0; r < d; ++r) {
                const double right = knot(first + degree + 1 + r) - at;
                const double left = at - knot(first + degree + 1 + r - d);
                const double part = basis[r] / (right + left);
                basis[r] = saved + right * part;
                saved = left * part;
            }
            basis[d] = saved;
        }
    }
    return values;
}

/// One right-hand side: a smooth curve with a ripple, so that there is a residual.
inline std::vector<double> Samples(std::size_t rows)
{
    std::vector<double> values(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(rows);
        values[i] = t * (1.0 - t) + 0.01 * static_cast<double>(i % 7);
    }
    return values;
}

} // namespace norvek_benchmark
