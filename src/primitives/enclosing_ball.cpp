#include "primitives/enclosing_ball.h"

#include <bit>
#include <cmath>

namespace Norvek::Math::Core
{

namespace
{

// Sines and volumes below this count as zero; relative, so that the unit of length plays no part.
constexpr double kFlat = 0x1p-40;

// A point this far outside, relative to the squared radius, still counts as inside: rounding of the
// balls of other subsets.
constexpr double kSlack = 1e-12;

using Point = MMPoint3d<double>;

// The centre, relative to the first point, of the sphere through the origin and b, c, d.
bool SphereCenter(Point& center, const Point& b, const Point& c, const Point& d)
{
    const Point bc = b.Cross(c);
    const Point cd = c.Cross(d);
    const Point db = d.Cross(b);
    const double volume = b.Dot(cd);
    if (!(std::abs(volume) > kFlat * b.Length() * c.Length() * d.Length()))
        return false;
    center =
        (b.LengthSquared() * cd + c.LengthSquared() * db + d.LengthSquared() * bc) / (2.0 * volume);
    return true;
}

// The smallest ball through the first `count` points; no ball (a negative radius) for flat ones.
Ball BallThrough(const std::array<Point, 4>& points, std::size_t count)
{
    const Point& a = points[0];
    const Point b = points[1] - a;
    const Point c = points[2] - a;
    Point center;
    bool hasCenter = true;
    if (count == 2)
        center = b * 0.5;
    else if (count == 3)
        hasCenter = CircleCenter(center, b, c);
    else if (count == 4)
        hasCenter = SphereCenter(center, b, c, points[3] - a);
    return hasCenter ? Ball{a + center, center.LengthSquared()} : Ball();
}

bool Holds(const Ball& ball, const BallSupport& support)
{
    for (std::size_t i = 0; i < support.count; ++i)
        if ((support.points[i] - ball.center).LengthSquared() > ball.squaredRadius * (1.0 + kSlack))
            return false;
    return true;
}

} // namespace

bool CircleCenter(Point& center, const Point& b, const Point& c)
{
    const Point normal = b.Cross(c);
    const double squared = normal.LengthSquared();
    if (!(squared > kFlat * kFlat * b.LengthSquared() * c.LengthSquared()))
        return false;
    center = (b.LengthSquared() * c - c.LengthSquared() * b).Cross(normal) / (2.0 * squared);
    return true;
}

// Five points at most: every subset of up to four is tried, and the smallest ball that holds all
// wins.
Ball AddToSupport(BallSupport& support, const Point& point)
{
    support.points[support.count] = point;
    ++support.count;
    Ball best;
    unsigned int bestSubset = 0;
    for (unsigned int subset = 1; subset < (1U << support.count); ++subset) {
        const auto count = static_cast<std::size_t>(std::popcount(subset));
        if (count > 4)
            continue;
        std::array<Point, 4> chosen;
        for (std::size_t i = 0, used = 0; i < support.count; ++i)
            if ((subset >> i & 1) != 0)
                chosen[used++] = support.points[i];
        const Ball ball = BallThrough(chosen, count);
        if (ball.squaredRadius >= 0.0 && Holds(ball, support) &&
            (bestSubset == 0 || ball.squaredRadius < best.squaredRadius))
        {
            best = ball;
            bestSubset = subset;
        }
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < support.count; ++i)
        if ((bestSubset >> i & 1) != 0)
            support.points[kept++] = support.points[i];
    support.count = kept;
    return best;
}

} // namespace Norvek::Math::Core
