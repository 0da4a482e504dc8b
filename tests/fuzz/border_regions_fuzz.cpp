// Ring sets from raw bytes, for libFuzzer: triangulation, nesting, merging and crossings hold what
// they promise, or the process ends.

#include "border/region_support.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{

using norvek_test::PlanePoint;
using norvek_test::RegionBorder;
using norvek_test::Rings;
using norvek_test::Triangle;

constexpr std::size_t kMostPoints = 60;

void Require(bool isTrue, const char* promise)
{
    if (isTrue)
        return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

// The first byte sets how fine the offsets are that take points off the grid. Then a byte is a
// point of a grid of 15 by 15, or ends a ring; bits of the next one may nudge it.
Rings RingsFrom(const std::uint8_t* data, std::size_t size)
{
    Rings rings(1);
    if (size == 0)
        return rings;
    const double nudge = data[0] % 4 == 0 ? 0.0 : std::ldexp(1.0, -(data[0] % 56));
    const std::size_t end = size < kMostPoints ? size : kMostPoints;
    for (std::size_t i = 1; i < end; ++i) {
        const int column = data[i] & 15;
        const int row = data[i] >> 4;
        if (column == 15 || row == 15) {
            rings.emplace_back();
            continue;
        }
        const std::uint8_t next = i + 1 < size ? data[i + 1] : std::uint8_t{0};
        rings.back().emplace_back(column + nudge * (next & 1), row + nudge * ((next >> 4) & 1));
    }
    return rings;
}

double AreaOf(const std::vector<void*>& corners, std::vector<Triangle>& triangles)
{
    double area = 0.0;
    for (std::size_t i = 0; i < corners.size(); i += 3) {
        Triangle triangle;
        for (std::size_t k = 0; k < 3; ++k)
            triangle[k] = *static_cast<PlanePoint*>(corners[i + k]);
        Require(Norvek::Math::Core::Orientation(triangle[0], triangle[1], triangle[2]) > 0,
                "triangles turn counter-clockwise");
        triangles.push_back(triangle);
        const PlanePoint u = triangle[1] - triangle[0];
        const PlanePoint v = triangle[2] - triangle[0];
        area += 0.5 * (u.x * v.y - u.y * v.x);
    }
    return area;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Rings rings = RingsFrom(data, size);
    RegionBorder border = norvek_test::BorderOf(rings);
    const bool hasCrossing = norvek_test::HasCrossing(rings);

    std::int32_t count = 0;
    std::vector<void*> corners;
    std::vector<Triangle> triangles;
    const bool isExact = border.FillWithTriangles(count, corners);
    Require(corners.size() == 3 * static_cast<std::size_t>(count), "three payloads a triangle");
    const double area = AreaOf(corners, triangles);
    Require(isExact || hasCrossing, "what does not cross is filled exactly");
    if (!hasCrossing) {
        Require(std::abs(area - norvek_test::SlabArea(rings)) < 1e-9, "triangles cover the region");
        Require(norvek_test::DoFitTogether(triangles), "triangles fit together");
    }

    std::vector<std::vector<MIntersectionValue>> values;
    border.DetermineIntersectionValues(true, true, values);
    std::size_t numMeetings = 0;
    for (const auto& list : values)
        numMeetings += list.size();
    Require(values.size() == rings.size() && numMeetings % 2 == 0, "both sides list a meeting");
    Require(!hasCrossing || numMeetings > 0, "crossings are listed");

    border.DetermineOuterContours();
    for (const auto& contour : border.Contours())
        Require(contour.GetOrder() < rings.size(), "orders count other rings");
    border.AdjustTurningSenseToOuterContourParameter();
    const double signedArea = border.SurfaceAreaWithSignXY();
    // Rounding may take the sign of slivers.
    const bool areTurned = std::all_of(border.begin(), border.end(), [](const auto& contour) {
        return contour.GetNumPoints() == 0 || std::abs(contour.SurfaceAreaWithSignXY()) > 1e-9;
    });
    border.MergeToOnlyOuterContours();
    Require(std::abs(border.SurfaceAreaWithSignXY() - signedArea) < 1e-9, "merging keeps the area");
    for (const auto& contour : border.Contours())
        Require(contour.GetIsOuterContour(), "outer contours are left");
    const Rings merged = norvek_test::RingsOf(border);
    Require(hasCrossing || !norvek_test::HasCrossing(merged), "bridges cross nothing");
    Require(!areTurned || norvek_test::PassThroughAtPoints(rings) || hasCrossing ||
                norvek_test::HasFoldedRing(rings) || !norvek_test::PassThroughAtPoints(merged),
            "outlines keep to their side");
    triangles.clear();
    const bool isMergedExact = border.FillWithTriangles(count, corners);
    const double mergedArea = AreaOf(corners, triangles);
    if (!hasCrossing)
        Require(isMergedExact && std::abs(mergedArea - area) < 1e-9, "merging keeps the region");
    return 0;
}
