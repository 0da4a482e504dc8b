#include <norvek/foundation/constants.h>
#include <norvek/primitives/line.h>
#include <norvek/primitives/plane.h>

#include <algorithm>
#include <cmath>

// The axis of the largest component meets the plane nearest to the origin among the three.
MMPlane::MMPlane(const MMPlaneEq<double>& equation) : _normal(equation.GetNormal())
{
    const double x = std::abs(_normal.x);
    const double y = std::abs(_normal.y);
    const double z = std::abs(_normal.z);
    if (x >= y && x >= z)
        _origin.x = -equation.D() / _normal.x;
    else if (y >= z)
        _origin.y = -equation.D() / _normal.y;
    else
        _origin.z = -equation.D() / _normal.z;
}

MMPlane::~MMPlane() = default;

MMPlaneEq<double> MMPlane::GetPlaneEqDouble() const
{
    return MMPlaneEq<double>(_origin, _normal);
}

// The sum of magnitudes, not the length, of the cross product, and of normals of any length: meant.
bool MMPlane::IsParallel(const MMPlane& other, double tolerance) const
{
    const MMPoint3d<double> cross = _normal.Cross(other._normal);
    return std::abs(cross.x) + std::abs(cross.y) + std::abs(cross.z) < tolerance;
}

// Near a right angle the arc cosine is exact to rounding. Without normal or direction there is no
// angle; such pairs count as parallel, as they do in every other test of this family.
bool MMPlane::IsParallel(const MMLine& line, double tolerance) const
{
    const double dot = _normal.Dot(line.GetDirection());
    const double length = _normal.Length();
    const double cosine = length == 0.0 ? 0.0 : std::clamp(dot / length, -1.0, 1.0);
    return std::abs(std::acos(cosine) - CMathConst::kPi / 2.0) < tolerance;
}
