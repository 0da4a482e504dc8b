#include "curve/curve_support.h"

#include <norvek/curve/curve_equation_2d.h>
#include <norvek/curve/curve_nurbs.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using norvek_test::kEpsilon;
using norvek_test::Random;
using norvek_test::RandomCurve;
using Point = MMPoint3d<double>;
using Points = std::vector<Point>;

constexpr double kPi = 3.141592653589793;

// What callers who derive may reach.
struct OpenCurve : M3dCurveNurbs
{
    using M3dCurveNurbs::_ChordDeviation;
    using M3dCurveNurbs::_FindNearest;
    using M3dCurveNurbs::_ParameterRangeAdjust;
    using M3dCurveNurbs::_SegmentMinimal;
};

// The same curve, of which nothing is known but how to evaluate it: no span reads the first knot,
// but with a NaN among its knots the curve cannot be taken apart.
OpenCurve Opaque(OpenCurve curve)
{
    curve.AccessKnots()[0] = NAN;
    return curve;
}

// A record in an object.
OpenCurve ObjectOf(const NURBSCurv& record)
{
    OpenCurve curve;
    curve.SetOrder(static_cast<std::uint32_t>(record.order));
    curve.SetNumberControlPoints(static_cast<std::uint32_t>(record.numControlPoints));
    EXPECT_TRUE(curve.InitNURBSCurv());
    std::copy_n(record.knots, curve.GetNumberKnots(), curve.AccessKnots());
    std::copy_n(record.controlPoints, record.numControlPoints, curve.AccessControlPoints());
    curve.SetMinParameter(record.startParameter);
    curve.SetMaxParameter(record.endParameter);
    return curve;
}

// Without weights in every other curve. Spans that are too short to have a basis are none.
RandomCurve Regular(Random& random, int order, int count, bool hasWeights)
{
    RandomCurve curve(random, order, count);
    for (Point4D& p : curve.points)
        p.w = hasWeights ? p.w : 1.0;
    for (double& knot : curve.knots)
        knot = std::round(10.0 * knot) / 10.0;
    curve.record.startParameter = curve.knots[static_cast<std::size_t>(order - 1)];
    curve.record.endParameter = curve.knots[curve.points.size()];
    return curve;
}

// A whole circle of radius 1 in four quarters, exactly.
OpenCurve Circle()
{
    double knots[] = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4};
    Point4D points[9];
    for (int i = 0; i < 9; ++i) {
        const double w = i % 2 == 0 ? 1.0 : std::sqrt(0.5);
        const double x = std::round(std::cos(i * kPi / 4));
        const double y = std::round(std::sin(i * kPi / 4));
        points[i] = {{x * w, y * w, 0, w}};
    }
    return ObjectOf({3, 9, knots, 0, 4, points});
}

Points Spiral(int count, double turns)
{
    Points points;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * kPi * turns * i / std::max(count - 1, 1);
        points.push_back({2 * std::cos(angle), std::sin(angle), turns == 1.0 ? 0.0 : 0.1 * angle});
    }
    return points;
}

Point At(const M3dCurve& curve, double t)
{
    Point p(NAN, NAN, NAN);
    EXPECT_EQ(curve.EvaluatePosition(p, t), M3dCurve::kSuccess);
    return p;
}

