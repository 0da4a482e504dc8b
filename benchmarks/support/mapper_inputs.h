#pragma once

#include <norvek/foundation/point3d.h>
#include <norvek/transform/ortho_transform.h>

#include <cstddef>
#include <random>
#include <vector>

namespace norvek_benchmark
{

/// Points in a cube and the same points moved, with a noise of a thousandth of the cube.
struct PairedPoints
{
    std::vector<MMPoint3d<double>> first;
    std::vector<MMPoint3d<double>> second;
};

inline PairedPoints MakePairs(std::size_t count)
{
    std::mt19937_64 engine(61);
    const auto uniform = [&engine](double size) {
        return (static_cast<double>(engine() >> 11) * 0x1p-52 - 1.0) * size;
    };
    const auto point = [&uniform](double size) {
        return MMPoint3d<double>{uniform(size), uniform(size), uniform(size)};
    };
    MMOrthoTransform motion;
    motion.MakeRotation({1.0, 2.0, 3.0}, {3.0, -1.0, 2.0}, 1.1, true);
    PairedPoints pairs;
    for (std::size_t i = 0; i < count; ++i) {
        pairs.second.push_back(point(1.0));
        MMPoint3d<double> moved;
        motion.Transform(moved, pairs.second.back());
        pairs.first.push_back(moved + point(1e-3));
    }
    return pairs;
}

} // namespace norvek_benchmark
