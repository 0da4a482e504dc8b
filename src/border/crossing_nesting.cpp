#include "border/crossing_nesting.h"

#include "border/edge_tree.h"
#include "border/ring_area.h"

#include <algorithm>
#include <cmath>

namespace Norvek::Math::Core
{

namespace
{

constexpr std::uint32_t kNone = PlaneGraph::kNone;

enum class Position
{
    On,
    Inside,
    Outside
};

bool IsBefore(const PlanePoint& a, const PlanePoint& b)
{
    return a.x != b.x ? a.x < b.x : a.y < b.y;
}

// Even-odd, exact.
Position PositionIn(const EdgeTree& ring, const PlanePoint& place)
{
    bool isInside = false;
    const PlaneBox ray{{ring.Bounds().low.x, place.y}, place};
    const bool isOn = ring.AnyEdge(ray, [&](std::uint32_t edge) {
        const bool isRising = ring.Begin(edge).y <= ring.End(edge).y;
        const PlanePoint& lower = isRising ? ring.Begin(edge) : ring.End(edge);
        const PlanePoint& upper = isRising ? ring.End(edge) : ring.Begin(edge);
        const int side = Orientation(lower, upper, place);
        if (side == 0)
            return place.x <= std::max(lower.x, upper.x);
        // The lower end belongs to the edge, the upper one does not.
        if (place.y < upper.y && side < 0)
            isInside = !isInside;
        return false;
    });
    if (isOn)
        return Position::On;
    return isInside ? Position::Inside : Position::Outside;
}

// Whether the ring holds a place next to `at` on the way from there to `to`, beside the way on its
// left or on its right, even-odd and exact.
bool IsInsideBeside(const EdgeTree& ring, const PlanePoint& at, const PlanePoint& to, bool isLeft)
{
    // The ray to the left runs a little above or below `at`.
    const bool isAbove = to.y != at.y ? to.y > at.y : (to.x > at.x) == isLeft;
    bool isInside = false;
    ring.AnyEdge({{ring.Bounds().low.x, at.y}, at}, [&](std::uint32_t edge) {
        const bool isRising = ring.Begin(edge).y <= ring.End(edge).y;
        const PlanePoint& lower = isRising ? ring.Begin(edge) : ring.End(edge);
        const PlanePoint& upper = isRising ? ring.End(edge) : ring.Begin(edge);
        if (isAbove ? upper.y <= at.y : lower.y >= at.y)
            return false;
        int side = Orientation(lower, upper, at);
        if (side == 0)
            side = Orientation(lower, upper, to);
        // The way runs along the edge.
        if (side == 0)
            side = isAbove == isLeft ? 1 : -1;
        if (side < 0)
            isInside = !isInside;
        return false;
    });
    return isInside;
}

// Calls `visit(at, to)` for the parts of the edges of `ring` between places of either ring, until
// one returns true. Returns whether one did.
template <class Visit>
bool AnyPart(const EdgeTree& ring, const EdgeTree& other, const Visit& visit)
{
    std::vector<PlanePoint> places;
    for (std::uint32_t edge = 0; edge < ring.NumEdges(); ++edge) {
        const PlanePoint& begin = ring.Begin(edge);
        const PlanePoint& end = ring.End(edge);
        places = {begin, end};
        other.AnyEdge(PlaneBox::Of(begin, end), [&](std::uint32_t otherEdge) {
            if (LiesOn(other.Begin(otherEdge), begin, end))
                places.push_back(other.Begin(otherEdge));
            return false;
        });
        std::sort(places.begin(), places.end(), IsBefore);
        places.erase(std::unique(places.begin(), places.end()), places.end());
        for (std::size_t i = 1; i < places.size(); ++i) {
            if (visit(places[i - 1], places[i]))
                return true;
        }
    }
    return false;
}

// Whether the region within `inner` lies in that within `outer`; no edges of the two cross, so that
// all that can be told apart is told beside the parts of their edges.
bool LiesIn(const EdgeTree& inner, const EdgeTree& outer)
{
    bool hasArea = false;
    const auto standsOut = [&](const PlanePoint& at, const PlanePoint& to) {
        for (const bool isLeft : {false, true}) {
            if (IsInsideBeside(inner, at, to, isLeft)) {
                hasArea = true;
                if (!IsInsideBeside(outer, at, to, isLeft))
                    return true;
            }
        }
        return false;
    };
    if (AnyPart(inner, outer, standsOut) || AnyPart(outer, inner, standsOut))
        return false;
    if (hasArea)
        return true;
    // As in the sweep, whose line leans: what is right below the leftmost place.
    PlanePoint leftmost = inner.Begin(0);
    for (std::uint32_t edge = 1; edge < inner.NumEdges(); ++edge)
        leftmost = std::min(leftmost, inner.Begin(edge), IsBefore);
    const PlanePoint below(leftmost.x, leftmost.y - std::max(1.0, std::abs(leftmost.y)));
    return IsInsideBeside(outer, leftmost, below, true);
}

class Pairs
{
public:
    Pairs(const RingPoints& rings, CrossingRule rule) : _rings(rings), _rule(rule), _areas(rings)
    {
        _trees.reserve(rings.NumRings());
        for (std::uint32_t ring = 0; ring < rings.NumRings(); ++ring)
            _trees.emplace_back(rings.Ring(ring), true);
    }

