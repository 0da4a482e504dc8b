#pragma once

#include "border/orientation.h"

#include <norvek/border/border.h>

#include <algorithm>
#include <array>
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

/// Whether an edge of one ring crosses one of the other.
inline bool DoCrossEachOther(const Ring& a, const Ring& b)
{
    const auto edges = EdgesOf({b});
    for (const auto& [p, q] : EdgesOf({a}))
        for (const auto& [r, s] : edges)
            if (DoCross(p, q, r, s))
                return true;
    return false;
}

inline bool HasCrossing(const Rings& rings)
{
    for (std::size_t i = 0; i < rings.size(); ++i)
        for (std::size_t j = 0; j <= i; ++j)
            if (DoCrossEachOther(rings[i], rings[j]))
                return true;
    return false;
}

/// Whether a ring has edges on top of each other or no edges at all.
inline bool HasFoldedRing(const Rings& rings)
{
    return std::any_of(rings.begin(), rings.end(), [](const Ring& ring) {
        const auto edges = EdgesOf({ring});
        using Norvek::Math::Core::Orientation;
        bool hasLength = ring.empty();
        for (std::size_t i = 0; i < edges.size(); ++i) {
            const auto& [p, q] = edges[i];
            hasLength = hasLength || !(p == q);
            for (std::size_t j = 0; j < i; ++j) {
                const auto& [r, s] = edges[j];
                const double most = std::max((r - p).Dot(q - p), (s - p).Dot(q - p));
                const double least = std::min((r - p).Dot(q - p), (s - p).Dot(q - p));
                if (Orientation(p, q, r) == 0 && most > 0.0 && Orientation(p, q, s) == 0 &&
                    least < (q - p).Dot(q - p))
                    return true;
            }
        }
        return !hasLength;
    });
}

/// Whether a ring runs through another one, or through itself, at a point of both.
inline bool PassThroughAtPoints(const Rings& rings)
{
    using Norvek::Math::Core::Orientation;
    using Corner = std::array<PlanePoint, 3>;
    std::vector<Corner> corners;
    for (Ring ring : rings) {
        ring.erase(std::unique(ring.begin(), ring.end()), ring.end());
        while (ring.size() > 1 && ring.front() == ring.back())
            ring.pop_back();
        for (std::size_t i = 0; ring.size() > 1 && i < ring.size(); ++i)
            corners.push_back({ring[i], ring[(i + 1) % ring.size()], ring[(i + 2) % ring.size()]});
    }
    // An edge bends by nothing at the points on it.
    const std::size_t numPoints = corners.size();
    for (const auto& [p, q] : EdgesOf(rings)) {
        for (std::size_t i = 0; i < numPoints; ++i) {
            const PlanePoint at = corners[i][1];
            if (Orientation(p, q, at) == 0 && (p - at).Dot(q - at) < 0.0)
                corners.push_back({p, at, q});
        }
    }
    // Counter-clockwise from the edge towards `a`, before that towards `b`.
    const auto isBetween = [](const PlanePoint& o, const PlanePoint& a, const PlanePoint& b,
                              const PlanePoint& x) {
        const bool isLeftOfA = Orientation(o, a, x) > 0;
        const bool isRightOfB = Orientation(o, b, x) < 0;
        return Orientation(o, a, b) > 0 ? isLeftOfA && isRightOfB : isLeftOfA || isRightOfB;
    };
    const auto isOff = [](const PlanePoint& o, const PlanePoint& a, const PlanePoint& x) {
        return Orientation(o, a, x) != 0 || (a - o).Dot(x - o) < 0.0;
    };
    for (const auto& [a, o, b] : corners) {
        for (const auto& [c, at, d] : corners) {
            if (at == o && isOff(o, a, b) && isOff(o, c, d) && isOff(o, a, c) && isOff(o, a, d) &&
                isOff(o, b, c) && isOff(o, b, d) && isBetween(o, a, b, c) != isBetween(o, a, b, d))
                return true;
        }
    }
    return false;
}

/// The rings of a border's contours.
inline Rings RingsOf(const RegionBorder& border)
{
    Rings rings;
    for (const auto& contour : border.Contours()) {
        rings.emplace_back();
        for (const auto& point : contour)
            rings.back().emplace_back(point.x, point.y);
    }
    return rings;
}

using Triangle = std::array<PlanePoint, 3>;

/// The even-odd area, slab by slab between neighbouring abscissae; no edges cross.
inline double SlabArea(const Rings& rings)
{
    std::vector<double> abscissae;
    for (const auto& [p, q] : EdgesOf(rings))
        abscissae.push_back(p.x);
    std::sort(abscissae.begin(), abscissae.end());
    double area = 0.0;
    for (std::size_t i = 1; i < abscissae.size(); ++i) {
        const double low = abscissae[i - 1];
        const double high = abscissae[i];
        std::vector<double> heights;
        for (const auto& [p, q] : EdgesOf(rings)) {
            if (p.x != q.x && std::min(p.x, q.x) <= low && std::max(p.x, q.x) >= high)
                heights.push_back(p.y + (q.y - p.y) * (0.5 * (low + high) - p.x) / (q.x - p.x));
        }
        std::sort(heights.begin(), heights.end());
        for (std::size_t k = 1; k < heights.size(); k += 2)
            area += (heights[k] - heights[k - 1]) * (high - low);
    }
    return area;
}

/// Triangles side by side have a line between them; none has a corner inside an edge of another.
inline bool DoFitTogether(const std::vector<Triangle>& triangles)
{
    using Norvek::Math::Core::Orientation;
    const auto isApart = [](const Triangle& a, const Triangle& b) {
        for (std::size_t i = 0; i < 3; ++i) {
            if (std::all_of(b.begin(), b.end(), [&](const PlanePoint& p) {
                    return Orientation(a[i], a[(i + 1) % 3], p) <= 0;
                }))
                return true;
        }
        return false;
    };
    const auto isInEdge = [](const Triangle& t, const PlanePoint& p) {
        for (std::size_t i = 0; i < 3; ++i) {
            const PlanePoint& a = t[i];
            const PlanePoint& b = t[(i + 1) % 3];
            if (Orientation(a, b, p) == 0 && (p - a).Dot(p - b) < 0.0)
                return true;
        }
        return false;
    };
    for (const Triangle& a : triangles) {
        for (const Triangle& b : triangles) {
            if (&a == &b)
                continue;
            if ((!isApart(a, b) && !isApart(b, a)) ||
                std::any_of(b.begin(), b.end(),
                            [&](const PlanePoint& p) { return isInEdge(a, p); }))
                return false;
        }
    }
    return true;
}

} // namespace norvek_test
