#include "polyplane/poly_plane_support.h"

#include <norvek/polyplane/poly_plane.h>
#include <norvek/primitives/line2d.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using norvek_test::Base;
using norvek_test::ExpectNear;
using norvek_test::Fill;
using norvek_test::Point;
using norvek_test::Random;
using norvek_test::Star;

// Opens what is protected.
struct OpenPlane : MPolyPlane
{
    using MPolyPlane::_Sanity;
};

// The rule written down: every edge takes every test, with nothing passed over.
bool IsInsideByEveryEdge(MPolyPlane& plane, const Point& query)
{
    const Point d = plane.GetDirection();
    const MMPlaneEq<double> zero(plane.GetOrigin(), d);
    Point foot;
    zero.Project(foot, query);
    const double x = std::abs(d.x);
    const double y = std::abs(d.y);
    const double z = std::abs(d.z);
    const auto flat = [&](const Point& p) {
        if (y >= x && y >= z)
            return MMPoint2d<double>(p.x, p.z);
        return x >= z ? MMPoint2d<double>(p.y, p.z) : MMPoint2d<double>(p.x, p.y);
    };
    const auto q = flat(foot);
    bool inside = false;
    const int count = plane.GetNumPoints();
    for (int i = 0; i < count; ++i) {
        const auto a = flat(plane.GetPoint(static_cast<unsigned short>((i + count - 1) % count)));
        const auto b = flat(plane.GetPoint(static_cast<unsigned short>(i)));
        if (a == b)
            continue;
        if (q == a || q == b || MMLine2D(a, b).IsPointOnLineSegment(q, 0x1p-52))
            return true;
        if ((a.y > q.y) != (b.y > q.y) && a.x + (b.x - a.x) * (q.y - a.y) / (b.y - a.y) > q.x)
            inside = !inside;
    }
    return inside;
}

TEST(PolyPlane, KeepsFeetHeightsAndNormals)
{
    OpenPlane plane;
    plane.SetZeroPlane({0, 0, 2}, {0, 0, 5});
    plane.SetBottomHeight(-2);
    plane.AddPoint({1, 2, 8});
    EXPECT_EQ(plane.GetPoint(0), Point(1, 2, 5));
    EXPECT_EQ(plane.GetNormal(0), Point());
    EXPECT_EQ(plane.GetNumSegments(), 0);
    EXPECT_FALSE(plane.IsInside({1, 2, 5}));
    unsigned short first = 0;
    EXPECT_EQ(plane.GetVectorToBottom(first), Point(0, 0, 5));
    double low = 0;
    double high = 0;
    plane.GetMinMaxZ(low, high);
    EXPECT_TRUE(low == 3.0 && high == 8.0);
    plane.Clear();
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}})
        plane.AddPoint(Point(x, y, 0));
    const Point normals[] = {{0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
    for (unsigned short i = 0; i < 4; ++i) {
        EXPECT_EQ(plane.GetNormal(i), normals[i]);
        EXPECT_EQ(plane.GetPlane(i), MMPlaneEq<double>(plane.GetPoint(i), normals[i]));
    }
    EXPECT_TRUE(plane._Sanity());
    EXPECT_TRUE(plane.IsInside({1, 0.5, 99}) && plane.IsInside({0, 1, -99}));
    EXPECT_FALSE(plane.LineIntersects({0.5, 0.5, 0}, {0.5, 1, 7}));
    EXPECT_TRUE(plane.LineIntersects({0.5, 0.5, 0}, {0.5, 1.001, 7}));
    // A later zero plane moves nothing.
    plane.SetZeroPlane({1, 0, 0}, {0, 0, 0});
    EXPECT_EQ(plane.GetPoint(2), Point(1, 1, 5));
    EXPECT_EQ(plane.GetNormal(1), normals[1]);
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
        if (round % 2 == 0)
            for (auto& corner : corners)
                corner = {std::round(4 * corner.x), std::round(4 * corner.y)};
        MPolyPlane plane;
        Fill(plane, base, corners, random);
        if (round % 50 == 7)
            plane.AddPoint({NAN, 0, 0});
        for (int i = 0; i < 40; ++i) {
            const auto k = static_cast<unsigned short>(random.Integer(0, 39));
            const double t = random.Integer(0, 4) / 4.0;
            Point query = base.At(random.Uniform(-1, 1), random.Uniform(-1, 1), 3);
            if (i % 2 == 0) {
                const Point a = plane.GetPointOnDescribingPolyline(k);
                const Point b = plane.GetPointOnDescribingPolyline(k + 1);
                query = a + (b - a) * t + random.Point(i % 4 == 0 ? 0.0 : 3e-8);
            }
            const bool inside = plane.IsInside(query);
            numInside += inside ? 1 : 0;
            EXPECT_EQ(inside, IsInsideByEveryEdge(plane, query)) << "round " << round;
        }
    }
    EXPECT_GT(numInside, 10000);
}

// The part of the segment within the triangle, by clipping at the three edges in extended
// precision: its length as a share of the segment's; negative when there is none.
long double ClippedShare(const MMPoint2d<double>& p, const MMPoint2d<double>& q,
                         const MMPoint2d<double> (&corners)[3])
{
    const auto cross = [](const auto& a, const auto& b, const auto& c) {
        return (static_cast<long double>(b.x) - a.x) * (static_cast<long double>(c.y) - a.y) -
               (static_cast<long double>(b.y) - a.y) * (static_cast<long double>(c.x) - a.x);
    };
    const long double turn = cross(corners[0], corners[1], corners[2]) < 0 ? -1 : 1;
    long double from = 0;
    long double to = 1;
    for (int i = 0; i < 3; ++i) {
        const long double atP = turn * cross(corners[i], corners[(i + 1) % 3], p);
        const long double atQ = turn * cross(corners[i], corners[(i + 1) % 3], q);
        if (atP < 0 && atQ < 0)
            return -1;
        if (atP < 0)
            from = std::max(from, atP / (atP - atQ));
        if (atQ < 0)
            to = std::min(to, atP / (atP - atQ));
    }
    return to - from;
}

