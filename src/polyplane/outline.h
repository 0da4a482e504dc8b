#pragma once

#include <norvek/foundation/point3d.h>

#include <cstddef>
#include <vector>

/// @file
/// Judgements in the zero plane, made in the two coordinates that are left when the one in which
/// the direction is largest is dropped. U and V name these two; they are template arguments, so
/// that a loop over an outline reads its points where they lie.

namespace Norvek::Math::PolyPlane
{

using Point = MMPoint3d<double>;
using Axis = double Point::*;

/// Calls `visitor.template operator()<U, V>()` for a pair of coordinates by number: (1, 2), (0, 2)
/// or (0, 1).
template <class Visitor>
bool InAxes(char first, char second, const Visitor& visitor)
{
    if (first == 1)
        return visitor.template operator()<&Point::y, &Point::z>();
    if (second == 2)
        return visitor.template operator()<&Point::x, &Point::z>();
    return visitor.template operator()<&Point::x, &Point::y>();
}

/// Whether numerator / denominator lies strictly between 0 and 1. The comparison first rules out
/// nearly all quotients without forming them; those that round to 0 or 1 do not lie between.
inline bool IsBetween(double numerator, double denominator)
{
    if (denominator < 0.0) {
        numerator = -numerator;
        denominator = -denominator;
    }
    if (!(numerator > 0.0 && numerator < denominator))
        return false;
    const double quotient = numerator / denominator;
    return quotient > 0.0 && quotient < 1.0;
}

/// Whether the segments p1-p2 and q1-q2 cross: p1 + s d = q1 + t e with both parameters strictly
/// between 0 and 1. A determinant of 0 has no quotient between.
template <Axis U, Axis V>
bool DoSegmentsCross(const Point& p1, const Point& p2, const Point& q1, const Point& q2)
{
    const double du = p2.*U - p1.*U;
    const double dv = p2.*V - p1.*V;
    const double eu = q2.*U - q1.*U;
    const double ev = q2.*V - q1.*V;
    const double wu = q1.*U - p1.*U;
    const double wv = q1.*V - p1.*V;
    const double determinant = du * ev - dv * eu;
    return IsBetween(wu * ev - wv * eu, determinant) && IsBetween(wu * dv - wv * du, determinant);
}

/// A triangle in the zero plane and its limits.
template <Axis U, Axis V>
class FlatTriangle
{
public:
    FlatTriangle(const Point& a, const Point& b, const Point& c) : _corners{a, b, c}
    {
        for (const Point& corner : _corners) {
            _lower.*U = corner.*U < _lower.*U ? corner.*U : _lower.*U;
            _lower.*V = corner.*V < _lower.*V ? corner.*V : _lower.*V;
            _upper.*U = corner.*U > _upper.*U ? corner.*U : _upper.*U;
            _upper.*V = corner.*V > _upper.*V ? corner.*V : _upper.*V;
        }
    }

    /// Whether the triangle lies beside the box of two points.
    [[nodiscard]] bool IsBeside(const Point& lower, const Point& upper) const
    {
        return upper.*U < _lower.*U || lower.*U > _upper.*U || upper.*V < _lower.*V ||
               lower.*V > _upper.*V;
    }

    /// Whether the triangle certainly misses the segment: their boxes are apart, or all corners lie
    /// on one side of its line by more than rounding.
    [[nodiscard]] bool Misses(const Point& p, const Point& q) const
    {
        if ((p.*U < _lower.*U && q.*U < _lower.*U) || (p.*U > _upper.*U && q.*U > _upper.*U) ||
            (p.*V < _lower.*V && q.*V < _lower.*V) || (p.*V > _upper.*V && q.*V > _upper.*V))
            return true;
        const int side = _SideOf(p, q, _corners[0]);
        return side != 0 && _SideOf(p, q, _corners[1]) == side &&
               _SideOf(p, q, _corners[2]) == side;
    }

    /// Whether an edge crosses the segment, or its first end lies strictly inside.
    [[nodiscard]] bool Meets(const Point& p, const Point& q) const
    {
        return DoSegmentsCross<U, V>(_corners[0], _corners[1], p, q) ||
               DoSegmentsCross<U, V>(_corners[1], _corners[2], p, q) ||
               DoSegmentsCross<U, V>(_corners[2], _corners[0], p, q) || _Holds(p);
    }

private:
    // A bound of the error of the difference of two products of differences, relative to their
    // magnitudes (three roundings a product and one more), and the size below which products
    // lose digits.
    static constexpr double kRelativeError = 8.0 * 0x1p-53;
    static constexpr double kSmallProduct = 1e-290;

    static double _Turn(const Point& p, const Point& q, const Point& r)
    {
        return (q.*U - p.*U) * (r.*V - p.*V) - (q.*V - p.*V) * (r.*U - p.*U);
    }

    // 1 or -1 for the sides of the line, 0 when rounding might decide.
    static int _SideOf(const Point& p, const Point& q, const Point& corner)
    {
        const double left = (q.*U - p.*U) * (corner.*V - p.*V);
        const double right = (q.*V - p.*V) * (corner.*U - p.*U);
        const double side = left - right;
        const double magnitudes = (left < 0.0 ? -left : left) + (right < 0.0 ? -right : right);
        const double bound = kRelativeError * magnitudes + kSmallProduct;
        return side > bound ? 1 : side < -bound ? -1 : 0;
    }

    [[nodiscard]] bool _Holds(const Point& p) const
    {
        const double a = _Turn(_corners[0], _corners[1], p);
        const double b = _Turn(_corners[1], _corners[2], p);
        const double c = _Turn(_corners[2], _corners[0], p);
        return (a > 0.0 && b > 0.0 && c > 0.0) || (a < 0.0 && b < 0.0 && c < 0.0);
    }

    Point _corners[3];
    Point _lower = _corners[0];
    Point _upper = _corners[0];
};

} // namespace Norvek::Math::PolyPlane