    [[nodiscard]] const std::vector<EdgeTree>& Trees() const
    {
        return _trees;
    }

    // The one of two rings that is around the other, the first when both are; none otherwise.
    [[nodiscard]] std::uint32_t OuterOf(std::uint32_t a, std::uint32_t b)
    {
        bool isTouching = false;
        const bool isCrossing = _trees[a].AnyPair(_trees[b], [&](std::uint32_t i, std::uint32_t j) {
            const PlanePoint& begin = _trees[b].Begin(j);
            const PlanePoint& end = _trees[b].End(j);
            isTouching = isTouching || DoMeet(_trees[a].Begin(i), _trees[a].End(i), begin, end);
            return isTouching && DoCross(_trees[a].Begin(i), _trees[a].End(i), begin, end);
        });
        if (!isCrossing) {
            if (isTouching ? LiesIn(_trees[b], _trees[a]) : _HoldsFirstPlace(a, b))
                return a;
            if (isTouching ? LiesIn(_trees[a], _trees[b]) : _HoldsFirstPlace(b, a))
                return b;
        }
        if (_rule == CrossingRule::Never || !isTouching)
            return kNone;
        const bool isLarger = _areas.IsLarger(a, b);
        const std::uint32_t outer = isLarger ? a : b;
        return _LiesMostlyIn(outer, isLarger ? b : a) ? outer : kNone;
    }

private:
    // Rims without a common place: any place of the ring tells.
    [[nodiscard]] bool _HoldsFirstPlace(std::uint32_t outer, std::uint32_t inner) const
    {
        return _trees[outer].Bounds().Holds(_trees[inner].Bounds()) &&
               PositionIn(_trees[outer], _rings.Ring(inner)[0]) == Position::Inside;
    }

    [[nodiscard]] bool _LiesMostlyIn(std::uint32_t outer, std::uint32_t inner) const
    {
        const auto places = _rings.Ring(inner);
        const auto numInside =
            std::count_if(places.begin(), places.end(), [&](const PlanePoint& place) {
                return PositionIn(_trees[outer], place) == Position::Inside;
            });
        return 2 * static_cast<std::size_t>(numInside) > places.size();
    }

    const RingPoints& _rings;
    CrossingRule _rule;
    RingAreas _areas;
    std::vector<EdgeTree> _trees;
};

} // namespace

Nesting FindNestingOfCrossing(const RingPoints& rings, CrossingRule rule)
{
    const auto numRings = static_cast<std::uint32_t>(rings.NumRings());
    Pairs pairs(rings, rule);
    std::vector<std::vector<std::uint32_t>> around(numRings);
    ForEachMeetingPair(pairs.Trees(), [&](std::uint32_t a, std::uint32_t b) {
        const std::uint32_t outer = pairs.OuterOf(a, b);
        if (outer != kNone)
            around[outer == a ? b : a].push_back(outer);
    });
    Nesting nesting;
    nesting.parents.assign(numRings, kNone);
    nesting.orders.assign(numRings, 0);
    nesting.isLaminar = false;
    for (std::uint32_t ring = 0; ring < numRings; ++ring) {
        std::uint32_t& parent = nesting.parents[ring];
        for (const std::uint32_t candidate : around[ring]) {
            const std::size_t depth = around[candidate].size();
            // Rings that lie mostly in each other may go round in a circle.
            if (depth >= around[ring].size())
                continue;
            const std::size_t deepest = parent == kNone ? 0 : around[parent].size();
            if (parent == kNone || depth > deepest || (depth == deepest && candidate < parent))
                parent = candidate;
        }
        if (parent != kNone)
            nesting.orders[ring] = static_cast<std::uint32_t>(around[ring].size());
    }
    return nesting;
}

} // namespace Norvek::Math::Core
