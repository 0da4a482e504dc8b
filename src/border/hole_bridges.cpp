#include "border/hole_bridges.h"

#include "border/triangulation.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <tuple>
#include <utility>

namespace Norvek::Math::Core
{

namespace
{

constexpr std::uint32_t kNone = PlaneGraph::kNone;

// Sets of rings that are joined with each other (B. A. Galler, M. J. Fisher, An improved
// equivalence algorithm, Communications of the ACM 7, 1964).
class RingSets
{
public:
    explicit RingSets(std::size_t numRings) : _parents(numRings)
    {
        std::iota(_parents.begin(), _parents.end(), 0U);
    }

    [[nodiscard]] std::uint32_t SetOf(std::uint32_t ring)
    {
        while (_parents[ring] != ring)
            ring = _parents[ring] = _parents[_parents[ring]];
        return ring;
    }

    // False when both are in one set already.
    bool Unite(std::uint32_t a, std::uint32_t b)
    {
        a = SetOf(a);
        b = SetOf(b);
        _parents[std::max(a, b)] = std::min(a, b);
        return a != b;
    }

private:
    std::vector<std::uint32_t> _parents;
};

// An edge of a triangle between rings that share no place.
struct Diagonal
{
    std::uint32_t low;
    std::uint32_t high;
    double squaredLength;
    // It has a triangle on one side only: it is part of an edge.
    bool isOnRim;
};

// Those diagonals that join all sets of rings: shortest ones first (J. B. Kruskal, On the shortest
// spanning subtree of a graph, Proceedings of the American Mathematical Society 7, 1956).
class DiagonalTree
{
public:
    DiagonalTree(const RingPoints& rings, const PlaneGraph& graph,
                 const std::vector<IndexTriangle>& triangles)
        : _graph(graph),
          _sets(rings.NumRings()),
          _ringAt(graph.places.size(), kNone)
    {
        for (std::uint32_t ring = 0; ring < rings.NumRings(); ++ring) {
            for (std::uint32_t i = rings.starts[ring]; i < rings.starts[ring + 1]; ++i) {
                std::uint32_t& ringAt = _ringAt[graph.placeOf[i]];
                if (ringAt == kNone)
                    ringAt = ring;
                _sets.Unite(ring, ringAt);
            }
        }
        _Collect(triangles);
        std::sort(_diagonals.begin(), _diagonals.end(), [](const Diagonal& a, const Diagonal& b) {
            return std::tie(a.isOnRim, a.squaredLength, a.low, a.high) <
                   std::tie(b.isOnRim, b.squaredLength, b.low, b.high);
        });
        std::erase_if(_diagonals, [&](const Diagonal& diagonal) {
            return !_sets.Unite(_ringAt[diagonal.low], _ringAt[diagonal.high]);
        });
    }

    [[nodiscard]] const std::vector<Diagonal>& Diagonals() const
    {
        return _diagonals;
    }

private:
    void _Collect(const std::vector<IndexTriangle>& triangles)
    {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> sides;
        for (const IndexTriangle& triangle : triangles) {
            for (std::size_t i = 0; i < 3; ++i) {
                const std::uint32_t a = _graph.placeOf[triangle[i]];
                const std::uint32_t b = _graph.placeOf[triangle[(i + 1) % 3]];
                if (_sets.SetOf(_ringAt[a]) != _sets.SetOf(_ringAt[b]))
                    sides.emplace_back(std::min(a, b), std::max(a, b));
            }
        }
        std::sort(sides.begin(), sides.end());
        for (auto side = sides.begin(); side != sides.end(); ++side) {
            const bool isTwofold = side + 1 != sides.end() && side[1] == *side;
            const PlanePoint offset = _graph.places[side->second] - _graph.places[side->first];
            _diagonals.push_back({side->first, side->second, offset.LengthSquared(), !isTwofold});
            side += isTwofold ? 1 : 0;
        }
    }

    const PlaneGraph& _graph;
    RingSets _sets;
    // One of the rings at each place.
    std::vector<std::uint32_t> _ringAt;
    std::vector<Diagonal> _diagonals;
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
          _isDone(graph.places.size(), false),
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
    }

    // Joins what can be reached from ring 0 over shared places and the diagonals.
    [[nodiscard]] std::vector<Bridge> Join(const std::vector<Diagonal>& diagonals)
    {
        for (const Diagonal& diagonal : diagonals) {
            _partners.emplace_back(diagonal.low, diagonal.high);
            _partners.emplace_back(diagonal.high, diagonal.low);
        }
        std::sort(_partners.begin(), _partners.end());
        _isJoined[0] = true;
        _waiting.push_back(0);
        while (!_waiting.empty()) {
            const std::uint32_t ring = _waiting.back();
            _waiting.pop_back();
            for (std::uint32_t i = _rings.starts[ring]; i < _rings.starts[ring + 1]; ++i)
                _JoinOthers(_graph.placeOf[i]);
        }
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
        _waiting.push_back(bridge.ring);
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

    // Across a diagonal from a place of the outline.
    void _JoinAcross(std::uint32_t place, std::uint32_t partner)
    {
        const std::uint32_t ring = _nodes[_firstAt[partner]].ring;
        if (_isJoined[ring])
            return;
        const std::uint32_t from = *_FindCorner(_CornersAt(partner, ring), partner, place, true);
        const std::uint32_t to = *_FindCorner(_CornersAt(place, kNone), place, partner, true);
        _Join({ring, from, to});
    }

    // Joins the rings at a place of the outline, and those at the other ends of its diagonals.
    void _JoinOthers(std::uint32_t place)
    {
        if (_isDone[place])
            return;
        _isDone[place] = true;
        for (std::uint32_t node = _firstAt[place]; node != kNone; node = _nodes[node].nextAtPlace) {
            if (!_isJoined[_nodes[node].ring])
                _JoinAt(_nodes[node].ring, place);
        }
        auto partner = std::lower_bound(_partners.begin(), _partners.end(), std::pair(place, 0U));
        for (; partner != _partners.end() && partner->first == place; ++partner)
            _JoinAcross(place, partner->second);
    }

    const RingPoints& _rings;
    const PlaneGraph& _graph;
    std::vector<Node> _nodes;
    // Heads of the lists of nodes at each place.
    std::vector<std::uint32_t> _firstAt;
    // Whether all that a place leads to is joined.
    std::vector<bool> _isDone;
    std::vector<bool> _isJoined;
    // Pairs of places, both ways, in ascending order.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> _partners;
    // Joined rings whose places are to be gone through.
    std::vector<std::uint32_t> _waiting;
    std::vector<Bridge> _bridges;
};

} // namespace

std::vector<Bridge> FindBridges(const RingPoints& rings)
{
    PlaneGraph graph(rings);
    std::vector<IndexTriangle> triangles;
    if (!Triangulate(graph, triangles))
        return {};
    const DiagonalTree tree(rings, graph, triangles);
    return Outline(rings, graph).Join(tree.Diagonals());
}

} // namespace Norvek::Math::Core
