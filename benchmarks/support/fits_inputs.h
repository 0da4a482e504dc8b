#pragma once

#include <norvek/foundation/point3d.h>

#include <cstddef>
#include <random>
#include <vector>

/// The inputs that our benchmarks of fits and those of other libraries share.
namespace norvek_benchmark
{

/// Points of a rough slab, as a scan gives them.
inline std::vector<MMPoint3d<double>> ScannedSlab(std::size_t count)
{
    std::mt19937_64 engine(11);
    std::uniform_real_distribution<double> place(-50.0, 50.0);
    std::normal_distribution<double> noise(0.0, 0.2);
    std::vector<MMPoint3d<double>> points(count);
    for (MMPoint3d<double>& point : points) {
        const double x = place(engine);
        const double y = place(engine);
        point = {x, y, 0.3 * x - 0.1 * y + 2.0 + noise(engine)};
    }
    return points;
}

} // namespace norvek_benchmark
