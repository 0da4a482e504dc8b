#pragma once

#include "border/crossing_nesting.h"
#include "border/ear_clipping.h"
#include "border/ring_crossings.h"
#include "border/triangulation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
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
        const auto isFinite = [](const PlanePoint& p) {
            return std::isfinite(p.x) && std::isfinite(p.y);
        };
        const auto first = rings.points.begin() + static_cast<std::ptrdiff_t>(begin);
        if (!std::all_of(first, rings.points.end(), isFinite)) {
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

/// The ring of even order around a ring of odd order. Where rings cross, the innermost ring around
/// a hole may be a hole itself, and the next one is asked; the outermost one has order 0.
inline std::size_t OuterRing(const Nesting& nesting, std::size_t ring)
{
    do
        ring = nesting.parents[ring];
    while (nesting.orders[ring] % 2 == 1);
    return ring;
}

/// The positions of the contours, outer ones by descending area, each followed by its holes.
template <class Border>
std::vector<std::size_t> SortedPositions(const Border& border, const Nesting& nesting)
{
    std::vector<double> areas;
    areas.reserve(nesting.orders.size());
    for (const auto& contour : border)
        areas.push_back(std::abs(contour.SurfaceAreaWithSignXY()));
    std::vector<std::size_t> byArea(areas.size());
    std::iota(byArea.begin(), byArea.end(), std::size_t{0});
    // NaN goes to the end.
    std::stable_sort(byArea.begin(), byArea.end(), [&](std::size_t a, std::size_t b) {
        return areas[a] > areas[b] || (std::isnan(areas[b]) && !std::isnan(areas[a]));
    });
    std::vector<std::vector<std::size_t>> holes(areas.size());
    for (const std::size_t ring : byArea) {
        if (nesting.orders[ring] % 2 == 1)
            holes[OuterRing(nesting, ring)].push_back(ring);
    }
    std::vector<std::size_t> sorted;
    for (const std::size_t ring : byArea) {
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
/// `std::greater`.
template <class Contour, class Point>
std::vector<DistantPoint<Point>> HeapByDistance(Contour& contour, const Point& from)
{
    std::vector<DistantPoint<Point>> heap;
    heap.reserve(contour.GetNumPoints());
    std::uint32_t number = 0;
    for (Point& point : contour) {
        const PlanePoint offset = PlaceOf(point) - PlaceOf(from);
        heap.push_back({offset.LengthSquared(), number++, &point});
    }
    std::make_heap(heap.begin(), heap.end(), std::greater<>());
    return heap;
}

/// Whether the connection of two places meets an edge of the contour.
template <class Contour>
bool DoesConnectionMeetContour(const PlanePoint& p, const PlanePoint& q, const Contour& contour,
                               ConnectionRule rule)
{
    const bool hasLast = contour.GetIsClosed() || rule.withClosingEdges;
    for (const auto& point : contour) {
        if (!hasLast && point.next == contour.GetFirstPoint())
            break;
        if (DoesConnectionMeet(p, q, PlaceOf(point), PlaceOf(*point.next), rule))
            return true;
    }
    return false;
}

/// Whether the connection of two points meets an edge of the border.
template <class Border, class Point>
bool DoesConnectionMeetBorder(const Point& p, const Point& q, const Border& border,
                              ConnectionRule rule)
{
    const PlanePoint from = PlaceOf(p);
    const PlanePoint to = PlaceOf(q);
    return std::any_of(border.begin(), border.end(), [&](const auto& contour) {
        return DoesConnectionMeetContour(from, to, contour, rule);
    });
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
