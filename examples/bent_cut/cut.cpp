#include "cut.h"

namespace bent_cut
{

using Point = MMPoint3d<double>;

namespace
{

// Shares of the surface's box: counter-clockwise, with a bay in the east.
constexpr std::array<std::array<double, 2>, 7> kOutline{{{0.16, 0.22},
                                                         {0.48, 0.10},
                                                         {0.84, 0.30},
                                                         {0.60, 0.50},
                                                         {0.80, 0.76},
                                                         {0.42, 0.90},
                                                         {0.20, 0.62}}};

double AreaOf(const Point& a, const Point& b, const Point& c)
{
    return (b - a).Cross(c - a).Length() / 2.0;
}

} // namespace

MPolyPlaneSectors MakeCut(const example::Surface& surface, const Options& options)
{
    MPolyPlaneSectors cut;
    cut.SetZeroPlane(options.direction, {0.0, 0.0, 0.0});
    for (const Point& point : options.points)
        cut.AddPoint(point - surface.centre);
    if (options.points.empty()) {
        const M3DBoundingBox<double>& box = surface.box;
        for (const auto& [x, y] : kOutline)
            cut.AddPoint({box.minX + x * box.GetDeltaX(), box.minY + y * box.GetDeltaY(), 0.0});
    }
    return cut;
}

Split SplitSurface(const example::Surface& surface, MPolyPlaneSectors& cut)
{
    Split split;
    split.sides.reserve(surface.triangles.size());
    for (const example::Surface::Triangle& triangle : surface.triangles) {
        const Point& a = surface.points[triangle[0]];
        const Point& b = surface.points[triangle[1]];
        const Point& c = surface.points[triangle[2]];
        //! [split]
        Side side = Side::Crossed;
        const bool isRuledOut = cut.TriangleIntersectRejection(a, b, c);
        if (isRuledOut || !cut.TriangleIntersects(a, b, c))
            side = cut.IsInside((a + b + c) / 3.0) ? Side::Inside : Side::Outside;
        //! [split]
        Part& part = split.parts[static_cast<std::size_t>(side)];
        part.count += 1;
        part.area += AreaOf(a, b, c);
        split.numRuledOut += isRuledOut ? 1 : 0;
        split.sides.push_back(side);
    }
    return split;
}

} // namespace bent_cut
