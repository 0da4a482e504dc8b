#pragma once

#include <norvek/foundation/constants.h>
#include <norvek/foundation/point3d.h>

#include <algorithm>
#include <cmath>

/// @file
/// Vectors that are perpendicular to the three rows (or columns) of a singular 3x3 matrix.

namespace Norvek::Math::Core
{

/// Times the largest entry: the imaginary part that a real eigenvalue may have.
inline constexpr double kEigenImaginary = 8.881784197001252e-15;
static_assert(kEigenImaginary == 40.0 * kMachineEpsilon);

/// Three rows or three columns of a matrix.
struct ThreeVectors
{
    MMPoint3d<double> r0;
    MMPoint3d<double> r1;
    MMPoint3d<double> r2;

    /// The rows of the matrix less `value` on its diagonal.
    [[nodiscard]] ThreeVectors Shifted(double value) const
    {
        return {{r0.x - value, r0.y, r0.z}, {r1.x, r1.y - value, r1.z}, {r2.x, r2.y, r2.z - value}};
    }

    /// The largest of the nine entries, with the sign.
    [[nodiscard]] double MaxEntry() const
    {
        const double first = std::max(std::max(r0.x, r0.y), r0.z);
        const double second = std::max(std::max(r1.x, r1.y), r1.z);
        const double third = std::max(std::max(r2.x, r2.y), r2.z);
        return std::max(std::max(first, second), third);
    }

    /// The vector of largest length; an earlier one wins a tie.
    [[nodiscard]] const MMPoint3d<double>& Longest() const
    {
        const double l0 = r0.LengthSquared();
        const double l1 = r1.LengthSquared();
        const double l2 = r2.LengthSquared();
        if (l1 > l0)
            return l2 > l1 ? r2 : r1;
        return l2 > l0 ? r2 : r0;
    }

    /// True when no vector has a larger product with `v` than the tolerance. Equality passes: the
    /// zero matrix and diagonal matrices have a tolerance or products of exactly 0.
    [[nodiscard]] bool AllPerpendicular(const MMPoint3d<double>& v, double tolerance) const
    {
        return std::abs(r0.Dot(v)) <= tolerance && std::abs(r1.Dot(v)) <= tolerance &&
               std::abs(r2.Dot(v)) <= tolerance;
    }
};

/// True when all three components are at most the tolerance, equality included.
inline bool Negligible(const MMPoint3d<double>& v, double tolerance)
{
    return std::abs(v.x) <= tolerance && std::abs(v.y) <= tolerance && std::abs(v.z) <= tolerance;
}

/// A vector perpendicular to a non-zero `r`, not normalised.
inline MMPoint3d<double> Perpendicular(const MMPoint3d<double>& r)
{
    const double x = std::abs(r.x);
    const double y = std::abs(r.y);
    const double z = std::abs(r.z);
    if (x > y && x > z)
        return {-r.z / r.x, 0.0, 1.0};
    if (!(y > z))
        return {0.0, 1.0, -r.y / r.z};
    return {1.0, -r.x / r.y, 0.0};
}

/// A unit vector perpendicular to all three rows, as far as there is one: the longest of their
/// cross products; where those vanish, a perpendicular to the longest row; where that vanishes
/// too, (1, 0, 0).
inline MMPoint3d<double> NullVector(const ThreeVectors& rows, double tolerance)
{
    const ThreeVectors products{rows.r0.Cross(rows.r1), rows.r1.Cross(rows.r2),
                                rows.r2.Cross(rows.r0)};
    MMPoint3d<double> v = products.Longest();
    if (Negligible(v, tolerance)) {
        const MMPoint3d<double>& row = rows.Longest();
        if (row != MMPoint3d<double>())
            v = Perpendicular(row);
        if (Negligible(v, tolerance))
            v = {1.0, 0.0, 0.0};
    }
    return v.Normalised();
}

/// The same, perpendicular to the unit vector `first` as well: for a null space of two dimensions
/// that holds `first`.
inline MMPoint3d<double> SecondNullVector(const ThreeVectors& rows, const MMPoint3d<double>& first,
                                          double tolerance)
{
    MMPoint3d<double> v = rows.Longest().Cross(first);
    if (Negligible(v, tolerance))
        v = Perpendicular(first);
    return v.Normalised();
}

} // namespace Norvek::Math::Core