TEST(CurveObject, StorageFollowsRepairsAndNumbersStay)
{
    OpenCurve curve;
    EXPECT_TRUE(curve.GetOrder() == 3 && !curve.IsClosedLoop() && curve.GetMaxParameter() == 1.0);
    EXPECT_EQ(curve.Fit({}, true), M3dCurve::kFailure);
    EXPECT_TRUE(!curve.IsClosedLoop() && curve.GetNumberControlPoints() == 0);
    // Order, count and number of points; whether they fit, and the order and count used.
    constexpr std::uint32_t cases[][6] = {{3, 12, 40, 1, 3, 12}, {99, 8, 40, 1, 4, 8},
                                          {5, 2, 40, 1, 2, 2},   {4, ~0U, 40, 1, 4, 20},
                                          {3, 12, 1, 0, 1, 1},   {4, 10, 209716, 0, 4, 10}};
    for (const auto& [order, count, numPoints, fits, usedOrder, usedCount] : cases) {
        curve.SetOrder(order);
        curve.SetNumberControlPoints(count);
        curve.SetMaxParameter(0.75);
        const bool isClosed = order == 99;
        EXPECT_EQ(curve.Fit(Spiral(static_cast<int>(numPoints), 2.5), isClosed),
                  fits == 1 ? M3dCurve::kSuccess : M3dCurve::kFailure);
        EXPECT_TRUE(curve.GetOrder() == usedOrder && curve.GetNumberControlPoints() == usedCount);
        EXPECT_EQ(std::isfinite(At(curve, 0.5).x), fits == 1) << order << ' ' << count;
        EXPECT_TRUE(curve.IsClosedLoop() == isClosed && curve.GetMaxParameter() == 0.75);
    }
    // Without a number the first fit takes that of its points, and later ones keep it.
    M3dCurveNurbs other;
    EXPECT_EQ(other.Fit(Spiral(20, 1.5), false), M3dCurve::kSuccess);
    EXPECT_LT((At(other, 7.0 / 19) - Spiral(20, 1.5)[7]).Length(), 1e-12);
    EXPECT_EQ(other.Fit(Spiral(50, 1.5), false), M3dCurve::kSuccess);
    EXPECT_EQ(other.GetNumberControlPoints(), 20U);
}

TEST(CurveObject, HasNoPointsWhileItsNumbersAreNotThoseOfItsArrays)
{
    M3dCurveNurbs fitted;
    fitted.SetNumberControlPoints(12);
    ASSERT_EQ(fitted.Fit(Spiral(40, 2.0), false), M3dCurve::kSuccess);
    M3dCurveNurbs copy(fitted);
    copy.AccessControlPoints()[0].x += 1.0;
    EXPECT_EQ((copy.GetFirstPoint() - fitted.GetFirstPoint()).Length(), 1.0);
    constexpr std::uint32_t changes[][2] = {{3, 0}, {20, 12}, {3, 11}, {4, 11}, {3, ~0U}};
    for (const auto& [order, count] : changes) {
        M3dCurveNurbs curve;
        if (count > 0)
            curve = fitted;
        curve.SetOrder(order);
        curve.SetNumberControlPoints(count);
        Point p(1, 2, 3), v(4, 5, 6), a(7, 8, 9);
        EXPECT_EQ(curve.EvaluateAcceleration(p, v, a, 0.5), M3dCurve::kSuccess);
        EXPECT_TRUE(p == Point(1, 2, 3) && v == Point(4, 5, 6) && a == Point(7, 8, 9)) << count;
        double t = 0.25;
        std::vector<double> parameters{1, 2};
        std::uint32_t i = 9;
        for (const bool flag : {false, true}) {
            EXPECT_EQ(curve.ProjectPoint(t, p, 0.0, flag), M3dCurve::kFailure);
            EXPECT_EQ(curve.Segment(parameters, 0.1, flag), M3dCurve::kFailure);
        }
        EXPECT_TRUE(t == 0.25 && parameters.size() == 2 && !curve.BeforeKnot(i, 0.5) && i == 0);
        EXPECT_EQ(curve.Distance(p, 0.0), INFINITY);
        EXPECT_EQ(curve.GetKnot(4000000000U), 0.0);
        curve.SetOrder(3);
        curve.SetNumberControlPoints(12);
        EXPECT_EQ(std::isfinite(curve.Distance(p, 0.0)), count > 0);
    }
}

TEST(CurveObject, KnotsAndRangeAreStrict)
{
    OpenCurve curve;
    curve.SetNumberControlPoints(5);
    ASSERT_EQ(curve.Fit(Spiral(40, 0.5), false), M3dCurve::kSuccess);
    // Knots 0 0 0 1/3 2/3 1 1 1. The walk ends at knot 5 at the latest.
    const double walks[] = {-1, 0, 0.2, curve.GetKnot(3), curve.GetKnot(4), 1, 2, NAN};
    const std::uint32_t ends[] = {0, 0, 3, 3, 4, 5, 5, 0};
    for (std::size_t k = 0; k < 8; ++k) {
        std::uint32_t i = 77;
        EXPECT_EQ(curve.BeforeKnot(i, walks[k]), k == 0 || k == 2) << walks[k];
        EXPECT_EQ(i, ends[k]) << walks[k];
    }
    double t = 1.5;
    EXPECT_TRUE(curve._ParameterRangeAdjust(t) && t == 1.0 && !curve._ParameterRangeAdjust(t));
    ASSERT_EQ(curve.Fit(Spiral(41, 1.0), true), M3dCurve::kSuccess);
    t = 1.5;
    EXPECT_TRUE(!curve._ParameterRangeAdjust(t) && t == 1.5);
}

