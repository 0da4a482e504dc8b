#pragma once

#include <norvek/foundation/point2d.h>

#include <cmath>

namespace Norvek::Math::Core
{

/// A place in the plane of a border; the coordinates of all borders fit without rounding.
using PlanePoint = MMPoint2d<double>;

/// The sign of the doubled area of the triangle a b c, from exact products: what `Orientation` asks
/// when rounding leaves the sign open.
int ExactOrientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c);

/// On which side of the line from a to b the point c lies: 1 left of it (a b c turns
/// counter-clockwise), -1 right of it, 0 exactly on it. Exact unless products overflow or
/// underflow, which coordinates between 1e-120 and 1e120 in size (and zeros) exclude.
///
/// The error bound of the rounded determinant is (3 + 16 u) u (|left| + |right|) with u = 2^-53
/// (J. R. Shewchuk, Adaptive Precision Floating-Point Arithmetic and Fast Robust Geometric
/// Predicates, Discrete & Computational Geometry 18, 1997).
inline int Orientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c)
{
    constexpr double kUnit = 0x1p-53;
    constexpr double kBound = (3.0 + 16.0 * kUnit) * kUnit;
    const double left = (a.x - c.x) * (b.y - c.y);
    const double right = (a.y - c.y) * (b.x - c.x);
    const double determinant = left - right;
    const double bound = kBound * (std::abs(left) + std::abs(right));
    if (determinant > bound)
        return 1;
    if (determinant < -bound)
        return -1;
    // Both products have a factor of zero: points in a row along an axis.
    if (bound == 0.0)
        return 0;
    return ExactOrientation(a, b, c);
}

} // namespace Norvek::Math::Core
