#include "foundation/safe_length.h"

#include <norvek/foundation/constants.h>
#include <norvek/primitives/line2d.h>

#include <cmath>

using Norvek::Math::Core::kMachineEpsilon;
using Norvek::Math::Core::SafeDirection;
using Norvek::Math::Core::SafeLength;

namespace
{

using Point = MMPoint2d<double>;

// Meets p + t d with the line through q along e; false, with `out` untouched, when |d x e| is below
// the tolerance.
bool Meet(Point& out, const Point& p, const Point& d, const Point& q, const Point& e,
          double tolerance)
{
    const double determinant = d.x * e.y - d.y * e.x;
    if (std::abs(determinant) < tolerance)
        return false;
    const double t = ((p.y - q.y) * e.x - (p.x - q.x) * e.y) / determinant;
    out = p + t * d;
    return true;
}

// The distance of `point` from the closed segment from a to b.
double DistanceFromSegment(const Point& point, const Point& a, const Point& b)
{
    const Point d = b - a;
    const double along = (point - a).Dot(d);
    const double squared = d.Dot(d);
    if (along <= 0.0)
        return SafeLength(point - a);
    if (along >= squared)
        return SafeLength(point - b);
    return SafeLength(point - (a + (along / squared) * d));
}

bool LiesInRect(const Point& p, double xmin, double ymin, double xmax, double ymax)
{
    return p.x >= xmin && p.x <= xmax && p.y >= ymin && p.y <= ymax;
}

} // namespace

MMPoint2d<double> MMLine2D::GetDirection() const
{
    return SafeDirection(_second - _first);
}

double MMLine2D::GetLength() const
{
    return SafeLength(_second - _first);
}

void MMLine2D::GetLineEquation(double& a, double& b, double& c, double tolerance) const
{
    const Point p = _first;
    const double dx = _second.x - _first.x;
    const double dy = _second.y - _first.y;
    if (std::abs(dx) < tolerance) {
        const bool offOrigin = std::abs(p.x) >= tolerance;
        a = offOrigin ? -1.0 / p.x : 1.0;
        b = 0.0;
        c = offOrigin ? 1.0 : 0.0;
    } else if (std::abs(dy) >= tolerance) {
        a = dy / dx;
        b = -1.0;
        c = p.y - (dy / dx) * p.x;
    } else {
        const bool offOrigin = std::abs(p.y) >= tolerance;
        a = 0.0;
        b = offOrigin ? -1.0 / p.y : 1.0;
        c = offOrigin ? 1.0 : 0.0;
    }
}

void MMLine2D::Project(MMPoint2d<double>& out, const MMPoint2d<double>& point) const
{
    const Point unit = GetDirection();
    const Point turned(-unit.y, unit.x);
    Meet(out, _first, _second - _first, point, turned, kMachineEpsilon);
}

double MMLine2D::GetDistance(const MMPoint2d<double>& point) const
{
    Point foot = _first;
    Project(foot, point);
    return SafeLength(point - foot);
}

// The sign belongs to the case of the equation, not to the direction of the line; callers depend on
// it.
double MMLine2D::GetSignedDistance(const MMPoint2d<double>& point) const
{
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    GetLineEquation(a, b, c, kMachineEpsilon);
    const double distance = GetDistance(point);
    return a * point.x + b * point.y + c < 0.0 ? -distance : distance;
}

// Only the x components are multiplied, not the whole dot product: meant.
bool MMLine2D::IsParallel(const MMLine2D& other, double tolerance) const
{
    Point u = GetDirection();
    const Point w = other.GetDirection();
    if (w.x * u.x < 0.0)
        u = -u;
    return tolerance * tolerance > (w - u).LengthSquared();
}

bool MMLine2D::IsCoincident(const MMLine2D& other, double tolerance) const
{
    return IsParallel(other, tolerance) && IsParallel(MMLine2D(_first, other._first), tolerance);
}

bool MMLine2D::IsPointOnLine(const MMPoint2d<double>& point, double tolerance) const
{
    return IsParallel(MMLine2D(_first, point), tolerance);
}

// The tolerance is a margin of the cosine, and the comparison of lengths excludes the second point.
bool MMLine2D::IsPointOnLineSegment(const MMPoint2d<double>& point, double tolerance) const
{
    const Point whole = _second - _first;
    const Point part = point - _first;
    if (part.LengthSquared() >= whole.LengthSquared())
        return false;
    return SafeDirection(whole).Dot(SafeDirection(part)) >= 1.0 - tolerance;
}

bool MMLine2D::GetIntersectionPoint(MMPoint2d<double>& out, const MMLine2D& other,
                                    double tolerance) const
{
    return Meet(out, _first, _second - _first, other._first, other._second - other._first,
                tolerance);
}

bool MMLine2D::GetIntersectionSegmentSegment(MMPoint2d<double>& out, const MMLine2D& other,
                                             double tolerance) const
{
    Point met;
    if (!GetIntersectionPoint(met, other, tolerance))
        return false;
    const double fromOther = DistanceFromSegment(met, other._first, other._second);
    const double fromThis = DistanceFromSegment(met, _first, _second);
    out = met;
    return 2.0 * tolerance > fromOther + fromThis;
}

bool MMLine2D::DoesSegmentLieOnRect(double xmin, double ymin, double xmax, double ymax,
                                    double tolerance) const
{
    if (LiesInRect(_first, xmin, ymin, xmax, ymax) || LiesInRect(_second, xmin, ymin, xmax, ymax))
        return true;
    const Point lowerLeft(xmin, ymin);
    const Point upperLeft(xmin, ymax);
    const Point upperRight(xmax, ymax);
    const Point lowerRight(xmax, ymin);
    Point met;
    return GetIntersectionSegmentSegment(met, MMLine2D(lowerLeft, upperLeft), tolerance) ||
           GetIntersectionSegmentSegment(met, MMLine2D(upperRight, upperLeft), tolerance) ||
           GetIntersectionSegmentSegment(met, MMLine2D(upperRight, lowerRight), tolerance) ||
           GetIntersectionSegmentSegment(met, MMLine2D(lowerLeft, lowerRight), tolerance);
}
