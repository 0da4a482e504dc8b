#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>
#include <norvek/primitives/plane_equation.h>

class MMLine;

/// A plane held as a point on it and a normal of any length.
///
/// Holds what it is given: nothing is normalised, and a zero normal is allowed (there is no plane
/// then). Angles and lengths are computed with plain roots.
class NORVEK_MATH_API MMPlane
{
public:
    /// Origin and normal zero: no plane.
    MMPlane() = default;

    /// The plane of an equation, with its normal unchanged. The origin lies on the coordinate axis
    /// of the normal's component of largest magnitude (of equals x before y before z). The equation
    /// of no plane gives an origin that is not finite.
    explicit MMPlane(const MMPlaneEq<double>& equation);

    /// Copies origin and normal as they are.
    MMPlane(const MMPlane&) = default;

    /// Copies origin and normal as they are.
    MMPlane& operator=(const MMPlane&) = default;

    virtual ~MMPlane();

    /// Any point of the plane.
    void SetOrigin(const MMPoint3d<double>& origin)
    {
        _origin = origin;
    }

    /// Stored as given, of any length.
    void SetNormal(const MMPoint3d<double>& normal)
    {
        _normal = normal;
    }

    /// The point given, or found from the equation.
    [[nodiscard]] const MMPoint3d<double>& GetOrigin() const
    {
        return _origin;
    }

    /// The normal as it was given: not normalised.
    [[nodiscard]] const MMPoint3d<double>& GetNormal() const
    {
        return _normal;
    }

    /// The normalised equation of the plane through the origin point with this normal.
    [[nodiscard]] MMPlaneEq<double> GetPlaneEqDouble() const;

    /// True when the magnitudes of the three components of n x n' add up to less than `tolerance`.
    /// A raw measure: it grows with the lengths of both normals, and a zero normal is parallel to
    /// everything.
    [[nodiscard]] bool IsParallel(const MMPlane& other, double tolerance) const;

    /// True when the angle between the normal and the line differs from a right angle by less than
    /// `tolerance` radians. A zero normal, and a line without direction, count as at right angles.
    [[nodiscard]] bool IsParallel(const MMLine& line, double tolerance) const;

private:
    MMPoint3d<double> _origin;
    MMPoint3d<double> _normal;
};
