#include "polyplane/poly_plane_support.h"

#include <norvek/polyplane/poly_plane_prism.h>
#include <norvek/primitives/line2d.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace norvek_test;
using Flat = MMPoint2d<double>;

TEST(PolyPlane, KeepsFeetHeightsAndNormals)
{
    MPolyPlane plane;
    double low = 0;
    double high = 0;
    plane.SetZeroPlane({0, 0, 2}, {0, 0, 5});
    plane.SetBottomHeight(-2);
    plane.AddPoint({1, 2, 8});
    EXPECT_TRUE(plane.GetPoint(0) == Point(1, 2, 5) && plane.GetNormal(0) == Point());
    EXPECT_FALSE(plane.IsInside({1, 2, 5}));
    EXPECT_EQ(plane.GetVectorToBottom(0.0), Point(0, 0, 5));
    plane.GetMinMaxZ(low, high);
    EXPECT_TRUE(low == 3.0 && high == 8.0);
    plane.Clear();
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}})
        plane.AddPoint(Point(x, y, 0));
    const Point normals[] = {{0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
    for (unsigned short i = 0; i < 4; ++i)
        EXPECT_EQ(plane.GetPlane(i), MMPlaneEq<double>(plane.GetPoint(i), normals[i]));
    EXPECT_FALSE(plane.LineIntersects({0.5, 0.5, 0}, {0.5, 1, 7}));
    // A later zero plane moves nothing.
    plane.SetZeroPlane({1, 0, 0}, {0, 0, 0});
    EXPECT_TRUE(plane.GetPoint(2) == Point(1, 1, 5) && plane.GetNormal(1) == normals[1]);
}

// The rule written down: every edge takes every test, with nothing passed over.
bool IsInsideByEveryEdge(MPolyPlane& plane, Point query)
{
    const Point d = plane.GetDirection();
    const Point a(std::abs(d.x), std::abs(d.y), std::abs(d.z));
    const auto flat = [&](const Point& p) {
        return a.y >= a.x && a.y >= a.z ? Flat(p.x, p.z)
               : a.x >= a.z             ? Flat(p.y, p.z)
                                        : Flat(p.x, p.y);
    };
    MMPlaneEq<double>(plane.GetOrigin(), d).Project(query, query);
    const Flat q = flat(query);
    bool inside = false;
    const int count = plane.GetNumPoints();
    for (int i = 0; i < count; ++i) {
        const Flat p = flat(plane.GetPoint(static_cast<unsigned short>((i + count - 1) % count)));
        const Flat c = flat(plane.GetPoint(static_cast<unsigned short>(i)));
        if (p == c)
            continue;
        if (q == p || q == c || MMLine2D(p, c).IsPointOnLineSegment(q, 0x1p-52))
            return true;
        if ((p.y > q.y) != (c.y > q.y) && p.x + (c.x - p.x) * (q.y - p.y) / (c.y - p.y) > q.x)
            inside = !inside;
    }
    return inside;
}

// Every second outline lies on a coarse grid, with repeated and collinear points, and the queries
// lie on and beside its edges.
TEST(PolyPlane, InsideIsWhatEveryEdgeSays)
{
    Random random(81);
    int numInside = 0;
    for (int round = 0; round < 1500; ++round) {
        const Base base(random, round % 12, round % 3 == 0 ? 1e5 : 1.0);
        auto corners = Star(random, 1 + round % 40, 0.2);
        for (Flat& corner : corners)
            if (round % 2 == 0)
                corner = {std::round(4 * corner.x), std::round(4 * corner.y)};
        MPolyPlane plane;
        Fill(plane, base, corners);
        for (int i = 0; i < 40; ++i) {
            const auto k = static_cast<unsigned short>(random.Integer(0, 39));
            const Point a = plane.GetPointOnDescribingPolyline(k);
            const Point b = plane.GetPointOnDescribingPolyline(k + 1);
            const Point query = a + (b - a) * (random.Integer(0, 4) / 4.0) +
                                random.Point(i % 2 == 0   ? 0
                                             : i % 4 == 1 ? 1.0
                                                          : 3e-8);
            numInside += plane.IsInside(query) ? 1 : 0;
            EXPECT_EQ(plane.IsInside(query), IsInsideByEveryEdge(plane, query))
                << "round " << round;
        }
    }
    EXPECT_GT(numInside, 10000);
}

// The share of the segment that lies within the triangle, clipped at its three edges in extended
// precision; negative when nothing is left.
long double ClippedShare(const Flat& p, const Flat& q, const Flat (&corners)[3])
{
    const auto turn = [](const Flat& a, const Flat& b, const Flat& c) {
        return (static_cast<long double>(b.x) - a.x) * (static_cast<long double>(c.y) - a.y) -
               (static_cast<long double>(b.y) - a.y) * (static_cast<long double>(c.x) - a.x);
    };
    const long double sign = turn(corners[0], corners[1], corners[2]) < 0 ? -1 : 1;
    long double from = 0;
    long double to = 1;
    for (int i = 0; i < 3; ++i) {
        const long double atP = sign * turn(corners[i], corners[(i + 1) % 3], p);
        const long double atQ = sign * turn(corners[i], corners[(i + 1) % 3], q);
        from = atP < 0 ? std::max(from, atQ < 0 ? 2 : atP / (atP - atQ)) : from;
        to = atQ < 0 && atP >= 0 ? std::min(to, atP / (atP - atQ)) : to;
    }
    return to - from;
}

TEST(PolyPlane, TrianglesCrossWhereClippingLeavesASegment)
{
    Random random(82);
    int counts[3] = {};
    for (int round = 0; round < 100000; ++round) {
        const Base base(random, round % 20, 10.0);
        const Corners corners = Star(random, 3 + round % 9, 0.3);
        MPolyPlane plane;
        Fill(plane, base, corners);
        Flat flat[3];
        Point t[3];
        const double size = random.Uniform(0.02, 1.5);
        for (int i = 0; i < 3; ++i) {
            const Flat middle = i == 0 ? Flat() : flat[0];
            flat[i] =
                middle + Flat(random.Uniform(-1, 1), random.Uniform(-1, 1)) * (i == 0 ? 1 : size);
            t[i] = base.At(flat[i], random.Uniform(-9, 9));
        }
        long double share = -1;
        for (std::size_t i = 0; i < corners.size(); ++i)
            share =
                std::max(share, ClippedShare(corners[i], corners[(i + 1) % corners.size()], flat));
        const bool rejected = plane.TriangleIntersectRejection(t[0], t[1], t[2]);
        const bool crosses = plane.TriangleIntersects(t[0], t[1], t[2]);
        EXPECT_FALSE(rejected && crosses);
        EXPECT_TRUE(crosses == (share > 0) || std::abs(share) < 1e-9L) << "round " << round;
        ++counts[crosses ? 0 : rejected ? 1 : 2];
    }
    EXPECT_TRUE(counts[0] > 20000 && counts[1] > 20000 && counts[2] < 15000);
}

TEST(PolyPlane, PositionsAreArcLengths)
{
    Random random(83);
    for (int round = 0; round < 300; ++round) {
        auto corners = Star(random, 2 + round % 20, 0.2);
        corners.insert(corners.begin() + 1, corners[1]);
        MPolyPlane plane;
        Fill(plane, Base(random, round, 5.0), corners);
        double sum = 0;
        const auto count = static_cast<unsigned short>(plane.GetNumSegments());
        for (unsigned short i = 0; i < count; ++i) {
            const Point p = plane.GetPoint(i);
            const Point e = plane.GetPointOnDescribingPolyline(i + 1) - p;
            const double share = random.Uniform(0.01, 0.99);
            const double position = sum + share * e.Length();
            sum += e.Length();
            EXPECT_NEAR(plane.GetCumulativeLengthToEndOfDescribingSegment(i), sum, 1e-13);
            // Of the point that comes twice the second segment answers.
            double rest = 0;
            EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(position, rest),
                      e == Point() ? i + 1 : i);
            EXPECT_NEAR(rest, share * e.Length(), 1e-13);
            ExpectNear(plane.GetPointAtPositionAlongDescribingPolyline(position), p + e * share,
                       1e-13);
            bool inside = true;
            const Point q = p + e * (2 * share) + plane.GetNormal(i) * 3;
            EXPECT_NEAR(plane.DistanceToPlaneSegment(q, i, inside), e == Point() ? 0 : 3, 1e-13);
            EXPECT_EQ(inside, e != Point() && share < 0.5);
        }
        EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(99), plane.GetLastSegment());
    }
}

