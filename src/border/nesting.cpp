// The region above an edge of the sweep line belongs to the edge's ring or, when that ends there,
// to the ring around it. So the lowest edge at a ring's left end knows, from its neighbour below,
// what the ring lies in.
//
// Regions that overlap in part, through vertices at which no edges cross, show at the rims: a ring
// is then entered elsewhere than from the ring around it, or left into a ring that is not around
// it.

#include "border/nesting.h"

#include "border/crossing_nesting.h"
#include "border/plane_sweep.h"
#include "border/ring_area.h"

namespace Norvek::Math::Core
{

namespace
{

constexpr std::uint32_t kNone = PlaneGraph::kNone;

class NestingJob
{
public:
    NestingJob(PlaneGraph& graph, const RingPoints& rings, Nesting& nesting)
        : _graph(graph),
          _areas(rings),
          _nesting(nesting),
          _rings(rings.NumRings()),
          _isInsideAbove(graph.edges.size(), false),
          _flatRings(graph.places.size(), kNone)
    {
        for (std::uint32_t ring = 0; ring < rings.NumRings(); ++ring)
            _EnterLeftEnd(rings, ring);
    }

    // Decides for every edge on which side the inside of its ring lies, and brings edges that
    // coincide into the order in which their rings end and begin. False when regions overlap in
    // part.
    bool Pass(std::uint32_t place, std::uint32_t below, const std::vector<std::uint32_t>& ended,
              std::vector<std::uint32_t>& outgoing)
    {
        std::uint32_t region = _RegionAbove(below);
        for (std::uint32_t ring = _flatRings[place]; ring != kNone; ring = _rings[ring].nextFlat)
            _SetParent(ring, region);
        for (const std::uint32_t edge : ended) {
            State& state = _rings[_graph.edges[edge].ring];
            if (state.seenAt != place) {
                state.seenAt = place;
                state.isInside = !_isInsideAbove[edge];
            }
        }
        _kept.clear();
        for (std::size_t first = 0; first < outgoing.size();) {
            std::size_t end = first + 1;
            while (end < outgoing.size() &&
                   _graph.DoCoincide(place, outgoing[first], outgoing[end]))
                ++end;
            const std::size_t begin = _kept.size();
            for (; first < end; ++first)
                _KeepOrCancel(begin, outgoing[first]);
            _kept.erase(
                std::remove(_kept.begin() + static_cast<std::ptrdiff_t>(begin), _kept.end(), kNone),
                _kept.end());
            if (!_EnterGroup(place, begin, region))
                return false;
        }
        outgoing = _kept;
        return true;
    }

    void ListStrays(const RingPoints& rings)
    {
        for (std::uint32_t ring = 0; ring < rings.NumRings(); ++ring) {
            if (!rings.Ring(ring).empty() && (_rings[ring].isFolded || !_rings[ring].hasBegun))
                _nesting.strays.push_back(ring);
        }
    }

private:
    struct State
    {
        // At the place of the visit: whether the inside of the ring has been entered, from below.
        std::uint32_t seenAt = kNone;
        bool isInside = false;
        bool hasBegun = false;
        bool isFolded = false;
        // Where an edge of the ring was kept last.
        std::size_t keptAt = 0;
        std::uint32_t nextFlat = kNone;
    };

    void _EnterLeftEnd(const RingPoints& rings, std::uint32_t ring)
    {
        if (rings.starts[ring] == rings.starts[ring + 1])
            return;
        std::uint32_t leftmost = kNone;
        for (std::uint32_t i = rings.starts[ring]; i < rings.starts[ring + 1]; ++i)
            leftmost = std::min(leftmost, _graph.placeOf[i]);
        _rings[ring].nextFlat = _flatRings[leftmost];
        _flatRings[leftmost] = ring;
    }

    // Two edges of one ring on top of each other bound nothing; the longer one goes on behind.
    void _KeepOrCancel(std::size_t begin, std::uint32_t edge)
    {
        SweepEdge& added = _graph.edges[edge];
        std::size_t& keptAt = _rings[added.ring].keptAt;
        const bool isSecond = keptAt >= begin && keptAt < _kept.size() && _kept[keptAt] != kNone &&
                              _graph.edges[_kept[keptAt]].ring == added.ring;
        if (!isSecond) {
            keptAt = _kept.size();
            _kept.push_back(edge);
            return;
        }
        _rings[added.ring].isFolded = true;
        SweepEdge& shorter = _graph.edges[_kept[keptAt]];
        shorter.isAlive = false;
        if (added.right == shorter.right)
            added.isAlive = false;
        else
            _graph.BeginAt(edge, shorter.right);
        _kept[keptAt] = kNone;
    }