TEST(PolyPlane, TrianglesCrossWhereClippingLeavesASegment)
{
    Random random(82);
    int counts[3] = {};
    for (int round = 0; round < 100000; ++round) {
        const Base base(random, round % 20, 10.0);
        const auto corners = Star(random, 3 + round % 9, 0.3);
        MPolyPlane plane;
        Fill(plane, base, corners, random);
        MMPoint2d<double> flat[3];
        Point t[3];
        const double size = random.Uniform(0.02, 1.5);
        const MMPoint2d<double> middle(random.Uniform(-1, 1), random.Uniform(-1, 1));
        for (int i = 0; i < 3; ++i) {
            flat[i] =
                middle + MMPoint2d<double>(random.Uniform(-1, 1), random.Uniform(-1, 1)) * size;
            t[i] = base.At(flat[i].x, flat[i].y, random.Uniform(-9, 9));
        }
        long double share = -1;
        for (std::size_t i = 0; i < corners.size(); ++i)
            share =
                std::max(share, ClippedShare(corners[i], corners[(i + 1) % corners.size()], flat));
        const bool rejected = plane.TriangleIntersectRejection(t[0], t[1], t[2]);
        const bool crosses = plane.TriangleIntersects(t[0], t[1], t[2]);
        EXPECT_FALSE(rejected && crosses);
        ++counts[crosses ? 0 : rejected ? 1 : 2];
        if (std::abs(share) > 1e-9L) {
            EXPECT_EQ(crosses, share > 0) << "round " << round;
        }
    }
    EXPECT_GT(counts[0], 20000);
    EXPECT_GT(counts[1], 20000);
    EXPECT_LT(counts[2], 15000);
}

TEST(PolyPlane, PositionsAreArcLengths)
{
    Random random(83);
    for (int round = 0; round < 300; ++round) {
        const Base base(random, round, 5.0);
        auto corners = Star(random, 2 + round % 20, 0.2);
        corners.insert(corners.begin() + 1, corners[1]);
        MPolyPlane plane;
        Fill(plane, base, corners, random);
        long double sum = 0;
        for (unsigned short i = 0; i < corners.size(); ++i) {
            double rest = 0;
            const auto start = static_cast<double>(sum);
            const double length = plane.GetLengthOfDescribingSegment(i);
            const Point e = plane.GetPointOnDescribingPolyline(i + 1) - plane.GetPoint(i);
            sum += length;
            EXPECT_NEAR(length, e.Length(), 1e-14);
            EXPECT_NEAR(plane.GetCumulativeLengthToEndOfDescribingSegment(i),
                        static_cast<double>(sum), 1e-13);
            if (length == 0.0)
                continue;
            const double share = random.Uniform(0.01, 0.99);
            const double position = start + share * length;
            EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(position, rest), i);
            EXPECT_NEAR(rest, share * length, 1e-13);
            const Point p = plane.GetPointAtPositionAlongDescribingPolyline(position);
            ExpectNear(p, plane.GetPoint(i) + e * share, 1e-13);
            EXPECT_EQ(plane.GetNormalAtPositionAlongDescribingPolyline(position),
                      plane.GetNormal(i));
            const auto next = static_cast<unsigned short>((i + 1) % corners.size());
            ExpectNear(plane.GetVectorToBottom(position),
                       plane.GetVectorToBottom(i) * (1 - share) +
                           plane.GetVectorToBottom(next) * share,
                       1e-13);
            bool inside = false;
            const double far = random.Uniform(-2, 2);
            const double along = random.Integer(0, 1) == 0 ? 0.5 : 1.01;
            const Point q = plane.GetPoint(i) + e * along + plane.GetNormal(i) * far;
            EXPECT_NEAR(plane.DistanceToPlaneSegment(q, i, inside), far, 1e-13);
            EXPECT_EQ(inside, along < 1);
        }
        const double whole = plane.GetLengthOfDescribingPolyline();
        EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(whole), plane.GetLastSegment());
        EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(-1), 0);
        // At a point that comes twice the segment with a length answers.
        EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(
                      plane.GetLengthOfDescribingSegment(0)),
                  2);
        ExpectNear(plane.GetPointAtPositionAlongDescribingPolyline(whole), plane.GetPoint(0),
                   1e-13);
    }
}

TEST(PolyPlane, TakesMorePointsThanIndicesReach)
{
    MPolyPlane plane;
    plane.SetZeroPlane({0, 0, 1}, {});
    constexpr int count = 70000;
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / count;
        plane.AddPoint({std::cos(angle), std::sin(angle), 0});
    }
    EXPECT_EQ(plane.GetNumSegments(), count);
    EXPECT_NEAR(plane.GetLengthOfDescribingPolyline(), 2.0 * std::numbers::pi, 1e-8);
    // Below the x axis close to its positive half lie the points beyond 65,535.
    EXPECT_TRUE(plane.IsInside({0.99, -0.05, 0}) && !plane.IsInside({1.0, -0.05, 0}));
    EXPECT_TRUE(plane.LineIntersects({0.9, -0.05, 0}, {1.1, -0.05, 0}));
    ExpectNear(plane.GetPointAtPositionAlongDescribingPolyline(6.2),
               {std::cos(6.2), std::sin(6.2), 0}, 1e-6);
    EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(6.2), 65535);
}

} // namespace
