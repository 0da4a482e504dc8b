#include "border/ring_crossings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

namespace Norvek::Math::Core
{

namespace
{

// Where two edges meet, as parameters along each.
struct Meeting
{
    double first;
    double second;
    PlanePoint place;
};

// An edge with its end, which counts as part of it at the end of an open ring only.
struct Segment
{
    PlanePoint begin;
    PlanePoint end;
    bool hasEnd;

    Segment(const EdgeTree& ring, std::uint32_t edge)
        : begin(ring.Begin(edge)),
          end(ring.End(edge)),
          hasEnd(!ring.IsClosed() && begin != end && _IsLast(ring, edge))
    {}

private:
    // Edges without length may follow.
    static bool _IsLast(const EdgeTree& ring, std::uint32_t edge)
    {
        do
            ++edge;
        while (edge < ring.NumEdges() && ring.Begin(edge) == ring.End(edge));
        return edge == ring.NumEdges();
    }
};

// A parameter of a place between the ends, which rounding must not bring there.
double BetweenEnds(double parameter)
{
    return std::clamp(parameter, std::numeric_limits<double>::min(), 1.0 - 0x1p-53);
}

// Along the longer side of the edge's box.
double ParameterOf(const PlanePoint& place, const Segment& segment)
{
    if (place == segment.begin)
        return 0.0;
    if (place == segment.end)
        return 1.0;
    const PlanePoint d = segment.end - segment.begin;
    return BetweenEnds(std::abs(d.x) >= std::abs(d.y) ? (place.x - segment.begin.x) / d.x
                                                      : (place.y - segment.begin.y) / d.y);
}

// Twice the distance of the place from the line, times the length of the edge.
double Offset(const PlanePoint& place, const Segment& line)
{
    const PlanePoint d = line.end - line.begin;
    const PlanePoint to = place - line.begin;
    return std::abs(d.x * to.y - d.y * to.x);
}

// The share of the way from one side of the line to the other; the offsets have opposite signs.
double CrossingParameter(const Segment& edge, const Segment& line)
{
    const double before = Offset(edge.begin, line);
    const double behind = Offset(edge.end, line);
    return before + behind > 0.0 ? before / (before + behind) : 0.5;
}

// Calls `add` for every meeting: the crossing, or every end of one edge that lies on the other,
// once each.
template <class Add>
void FindMeetings(const Segment& a, const Segment& b, const Add& add)
{
    if (a.begin == a.end || b.begin == b.end)
        return;
    if (DoCross(a.begin, a.end, b.begin, b.end)) {
        const double t = CrossingParameter(a, b);
        const PlanePoint place = a.begin + t * (a.end - a.begin);
        add(Meeting{BetweenEnds(t), BetweenEnds(CrossingParameter(b, a)), place});
        return;
    }
    const auto holds = [](const Segment& segment, const PlanePoint& place) {
        return LiesOn(place, segment.begin, segment.end) &&
               (segment.hasEnd || !(place == segment.end));
    };
    if (holds(b, a.begin))
        add(Meeting{0.0, ParameterOf(a.begin, b), a.begin});
    if (a.hasEnd && holds(b, a.end))
        add(Meeting{1.0, ParameterOf(a.end, b), a.end});
    const auto isEndOfA = [&a](const PlanePoint& place) {
        return place == a.begin || place == a.end;
    };
    if (holds(a, b.begin) && !isEndOfA(b.begin))
        add(Meeting{ParameterOf(b.begin, a), 0.0, b.begin});
    if (b.hasEnd && holds(a, b.end) && !isEndOfA(b.end))
        add(Meeting{ParameterOf(b.end, a), 1.0, b.end});
}

} // namespace

std::vector<std::vector<MIntersectionValue>> FindCrossings(const std::vector<EdgeTree>& rings,
                                                           CrossingChoice choice)
{
    std::vector<std::vector<MIntersectionValue>> values(rings.size());
    // Both edges get the meeting; pairs that share a vertex of the ring do not meet there, since
    // the earlier edge does not hold its end.
    const auto collect = [&](std::uint32_t i, std::uint32_t j) {
        return [&, i, j](std::uint32_t edge, std::uint32_t other) {
            const Segment a(rings[i], edge);
            const Segment b(rings[j], other);
            FindMeetings(a, b, [&](const Meeting& m) {
                values[i].push_back({edge, m.first, j, other, m.second, m.place});
                values[j].push_back({other, m.second, i, edge, m.first, m.place});
            });
            return false;
        };
    };
    for (std::uint32_t i = 0; choice.withItself && i < rings.size(); ++i)
        rings[i].AnyOwnPair(collect(i, i));
    if (choice.withOthers) {
        ForEachMeetingPair(rings, [&](std::uint32_t i, std::uint32_t j) {
            rings[i].AnyPair(rings[j], collect(i, j));
        });
    }
    const auto key = [](const MIntersectionValue& v) {
        return std::tie(v.edge, v.parameter, v.otherContour, v.otherEdge, v.otherParameter);
    };
    for (auto& list : values) {
        std::sort(list.begin(), list.end(),
                  [&](const MIntersectionValue& a, const MIntersectionValue& b) {
                      return key(a) < key(b);
                  });
    }
    return values;
}

bool DoesConnectionMeet(const PlanePoint& p, const PlanePoint& q, const PlanePoint& r,
                        const PlanePoint& s, ConnectionRule rule)
{
    if (p == q || !PlaneBox::Of(p, q).Meets(PlaneBox::Of(r, s)))
        return false;
    const int sideR = Orientation(p, q, r);
    const int sideS = Orientation(p, q, s);
    const auto isStrictlyBetween = [&](const PlanePoint& place) {
        return !(place == p) && !(place == q) && PlaneBox::Of(p, q).Meets({place, place});
    };
    if ((sideR == 0 && isStrictlyBetween(r)) || (sideS == 0 && isStrictlyBetween(s)))
        return true;
    if (sideR == 0 && sideS == 0)
        return !rule.mayRunAlong && !(r == s) && LiesOn(p, r, s) && LiesOn(q, r, s);
    return sideR * sideS < 0 && Orientation(r, s, p) * Orientation(r, s, q) < 0;
}

} // namespace Norvek::Math::Core
