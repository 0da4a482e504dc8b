#pragma once

#include <norvek/foundation/point3d.h>

#include <array>
#include <cstddef>
#include <random>
#include <vector>

/// The inputs that our benchmarks of boxes and those of other libraries share.
namespace norvek_benchmark
{

inline std::vector<MMPoint3d<double>> RandomPoints(std::size_t count)
{
    std::mt19937_64 engine(7);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    std::vector<MMPoint3d<double>> points(count);
    for (MMPoint3d<double>& point : points)
        point = {coordinate(engine), coordinate(engine), coordinate(engine)};
    return points;
}

/// Triangles of which about half meet the box from -20 to 20.
inline std::vector<std::array<MMPoint3d<double>, 3>> RandomTriangles(std::size_t count)
{
    std::mt19937_64 engine(8);
    std::uniform_real_distribution<double> coordinate(-40.0, 40.0);
    std::vector<std::array<MMPoint3d<double>, 3>> triangles(count);
    for (auto& triangle : triangles)
        for (MMPoint3d<double>& vertex : triangle)
            vertex = {coordinate(engine), coordinate(engine), coordinate(engine)};
    return triangles;
}

} // namespace norvek_benchmark
