#pragma once

#include <norvek/foundation/point2d.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

/// The outlines that our benchmarks of regions and those of other libraries share.
namespace norvek_benchmark
{

using PlaneRing = std::vector<MMPoint2d<double>>;

/// How an outline runs.
enum OutlineKind
{
    Smooth = 0, ///< Twenty waves around a circle.
    Star = 1,   ///< Every other point near the middle.
    Comb = 2    ///< Long teeth up and down.
};

/// An outline of about nine tenths of `count` points, counter-clockwise, and ten round holes of the
/// other points along its middle.
inline std::vector<PlaneRing> MakeOutline(OutlineKind kind, std::size_t count)
{
    constexpr double kTurn = 6.283185307179586;
    constexpr std::size_t kHoles = 10;
    std::mt19937_64 engine(29);
    std::uniform_real_distribution<double> even(0.0, 1.0);
    const std::size_t outer = count - kHoles * (count / 100 + 3);
    std::vector<PlaneRing> rings(1);
    for (std::size_t i = 0; i < outer; ++i) {
        const double share = static_cast<double>(i) / static_cast<double>(outer);
        if (kind == Comb) {
            // Along the bottom to the right, back along the top.
            const bool isTop = share >= 0.5;
            const double x = 200.0 * (isTop ? 1.0 - 2.0 * (share - 0.5) : 2.0 * share) - 100.0;
            const double y = i % 2 == 0 ? 20.0 + even(engine) : 100.0 + even(engine);
            rings[0].emplace_back(x, isTop ? y : -y);
            continue;
        }
        const double radius = kind == Smooth ? 100.0 + 5.0 * std::sin(20.0 * kTurn * share)
                                             : (i % 2 == 0 ? 100.0 : 30.0 + 30.0 * even(engine));
        rings[0].emplace_back(radius * std::cos(kTurn * share), radius * std::sin(kTurn * share));
    }
    for (std::size_t hole = 0; hole < kHoles; ++hole) {
        PlaneRing ring;
        const std::size_t size = count / 100 + 3;
        for (std::size_t i = 0; i < size; ++i) {
            const double angle = kTurn * static_cast<double>(i) / static_cast<double>(size);
            ring.emplace_back(4.0 * static_cast<double>(hole) - 18.0 + std::cos(angle),
                              std::sin(angle));
        }
        rings.push_back(ring);
    }
    return rings;
}

} // namespace norvek_benchmark
