#pragma once

#include <norvek/curve/nurbs.h>
#include <norvek/foundation/point3d.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvek_benchmark
{

/// A clamped cubic curve of weights 1 over uneven knots, and parameters to evaluate it at.
struct CurveInput
{
    std::vector<double> knots;
    std::vector<Point4D> controlPoints;
    std::vector<double> parameters;

    CurveInput(std::int64_t count, bool areSorted, bool areKnotsEven)
    {
        std::uint64_t state = 29;
        const auto next = [&] {
            state = state * 6364136223846793005U + 1442695040888963407U;
            return static_cast<double>(state >> 11) * 0x1p-53;
        };
        const std::int64_t spans = count - 3;
        for (std::int64_t i = 0; i < count + 4; ++i) {
            const auto place = static_cast<double>(std::clamp<std::int64_t>(i - 3, 0, spans));
            const bool isInner = i > 3 && i < count && !areKnotsEven;
            knots.push_back((place + (isInner ? 0.9 * next() : 0.0)) / static_cast<double>(spans));
        }
        for (std::int64_t i = 0; i < count; ++i) {
            const double angle = 0.1 * static_cast<double>(i);
            controlPoints.push_back({{std::cos(angle), std::sin(angle), 0.3 * angle, 1.0}});
        }
        for (int i = 0; i < 4096; ++i)
            parameters.push_back(next());
        if (areSorted)
            std::sort(parameters.begin(), parameters.end());
    }
};

/// Points around a curve of 150 spans, near it (within a tenth of its radius) or farther off.
inline std::vector<MMPoint3d<double>> QueriesAround(bool areNear)
{
    std::uint64_t state = 31;
    const auto next = [&] {
        state = state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<double>(state >> 11) * 0x1p-52 - 1.0;
    };
    std::vector<MMPoint3d<double>> points;
    for (int i = 0; i < 256; ++i) {
        const double angle = 7.6 * (next() + 1.0);
        const MMPoint3d<double> on(std::cos(angle), std::sin(angle), 0.3 * angle);
        const double reach = areNear ? 0.1 : 2.0;
        const double x = reach * next();
        const double y = reach * next();
        points.push_back(on + MMPoint3d<double>(x, y, reach * next()));
    }
    return points;
}

} // namespace norvek_benchmark
