#pragma once

#include <norvek/foundation/point3d.h>

#include <cstddef>
#include <random>
#include <vector>

/// The inputs that our benchmarks and their rivals share.
namespace norvek_benchmark
{

/// Points in a cube of side 200 around the origin, the same in every run.
inline std::vector<MMPoint3d<double>> RandomPoints(std::size_t count)
{
    std::mt19937_64 engine(2001);
    const auto coordinate = [&engine] {
        return static_cast<double>(engine() >> 11) * 0x1p-53 * 200.0 - 100.0;
    };
    std::vector<MMPoint3d<double>> points(count);
    for (MMPoint3d<double>& point : points)
        point = {coordinate(), coordinate(), coordinate()};
    return points;
}

/// Degrees about x, y and z, and the translation, of the rigid transforms measured.
inline constexpr double kAngles[3] = {31.0, -47.0, 113.0};
inline constexpr double kTranslation[3] = {12.5, -3.25, 7.0};

/// Rows 0 to 2 of a second, uneven transform for products.
inline constexpr double kAffineRows[12] = {1.5, 0.25, -0.5, 3.0,  -0.125, 0.75,
                                           2.0, -1.0, 0.5,  -1.5, 1.25,   4.0};

} // namespace norvek_benchmark
