#pragma once

#include "border/orientation.h"
#include "support/random.h"

#include <norvek/border/border.h>

#include <utility>
#include <vector>

namespace norvek_test
{

using PlanePoint = Norvek::Math::Core::PlanePoint;
using Ring = std::vector<PlanePoint>;
using Rings = std::vector<Ring>;
using RegionBorder = M3dBorder<double, void*>;

/// The border of the rings; each payload is the place of its point in `rings`, which has to live.
inline RegionBorder BorderOf(Rings& rings)
{
    RegionBorder border;
    for (Ring& ring : rings) {
        auto* const contour = border.AddContourAtEnd();
        for (PlanePoint& p : ring)
            contour->InsertAtEnd(p.x, p.y, static_cast<void*>(&p));
    }
    return border;
}

/// A ring of a few points on a small grid, where nearly everything touches.
inline Ring GridRing(Random& random, int side)
{
    Ring ring(static_cast<std::size_t>(random.Integer(1, 8)));
    for (PlanePoint& p : ring)
        p = PlanePoint(random.Integer(0, side), random.Integer(0, side));
    return ring;
}

/// All edges, the closing ones too.
inline std::vector<std::pair<PlanePoint, PlanePoint>> EdgesOf(const Rings& rings)
{
    std::vector<std::pair<PlanePoint, PlanePoint>> edges;
    for (const Ring& ring : rings)
        for (std::size_t i = 0; i < ring.size(); ++i)
            edges.emplace_back(ring[i], ring[(i + 1) % ring.size()]);
    return edges;
}

/// Whether the insides of two segments meet in one place.
inline bool DoCross(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c,
                    const PlanePoint& d)
{
    using Norvek::Math::Core::Orientation;
    return Orientation(a, b, c) * Orientation(a, b, d) < 0 &&
           Orientation(c, d, a) * Orientation(c, d, b) < 0;
}

inline bool HasCrossing(const Rings& rings)
{
    const auto edges = EdgesOf(rings);
    for (std::size_t i = 0; i < edges.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (DoCross(edges[i].first, edges[i].second, edges[j].first, edges[j].second))
                return true;
    return false;
}

} // namespace norvek_test
