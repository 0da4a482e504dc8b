#pragma once

#include "foundation/safe_length.h"

#include <norvek/border/border_point.h>
#include <norvek/foundation/coordinate.h>

#include <cstddef>

/// @file
/// Measures of one ring of linked points, given its first point (null for an empty ring). An edge
/// runs from a point p to its next point q. Differences and sums of integer coordinates are 32-bit
/// integers that wrap.

namespace Norvek::Math::Core
{

/// What one edge says about a point: nothing, that it crosses the ray from the point towards
/// negative x, or that the point lies on it.
enum class EdgeVerdict
{
    Nothing,
    Crosses,
    Touches
};

/// The position test of the edge p -> q for (x, y). The products, and the multiplication before the
/// division, decide which points count as lying on an edge: keep their order.
template <class Point>
EdgeVerdict JudgeEdge(const Point& p, const Point& q, double x, double y)
{
    const auto px = static_cast<double>(p.x);
    const auto py = static_cast<double>(p.y);
    const auto qx = static_cast<double>(q.x);
    const auto qy = static_cast<double>(q.y);
    if (px == x && py == y)
        return EdgeVerdict::Touches;
    if (py == y && qy == y)
        return (x - qx) * (x - px) <= 0.0 ? EdgeVerdict::Touches : EdgeVerdict::Nothing;
    // The lower end belongs to the edge, the upper one does not.
    if (!((py > y && y >= qy) || (py <= y && y < qy)))
        return EdgeVerdict::Nothing;
    double dx = 0.0;
    double dy = 0.0;
    if constexpr (std::integral<typename Point::CoordinateType>) {
        dx = WrappingSubtract(q.x, p.x);
        dy = WrappingSubtract(q.y, p.y);
    } else {
        dx = qx - px;
        dy = qy - py;
    }
    const double crossing = px + (y - py) * dx / dy;
    if (crossing == x)
        return EdgeVerdict::Touches;
    return x > crossing ? EdgeVerdict::Crosses : EdgeVerdict::Nothing;
}

/// Adds the edges of the ring that cross the ray to `count`; true, with the count half done, as
/// soon as the point lies on one.
///
/// An edge both of whose ends lie strictly above the ray's line, or strictly below, says nothing
/// (see `JudgeEdge`): runs of such edges are walked over with one comparison a point.
template <class Point>
bool CountCrossings(const Point* first, double x, double y, std::size_t& count)
{
    if (first == nullptr)
        return false;
    const Point* p = first;
    do {
        const Point* q = NextInRing(p);
        if (static_cast<double>(p->y) > y) {
            while (q != first && static_cast<double>(q->y) > y) {
                p = q;
                q = NextInRing(p);
            }
        } else if (static_cast<double>(p->y) < y) {
            while (q != first && static_cast<double>(q->y) < y) {
                p = q;
                q = NextInRing(p);
            }
        }
        const EdgeVerdict verdict = JudgeEdge(*p, *q, x, y);
        if (verdict == EdgeVerdict::Touches)
            return true;
        count += verdict == EdgeVerdict::Crosses ? 1 : 0;
        p = q;
    } while (p != first);
    return false;
}

/// The signed area, positive for a clockwise ring.
template <class Point>
double SignedArea(const Point* first)
{
    double area = 0.0;
    if (first == nullptr)
        return area;
    const Point* p = first;
    do {
        const Point* const q = NextInRing(p);
        // A vertical edge is skipped, not added as zero: with an infinite y it would add NaN.
        if (q->x != p->x) {
            if constexpr (std::integral<typename Point::CoordinateType>) {
                const double sum = WrappingAdd(q->y, p->y);
                const double difference = WrappingSubtract(q->x, p->x);
                area += sum * difference * 0.5;
            } else {
                const double sum = static_cast<double>(q->y) + static_cast<double>(p->y);
                const double difference = static_cast<double>(q->x) - static_cast<double>(p->x);
                area += sum * difference * 0.5;
            }
        }
        p = q;
    } while (p != first);
    return area;
}

/// The sum of the edge lengths in ring order, with or without the edge from the last point to the
/// first. Coordinates are converted before they are subtracted, so nothing wraps.
template <class Point>
double RingLength(const Point* first, bool isClosed)
{
    double length = 0.0;
    if (first == nullptr || first->next == first)
        return length;
    const Point* p = first;
    const Point* const end = isClosed ? first : first->previous;
    do {
        const Point* const q = NextInRing(p);
        length += SafeLength(static_cast<double>(q->x) - static_cast<double>(p->x),
                             static_cast<double>(q->y) - static_cast<double>(p->y), 0.0);
        p = q;
    } while (p != end);
    return length;
}

} // namespace Norvek::Math::Core
