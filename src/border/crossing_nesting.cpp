#include "border/crossing_nesting.h"

#include "border/edge_tree.h"
#include "border/triangulation.h"

#include <algorithm>
#include <cmath>
#include <optional>

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

bool DoCross(const EdgeTree& a, const EdgeTree& b)
{
    return a.AnyPair(b, [&](std::uint32_t edge, std::uint32_t other) {
        const PlanePoint& p = a.Begin(edge);
        const PlanePoint& q = a.End(edge);
        const PlanePoint& r = b.Begin(other);
        const PlanePoint& s = b.End(other);
        return Orientation(p, q, r) * Orientation(p, q, s) < 0 &&
               Orientation(r, s, p) * Orientation(r, s, q) < 0;
    });
}

class Pairs
{
public:
    Pairs(const RingPoints& rings, CrossingRule rule) : _rings(rings), _rule(rule)
    {
        _trees.reserve(rings.NumRings());
        _regions.reserve(rings.NumRings());
        for (std::size_t ring = 0; ring < rings.NumRings(); ++ring) {
            _trees.emplace_back(rings.Ring(ring), true);
            _regions.push_back(_RegionOf(rings.Ring(ring)));
        }
    }

    [[nodiscard]] bool IsAround(std::uint32_t outer, std::uint32_t inner) const
    {
        if (_trees[outer].NumEdges() == 0 || _trees[inner].NumEdges() == 0 ||
            !_trees[outer].Bounds().Meets(_trees[inner].Bounds()))
            return false;
        // Where neither rim crosses the other, one place within decides whether one ring is around
        // the other, and the areas decide which.
        const double outerArea = _regions[outer].area;
        const double innerArea = _regions[inner].area;
        const bool isLarger = outerArea != innerArea ? outerArea > innerArea : outer < inner;
        if (!isLarger)
            return false;
        if (!DoCross(_trees[outer], _trees[inner]))
            return _LiesIn(outer, inner);
        return _rule == CrossingRule::WhenMostPointsDo && _LiesMostlyIn(outer, inner);
    }

private:
    struct Region
    {
        double area = 0.0;
        /// In the middle of some triangle of the region.
        std::optional<PlanePoint> place;
    };

    static Region _RegionOf(std::span<const PlanePoint> places)
    {
        Region region;
        RingPoints alone;
        alone.points.assign(places.begin(), places.end());
        alone.starts.push_back(static_cast<std::uint32_t>(places.size()));
        std::vector<IndexTriangle> triangles;
        const auto doubledArea = [](PlanePoint a, PlanePoint b, const PlanePoint& origin) {
            a -= origin;
            b -= origin;
            return a.x * b.y - a.y * b.x;
        };
        if (Triangulate(alone, triangles)) {
            for (const auto& [a, b, c] : triangles)
                region.area += doubledArea(places[b], places[c], places[a]);
            if (!triangles.empty()) {
                const auto& [a, b, c] = triangles[triangles.size() / 2];
                region.place = (places[a] + places[b] + places[c]) / 3.0;
            }
        } else {
            for (std::size_t i = 1; i + 1 < places.size(); ++i)
                region.area += doubledArea(places[i], places[i + 1], places[0]);
            region.area = std::abs(region.area);
        }
        return region;
    }

    [[nodiscard]] bool _LiesIn(std::uint32_t outer, std::uint32_t inner) const
    {
        if (_regions[inner].place.has_value())
            return PositionIn(_trees[outer], *_regions[inner].place) == Position::Inside;
        // Without area, or crossing itself: the first place that is not on the other rim.
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
    std::vector<EdgeTree> _trees;
    std::vector<Region> _regions;
};

} // namespace

Nesting FindNestingOfCrossing(const RingPoints& rings, CrossingRule rule)
{
    const auto numRings = static_cast<std::uint32_t>(rings.NumRings());
    Nesting nesting;
    nesting.parents.assign(numRings, kNone);
    nesting.orders.assign(numRings, 0);
    const Pairs pairs(rings, rule);
    std::vector<std::vector<std::uint32_t>> around(numRings);
    for (std::uint32_t inner = 0; inner < numRings; ++inner) {
        for (std::uint32_t outer = 0; outer < numRings; ++outer) {
            if (outer != inner && pairs.IsAround(outer, inner))
                around[inner].push_back(outer);
        }
        nesting.orders[inner] = static_cast<std::uint32_t>(around[inner].size());
    }
    // The innermost one has most others around itself.
    for (std::uint32_t ring = 0; ring < numRings; ++ring) {
        const auto innermost = std::max_element(around[ring].begin(), around[ring].end(),
                                                [&](std::uint32_t a, std::uint32_t b) {
                                                    return nesting.orders[a] < nesting.orders[b];
                                                });
        if (innermost != around[ring].end())
            nesting.parents[ring] = *innermost;
    }
    return nesting;
}

} // namespace Norvek::Math::Core
