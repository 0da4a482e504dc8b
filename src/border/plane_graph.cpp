#include "border/plane_graph.h"

#include <algorithm>
#include <cmath>

namespace Norvek::Math::Core
{

namespace
{

struct SortedPoint
{
    PlanePoint place;
    std::uint32_t index;

    bool operator<(const SortedPoint& other) const
    {
        if (place.x != other.place.x)
            return place.x < other.place.x;
        if (place.y != other.place.y)
            return place.y < other.place.y;
        return index < other.index;
    }
};

} // namespace

int ExponentOutOfRange(double largestCoordinate)
{
    constexpr int kMostExponent = 400;
    if (largestCoordinate == 0.0)
        return 0;
    const int exponent = std::ilogb(largestCoordinate);
    return std::abs(exponent) > kMostExponent ? exponent : 0;
}

PlanePoint PlaceInRange(const PlanePoint& place, int exponent)
{
    const auto inRange = [exponent](double value) {
        const double scaled = exponent == 0 ? value : std::ldexp(value, -exponent);
        // The last digit of a sum with this number is worth 2^-537.
        constexpr double kRounder = 0x1.8p-485;
        return std::abs(scaled) < 0x1p-485 ? (scaled + kRounder) - kRounder : scaled;
    };
    return {inRange(place.x), inRange(place.y)};
}

void RingPoints::BringIntoRange()
{
    double largest = 0.0;
    for (const PlanePoint& p : points)
        largest = std::max({largest, std::abs(p.x), std::abs(p.y)});
    exponent = ExponentOutOfRange(largest);
    for (PlanePoint& p : points)
        p = PlaceInRange(p, exponent);
}

PlaneGraph::PlaneGraph(const RingPoints& rings)
{
    const auto numPoints = static_cast<std::uint32_t>(rings.points.size());
    std::vector<SortedPoint> sorted;
    sorted.reserve(numPoints);
    for (std::uint32_t i = 0; i < numPoints; ++i)
        sorted.push_back({rings.points[i], i});
    std::sort(sorted.begin(), sorted.end());

    placeOf.resize(numPoints);
    places.reserve(numPoints);
    pointAt.reserve(numPoints);
    for (const SortedPoint& point : sorted) {
        if (places.empty() || !(places.back() == point.place)) {
            places.push_back(point.place);
            pointAt.push_back(point.index);
        }
        placeOf[point.index] = static_cast<std::uint32_t>(places.size() - 1);
    }

    firstOutgoing.assign(places.size(), kNone);
    firstIncoming.assign(places.size(), kNone);
    edges.reserve(numPoints);
    for (std::uint32_t ring = 0; ring < rings.NumRings(); ++ring) {
        const std::uint32_t end = rings.starts[ring + 1];
        for (std::uint32_t i = rings.starts[ring]; i < end; ++i) {
            const std::uint32_t from = placeOf[i];
            const std::uint32_t to = placeOf[i + 1 == end ? rings.starts[ring] : i + 1];
            if (from == to)
                continue;
            const auto edge = static_cast<std::uint32_t>(edges.size());
            const std::uint32_t right = std::max(from, to);
            edges.push_back({0, right, kNone, firstIncoming[right], ring, from < to, true});
            firstIncoming[right] = edge;
            BeginAt(edge, std::min(from, to));
        }
    }
}

void PlaneGraph::BeginAt(std::uint32_t edge, std::uint32_t left)
{
    edges[edge].left = left;
    edges[edge].nextOutgoing = firstOutgoing[left];
    firstOutgoing[left] = edge;
}

} // namespace Norvek::Math::Core