// Against the distances of 60 parameters in every span of curves with weights, with and without
// knots that coincide, also where the range leaves the knots.
TEST(Projection, NoBranchIsMissed)
{
    Random random(961);
    for (int i = 0; i < 300; ++i) {
        const int order = random.Integer(1, 9);
        const RandomCurve pattern =
            Regular(random, order, order + random.Integer(0, 30), i % 2 != 0);
        const double* const first = pattern.record.knots + order;
        const double* const last = pattern.record.knots + pattern.record.numControlPoints;
        OpenCurve curve = ObjectOf(pattern.record);
        if (i % 3 == 0 && first[0] > first[-1] && last[0] > last[-1]) {
            curve.SetMinParameter(curve.GetMinParameter() - 0.1);
            curve.SetMaxParameter(curve.GetMaxParameter() + 0.1);
        }
        std::vector<double> ends;
        ASSERT_EQ(curve._SegmentMinimal(ends), M3dCurve::kSuccess);
        for (int k = 0; k < 10; ++k) {
            const Point point = random.Point(k < 5 ? 1.0 : 3.0);
            double least = INFINITY;
            for (std::size_t s = 1; s < ends.size(); ++s) {
                for (int m = 0; m < 60; ++m) {
                    const double t = ends[s - 1] + (ends[s] - ends[s - 1]) * m / 60;
                    const double distance = (At(curve, t) - point).Length();
                    least = distance < least ? distance : least;
                }
            }
            if (!std::isfinite(least))
                continue;
            double t = NAN;
            const double distance = curve.Distance(point, 0.0, t);
            EXPECT_LE(distance, least + 1e-13) << order << ' ' << i << ' ' << t;
            EXPECT_TRUE(t >= curve.GetMinParameter() && t <= curve.GetMaxParameter());
            // The point of the curve is its own foot.
            double again = 0.0;
            EXPECT_LE(curve.Distance(At(curve, t), 0.0, again), 1e-13)
                << order << ' ' << i << ' ' << t;
        }
    }
}

// All points of a circle are equally far from its centre, which must not take forever, and a spike
// within a millionth of the range is nearest to what lies above it.
TEST(Projection, EqualDistancesAndSpikes)
{
    OpenCurve circle = Circle();
    EXPECT_NEAR(circle.Distance({0, 0, 0}, 0.0), 1.0, 8 * kEpsilon);
    EXPECT_NEAR(circle.Distance({0, 0, 1e-9}, 0.0), 1.0, 8 * kEpsilon);
    EXPECT_NEAR(circle.Distance({3, 4, 0}, 0.0), 4.0, 8 * kEpsilon);
    double knots[] = {0, 0, 0, 0, 0.5, 0.500001, 0.500002, 0.500003, 1, 1, 1, 1};
    Point4D points[8];
    for (int i = 0; i < 8; ++i)
        points[i] = {{0.3 * i, i == 4 ? 100.0 : 0.0, 0, 1}};
    const OpenCurve spike = ObjectOf({4, 8, knots, 0, 1, points});
    double t = NAN;
    EXPECT_LT(spike.Distance({1.2, 66, 0}, 0.0, t), 1.0);
    EXPECT_NEAR(t, 0.5000015, 1e-6);
    // The same far away and large, and tiny: the unit plays no part.
    for (const double size : {1e200, 1e-200}) {
        OpenCurve scaled = circle;
        for (int i = 0; i < 9; ++i) {
            Point4D& p = scaled.AccessControlPoints()[i];
            p = {{p.x * size, p.y * size, p.z * size, p.w}};
        }
        EXPECT_NEAR(scaled.Distance({3 * size, 4 * size, 0}, 0.0) / size, 4.0, 1e-14);
    }
}

