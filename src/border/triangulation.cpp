// The region is cut into pieces that every upright line meets in one segment, and each piece is
// triangulated while it grows (M. R. Garey, D. S. Johnson, F. P. Preparata, R. E. Tarjan,
// Triangulating a simple polygon, Information Processing Letters 7, 1978).
//
// Notation: a gap is what lies between two neighbouring edges of the sweep line. A gap of the
// region holds one piece or, from the place where two gaps have met to the next place, two, the
// lower and the upper one. It is kept with the edge below it.

#include "border/triangulation.h"

#include "border/plane_sweep.h"

namespace Norvek::Math::Core
{

namespace
{

constexpr std::uint32_t kNone = PlaneGraph::kNone;

enum class Chain : std::uint8_t
{
    Lower,
    Upper
};

// A piece that grows to the right: the places that are still to be joined, newest first. They form
// a chain, lower or upper, that bends towards the inside of the piece; the oldest place
// is the end of the opposite chain.
struct Piece
{
    std::uint32_t top;
    Chain chain;
};

struct Cell
{
    std::uint32_t place;
    std::uint32_t previous;
};

class Pieces
{
public:
    Pieces(const PlaneGraph& graph, std::vector<IndexTriangle>& triangles)
        : _graph(graph),
          _triangles(triangles)
    {
        _cells.reserve(2 * graph.places.size());
    }

    // A new piece whose leftmost place is given.
    std::uint32_t Begin(std::uint32_t place)
    {
        _pieces.push_back({_NewCell(place, kNone), Chain::Lower});
        return static_cast<std::uint32_t>(_pieces.size() - 1);
    }

    // The piece grows by a place on one of its chains.
    void Add(std::uint32_t piece, std::uint32_t place, Chain chain)
    {
        Piece& grown = _pieces[piece];
        if (grown.chain == chain) {
            _CutCorners(grown, place);
        } else {
            _JoinAll(grown, place);
            _cells[grown.top].previous = kNone;
        }
        grown.top = _NewCell(place, grown.top);
        grown.chain = chain;
    }

    // The place is the right end of the piece.
    void End(std::uint32_t piece, std::uint32_t place)
    {
        _JoinAll(_pieces[piece], place);
    }

    [[nodiscard]] std::uint32_t NewestPlace(std::uint32_t piece) const
    {
        return _cells[_pieces[piece].top].place;
    }

    [[nodiscard]] Chain NewestChain(std::uint32_t piece) const
    {
        return _pieces[piece].chain;
    }

private:
    std::uint32_t _NewCell(std::uint32_t place, std::uint32_t previous)
    {
        _cells.push_back({place, previous});
        return static_cast<std::uint32_t>(_cells.size() - 1);
    }

    void _Emit(Chain chain, std::uint32_t older, std::uint32_t newer, std::uint32_t place)
    {
        if (chain == Chain::Upper)
            std::swap(older, newer);
        _triangles.push_back({_graph.pointAt[older], _graph.pointAt[newer], _graph.pointAt[place]});
    }

    // Takes off the corners that the new place, on the same chain, makes convex. Straight ones
    // stay.
    void _CutCorners(Piece& piece, std::uint32_t place)
    {
        const int convex = piece.chain == Chain::Lower ? 1 : -1;
        while (_cells[piece.top].previous != kNone) {
            const Cell& newer = _cells[piece.top];
            const std::uint32_t older = _cells[newer.previous].place;
            if (Orientation(_graph.places[older], _graph.places[newer.place],
                            _graph.places[place]) != convex)
                return;
            _Emit(piece.chain, older, newer.place, place);
            piece.top = newer.previous;
        }
    }

    // The place sees the whole chain from the other side.
    void _JoinAll(const Piece& piece, std::uint32_t place)
    {
        for (std::uint32_t cell = piece.top; _cells[cell].previous != kNone;
             cell = _cells[cell].previous)
            _Emit(piece.chain, _cells[_cells[cell].previous].place, _cells[cell].place, place);
    }

    const PlaneGraph& _graph;
    std::vector<IndexTriangle>& _triangles;
    std::vector<Piece> _pieces;
    std::vector<Cell> _cells;
};

// What lies above an edge of the sweep line.
struct Gap
{
    std::uint32_t lower = kNone;
    std::uint32_t upper = kNone;

    [[nodiscard]] bool IsInside() const
    {
        return lower != kNone;
    }
};

class TriangulationJob
{
public:
    TriangulationJob(PlaneGraph& graph, std::vector<IndexTriangle>& triangles)
        : _graph(graph),
          _pieces(graph, triangles),
          _gaps(graph.edges.size())
    {}

