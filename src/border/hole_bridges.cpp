#include "border/hole_bridges.h"

#include "border/plane_sweep.h"

#include <utility>

namespace Norvek::Math::Core
{

namespace
{

constexpr std::uint32_t kNone = PlaneGraph::kNone;

// Finds for every place the one before it in the gap in which it lies.
class PartnerJob
{
public:
    explicit PartnerJob(const PlaneGraph& graph)
        : _graph(graph),
          _newest(graph.edges.size() + 1, kNone),
          _partners(graph.places.size(), kNone)
    {}

    bool Pass(std::uint32_t place, std::uint32_t below, const std::vector<std::uint32_t>& ended,
              const std::vector<std::uint32_t>& outgoing)
    {
        _partners[place] = _Partner(below, ended, outgoing);
        _NewestAbove(below) = place;
        for (const std::uint32_t edge : outgoing)
            _NewestAbove(edge) = place;
        return true;
    }

    [[nodiscard]] const std::vector<std::uint32_t>& Partners() const
    {
        return _partners;
    }

private:
    // The newest place of the gap above the edge; below all edges for none.
    std::uint32_t& _NewestAbove(std::uint32_t edge)
    {
        return _newest[edge == kNone ? _graph.edges.size() : edge];
    }

    // Of use for left ends of rings: edges that end there, all on one line, run through the place
    // and part two gaps.
    std::uint32_t _Partner(std::uint32_t below, const std::vector<std::uint32_t>& ended,
                           const std::vector<std::uint32_t>& outgoing)
    {
        const std::uint32_t lower = _NewestAbove(below);
        if (ended.empty())
            return lower;
        const std::uint32_t upper = _NewestAbove(ended.back());
        for (const std::uint32_t edge : outgoing) {
            const int side = _graph.SideOf(_graph.edges[ended.front()], _graph.edges[edge].right);
            if (side != 0)
                return side < 0 ? lower : upper;
        }
        return upper;
    }

    const PlaneGraph& _graph;
    std::vector<std::uint32_t> _newest;
    std::vector<std::uint32_t> _partners;
};

// Directions from a place, counter-clockwise from a given one.
class DirectionOrder
{
public:
    DirectionOrder(const PlaneGraph& graph, std::uint32_t from, std::uint32_t towards)
        : _graph(graph),
          _from(from),
          _towards(towards)
    {}

    [[nodiscard]] bool IsBefore(std::uint32_t a, std::uint32_t b) const
    {
        const int sectorA = _Sector(a);
        const int sectorB = _Sector(b);
        return sectorA != sectorB ? sectorA < sectorB : _Turn(a, b) > 0;
    }

    [[nodiscard]] bool AreSame(std::uint32_t a, std::uint32_t b) const
    {
        return !IsBefore(a, b) && !IsBefore(b, a);
    }

    [[nodiscard]] bool IsFirst(std::uint32_t a) const
    {
        return _Sector(a) == 0;
    }

private:
    [[nodiscard]] int _Turn(std::uint32_t a, std::uint32_t b) const
    {
        return Orientation(_graph.places[_from], _graph.places[a], _graph.places[b]);
    }

    // 0 and 2 are the given direction and its opposite, 1 and 3 what lies between. Places on one
    // line follow each other as their numbers do.
    [[nodiscard]] int _Sector(std::uint32_t a) const
    {
        const int turn = _Turn(_towards, a);
        if (turn != 0)
            return turn > 0 ? 1 : 3;
        return (a > _from) == (_towards > _from) ? 0 : 2;
    }

