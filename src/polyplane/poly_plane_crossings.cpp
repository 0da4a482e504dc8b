#include "polyplane/outline.h"

#include <norvek/foundation/constants.h>
#include <norvek/polyplane/poly_plane.h>
#include <norvek/primitives/line2d.h>

#include <cmath>

// Notation: (u, v) the two kept coordinates of the query, p the previous point of an edge and c its
// current one, w = c - p.
//
// The test for lying on an edge allows an angle: its cosine may be one machine epsilon below 1, and
// with the rounding of two unit vectors (less than 2e-15) the angle stays below 6.4e-8 radians. The
// query is then nearer to p than c is, so it leaves the range of v between p and c by less than
// 6.4e-8 |w|. Edges whose ends both lie farther above v than that, or farther below, can neither
// hold the query nor be crossed by its ray, and are passed over. Rounding v +- margin is harmless:
// it is monotone, and the ends are doubles. A NaN on either side of a comparison passes nothing
// over.

using Norvek::Math::Core::kMachineEpsilon;
using Norvek::Math::PolyPlane::Axis;
using Norvek::Math::PolyPlane::DoSegmentsCross;
using Norvek::Math::PolyPlane::FlatTriangle;
using Norvek::Math::PolyPlane::InAxes;
using Norvek::Math::PolyPlane::Point;

namespace
{

// 2^-23, nearly twice the angle above; and a length whose square still has all digits.
constexpr double kAngleMargin = 0x1p-23;
constexpr double kLeastMargin = 1e-140;

enum class EdgeVerdict
{
    Nothing,
    Crosses,
    Holds
};

// The order of the tests is meant: an edge without length says nothing about its own point.
template <Axis U, Axis V>
EdgeVerdict JudgeEdge(const Point& p, const Point& c, double u, double v)
{
    if (c.*U == p.*U && c.*V == p.*V)
        return EdgeVerdict::Nothing;
    if ((u == c.*U && v == c.*V) || (u == p.*U && v == p.*V))
        return EdgeVerdict::Holds;
    const MMLine2D line({p.*U, p.*V}, {c.*U, c.*V});
    if (line.IsPointOnLineSegment({u, v}, kMachineEpsilon))
        return EdgeVerdict::Holds;
    if ((p.*V > v) == (c.*V > v))
        return EdgeVerdict::Nothing;
    const double crossing = p.*U + (c.*U - p.*U) * (v - p.*V) / (c.*V - p.*V);
    return crossing > u ? EdgeVerdict::Crosses : EdgeVerdict::Nothing;
}

// Walks over runs of edges on one side with one comparison an edge. The edge that leaves a run, and
// every edge near the query's line, is judged.
template <Axis U, Axis V>
bool IsInOutline(const std::vector<Point>& points, double u, double v, double margin)
{
    const double high = v + margin;
    const double low = v - margin;
    bool inside = false;
    const Point* previous = &points.back();
    const Point* current = points.data();
    const Point* const end = current + points.size();
    while (true) {
        if (previous->*V > high) {
            while (current != end && current->*V > high)
                previous = current++;
        } else if (previous->*V < low) {
            while (current != end && current->*V < low)
                previous = current++;
        }
        if (current == end)
            return inside;
        const EdgeVerdict verdict = JudgeEdge<U, V>(*previous, *current, u, v);
        if (verdict == EdgeVerdict::Holds)
            return true;
        inside = inside != (verdict == EdgeVerdict::Crosses);
        previous = current++;
    }
}

} // namespace

// Drops the coordinate in which the direction is largest. Equal ones: y goes before x, x before z.
void MPolyPlane::_IsInsideFindAxes(char& first, char& second) const
{
    const double x = std::abs(_direction.x);
    const double y = std::abs(_direction.y);
    const double z = std::abs(_direction.z);
    const int dropped = x > y ? (z > x ? 2 : 0) : (z > y ? 2 : 1);
    first = dropped == 0 ? 1 : 0;
    second = dropped == 2 ? 1 : 2;
}

// No edge is longer than the diagonal of the box.
double MPolyPlane::_Margin() const
{
    return kAngleMargin *
               ((_box.maxX - _box.minX) + (_box.maxY - _box.minY) + (_box.maxZ - _box.minZ)) +
           kLeastMargin;
}

bool MPolyPlane::IsInside(MMPoint3d<double> point) const
{
    if (_points.empty())
        return false;
    _zeroPlane.Project(point, point);
    char first = 0;
    char second = 0;
    _IsInsideFindAxes(first, second);
    return InAxes(first, second, [&]<Axis U, Axis V>() {
        return IsInOutline<U, V>(_points, point.*U, point.*V, _Margin());
    });
}

bool MPolyPlane::_LineIntersects(MMPoint3d<double> p1, MMPoint3d<double> p2, MMPoint3d<double> q1,
                                 MMPoint3d<double> q2) const
{
    char first = 0;
    char second = 0;
    _IsInsideFindAxes(first, second);
    return InAxes(first, second,
                  [&]<Axis U, Axis V>() { return DoSegmentsCross<U, V>(p1, p2, q1, q2); });
}

// No box is asked first: the answer is that of the quotients alone, whatever rounding does to them.
bool MPolyPlane::LineIntersects(MMPoint3d<double> a, MMPoint3d<double> b) const
{
    _zeroPlane.Project(a, a);
    _zeroPlane.Project(b, b);
    char first = 0;
    char second = 0;
    _IsInsideFindAxes(first, second);
    return InAxes(first, second, [&]<Axis U, Axis V>() {
        for (std::size_t i = 0; i < _points.size(); ++i)
            if (DoSegmentsCross<U, V>(a, b, _points[i], _points[_Next(i)]))
                return true;
        return false;
    });
}

// Whether a segment of the outline passes `test` against the triangle, both seen along the
// direction. One look at the box of the whole outline answers for most triangles of a large
// surface.
template <class Test>
bool MPolyPlane::_HasSegment(MMPoint3d<double> a, MMPoint3d<double> b, MMPoint3d<double> c,
                             const Test& test) const
{
    for (Point* const corner : {&a, &b, &c})
        _zeroPlane.Project(*corner, *corner);
    char first = 0;
    char second = 0;
    _IsInsideFindAxes(first, second);
    return InAxes(first, second, [&]<Axis U, Axis V>() {
        const FlatTriangle<U, V> triangle(a, b, c);
        if (triangle.IsBeside(_box.GetCornerMin(), _box.GetCornerMax()))
            return false;
        for (std::size_t i = 0; i < _points.size(); ++i)
            if (test(triangle, _points[i], _points[_Next(i)]))
                return true;
        return false;
    });
}

bool MPolyPlane::TriangleIntersectRejection(MMPoint3d<double> a, MMPoint3d<double> b,
                                            MMPoint3d<double> c) const
{
    return !_HasSegment(a, b, c, [](const auto& triangle, const Point& p, const Point& q) {
        return !triangle.Misses(p, q);
    });
}

// Segments that are missed for certain are passed over: among nearly collinear ones the exact test
// could be wrong about them by rounding.
bool MPolyPlane::TriangleIntersects(MMPoint3d<double> a, MMPoint3d<double> b,
                                    MMPoint3d<double> c) const
{
    return _HasSegment(a, b, c, [](const auto& triangle, const Point& p, const Point& q) {
        return !triangle.Misses(p, q) && triangle.Meets(p, q);
    });
}
