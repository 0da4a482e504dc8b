#include "foundation/safe_length.h"

#include <norvek/primitives/line.h>
#include <norvek/primitives/plane_equation.h>

using Norvek::Math::Core::SafeDirection;
using Norvek::Math::Core::SafeLength;

namespace
{

// Lines whose angle has a smaller sine have no intersection point.
constexpr double kIntersectionParallelTolerance = 0.001;

// Meets `line` with the plane through `base` that holds the direction whose cross product with the
// common perpendicular is `normal`; leaves `foot` as it was when they are exactly parallel.
void MeetPlane(MMPoint3d<double>& foot, const MMLine& line, const MMPoint3d<double>& base,
               const MMPoint3d<double>& normal)
{
    const MMPlaneEq<double> plane(base, normal);
    const MMPoint3d<double>& start = line.GetPointFirst();
    MMPoint3d<double> met;
    double t = 0.0;
    if (plane.Intersect(t, met, start, line.GetPointSecond() - start))
        foot = met;
}

} // namespace

MMLine::~MMLine() = default;

MMPoint3d<double> MMLine::GetDirection() const
{
    return SafeDirection(_second - _first);
}

double MMLine::Length() const
{
    return SafeLength(_second - _first);
}

bool MMLine::IsParallel(const MMLine& other, double tolerance) const
{
    return SafeLength(GetDirection().Cross(other.GetDirection())) < tolerance;
}

// Both tests hold at the ends of the segment, which belong to it.
bool MMLine::IsPointOnLine(const MMPoint3d<double>& point, bool segment, double tolerance) const
{
    const MMPoint3d<double> direction = GetDirection();
    const MMPoint3d<double> offset = point - _first;
    const MMPoint3d<double> across = offset - offset.Dot(direction) * direction;
    if (!(across.LengthSquared() < tolerance * tolerance))
        return false;
    return !segment || offset.Dot(point - _second) <= 0.0;
}

// Both feet are found before either is written, because `out` may be one of the lines.
bool MMLine::GetCommonPerpendicularLine(const MMLine& other, MMLine& out, double tolerance) const
{
    if (IsParallel(other, tolerance))
        return false;
    const MMPoint3d<double> u1 = GetDirection();
    const MMPoint3d<double> u2 = other.GetDirection();
    const MMPoint3d<double> m = u1.Cross(u2);
    if (m == MMPoint3d<double>())
        return false;
    MMPoint3d<double> footOnOther = out._first;
    MMPoint3d<double> footOnThis = out._second;
    MeetPlane(footOnOther, other, _first, m.Cross(u1));
    MeetPlane(footOnThis, *this, other._first, m.Cross(u2));
    out._first = footOnOther;
    out._second = footOnThis;
    return true;
}

// The point is the foot on the other line, not the middle: which line asks makes a difference.
bool MMLine::GetIntersectionPoint(const MMLine& other, MMPoint3d<double>& out, double tolerance,
                                  bool segments) const
{
    MMLine perpendicular;
    if (!GetCommonPerpendicularLine(other, perpendicular, kIntersectionParallelTolerance) ||
        perpendicular.Length() > tolerance)
        return false;
    out = perpendicular._first;
    return !segments || (IsPointOnLine(perpendicular._first, true, tolerance) &&
                         other.IsPointOnLine(perpendicular._first, true, tolerance));
}
