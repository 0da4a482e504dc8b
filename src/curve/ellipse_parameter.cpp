#include "curve/ellipse_parameter.h"

#include <norvek/foundation/constants.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Norvek::Math::Core
{

namespace
{

constexpr double kHalfPi = CMathConst::kPi / 2.0;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr int kMostSteps = 100;

// Half the squared distance between (x, y) and E(t) = (a cos t, b sin t), by its derivatives.
class Distance
{
public:
    Distance(double a, double b, double x, double y) : _a(a), _b(b), _x(x), _y(y)
    {}

    [[nodiscard]] double First(double t) const
    {
        const double c = std::cos(t);
        const double s = std::sin(t);
        return _b * c * (_b * s - _y) - _a * s * (_a * c - _x);
    }

    [[nodiscard]] double Second(double t) const
    {
        const double c = std::cos(t);
        const double s = std::sin(t);
        return (_b * _b - _a * _a) * (c * c - s * s) + _a * _x * c + _b * _y * s;
    }

    // The root between low, where the derivative is negative, and high, where it is positive.
    [[nodiscard]] double Minimum(double low, double high, double t) const
    {
        for (int step = 0; step < kMostSteps; ++step) {
            const double first = First(t);
            (first < 0.0 ? low : high) = t;
            const double newton = t - first / Second(t);
            // Newton's step where it stays inside, which NaN does not.
            const double next = newton > low && newton < high ? newton : low + (high - low) / 2.0;
            const bool isSettled =
                first == 0.0 || std::abs(next - t) <= kMachineEpsilon * std::abs(t);
            t = first == 0.0 ? t : next;
            if (isSettled)
                break;
        }
        return t;
    }

private:
    double _a;
    double _b;
    double _x;
    double _y;
};

// The nearest point in the first quadrant, for x, y, a, b >= 0. The derivative is -b y at 0 and a x
// at a right angle and has one root between them: D. Eberly, Distance from a Point to an Ellipse.
double NearestInQuadrant(double a, double b, double x, double y)
{
    const Distance distance(a, b, x, y);
    // On an axis its vertex is a critical point, the farthest one when the point lies beyond the
    // centre of curvature. The nearest ones are at either side then.
    if (b * y == 0.0) {
        const bool isFarthest = b * b - a * a + a * x < 0.0;
        return isFarthest ? std::acos(a * x / (a * a - b * b)) : 0.0;
    }
    if (a * x == 0.0) {
        const bool isFarthest = a * a - b * b + b * y < 0.0;
        return isFarthest ? std::asin(b * y / (b * b - a * a)) : kHalfPi;
    }
    return distance.Minimum(0.0, kHalfPi, std::atan2(a * y, b * x));
}

// The second minimum lies across the longer axis, in the fourth quadrant for a > b, when the point
// lies within the evolute. The derivative is cos t sin t (b^2 - a^2 + a x / cos t + b y / |sin t|)
// there; the bracket is smallest at tan^3 |t| = b y / (a x), behind the root.
double OtherAcross(double a, double b, double x, double y)
{
    const double along = std::cbrt(a * x);
    const double across = std::cbrt(b * y);
    const double square = along * along + across * across;
    if (!(square * std::sqrt(square) < a * a - b * b))
        return kNone;
    const double top = -std::atan2(across, along);
    return square == 0.0 ? -kHalfPi
                         : Distance(a, b, x, y).Minimum(-kHalfPi, top, (top - kHalfPi) / 2.0);
}

double Other(double a, double b, double x, double y)
{
    if (a > b)
        return OtherAcross(a, b, x, y);
    // With the axes exchanged t is a right angle less the parameter.
    return kHalfPi - OtherAcross(b, a, y, x);
}

// Into the quadrant of the point, and into (-pi, pi].
double Reflected(double t, bool isLeft, bool isBelow)
{
    if (isLeft)
        t = CMathConst::kPi - t;
    if (t > CMathConst::kPi)
        t -= 2.0 * CMathConst::kPi;
    if (isBelow)
        t = -t;
    return t <= -CMathConst::kPi ? CMathConst::kPi : t;
}

} // namespace

EllipseFeet FindEllipseFeet(const MMPoint2d<double>& point, const MMPoint2d<double>& radii)
{
    const double a = std::abs(radii.x);
    const double b = std::abs(radii.y);
    const double scale = std::max({a, b, std::abs(point.x), std::abs(point.y)});
    // 0 times NaN or infinity is NaN.
    if (0.0 * a + 0.0 * b + 0.0 * point.x + 0.0 * point.y != 0.0)
        return {kNone, kNone};
    if (scale == 0.0)
        return {0.0, kNone};
    const bool isLeft = point.x != 0.0 && (radii.x < 0.0) != (point.x < 0.0);
    const bool isBelow = point.y != 0.0 && (radii.y < 0.0) != (point.y < 0.0);
    const double x = std::abs(point.x) / scale;
    const double y = std::abs(point.y) / scale;
    return {Reflected(NearestInQuadrant(a / scale, b / scale, x, y), isLeft, isBelow),
            Reflected(Other(a / scale, b / scale, x, y), isLeft, isBelow)};
}

} // namespace Norvek::Math::Core
