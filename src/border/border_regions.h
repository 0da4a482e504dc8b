#pragma once

#include "border/crossing_nesting.h"
#include "border/ear_clipping.h"
#include "border/hole_bridges.h"
#include "border/ring_area.h"
#include "border/ring_crossings.h"
#include "border/triangulation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <numeric>
#include <utility>
#include <vector>

/// @file
/// What the borders of all types do with their contours as regions, over the types of a border.

namespace Norvek::Math::Core
{

/// The place of a border's point.
template <class Point>
PlanePoint PlaceOf(const Point& point)
{
    return {static_cast<double>(point.x), static_cast<double>(point.y)};
}

/// The same brought into range by a power of 2.
template <class Point>
PlanePoint PlaceOf(const Point& point, int exponent)
{
    return PlaceInRange(PlaceOf(point), exponent);
}

/// Whether both coordinates are finite.
template <class Point>
bool IsFinite(const Point& point)
{
    const PlanePoint place = PlaceOf(point);
    return std::isfinite(place.x) && std::isfinite(place.y);
}

/// The contours of a border as rings of places, in order, and the points there.
template <class Point>
struct CollectedRings
{
    RingPoints rings;
    std::vector<const Point*> points;

    /// Takes the points of the contour as the next ring; a contour with a coordinate that is not
    /// finite is an empty ring.
    template <class Contour>
    void Add(const Contour& contour)
    {
        const std::size_t begin = points.size();
        for (const auto& point : contour) {
            points.push_back(&point);
            rings.points.push_back(PlaceOf(point));
        }
        const auto first = rings.points.begin() + static_cast<std::ptrdiff_t>(begin);
        if (!std::all_of(first, rings.points.end(), IsFinite<PlanePoint>)) {
            rings.points.resize(begin);
            points.resize(begin);
        }
        rings.starts.push_back(static_cast<std::uint32_t>(points.size()));
    }

    /// Lists the payloads of the corners.
    template <class Payload>
    void Fill(const std::vector<IndexTriangle>& triangles, std::vector<Payload>& payloads) const
    {
        payloads.clear();
        payloads.reserve(3 * triangles.size());
        for (const IndexTriangle& triangle : triangles)
            for (const std::uint32_t corner : triangle)
                payloads.push_back(points[corner]->payload);
    }
};

/// Collects the contours of a border, ready for a sweep.
template <class Border>
auto CollectRings(const Border& border)
{
    CollectedRings<typename Border::PointType> collected;
    for (const auto& contour : border)
        collected.Add(contour);
    collected.rings.BringIntoRange();
    return collected;
}

/// The order as a contour keeps it.
inline unsigned char ClampedOrder(std::uint32_t order)
{
    constexpr std::uint32_t kLargestEven = 254;
    return static_cast<unsigned char>(order <= kLargestEven ? order : kLargestEven + order % 2);
}

/// Gives the contours the orders of their rings.
template <class Border>
void SetOrders(Border& border, const Nesting& nesting)
{
    auto order = nesting.orders.begin();
    for (auto& contour : border)
        contour.SetOrder(ClampedOrder(*order++));
}

/// Makes outer contours of those whose order is even.
template <class Border>
void SetOuterFlags(Border& border)
{
    for (auto& contour : border)
        contour.SetIsOuterContour(contour.GetOrder() % 2 == 0);
}

/// The ring of even order around a ring of odd order. Where rings cross, the innermost ring around
/// a hole may be a hole itself, and the next one is asked; the outermost one has order 0.
inline std::size_t OuterRing(const Nesting& nesting, std::size_t ring)
{
    do
        ring = nesting.parents[ring];
    while (nesting.orders[ring] % 2 == 1);
    return ring;
}

/// The positions of the rings, outer ones by descending area, each followed by its holes.
inline std::vector<std::size_t> SortedPositions(const RingPoints& rings, const Nesting& nesting)
{
    RingAreas areas(rings);
    std::vector<std::uint32_t> byArea(rings.NumRings());
    std::iota(byArea.begin(), byArea.end(), 0U);
    std::sort(byArea.begin(), byArea.end(),
              [&](std::uint32_t a, std::uint32_t b) { return areas.IsLarger(a, b); });
    std::vector<std::vector<std::size_t>> holes(rings.NumRings());
    for (const std::uint32_t ring : byArea) {
        if (nesting.orders[ring] % 2 == 1)
            holes[OuterRing(nesting, ring)].push_back(ring);
    }
    std::vector<std::size_t> sorted;
    sorted.reserve(rings.NumRings());
    for (const std::uint32_t ring : byArea) {
        if (nesting.orders[ring] % 2 == 0) {
            sorted.push_back(ring);
            sorted.insert(sorted.end(), holes[ring].begin(), holes[ring].end());
        }
    }
    return sorted;
}

/// Whether `a` lies left of `b`, or below it.
template <class Point>
bool IsLefter(const Point& a, const Point& b)
{
    return a.x != b.x ? a.x < b.x : a.y < b.y;
}

/// The leftmost point of a contour, the lowest of several; null in an empty one.
template <class Contour>
typename Contour::PointType* LeftmostPoint(Contour& contour)
{
    auto* leftmost = contour.GetFirstPoint();
    for (auto& point : contour) {
        if (IsLefter(point, *leftmost))
            leftmost = &point;
    }
    return leftmost;
}

/// A point of a contour at a distance from another one; its number in the ring parts equal ones.
template <class Point>
struct DistantPoint
{
    double squaredDistance;
    std::uint32_t number;
    Point* point;