TEST(Projection, StaysOnItsBranchAndCrossesTheSeam)
{
    OpenCurve loop;
    loop.SetOrder(4);
    loop.SetNumberControlPoints(40);
    ASSERT_EQ(loop.Fit(Spiral(200, 1.0), true), M3dCurve::kSuccess);
    EXPECT_LT((At(loop, 0.0) - At(loop, 1.0)).Length(), 1e-14);
    // Two minima, up and down: each keeps to its own, though the upper one is nearer.
    const Point inside(0.2, 0.1, 0.0);
    for (const auto& [from, low] :
         {std::pair(0.15, 0.2), {0.3, 0.2}, {0.85, 0.7}, {1.2, 0.2}, {-0.3, 0.7}})
    {
        double t = from;
        EXPECT_EQ(loop.ProjectPoint(t, inside, 0.0, true), M3dCurve::kSuccess);
        EXPECT_TRUE(t > low && t < low + 0.1) << from << ' ' << t;
    }
    for (const auto& [from, y] : {std::pair(0.03, -0.1), std::pair(0.97, 0.1)}) {
        double t = from;
        double global = 0.0;
        EXPECT_EQ(loop.ProjectPoint(t, {3, y, 0}, 0.0, true), M3dCurve::kSuccess);
        EXPECT_EQ(loop.ProjectPoint(global, {3, y, 0}, 0.0, false), M3dCurve::kSuccess);
        EXPECT_NEAR(t, global, 1e-14);
        EXPECT_EQ(Opaque(loop).ProjectPoint(t, {3, y, 0}, 0.0, false), M3dCurve::kSuccess);
        EXPECT_NEAR(t, global, 1e-14);
        EXPECT_EQ(t > 0.5, y < 0.0);
    }
    OpenCurve open;
    ASSERT_EQ(open.Fit(Spiral(30, 1.0), false), M3dCurve::kSuccess);
    double t = 0.97;
    EXPECT_EQ(open.ProjectPoint(t, {3, 0.1, 0}, 0.0, true), M3dCurve::kSuccess);
    EXPECT_EQ(t, 1.0);
    EXPECT_EQ(open.ProjectPoint(t, {3, NAN, 0}, 0.0, true), M3dCurve::kFailure);
    EXPECT_EQ(Opaque(open).ProjectPoint(t, At(open, 0.3), 0.0, false), M3dCurve::kSuccess);
    EXPECT_NEAR(t, 0.3, 1e-14);
    std::vector<double> feet;
    ASSERT_EQ(open.PointsToParameters(feet, {At(open, 0.3), {3, 0.1, 1}}), M3dCurve::kSuccess);
    EXPECT_NEAR(feet[0], 0.3, 1e-14);
    EXPECT_LT(feet[1], 0.01);
}

TEST(Projection, EndsNoFartherThanItBeganOnUnevenKnots)
{
    Random random(812);
    for (int round = 0; round < 2000; ++round) {
        RandomCurve uneven(random, 4, 12);
        double knot = 0.0;
        for (double& k : uneven.knots)
            k = knot += std::abs(random.LogUniform(1e-4, 10.0));
        uneven.record.startParameter = uneven.knots[3];
        uneven.record.endParameter = uneven.knots[12];
        const OpenCurve curve = ObjectOf(uneven.record);
        const Point p = random.Point(1.0);
        double t = random.Uniform(curve.GetMinParameter(), curve.GetMaxParameter());
        const double before = (At(curve, t) - p).Length();
        EXPECT_EQ(curve.ProjectPoint(t, p, 0.0, true), M3dCurve::kSuccess);
        EXPECT_LE((At(curve, t) - p).Length(), before * (1.0 + 1e-12)) << round;
    }
}