    const PlaneGraph& _graph;
    std::uint32_t _from;
    std::uint32_t _towards;
};

class Outline
{
public:
    Outline(const RingPoints& rings, const PlaneGraph& graph)
        : _rings(rings),
          _graph(graph),
          _firstAt(graph.places.size(), kNone),
          _isSpread(graph.places.size(), false),
          _isJoined(rings.NumRings(), false)
    {
        _nodes.reserve(rings.points.size() + 2 * rings.NumRings());
        for (std::uint32_t ring = 0; ring < rings.NumRings(); ++ring) {
            const std::uint32_t begin = rings.starts[ring];
            const std::uint32_t end = rings.starts[ring + 1];
            for (std::uint32_t i = begin; i < end; ++i)
                _AddNode({i == begin ? end - 1 : i - 1, i + 1 == end ? begin : i + 1, kNone, ring,
                          graph.placeOf[i]});
        }
        _isJoined[0] = true;
        _Spread(0);
    }

    [[nodiscard]] std::uint32_t FirstRingAt(std::uint32_t place) const
    {
        return _nodes[_firstAt[place]].ring;
    }

    [[nodiscard]] bool IsJoined(std::uint32_t ring) const
    {
        return _isJoined[ring];
    }

    // Joins the ring between two different places, and then all rings that share places with it.
    void JoinAcross(std::uint32_t ring, std::uint32_t place, std::uint32_t partner)
    {
        const std::uint32_t from = *_FindCorner(_CornersAt(place, ring), place, partner, true);
        const std::uint32_t to = *_FindCorner(_CornersAt(partner, kNone), partner, place, true);
        _Join({ring, from, to});
        _Spread(ring);
    }

    [[nodiscard]] std::vector<Bridge> TakeBridges()
    {
        return std::move(_bridges);
    }

private:
    struct Node
    {
        std::uint32_t previous;
        std::uint32_t next;
        std::uint32_t nextAtPlace;
        std::uint32_t ring;
        std::uint32_t place;
    };

    // A node where the walk arrives from one place and leaves for another one.
    struct Corner
    {
        std::uint32_t node;
        std::uint32_t before;
        std::uint32_t behind;
    };

    std::uint32_t _AddNode(Node node)
    {
        const auto index = static_cast<std::uint32_t>(_nodes.size());
        node.nextAtPlace = std::exchange(_firstAt[node.place], index);
        _nodes.push_back(node);
        return index;
    }

    // The corners of a ring, of the outline for none. Points in a row at the place are one.
    [[nodiscard]] std::vector<Corner> _CornersAt(std::uint32_t place, std::uint32_t ring) const
    {
        std::vector<Corner> corners;
        std::uint32_t any = kNone;
        for (std::uint32_t i = _firstAt[place]; i != kNone; i = _nodes[i].nextAtPlace) {
            const Node& node = _nodes[i];
            if (ring == kNone ? !_isJoined[node.ring] : node.ring != ring)
                continue;
            any = i;
            const std::uint32_t before = _nodes[node.previous].place;
            if (before == place)
                continue;
            std::uint32_t behind = node.next;
            while (_nodes[behind].place == place)
                behind = _nodes[behind].next;
            corners.push_back({i, before, _nodes[behind].place});
        }
        // All of it lies at the place.
        if (corners.empty())
            corners.push_back({any, place, place});
        return corners;
    }

    // The corner that faces a direction: no edge of the others lies between it and its own edges.
    // Where an edge has this direction, none or, as asked, a corner with that edge.
    [[nodiscard]] std::optional<std::uint32_t> _FindCorner(const std::vector<Corner>& corners,
                                                           std::uint32_t place,
                                                           std::uint32_t towards,
                                                           bool mayRunAlong) const
    {
        if (corners.front().before == place || (mayRunAlong && corners.size() == 1))
            return corners.front().node;
        const DirectionOrder order(_graph, place, towards);
        std::uint32_t first = corners.front().before;
        std::uint32_t last = first;
        for (const Corner& corner : corners) {
            for (const std::uint32_t end : {corner.before, corner.behind}) {
                if (order.IsBefore(end, first))
                    first = end;
                if (order.IsBefore(last, end))
                    last = end;
            }
        }
        const bool isAlong = order.IsFirst(first);
        if (isAlong && !mayRunAlong)
            return std::nullopt;
        for (const Corner& corner : corners) {
            const auto has = [&](std::uint32_t end) {
                return order.AreSame(corner.before, end) || order.AreSame(corner.behind, end);
            };
            if (has(first) && (isAlong || has(last)))
                return corner.node;
        }
        return corners.front().node;
    }