    /// Whether this point is the farther one.
    bool operator>(const DistantPoint& other) const
    {
        return squaredDistance != other.squaredDistance ? squaredDistance > other.squaredDistance
                                                        : number > other.number;
    }
};

/// The points of a contour by their distance from a point, the nearest at the front of a heap under
/// `std::greater`. The coordinates are divided by 2 to the power `exponent`.
template <class Contour, class Point>
std::vector<DistantPoint<Point>> HeapByDistance(Contour& contour, const Point& from, int exponent)
{
    std::vector<DistantPoint<Point>> heap;
    heap.reserve(contour.GetNumPoints());
    std::uint32_t number = 0;
    for (Point& point : contour) {
        const PlanePoint offset = PlaceOf(point, exponent) - PlaceOf(from, exponent);
        heap.push_back({offset.LengthSquared(), number++, &point});
    }
    std::make_heap(heap.begin(), heap.end(), std::greater<>());
    return heap;
}

/// Holds connections of points against the edges of a border.
template <class Border>
class ConnectionTest
{
public:
    using Point = typename Border::PointType;

    /// `others` are points of connections to come that are not in the border.
    explicit ConnectionTest(const Border& border, std::initializer_list<const Point*> others = {})
        : _border(border)
    {
        double largest = 0.0;
        for (const Point* const point : others)
            largest = std::max(largest, _Size(*point));
        for (const auto& contour : border)
            for (const Point& point : contour)
                largest = std::max(largest, _Size(point));
        _exponent = ExponentOutOfRange(largest);
    }

    /// The power of 2 by which coordinates are divided.
    [[nodiscard]] int Exponent() const
    {
        return _exponent;
    }

    /// Whether the connection meets an edge.
    [[nodiscard]] bool DoesMeet(const Point& p, const Point& q, ConnectionRule rule) const
    {
        const PlanePoint from = PlaceOf(p, _exponent);
        const PlanePoint to = PlaceOf(q, _exponent);
        return std::any_of(_border.begin(), _border.end(),
                           [&](const auto& contour) { return _DoesMeet(from, to, contour, rule); });
    }

private:
    static double _Size(const Point& point)
    {
        const PlanePoint place = PlaceOf(point);
        return IsFinite(place) ? std::max(std::abs(place.x), std::abs(place.y)) : 0.0;
    }

    template <class Contour>
    bool _DoesMeet(const PlanePoint& p, const PlanePoint& q, const Contour& contour,
                   ConnectionRule rule) const
    {
        const bool hasLast = contour.GetIsClosed() || rule.withClosingEdges;
        return std::any_of(contour.begin(), contour.end(), [&](const Point& point) {
            return (hasLast || point.next != contour.GetFirstPoint()) &&
                   DoesConnectionMeet(p, q, PlaceOf(point, _exponent),
                                      PlaceOf(*point.next, _exponent), rule);
        });
    }