// Every point between two parameters lies within the tolerance of their chord, and a circle takes
// no more than twice the chords that it needs.
TEST(Division, ChordsStayWithinTheTolerance)
{
    Random random(962);
    int divided = 0;
    for (int i = 0; i < 200; ++i) {
        const RandomCurve record = Regular(random, random.Integer(2, 7), 20, i % 3 == 0);
        const OpenCurve curve = ObjectOf(record.record);
        std::vector<double> minimal, t;
        const double tolerance = std::abs(random.LogUniform(1e-4, 1.0));
        ASSERT_EQ(curve._SegmentMinimal(minimal), M3dCurve::kSuccess);
        // Curves that jump have no division.
        if (curve.Segment(t, tolerance, i % 2 == 0) != M3dCurve::kSuccess)
            continue;
        ++divided;
        EXPECT_TRUE(t.front() == curve.GetMinParameter() && t.back() == curve.GetMaxParameter());
        EXPECT_TRUE(i % 2 != 0 ||
                    std::includes(t.begin(), t.end(), minimal.begin(), minimal.end()));
        for (std::size_t k = 1; k < t.size(); ++k) {
            ASSERT_LT(t[k - 1], t[k]);
            const Point a = At(curve, t[k - 1]);
            const Point chord = At(curve, t[k]) - a;
            for (int m = 1; m < 8; ++m) {
                const Point p = At(curve, std::lerp(t[k - 1], t[k], m / 8.0)) - a;
                const double share = std::clamp(p.Dot(chord) / chord.LengthSquared(), 0.0, 1.0);
                EXPECT_LE((p - share * chord).Length(), tolerance + 1e-14);
            }
        }
    }
    EXPECT_GT(divided, 60);
    Points corners;
    for (const double tolerance : {0.1, 1e-3, 1e-6}) {
        EXPECT_EQ(Circle().Segment(corners, tolerance), M3dCurve::kSuccess);
        EXPECT_LE(static_cast<double>(corners.size() - 1), 8.0 * kPi / std::sqrt(8 * tolerance));
    }
    EXPECT_NEAR(Opaque(Circle())._ChordDeviation(0, 1), 1 - std::sqrt(0.5), 1e-14);
    for (const double tolerance : {0.0, -1.0, double{NAN}, 1e-300})
        EXPECT_EQ(Circle().Segment(corners, tolerance), M3dCurve::kFailure);
}

// Records, ranges, points and ellipses of any kind: every call returns, and soon.
TEST(CurveObject, AnswersToAnything)
{
    Random random(963);
    const double values[] = {0, 1, -2, NAN, INFINITY, -INFINITY, 1e308, -1e-310, 0.3, -0.4, 0.5};
    const auto n = [&] {
        return values[random.Integer(0, 10)];
    };
    for (int i = 0; i < 1000; ++i) {
        RandomCurve c(random, random.Integer(1, 25), 30);
        for (int change = 0; change < i % 12; ++change) {
            c.knots[static_cast<std::size_t>(random.Integer(0, 30))] = n();
            c.points[static_cast<std::size_t>(random.Integer(0, 29))].coordinates[i % 4] = n();
        }
        OpenCurve curve = ObjectOf(c.record);
        if (i % 3 == 0)
            curve.SetMinParameter(n());
        if (i % 5 == 0)
            curve.SetMaxParameter(n());
        double t = n();
        NURBSSurf surface{c.record.order, 30, &c.knots[0], 0,           1, 1, 1,
                          &c.knots[0],    0,  1,           &c.points[0]};
        Nurbs::Point p[6];
        EXPECT_EQ(nurbs_curv_eval(2, c.record, t, p) & ~16, 0);
        EXPECT_EQ(nurbs_surf_eval(2, &surface, {{t, 0.5}}, p) & ~16, 0);
        std::uint32_t knot = 0;
        std::vector<double> parameters;
        // A tolerance that curves of 1e308 cannot have.
        if (i % 100 == 0)
            curve.Segment(parameters, n(), false);
        curve.BeforeKnot(knot, t);
        curve.ProjectPoint(t, {n(), n(), n()}, n(), true);
        t = -7.5;
        if (curve.ProjectPoint(t, {n(), n(), n()}, n(), false) == M3dCurve::kSuccess) {
            EXPECT_TRUE(t >= curve.GetMinParameter() && t <= curve.GetMaxParameter());
        } else {
            EXPECT_EQ(t, -7.5);
        }
        curve.Fit({{n(), n(), n()}, {n(), 1, 2}, {3, n(), 4}}, i % 2 == 0);
        curve.ProjectPoint(t, {n(), n(), n()}, 0.0, false);
        MArcEllipseEquation2d arc;
        arc.Set({n(), n()}, {n(), n()}, {n(), n()});
        arc.SetAngles(n(), n());
        static_cast<void>(arc.Evaluate2d(n(), n()));
        M2dEllipseEq ellipse;
        ellipse.Set({n(), n()}, {n(), n()}, {1, 1});
        const double u = ellipse.FromXYZtoUV(n(), n(), n()).x;
        EXPECT_FALSE(u <= -kPi || u > kPi);
    }
}

} // namespace