    void _Join(const Bridge& bridge)
    {
        const std::uint32_t last = _nodes[bridge.from].previous;
        const std::uint32_t behind = _nodes[bridge.to].next;
        const std::uint32_t fromCopy =
            _AddNode({last, 0, kNone, bridge.ring, _nodes[bridge.from].place});
        const std::uint32_t toCopy =
            _AddNode({fromCopy, behind, kNone, _nodes[bridge.to].ring, _nodes[bridge.to].place});
        _nodes[fromCopy].next = toCopy;
        _nodes[last].next = fromCopy;
        _nodes[behind].previous = toCopy;
        _nodes[bridge.from].previous = bridge.to;
        _nodes[bridge.to].next = bridge.from;
        _isJoined[bridge.ring] = true;
        _bridges.push_back(bridge);
    }

    void _JoinAt(std::uint32_t ring, std::uint32_t place)
    {
        const auto own = _CornersAt(place, ring);
        const auto outline = _CornersAt(place, kNone);
        auto to = _FindCorner(outline, place, own.front().behind, false);
        if (!to.has_value())
            to = _FindCorner(outline, place, own.front().before, false);
        if (!to.has_value())
            to = _FindCorner(outline, place, own.front().behind, true);
        std::uint32_t from = own.front().node;
        for (const Corner& corner : outline) {
            if (corner.node == *to && corner.behind != place)
                from = *_FindCorner(own, place, corner.behind, true);
        }
        _Join({ring, from, *to});
    }

    // Joins what shares places with a joined ring, and so on.
    void _Spread(std::uint32_t ring)
    {
        std::vector<std::uint32_t> waiting{ring};
        while (!waiting.empty()) {
            ring = waiting.back();
            waiting.pop_back();
            for (std::uint32_t i = _rings.starts[ring]; i < _rings.starts[ring + 1]; ++i) {
                const std::uint32_t place = _graph.placeOf[i];
                if (_isSpread[place])
                    continue;
                _isSpread[place] = true;
                for (std::uint32_t node = _firstAt[place]; node != kNone;
                     node = _nodes[node].nextAtPlace) {
                    const std::uint32_t other = _nodes[node].ring;
                    if (_isJoined[other])
                        continue;
                    _JoinAt(other, place);
                    waiting.push_back(other);
                }
            }
        }
    }

    const RingPoints& _rings;
    const PlaneGraph& _graph;
    std::vector<Node> _nodes;
    // Heads of the lists of nodes at each place.
    std::vector<std::uint32_t> _firstAt;
    // Whether all rings at the place are joined.
    std::vector<bool> _isSpread;
    std::vector<bool> _isJoined;
    std::vector<Bridge> _bridges;
};

} // namespace

std::optional<std::vector<Bridge>> FindBridges(const RingPoints& rings)
{
    PlaneGraph graph(rings);
    PartnerJob job(graph);
    if (!PlaneSweep(graph, job).Run())
        return std::nullopt;
    Outline outline(rings, graph);
    // From left to right: what a left end is joined to has been joined before.
    for (std::uint32_t place = 0; place < graph.places.size(); ++place) {
        const std::uint32_t ring = outline.FirstRingAt(place);
        if (outline.IsJoined(ring))
            continue;
        // Nothing lies before the first place of all.
        const std::uint32_t partner = job.Partners()[place];
        outline.JoinAcross(ring, place, partner == kNone ? graph.placeOf[0] : partner);
    }
    return outline.TakeBridges();
}

} // namespace Norvek::Math::Core
