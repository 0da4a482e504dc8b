#pragma once

#include "support/random.h"

#include <norvek/foundation/point2d.h>
#include <norvek/polyplane/poly_plane.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace norvek_test
{

using Point = MMPoint3d<double>;

inline void ExpectNear(const Point& a, const Point& b, double tolerance)
{
    EXPECT_LE((a - b).Length(), tolerance) << a << " and " << b;
}

/// A frame for outlines: two unit axes across a direction and an origin.
struct Base
{
    Point direction;
    Point origin;
    Point u;
    Point v;

    /// Any direction; the first frames of a run look along the axes.
    Base(Random& random, int round, double far) : origin(random.Point(far))
    {
        const Point axes[] = {{0, 0, 2}, {0, -1, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 1}};
        direction = round < 5 ? axes[round] : random.Point(1.0);
        const Point d = direction.Normalised();
        u = d.Cross(Point(d.y, d.z, -d.x + 0.3)).Normalised();
        v = d.Cross(u);
    }

    [[nodiscard]] Point At(double a, double b, double height = 0.0) const
    {
        return origin + u * a + v * b + direction.Normalised() * height;
    }
};

/// The corners of a rough star around the middle, counter-clockwise seen against the direction.
inline std::vector<MMPoint2d<double>> Star(Random& random, int count, double least)
{
    std::vector<MMPoint2d<double>> corners;
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * std::numbers::pi * (i + random.Uniform(0.0, 0.7)) / count;
        const double radius = random.Uniform(least, 1.0);
        corners.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return corners;
}

/// Makes a poly-plane of the corners in the frame, each at a height of its own; a corner that comes
/// twice running adds the very same point again.
template <class Plane>
void Fill(Plane& plane, const Base& base, const std::vector<MMPoint2d<double>>& corners,
          Random& random)
{
    plane.SetZeroPlane(base.direction, base.origin);
    double height = 0.0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        if (i == 0 || corners[i] != corners[i - 1])
            height = random.Uniform(-1.0, 3.0);
        plane.AddPoint(base.At(corners[i].x, corners[i].y, height));
    }
}

} // namespace norvek_test
