#include "support/random.h"

#include <norvek/primitives/line.h>
#include <norvek/primitives/line2d.h>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace
{

using Point = MMPoint3d<double>;
using Point2 = MMPoint2d<double>;

TEST(Line, CommonPerpendicularIsPerpendicularAndOnBoth)
{
    norvek_test::Random random(511);
    for (int i = 0; i < 300; ++i) {
        const MMLine a(random.Point(10.0), random.Point(10.0));
        const MMLine b(random.Point(10.0), random.Point(10.0));
        MMLine shortest = a;
        if (!shortest.GetCommonPerpendicularLine(b, shortest, 0.05))
            continue;
        EXPECT_TRUE(b.IsPointOnLine(shortest.GetPointFirst(), false, 1e-9) &&
                    a.IsPointOnLine(shortest.GetPointSecond(), false, 1e-9));
        const Point across = shortest.GetPointSecond() - shortest.GetPointFirst();
        EXPECT_NEAR(across.Dot(a.GetDirection()), 0.0, 1e-9);
        EXPECT_NEAR(across.Dot(b.GetDirection()), 0.0, 1e-9);
    }
}

TEST(Line, TolerancesAndParallelsAreStrict)
{
    const MMLine a({0, 0, 0}, {2, 0, 0});
    const MMLine b({1, -1, 1e-4}, {1, 1, 1e-4});
    Point out(9.0, 9.0, 9.0);
    EXPECT_FALSE(a.GetIntersectionPoint(b, out, 1e-5, false) || out.x != 9.0);
    EXPECT_TRUE(a.GetIntersectionPoint(b, out, 1e-4, false) && out == Point(1.0, 0.0, 1e-4));
    // Beyond either segment the point is written, but does not count.
    const MMLine beyond({3, -1, 0}, {3, 1, 0});
    EXPECT_TRUE(a.GetIntersectionPoint(beyond, out, 1e-3, false));
    EXPECT_FALSE(a.GetIntersectionPoint(beyond, out, 1e-3, true) || out != Point(3.0, 0.0, 0.0));
    EXPECT_FALSE(beyond.GetIntersectionPoint(a, out, 1e-3, true));
    EXPECT_FALSE(a.GetIntersectionPoint(MMLine({0, 0, 0}, {1, 0.0009, 0}), out, 1.0, false));
    MMLine none;
    EXPECT_FALSE(a.IsParallel(a, 0.0) || a.GetCommonPerpendicularLine(a, none, 0.0));
    const Point aside(9.0, 0.5, 0.0);
    EXPECT_TRUE(a.IsPointOnLine(aside, false, 0.51) && !a.IsPointOnLine(aside, false, 0.5));
    EXPECT_TRUE(a.IsPointOnLine({2, 0, 0}, true, 1.0) && !a.IsPointOnLine({2, 0.1, 0}, true, 1.0));
    EXPECT_DOUBLE_EQ(MMLine({1, 2, 3}, {3e200, 4e200, 0}).Length(), 5e200);
}

// The foot, the distance and the sign against the determinant of the points.
TEST(Line2D, ProjectsAndMeasures)
{
    norvek_test::Random random(512);
    for (int i = 0; i < 500; ++i) {
        const Point p = random.Point(10.0);
        const Point q = random.Point(10.0);
        const Point2 at(p.z, q.z);
        MMLine2D line({p.x, p.y}, {q.x, q.y});
        const Point2 d(q.x - p.x, q.y - p.y);
        const double expected = (d.x * (at.y - p.y) - d.y * (at.x - p.x)) / d.Length();
        EXPECT_NEAR(line.GetDistance(at), std::abs(expected), 1e-12);
        EXPECT_NEAR(line.GetLength(), d.Length(), 1e-13);
        // With b = -1 the equation is negative above the line, whichever way the line runs.
        EXPECT_NEAR(line.GetSignedDistance(at), d.x > 0.0 ? -expected : expected, 1e-12);
        line.Project(line.GetFirstPoint(), at);
        EXPECT_NEAR((line.GetFirstPoint() - at).Dot(d), 0.0, 1e-10);
    }
    const MMLine2D dot({3, 4}, {3, 4});
    Point2 out(7.0, 7.0);
    dot.Project(out, {0, 0});
    EXPECT_TRUE(out == Point2(7.0, 7.0) && dot.GetDistance({0, 0}) == 5.0);
}

TEST(Line2D, EquationFollowsItsCases)
{
    const std::pair<MMLine2D, Point> cases[] = {
        {{{4, 0}, {4, 9}}, {-0.25, 0, 1}},  {{{0, 0}, {0, 9}}, {1, 0, 0}},
        {{{0, 1}, {2, 5}}, {2, -1, 1}},     {{{5, 4}, {9, 4}}, {0, -0.25, 1}},
        {{{5, 0}, {9, 0}}, {0, 1, 0}},      {{{-4, 4}, {-4, 4}}, {0.25, 0, 1}},
        {{{5, -4}, {9, -4}}, {0, 0.25, 1}}, {{{4, 0}, {4.5, 0}}, {0, 1, 0}}};
    for (const auto& [line, expected] : cases) {
        Point equation(9.0, 9.0, 9.0);
        line.GetLineEquation(equation.x, equation.y, equation.z, 0.5);
        EXPECT_EQ(equation, expected);
    }
    // The sign changes sides between the cases.
    EXPECT_LT(MMLine2D({4, 0}, {4, 9}).GetSignedDistance({5, 0}), 0.0);
    EXPECT_GT(MMLine2D({0, 0}, {0, 9}).GetSignedDistance({1, 0}), 0.0);
}

TEST(Line2D, ParallelLooksAtTheXComponentsOnly)
{
    const MMLine2D up({0, 0}, {0, 1});
    const MMLine2D right({1, 1}, {3, 1});
    EXPECT_FALSE(up.IsParallel(MMLine2D({0, 0}, {0, -1}), 0.5));
    EXPECT_TRUE(right.IsParallel(MMLine2D({0, 0}, {-1, 0}), 1e-9));
    EXPECT_TRUE(right.IsCoincident(MMLine2D({3, 1}, {9, 1}), 1e-9));
    EXPECT_FALSE(right.IsCoincident(MMLine2D({3, 2}, {9, 2}), 1e-9));
    EXPECT_FALSE(right.IsCoincident(right, 0.5));
    EXPECT_TRUE(right.IsPointOnLine({-7, 1}, 1e-9));
    const std::tuple<Point2, double, bool> cases[] = {{{3, 1}, 0.1, false}, {{1, 1}, 0.9, false},
                                                      {{2, 2}, 0.2, false}, {{2, 1}, 0.0, true},
                                                      {{1, 1}, 1.0, true},  {{2, 2}, 0.3, true}};
    for (const auto& [point, tolerance, lies] : cases)
        EXPECT_EQ(right.IsPointOnLineSegment(point, tolerance), lies) << point;
}

TEST(Line2D, SegmentsMeetWithinTwiceTheTolerance)
{
    const MMLine2D right({0, 0}, {2, 0});
    Point2 out(9.0, 9.0);
    EXPECT_FALSE(right.GetIntersectionSegmentSegment(out, MMLine2D({0, 1}, {2, 1}), 1e-9));
    EXPECT_EQ(out, Point2(9.0, 9.0));
    EXPECT_TRUE(right.GetIntersectionSegmentSegment(out, MMLine2D({1, -1}, {1, 3}), 1e-9));
    // Short of the line by 0.5, and beyond this segment by 0.25.
    const MMLine2D aside({2.25, 0.5}, {2.25, 3});
    EXPECT_FALSE(right.GetIntersectionSegmentSegment(out, aside, 0.375));
    EXPECT_EQ(out, Point2(2.25, 0.0));
    EXPECT_TRUE(right.GetIntersectionSegmentSegment(out, aside, 0.376));

    const std::pair<MMLine2D, bool> cases[] = {
        {{{9, 9}, {1, 3}}, true},          {{{0, 2}, {-9, 2}}, true}, {{{-1, 2.5}, {2, 2.6}}, true},
        {{{-1, 2.5}, {-0.1, 2.6}}, false}, {{{0, 5}, {3, 2}}, false}, {{{0.5, 4}, {1.5, 1}}, true},
        {{{0.4, 2.5}, {0.6, 2.6}}, true}};
    for (const auto& [segment, lies] : cases)
        EXPECT_EQ(segment.DoesSegmentLieOnRect(0, 2, 1, 3, 1e-9), lies);
}

} // namespace
