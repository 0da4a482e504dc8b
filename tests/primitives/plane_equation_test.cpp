#include "support/random.h"

#include <norvek/primitives/line.h>
#include <norvek/primitives/plane.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_matrix.h>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace
{

using Plane = MMPlaneEq<double>;
using Point = MMPoint3d<double>;
using Type = Plane::MPlaneIntersectionType;

TEST(PlaneEquation, HoldsItsPointsAndIsNormalised)
{
    norvek_test::Random random(501);
    for (int i = 0; i < 300; ++i) {
        const Point p1 = random.Point(10.0);
        const Point p2 = random.Point(10.0);
        const Point p3 = random.Point(10.0);
        const Plane plane(p1, p2, p3);
        const Point normal = (p2 - p1).Cross(p3 - p1).Normalised();
        EXPECT_LT((plane.GetNormal() - normal).Length(), 1e-15);
        EXPECT_TRUE(plane.On(p1, 1e-12) && plane.On(p2, 1e-12) && plane.On(p3, 1e-12));
        // Foot and mirror image: independent of d by construction from p1.
        const Point q = random.Point(10.0);
        const double height = (q - p1).Dot(normal);
        Point out = q;
        EXPECT_NEAR(plane.Project(out, out), -height, 1e-12);
        EXPECT_LT((out - (q - height * normal)).Length(), 1e-12);
        out = q;
        EXPECT_NEAR(plane.Mirror(out, out), height, 1e-12);
        EXPECT_LT((out - (q - 2.0 * height * normal)).Length(), 1e-12);
        double t = 0.0;
        out = q;
        EXPECT_TRUE(plane.Intersect(t, out, out, q - p1));
        EXPECT_LT((out - p1).Length() + std::abs(t + 1.0), 1e-8);
        const MMPlane held(plane);
        EXPECT_NEAR(held.GetPlaneEqDouble().D(), plane.D(), 1e-13);
        // The origin lies on the axis of the largest component.
        const double largest =
            std::max({std::abs(normal.x), std::abs(normal.y), std::abs(normal.z)});
        EXPECT_NEAR(held.GetOrigin().Length(), std::abs(plane.D()) / largest, 1e-12);
    }
    EXPECT_EQ(MMPlane(Plane(2, -2, 2, 6)).GetOrigin(), Point(-3, 0, 0)); // ties: the first axis
    EXPECT_EQ(MMPlane(Plane(0, -2, 2, 6)).GetOrigin(), Point(0, 3, 0));
}

TEST(PlaneEquation, DegeneratePlanesAnswerAndInversionsDiffer)
{
    const Plane none({0, 0, 0}, {1, 1, 1}, {3, 3, 3});
    EXPECT_TRUE(none == Plane() && !none.IsPlane());
    EXPECT_TRUE(Plane(1, 0, 0, 0).IsPlane() && Plane(0, 1, 0, 0).IsPlane());
    Point out(1.0, 1.0, 1.0);
    double t = 5.0;
    EXPECT_TRUE(Plane(0, 0, 0, 4).Project(out, out) == 0.0 && out == Point());
    EXPECT_FALSE(Plane(0, 0, 2, 4).Intersect(t, out, {1, 1, 1}, {1, 0, 0}) || t != 0.0);
    EXPECT_FALSE(Plane(0, 0, 1, -3).On({0, 0, 3.5}, 0.5) || Plane(0, 0, 1, -3).On({}, 0.5));
    // The two inversions differ on purpose.
    Plane plane(0, 0, 1, -1);
    plane.InvertNormal();
    EXPECT_EQ(plane, Plane(0, 0, -1, -1));
    // Coefficients that were written directly are not normalised; a projection does without.
    plane.C() = -4.0;
    EXPECT_TRUE(plane.Project(out, {1, 2, 3}) == 13.0 / 16.0 && out == Point(1, 2, -0.25));
    plane.Invert();
    EXPECT_TRUE(plane.C() == 4.0 && plane.D() == 1.0);
    EXPECT_EQ(Plane(0.6, 0, 0.8, 2).Inverted(), Plane(-0.6, 0, -0.8, -2));
}

TEST(PlaneEquation, TwoPlanesMeet)
{
    const Plane ground(0, 0, 1, -3);
    Point point(9.0, 9.0, 9.0);
    Point direction(9.0, 9.0, 9.0);
    const auto meet = [&](const Plane& a, const Plane& b, double tolerance) {
        return a.IntersectWithPlane(point, direction, b, tolerance);
    };
    EXPECT_EQ(meet(ground, Plane(0, 0, 1, 3), 1e-9), Type::Parallel);
    EXPECT_EQ(meet(ground, ground.Inverted(), 1e-9), Type::Coincident);
    EXPECT_EQ(meet(ground, ground, 0.0), Type::Parallel);
    EXPECT_TRUE(direction == Point() && point == Point(9.0, 9.0, 9.0));

    // Each of the three attempts in turn; the tolerance is held against the raw determinant.
    const std::tuple<Plane, Plane, double Point::*> cases[] = {
        {{1, 2, 3, 4}, {2, -1, 5, 6}, &Point::z},
        {{1, 0, 3, 4}, {2, 0, -5, 6}, &Point::y},
        {{0, 1, 3, 4}, {0, 2, -5, 6}, &Point::x}};
    for (const auto& [a, b, zeroed] : cases) {
        EXPECT_TRUE(meet(a, b, 1e-9) == Type::Line && point.*zeroed == 0.0);
        for (const Point& on : {point, point + 10.0 * direction})
            EXPECT_TRUE(a.On(on, 1e-13) && b.On(on, 1e-13));
        EXPECT_NE(meet(a, b, 1.0), Type::Line);
    }
}

TEST(PlaneEquation, MovesWithItsPointsToSinglePrecision)
{
    norvek_test::Random random(502);
    MMTransformMatrix matrix;
    for (int i = 0; i < 200; ++i) {
        const Point foot = random.Point(10.0);
        Plane plane(foot, random.Point(1.0));
        matrix.MakeRotation(random.Point(5.0), random.Point(1.0), random.Uniform(-3.0, 3.0));
        const Point normal = matrix(plane.GetNormal(), true);
        plane.Transform(matrix);
        EXPECT_LT((plane.GetNormal() - normal).Length(), 1e-7);
        EXPECT_NEAR(plane.Distance(matrix(foot, false)), 0.0, 1e-5);
    }
    // The foot is rounded: 0.1 is not a float. The normal may have any length.
    Plane plane(0, 0, 1, -0.2);
    plane.C() = 2.0;
    plane.Transform(MMTransformMatrix());
    EXPECT_EQ(plane.D(), -static_cast<double>(0.1F));
    // An uneven scale carries the normal as a direction, not by the inverse transpose.
    matrix.MakeScale3D(2.0, 1.0, 1.0);
    plane.Set(1, 1, 0, 0);
    plane.Transform(matrix);
    EXPECT_NEAR(plane.A(), 2.0 * plane.B(), 1e-7);
    // The origin goes to infinity: nothing changes.
    matrix.SetElement(3, 3, 0.0, false);
    matrix.VerifyAndSetClass();
    const Plane before = plane;
    EXPECT_THROW(plane.Transform(matrix), MMTransformException);
    EXPECT_EQ(plane, before);
}

TEST(Plane, IsParallelMeasuresPlanesRawAndLinesByAngle)
{
    MMPlane flat;
    flat.SetNormal({0, 0, 100});
    MMPlane tilted;
    tilted.SetNormal({1e-3, 2e-3, 1});
    EXPECT_TRUE(!flat.IsParallel(tilted, 0.3) && flat.IsParallel(tilted, 0.31));
    const MMLine rising({1, 1, 1}, {1 + 5 * std::cos(0.01), 1, 1 + 5 * std::sin(0.01)});
    EXPECT_TRUE(!flat.IsParallel(rising, 0.0099) && flat.IsParallel(rising, 0.0101));
}

} // namespace
