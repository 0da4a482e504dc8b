#pragma once

#include "border/plane_graph.h"
#include "border/sweep_status.h"

#include <algorithm>
#include <vector>

namespace Norvek::Math::Core
{

/// Moves an upright line from left to right over the edges of a graph, place by place, and keeps
/// the edges that it meets in order from bottom to top. Of places with the same x the lower one
/// comes first, as if the line leaned a little.
///
/// A place that lies inside an edge cuts it: the part on its right begins there. No edges may cross
/// otherwise; where two do, the sweep ends (M. I. Shamos, D. Hoey, Geometric intersection problems,
/// FOCS 1976). All decisions are exact.
///
/// At every place the job is told what happens there, through
///
///     bool Pass(std::uint32_t place, std::uint32_t below,
///               const std::vector<std::uint32_t>& ended, std::vector<std::uint32_t>& outgoing);
///
/// which returns whether to go on.
/// `below` is the edge next below the place (`kNone` for none); `ended` are the edges that end or
/// are cut there, from bottom to top; `outgoing` are those that begin there, by direction from
/// bottom to top and, where directions are the same, the shorter ones first. The job may take out
/// edges that coincide with others and bring them into another order.
template <class Job>
class PlaneSweep
{
public:
    PlaneSweep(PlaneGraph& graph, Job& job) : _graph(graph), _job(job), _status(graph.edges.size())
    {}

    /// Runs over all places. False as soon as two edges are found to cross or the job gives up.
    bool Run()
    {
        const auto numPlaces = static_cast<std::uint32_t>(_graph.places.size());
        for (std::uint32_t place = 0; place < numPlaces; ++place) {
            if (!_Visit(place))
                return false;
        }
        return true;
    }

private:
    static constexpr std::uint32_t kNone = SweepStatus::kNone;

    bool _Visit(std::uint32_t place)
    {
        _CollectOutgoing(place);
        const std::uint32_t below = _CollectEnded(place);
        const bool isCutting = _CutAt(place);
        if (_outgoing.size() > 1)
            _SortByDirection(place);
        if (!_job.Pass(place, below, _ended, _outgoing))
            return false;
        const std::uint32_t last = _UpdateStatus(below, isCutting);
        const std::uint32_t above = _status.Next(last);
        if (_outgoing.empty())
            return !_DoCrossAhead(below, above);
        return !_DoCrossAhead(below, _outgoing.front()) && !_DoCrossAhead(last, above);
    }

    void _CollectOutgoing(std::uint32_t place)
    {
        _outgoing.clear();
        for (std::uint32_t edge = _graph.firstOutgoing[place]; edge != kNone;
             edge = _graph.edges[edge].nextOutgoing)
        {
            // An edge that has been cut since begins elsewhere.
            if (_graph.edges[edge].isAlive && _graph.edges[edge].left == place)
                _outgoing.push_back(edge);
        }
    }

    [[nodiscard]] bool _Holds(std::uint32_t edge, std::uint32_t place) const
    {
        return _graph.edges[edge].right == place || _graph.SideOf(_graph.edges[edge], place) == 0;
    }

    // The edges of the line that hold the place lie side by side. Returns the one below them.
    std::uint32_t _CollectEnded(std::uint32_t place)
    {
        _ended.clear();
        std::uint32_t edge = _graph.firstIncoming[place];
        while (edge != kNone && !_graph.edges[edge].isAlive)
            edge = _graph.edges[edge].nextIncoming;
        if (edge == kNone) {
            edge = _status.FirstWhereNot(
                [&](std::uint32_t e) { return _graph.SideOf(_graph.edges[e], place) > 0; });
        } else {
            while (_status.Previous(edge) != kNone && _Holds(_status.Previous(edge), place))
                edge = _status.Previous(edge);
        }
        const std::uint32_t below = _status.Previous(edge);
        for (; edge != kNone && _Holds(edge, place); edge = _status.Next(edge))
            _ended.push_back(edge);
        return below;
    }

    bool _CutAt(std::uint32_t place)
    {
        bool isCutting = false;
        for (const std::uint32_t edge : _ended) {
            if (_graph.edges[edge].right != place) {
                _graph.edges[edge].left = place;
                _outgoing.push_back(edge);
                isCutting = true;
            }
        }
        return isCutting;
    }

    void _SortByDirection(std::uint32_t place)
    {
        const PlanePoint& from = _graph.places[place];
        std::sort(_outgoing.begin(), _outgoing.end(), [&](std::uint32_t a, std::uint32_t b) {
            const std::uint32_t endA = _graph.edges[a].right;
            const std::uint32_t endB = _graph.edges[b].right;
            const int turn = Orientation(from, _graph.places[endA], _graph.places[endB]);
            return turn != 0 ? turn > 0 : endA < endB;
        });
    }

    // Returns the last edge that was put in, `below` when there is none.
    std::uint32_t _UpdateStatus(std::uint32_t below, bool isCutting)
    {
        // Edges that were cut are among the ended and the outgoing ones; otherwise those that begin
        // take the places of those that end, which costs no search.
        const std::size_t numReplaced = isCutting ? 0 : std::min(_ended.size(), _outgoing.size());
        std::uint32_t last = below;
        for (std::size_t i = 0; i < numReplaced; ++i) {
            _status.Replace(_ended[i], _outgoing[i]);
            last = _outgoing[i];
        }
        for (std::size_t i = numReplaced; i < _ended.size(); ++i)
            _status.Remove(_ended[i]);
        for (std::size_t i = numReplaced; i < _outgoing.size(); ++i) {
            _status.InsertBehind(last, _outgoing[i]);
            last = _outgoing[i];
        }
        return last;
    }

    // Neighbours cross when the end of one of them lies on the wrong side of the other.
    [[nodiscard]] bool _DoCrossAhead(std::uint32_t lower, std::uint32_t upper) const
    {
        if (lower == kNone || upper == kNone)
            return false;
        const SweepEdge& a = _graph.edges[lower];
        const SweepEdge& b = _graph.edges[upper];
        if (a.right == b.right)
            return false;
        return a.right < b.right ? _graph.SideOf(b, a.right) > 0 : _graph.SideOf(a, b.right) < 0;
    }

    PlaneGraph& _graph;
    Job& _job;
    SweepStatus _status;
    std::vector<std::uint32_t> _ended;
    std::vector<std::uint32_t> _outgoing;
};

} // namespace Norvek::Math::Core
