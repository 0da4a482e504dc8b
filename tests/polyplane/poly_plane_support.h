#pragma once

#include "support/random.h"

#include <norvek/foundation/point2d.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace norvek_test
{

using Point = MMPoint3d<double>;
using Corners = std::vector<MMPoint2d<double>>;

inline void ExpectNear(const Point& a, const Point& b, double tolerance)
{
    EXPECT_LE((a - b).Length(), tolerance) << a << " and " << b;
}

/// A frame for outlines. The first directions of a test look along axes or tie in coordinates.
struct Base
{
    Point direction;
    Point origin;
    Point u;
    Point v;

    Base(Random& random, int round, double far) : origin(random.Point(far))
    {
        const Point axes[] = {{0, 0, 2}, {0, -1, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 1}, {0, 1, 1}};
        direction = round < 6 ? axes[round] : random.Point(1.0);
        const Point d = direction.Normalised();
        u = d.Cross(Point(d.y, d.z, -d.x + 0.3)).Normalised();
        v = d.Cross(u);
    }

    [[nodiscard]] Point At(const MMPoint2d<double>& p, double height = 0.0) const
    {
        return origin + u * p.x + v * p.y + direction.Normalised() * height;
    }
};

/// The corners of a star around the middle with radii from `least` to 1, counter-clockwise.
inline Corners Star(Random& random, int count, double least)
{
    Corners corners;
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * std::numbers::pi * (i + random.Uniform(0.0, 0.7)) / count;
        const double radius = random.Uniform(least, 1.0);
        corners.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return corners;
}

/// Adds the corners, at different heights; equal corners make the very same point.
template <class Plane>
void Fill(Plane& plane, const Base& base, const Corners& corners)
{
    plane.SetZeroPlane(base.direction, base.origin);
    for (const auto& corner : corners)
        plane.AddPoint(base.At(corner, 2.0 + 3.0 * corner.x));
}

} // namespace norvek_test