    const Border& _border;
    int _exponent;
};

/// Tells whether bridges between an outer contour and its holes meet what reaches into that region
/// from elsewhere: strays or, where rings cross or overlap in part, anything.
template <class Border>
auto MakeBridgeTest(const Border& border, const RingPoints& rings, const Nesting& nesting)
{
    using Point = typename Border::PointType;
    return [all = ConnectionTest(border), &rings, &nesting](const Point& p, const Point& q) {
        constexpr ConnectionRule kRule{true, true};
        if (!nesting.isLaminar)
            return !all.DoesMeet(p, q, kRule);
        const PlanePoint from = PlaceOf(p, rings.exponent);
        const PlanePoint to = PlaceOf(q, rings.exponent);
        return std::none_of(
            nesting.strays.begin(), nesting.strays.end(), [&](const std::uint32_t ring) {
                const auto places = rings.Ring(ring);
                for (std::size_t i = 0; i < places.size(); ++i) {
                    const PlanePoint& next = places[i + 1 == places.size() ? 0 : i + 1];
                    if (DoesConnectionMeet(from, to, places[i], next, kRule))
                        return true;
                }
                return false;
            });
    };
}

/// Makes holes part of the outer contour around them, takes them out of `holes` and hands each to
/// `discard(hole)` at once, so that running out of memory leaves none twice. None are when edges
/// cross or when `isFree(p, q)` is false for one of the bridges.
template <class Contour, class Predicate, class Discard>
void JoinAlongDiagonals(Contour& outer, std::vector<Contour*>& holes, const Predicate& isFree,
                        const Discard& discard)
{
    CollectedRings<typename Contour::PointType> collected;
    std::vector<typename Contour::PointType*> nodes;
    const auto add = [&](Contour& contour) {
        collected.Add(contour);
        for (auto& point : contour)
            nodes.push_back(&point);
    };
    add(outer);
    for (Contour* const hole : holes)
        add(*hole);
    collected.rings.BringIntoRange();
    const auto bridges = FindBridges(collected.rings);
    auto& points = collected.points;
    for (const Bridge& bridge : bridges) {
        if (!isFree(*points[bridge.from], *points[bridge.to]))
            return;
        points.push_back(points[bridge.from]);
        points.push_back(points[bridge.to]);
    }
    const auto& starts = collected.rings.starts;
    nodes.reserve(points.size());
    for (const Bridge& bridge : bridges) {
        auto* const end = nodes[bridge.to];
        Contour* const hole = std::exchange(holes[bridge.ring - 1], nullptr);
        hole->SetFirstPointAt(nodes[bridge.from]);
        outer.ConnectWith(end, hole);
        discard(hole);
        // The points of the hole are now those of the outline.
        auto* copy = end->next;
        const std::uint32_t size = starts[bridge.ring + 1] - starts[bridge.ring];
        std::uint32_t node = bridge.from;
        for (std::uint32_t i = 0; i < size; ++i, copy = copy->next) {
            nodes[node] = copy;
            node = node + 1 == starts[bridge.ring + 1] ? starts[bridge.ring] : node + 1;
        }
        nodes.push_back(copy);
        nodes.push_back(copy->next);
    }
    std::erase(holes, nullptr);
}

/// Triangulates by cutting corners off each contour in turn.
template <class Point>
std::vector<IndexTriangle> ClipContours(const CollectedRings<Point>& collected)
{
    std::vector<IndexTriangle> triangles;
    std::vector<std::uint32_t> ring;
    for (std::size_t i = 0; i < collected.rings.NumRings(); ++i) {
        ring.resize(collected.rings.Ring(i).size());
        std::iota(ring.begin(), ring.end(), collected.rings.starts[i]);
        ClipEars(collected.rings.points, ring, triangles);
    }
    return triangles;
}

} // namespace Norvek::Math::Core