TEST(PolyPlane, TakesMorePointsThanIndicesReach)
{
    MPolyPlane plane;
    plane.SetZeroPlane({0, 0, 1}, {});
    for (int i = 0; i < 70000; ++i)
        plane.AddPoint({std::cos(i * 2 * std::numbers::pi / 70000),
                        std::sin(i * 2 * std::numbers::pi / 70000), 0});
    // Below the x axis close to its positive half lie the points beyond 65,535.
    EXPECT_TRUE(plane.IsInside({0.99, -0.05, 0}) && !plane.IsInside({1.0, -0.05, 0}));
    EXPECT_TRUE(plane.LineIntersects({0.9, -0.05, 0}, {1.1, -0.05, 0}));
}

TEST(PolyPlanePrism, SharesItsInnerPolyPlaneAndKeepsItsLevels)
{
    // Leaks and double deletion are what the address sanitizer looks for here.
    MPolyPlanePrism kept(nullptr);
    {
        MPolyPlanePrism prism(new MPolyPlane);
        prism.SetDirection({0, 0, -4});
        MPolyPlanePrism copy(prism);
        kept = copy;
        for (const auto& [x, y] : {std::pair{0, 0}, {4, 0}, {0, 4}})
            copy.AddPoint(Point(x, y, 6));
        // Levels count along the direction, which points down.
        kept.SetTopBottomPlanes({9, 9, 10}, {0, 0, 2});
        EXPECT_TRUE(prism.IsInside({1, 1, 10.5}) && kept.GetNumPoints() == 3);
    }
    EXPECT_TRUE(kept.IsInside({1, 1, 10}) && !kept.IsInside({1, 1, 10.5}));
    double low = 0;
    double high = 0;
    kept.GetMinMaxZ(low, high);
    EXPECT_TRUE(low == 0 + 2 && high == 6 + 10);
    kept.SetTopBottomPlanes(-10.0, -2.0);
    EXPECT_FALSE(kept.IsInside({1, 1, 5}) || kept.LineIntersects({1, 1, 0}, {9, 9, 0}));
    // What is not forwarded sees the prism's own empty outline.
    kept.SetZeroPlane({1, 0, 0}, {9, 9, 9});
    EXPECT_TRUE(kept.GetDirection() == Point(0, 0, -1) && kept.GetNumSegments() == 0);
    EXPECT_EQ(kept.GetPointOnDescribingPolyline(1), Point());
    EXPECT_EQ(kept.GetNormal(1), Point(-0.5, -0.5, 0).Normalised());
}

} // namespace
