#pragma once

#include <norvek/border/border.h>
#include <norvek/foundation/point2d.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

/// Inputs that our benchmarks and those of the other libraries share.
namespace norvek_benchmark
{

/// A star-shaped outline around the origin with a rough rim, of radius 50 to 100.
inline std::vector<MMPoint2d<double>> RoughOutline(std::size_t count)
{
    std::mt19937_64 engine(7);
    std::uniform_real_distribution<double> radius(50.0, 100.0);
    std::vector<MMPoint2d<double>> points;
    points.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double angle =
            2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(count);
        const double r = radius(engine);
        points.emplace_back(r * std::cos(angle), r * std::sin(angle));
    }
    return points;
}

/// Points to ask about, inside, outside and in the rim.
inline std::vector<MMPoint2d<double>> Queries()
{
    std::mt19937_64 engine(8);
    std::uniform_real_distribution<double> coordinate(-90.0, 90.0);
    std::vector<MMPoint2d<double>> points(64);
    for (auto& point : points)
        point = {coordinate(engine), coordinate(engine)};
    return points;
}

/// Rings of 1,000 open pieces of three points each, cut apart and shuffled, one piece in two
/// reversed. The order depends on the seed.
inline M3dBorder<float, float> ShuffledPieces(std::size_t count, std::uint64_t seed)
{
    constexpr std::size_t perRing = 1000;
    std::vector<std::pair<std::size_t, bool>> order;
    std::mt19937_64 engine(seed);
    for (std::size_t i = 0; i < count; ++i)
        order.emplace_back(i, (engine() & 1) != 0);
    std::shuffle(order.begin(), order.end(), engine);

    const auto place = [](std::size_t ring, std::size_t step) {
        const double angle = std::numbers::pi * static_cast<double>(step) / perRing;
        const double radius = 100.0 + static_cast<double>(ring);
        return MMPoint2d<float>(static_cast<float>(radius * std::cos(angle)),
                                static_cast<float>(radius * std::sin(angle)));
    };
    M3dBorder<float, float> border;
    for (const auto& [piece, isReversed] : order) {
        auto& contour = *border.AddContourAtEnd();
        contour.SetIsClosed(false);
        for (std::size_t i = 0; i < 3; ++i) {
            const auto p = place(piece / perRing, 2 * (piece % perRing) + i);
            contour.InsertAtEnd(p.x, p.y, 0.0F);
        }
        if (isReversed)
            contour.Invert();
    }
    return border;
}

/// Brings the heap into one state for every benchmark that allocates: a large block that was given
/// back makes the C library keep freed memory for the next run instead of returning it to the
/// system, whichever benchmark comes first.
inline void SettleHeap()
{
    for (int i = 0; i < 2; ++i) {
        auto block = std::make_unique<std::vector<char>>(std::size_t{30} << 20);
        block->front() = 1;
    }
}

} // namespace norvek_benchmark
