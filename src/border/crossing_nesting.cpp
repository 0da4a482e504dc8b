#include "border/crossing_nesting.h"

#include "border/edge_tree.h"
#include "border/ring_area.h"

#include <algorithm>

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

template <class Predicate>
bool AnyEdges(const EdgeTree& a, const EdgeTree& b, const Predicate& predicate)
{
    return a.AnyPair(b, [&](std::uint32_t edge, std::uint32_t other) {
        return predicate(a.Begin(edge), a.End(edge), b.Begin(other), b.End(other));
    });
}

class Pairs
{
public:
    Pairs(const RingPoints& rings, CrossingRule rule) : _rings(rings), _rule(rule), _areas(rings)
    {
        _trees.reserve(rings.NumRings());
        _crossesItself.reserve(rings.NumRings());
        for (std::uint32_t ring = 0; ring < rings.NumRings(); ++ring) {
            _trees.emplace_back(rings.Ring(ring), true);
            _crossesItself.push_back(!SweepNesting(_Alone({ring})).has_value());
        }
    }

    [[nodiscard]] const std::vector<EdgeTree>& Trees() const
    {
        return _trees;
    }

    // The boxes of the two meet.
    [[nodiscard]] bool IsAround(std::uint32_t outer, std::uint32_t inner)
    {
        if (_trees[outer].Bounds().Holds(_trees[inner].Bounds())) {
            // Rims without a common place: any place of the ring tells.
            if (!AnyEdges(_trees[outer], _trees[inner], DoMeet))
                return PositionIn(_trees[outer], _rings.Ring(inner)[0]) == Position::Inside;
            const auto both =
                SweepNesting(_Alone({std::min(outer, inner), std::max(outer, inner)}));
            if (both.has_value())
                return both->orders[inner < outer ? 0 : 1] == 1;
            if ((_crossesItself[outer] || _crossesItself[inner]) &&
                !AnyEdges(_trees[outer], _trees[inner], DoCross))
                return _areas.IsLarger(outer, inner) && _LiesIn(outer, inner);
        }
        return _rule == CrossingRule::WhenMostPointsDo && _areas.IsLarger(outer, inner) &&
               _LiesMostlyIn(outer, inner);
    }

private:
    [[nodiscard]] RingPoints _Alone(std::initializer_list<std::uint32_t> chosen) const
    {
        RingPoints alone;
        for (const std::uint32_t ring : chosen) {
            const auto places = _rings.Ring(ring);
            alone.points.insert(alone.points.end(), places.begin(), places.end());
            alone.starts.push_back(static_cast<std::uint32_t>(alone.points.size()));
        }
        return alone;
    }

    // By the first place that is not on the other rim.
    [[nodiscard]] bool _LiesIn(std::uint32_t outer, std::uint32_t inner) const
    {
        for (const PlanePoint& place : _rings.Ring(inner)) {
            const Position position = PositionIn(_trees[outer], place);
            if (position != Position::On)
                return position == Position::Inside;
        }
        return false;
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
    std::vector<bool> _crossesItself;
};

} // namespace

Nesting FindNestingOfCrossing(const RingPoints& rings, CrossingRule rule)
{
    const auto numRings = static_cast<std::uint32_t>(rings.NumRings());
    Pairs pairs(rings, rule);
    std::vector<std::vector<std::uint32_t>> around(numRings);
    ForEachMeetingPair(pairs.Trees(), [&](std::uint32_t a, std::uint32_t b) {
        if (pairs.IsAround(a, b))
            around[b].push_back(a);
        else if (pairs.IsAround(b, a))
            around[a].push_back(b);
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