    // Edges that coincide, from `begin` on, above `region`, which becomes the region above them.
    // False when a ring is entered or left elsewhere than it may be.
    bool _EnterGroup(std::uint32_t place, std::size_t begin, std::uint32_t& region)
    {
        for (std::size_t i = begin; i < _kept.size(); ++i) {
            const std::uint32_t ring = _graph.edges[_kept[i]].ring;
            State& state = _rings[ring];
            if (state.seenAt != place) {
                state.seenAt = place;
                state.isInside = state.hasBegun && _IsAround(ring, region);
            }
            state.isInside = !state.isInside;
            _isInsideAbove[_kept[i]] = state.isInside;
        }
        const auto first = _kept.begin() + static_cast<std::ptrdiff_t>(begin);
        std::sort(first, _kept.end(),
                  [&](std::uint32_t a, std::uint32_t b) { return _EndsOrBeginsBefore(a, b); });
        for (std::size_t i = begin; i < _kept.size(); ++i) {
            const std::uint32_t ring = _graph.edges[_kept[i]].ring;
            if (!_rings[ring].hasBegun) {
                _rings[ring].hasBegun = true;
                _SetParent(ring, region);
            }
            if (region != (_isInsideAbove[_kept[i]] ? _nesting.parents[ring] : ring))
                return false;
            region = _RegionAbove(_kept[i]);
        }
        return true;
    }

    // Rings that end come before rings that begin; inner ones end first, outer ones begin first.
    bool _EndsOrBeginsBefore(std::uint32_t a, std::uint32_t b)
    {
        if (_isInsideAbove[a] != _isInsideAbove[b])
            return _isInsideAbove[b];
        const std::uint32_t ringA = _graph.edges[a].ring;
        const std::uint32_t ringB = _graph.edges[b].ring;
        return _isInsideAbove[a] ? _IsOuter(ringA, ringB) : _IsOuter(ringB, ringA);
    }

    // Of two rings around the same gap. One that reaches farther to the left is around the other;
    // areas are asked, which are rounded, where both begin.
    bool _IsOuter(std::uint32_t a, std::uint32_t b)
    {
        if (_rings[a].hasBegun != _rings[b].hasBegun)
            return _rings[a].hasBegun;
        return _rings[a].hasBegun ? _nesting.orders[a] < _nesting.orders[b] : _areas.IsLarger(a, b);
    }

    [[nodiscard]] std::uint32_t _RegionAbove(std::uint32_t edge) const
    {
        if (edge == kNone)
            return kNone;
        const std::uint32_t ring = _graph.edges[edge].ring;
        return _isInsideAbove[edge] ? ring : _nesting.parents[ring];
    }

    // The rings around a region have smaller orders the farther out they are.
    [[nodiscard]] bool _IsAround(std::uint32_t ring, std::uint32_t region) const
    {
        while (region != kNone && _nesting.orders[region] > _nesting.orders[ring])
            region = _nesting.parents[region];
        return region == ring;
    }

    void _SetParent(std::uint32_t ring, std::uint32_t parent)
    {
        _nesting.parents[ring] = parent;
        _nesting.orders[ring] = parent == kNone ? 0 : _nesting.orders[parent] + 1;
    }

    PlaneGraph& _graph;
    RingAreas _areas;
    Nesting& _nesting;
    std::vector<State> _rings;
    std::vector<bool> _isInsideAbove;
    // The rings whose left end is a place: until edges say more, they lie where that does.
    std::vector<std::uint32_t> _flatRings;
    std::vector<std::uint32_t> _kept;
};

} // namespace

Nesting FindNesting(const RingPoints& rings)
{
    Nesting nesting;
    nesting.parents.assign(rings.NumRings(), kNone);
    nesting.orders.assign(rings.NumRings(), 0);
    PlaneGraph graph(rings);
    NestingJob job(graph, rings, nesting);
    if (!PlaneSweep(graph, job).Run())
        return FindNestingOfCrossing(rings, CrossingRule::Never);
    job.ListStrays(rings);
    return nesting;
}

} // namespace Norvek::Math::Core