    bool Pass(std::uint32_t place, std::uint32_t below, const std::vector<std::uint32_t>& ended,
              std::vector<std::uint32_t>& outgoing)
    {
        _CancelPairs(place, outgoing);
        Gap lowest = below == kNone ? Gap() : _gaps[below];
        if (ended.empty() && outgoing.empty())
            return true;
        Gap highest;
        if (ended.empty()) {
            highest = _Split(lowest, place);
        } else {
            highest = _gaps[ended.back()];
            _TakeFromBelow(lowest, place);
            for (std::size_t i = 0; i + 1 < ended.size(); ++i)
                _End(_gaps[ended[i]], place);
            _TakeFromAbove(highest, place);
        }
        if (outgoing.empty()) {
            // Two gaps have met; each keeps its piece until the next place shows how to go on.
            lowest.upper = highest.upper;
        } else {
            bool isInside = lowest.IsInside();
            for (const std::uint32_t edge : outgoing) {
                isInside = !isInside;
                _gaps[edge] = Gap();
                if (isInside && edge != outgoing.back())
                    _gaps[edge].lower = _gaps[edge].upper = _pieces.Begin(place);
            }
            _gaps[outgoing.back()] = highest;
        }
        if (below != kNone)
            _gaps[below] = lowest;
        return true;
    }

private:
    // Of edges that coincide, pairs bound nothing: the shorter one goes, and the longer one begins
    // where that one ends.
    void _CancelPairs(std::uint32_t place, std::vector<std::uint32_t>& outgoing)
    {
        std::size_t kept = 0;
        for (const std::uint32_t edge : outgoing) {
            if (kept == 0 || !_graph.DoCoincide(place, outgoing[kept - 1], edge)) {
                outgoing[kept++] = edge;
                continue;
            }
            const std::uint32_t shorter = outgoing[--kept];
            const std::uint32_t end = _graph.edges[shorter].right;
            _graph.edges[shorter].isAlive = false;
            if (_graph.edges[edge].right == end)
                _graph.edges[edge].isAlive = false;
            else
                _graph.BeginAt(edge, end);
        }
        outgoing.resize(kept);
    }

    // The place is on the upper side of the gap: a piece on top ends there.
    void _TakeFromBelow(Gap& gap, std::uint32_t place)
    {
        if (!gap.IsInside())
            return;
        if (gap.upper != gap.lower)
            _pieces.End(gap.upper, place);
        gap.upper = gap.lower;
        _pieces.Add(gap.lower, place, Chain::Upper);
    }

    void _TakeFromAbove(Gap& gap, std::uint32_t place)
    {
        if (!gap.IsInside())
            return;
        if (gap.upper != gap.lower)
            _pieces.End(gap.lower, place);
        gap.lower = gap.upper;
        _pieces.Add(gap.upper, place, Chain::Lower);
    }

    void _End(const Gap& gap, std::uint32_t place)
    {
        if (!gap.IsInside())
            return;
        _pieces.End(gap.lower, place);
        if (gap.upper != gap.lower)
            _pieces.End(gap.upper, place);
    }

    // The place lies within the gap and parts it. It is joined to the newest place of the gap,
    // which nothing hides from it. Returns the upper gap; `gap` becomes the lower one.
    Gap _Split(Gap& gap, std::uint32_t place)
    {
        if (!gap.IsInside())
            return {};
        if (gap.upper == gap.lower) {
            const std::uint32_t newest = _pieces.NewestPlace(gap.lower);
            const std::uint32_t added = _pieces.Begin(newest);
            // The old piece goes on at the side away from its newest place.
            (_pieces.NewestChain(gap.lower) == Chain::Lower ? gap.lower : gap.upper) = added;
        }
        const Gap upper{gap.upper, gap.upper};
        _pieces.Add(gap.lower, place, Chain::Upper);
        _pieces.Add(gap.upper, place, Chain::Lower);
        gap.upper = gap.lower;
        return upper;
    }

    PlaneGraph& _graph;
    Pieces _pieces;
    std::vector<Gap> _gaps;
};

} // namespace

bool Triangulate(const RingPoints& rings, std::vector<IndexTriangle>& triangles)
{
    PlaneGraph graph(rings);
    return Triangulate(graph, triangles);
}

bool Triangulate(PlaneGraph& graph, std::vector<IndexTriangle>& triangles)
{
    triangles.clear();
    triangles.reserve(graph.places.size());
    TriangulationJob job(graph, triangles);
    return PlaneSweep(graph, job).Run();
}

} // namespace Norvek::Math::Core
