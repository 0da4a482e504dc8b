#pragma once

#include <norvek/foundation/point2d.h>
#include <norvek/foundation/point3d.h>

#include <cmath>

namespace Norvek::Math::Core
{

/// The length of (x, y, z) without overflow or underflow of the squares: m sqrt(1 + (p/m)^2 +
/// (q/m)^2) with m the largest magnitude and p, q the other two in coordinate order. Zero for the
/// zero vector; a NaN coordinate gives NaN, an infinite one infinity or NaN.
inline double SafeLength(double x, double y, double z)
{
    const double ax = std::abs(x);
    const double ay = std::abs(y);
    const double az = std::abs(z);
    double largest = ax;
    double p = ay;
    double q = az;
    if (ay > largest && !(az > ay)) {
        largest = ay;
        p = ax;
    } else if (az > largest) {
        largest = az;
        p = ax;
        q = ay;
    }
    if (largest == 0.0)
        return p + q;
    p /= largest;
    q /= largest;
    return largest * std::sqrt(1.0 + p * p + q * q);
}

inline double SafeLength(const MMPoint3d<double>& vector)
{
    return SafeLength(vector.x, vector.y, vector.z);
}

/// The same in the plane: m sqrt(1 + (p/m)^2).
inline double SafeLength(const MMPoint2d<double>& vector)
{
    return SafeLength(vector.x, vector.y, 0.0);
}

/// The vector divided by its overflow-safe length; a zero vector is returned as it is.
template <class Point>
Point SafeDirection(const Point& vector)
{
    const double length = SafeLength(vector);
    return length > 0.0 ? vector / length : vector;
}

} // namespace Norvek::Math::Core
