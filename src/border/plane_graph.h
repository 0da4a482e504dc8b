#pragma once

#include "border/orientation.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Norvek::Math::Core
{

/// The power of 2 by which coordinates of this size have to be divided so that the products of an
/// orientation neither overflow nor vanish; 0 when they do not anyway.
int ExponentOutOfRange(double largestCoordinate);

/// The place divided by 2 to this power. Coordinates below 2^-485 are rounded to multiples of
/// 2^-537, whose products lose no digits: a sweep needs answers that do not contradict each other.
PlanePoint PlaceInRange(const PlanePoint& place, int exponent);

/// The points of rings one after another, as a sweep takes them.
struct RingPoints
{
    std::vector<PlanePoint> points;
    /// Where each ring begins in `points`; one more entry marks the end.
    std::vector<std::uint32_t> starts{0};
    /// The true coordinates are those in `points` times 2 to this power.
    int exponent = 0;

    [[nodiscard]] std::size_t NumRings() const
    {
        return starts.size() - 1;
    }

    [[nodiscard]] std::span<const PlanePoint> Ring(std::size_t ring) const
    {
        return {points.data() + starts[ring], starts[ring + 1] - starts[ring]};
    }

    /// Brings all places into range, by the power of 2 that `ExponentOutOfRange` names.
    void BringIntoRange();
};

/// An edge of a ring, from its lexicographically smaller end to the larger one; a sweep cuts it off
/// from the left.
struct SweepEdge
{
    std::uint32_t left;
    std::uint32_t right;
    /// The next edge of the lists that begin at the left and end at the right place.
    std::uint32_t nextOutgoing;
    std::uint32_t nextIncoming;
    std::uint32_t ring;
    /// The ring runs from left to right here.
    bool isForward;
    /// Cancelled edges stay in their lists and count no longer.
    bool isAlive;
};

/// Rings as places and edges. Equal points are one place; edges without length are left out.
struct PlaneGraph
{
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// Distinct, ascending by x, then by y.
    std::vector<PlanePoint> places;
    /// The first of the ring points at each place.
    std::vector<std::uint32_t> pointAt;
    /// The place of each ring point.
    std::vector<std::uint32_t> placeOf;
    std::vector<SweepEdge> edges;
    /// Heads of the lists of edges that begin and that end at each place.
    std::vector<std::uint32_t> firstOutgoing;
    std::vector<std::uint32_t> firstIncoming;

    explicit PlaneGraph(const RingPoints& rings);

    /// On which side of an edge a place lies: 1 above, -1 below, 0 on its line.
    [[nodiscard]] int SideOf(const SweepEdge& edge, std::uint32_t place) const
    {
        return Orientation(places[edge.left], places[edge.right], places[place]);
    }

    /// Whether two edges that begin at `place` have the same direction.
    [[nodiscard]] bool DoCoincide(std::uint32_t place, std::uint32_t a, std::uint32_t b) const
    {
        return Orientation(places[place], places[edges[a].right], places[edges[b].right]) == 0;
    }

    /// Cuts the edge off: it begins at `left` from now on.
    void BeginAt(std::uint32_t edge, std::uint32_t left);
};

} // namespace Norvek::Math::Core
