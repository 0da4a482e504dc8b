#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/bounds/axes_binded.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Centre, axes and translation side by side: which member differs shows in the message.
std::array<Point, 5> Members(const M3DAxesBinded& f)
{
    return {f.Center(), f.X_Axis(), f.Y_Axis(), f.Z_Axis(), f.Translation()};
}

Point Local(const M3DAxesBinded& frame, Point p)
{
    frame._TransformPointToLocalSystem(p);
    return p;
}

// Both matrices over an old one that would leave its traces: world to frame bit for bit, and back.
void ExpectMatricesAgree(const M3DAxesBinded& frame, Random& random)
{
    MMTransformMatrix to = Load({1, 2, 3, 4, 0, 1, 2, 3, 5, 0, 1, 2, 1, 2, 3, 4});
    MMTransformMatrix from = to;
    frame.GetTransformation(to);
    frame.GetTransformationTo(from);
    EXPECT_TRUE(to.IsInversible() && from.IsInversible() && !from.IsHomogeneous());
    EXPECT_EQ(Elements(to), Elements(from, true));
    EXPECT_EQ(Elements(to, true), Elements(from));
    EXPECT_LT(InverseError(to), 1e-12);
    for (int i = 0; i < 5; ++i) {
        const Point p = random.Point(100.0);
        EXPECT_EQ(to(p, false), Local(frame, p));
        EXPECT_LT(Distance(from(Local(frame, p), false), p), 1e-9);
    }
}

TEST(AxesBinded, NormalChoosesThePerpendicularByItsFirstLargeCoordinate)
{
    const double h = std::sqrt(0.5);
    const double d = 1.0 / std::sqrt(3.0); // just above the threshold, so the last rule applies
    const Point cases[][4] = {{{0, 0, 2}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                              {{3, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
                              {{1, 1, 0}, {0, 0, 1}, {h, -h, 0}, {h, h, 0}},
                              {{1, 1, 1}, {-d * h, -d * h, 2 * d * h}, {h, -h, 0}, {d, d, d}},
                              {{0, 1e300, 1e300}, {1, 0, 0}, {0, h, -h}, {0, h, h}}};
    M3DAxesBinded frame;
    for (const Point(&c)[4] : cases) {
        frame.SetNormal(c[0]);
        EXPECT_LT(Distance(frame.X_Axis(), c[1]), 1e-15) << c[0];
        EXPECT_LT(Distance(frame.Y_Axis(), c[2]), 1e-15) << c[0];
        EXPECT_LT(Distance(frame.Z_Axis(), c[3]), 1e-15) << c[0];
    }
    frame.SetNormal(Point());
    EXPECT_TRUE(std::isnan(frame.X_Axis().x) && std::isnan(frame.Translation().y));
    MMTransformMatrix matrix;
    frame.GetTransformationTo(matrix);
    EXPECT_FALSE(matrix.IsInversible());
}

TEST(AxesBinded, FramesOfRandomNormalsAreRigidAndConvertBothWays)
{
    Random random(501);
    for (int i = 0; i < 300; ++i) {
        M3DAxesBinded frame;
        frame.SetNormal(random.Point(1.0) * std::abs(random.LogUniform(1e-300, 1e300)));
        frame.SetCenter(random.Point(50.0));
        EXPECT_LT(Distance(frame.X_Axis().Cross(frame.Y_Axis()), frame.Z_Axis()), 1e-14);
        EXPECT_LT(Local(frame, frame.Center()).Length(), 1e-13);
        ExpectMatricesAgree(frame, random);
        MMTransformMatrix matrix;
        frame.GetTransformationTo(matrix);
        EXPECT_EQ(matrix(Point(), false), frame.Center());
        // Skewed, mirrored and of uneven length, and with the translation of other axes.
        frame.SetXZAxes(random.Point(1.0), random.Point(1.0));
        frame.SetZAxis(random.Point(1.0));
        ExpectMatricesAgree(frame, random);
        const Point translation = frame.Translation();
        frame.GenerateXYZ();
        EXPECT_EQ(frame.Translation(), translation);
        EXPECT_EQ(Members(M3DAxesBinded(frame)), Members(frame));
        ExpectMatricesAgree(frame, random);
    }
}

TEST(AxesBinded, GeneratorsNormaliseWhatTheySay)
{
    const double h = std::sqrt(0.75);
    M3DAxesBinded f;
    f.SetXZAxes({5, 0, 0}, {0.5, 0, h}); // at 60 degrees: Y keeps the sine as its length
    EXPECT_NEAR(f.Y_Axis().y, h, 1e-15);
    f.GenerateX(); // from Y of that length
    EXPECT_NEAR(f.X_Axis().Length(), 1.0, 1e-15);
    f.SetXYAxes({0, 2, 0}, {0, h, 0.5});
    EXPECT_LT(Distance(f.Z_Axis(), {1, 0, 0}), 1e-15);
    f.SetXAxis(Point());
    EXPECT_EQ(f.X_Axis(), Point());
    f.SetCenter({1, 2, 3});
    f.SetXAxis({0, 0, kInfinity});
    EXPECT_TRUE(std::isnan(f.X_Axis().z));
    f.Initialize();
    EXPECT_EQ(Members(f), Members(M3DAxesBinded()));
    M2DAxesBinded flat;
    flat.Initialize();
    EXPECT_TRUE(flat.Origin() == MMPoint2d<double>(0, 0) &&
                flat.X_Axis() == MMPoint2d<double>(1, 0) &&
                flat.Y_Axis() == MMPoint2d<double>(0, 1));
}

TEST(AxesBinded, OwnMembersAreArgumentsLikeCopies)
{
    M3DAxesBinded f;
    f.SetCenter({1, 2, 3});
    f.SetXYAxes({1, 2, 2}, {2, 1, -2});
    const M3DAxesBinded g = f;
    const auto expectSame = [&](auto set) {
        M3DAxesBinded own = g;
        M3DAxesBinded other = g;
        set(own, own);
        set(other, g);
        EXPECT_EQ(Members(own), Members(other));
    };
    expectSame([](auto& a, const auto& b) { a.SetXYAxes(b.Y_Axis(), b.X_Axis()); });
    expectSame([](auto& a, const auto& b) { a.SetXZAxes(b.Z_Axis(), b.Center()); });
    expectSame([](auto& a, const auto& b) { a.SetYZAxes(b.Z_Axis(), b.Y_Axis()); });
    expectSame([](auto& a, const auto& b) { a.SetXYZAxes(b.Z_Axis(), b.X_Axis(), b.Y_Axis()); });
    expectSame([](auto& a, const auto& b) { a.SetNormal(b.X_Axis()); });
    expectSame([](auto& a, const auto& b) { a.SetCenter(b.Translation()); });
}

TEST(AxesBinded, FrameWithoutInverseSaysSoAndMapsWhatItReaches)
{
    M3DAxesBinded frame;
    frame.SetXYZAxes({0.6, 0.8, 0}, {-0.8, 0.6, 0}, Point());
    frame.SetCenter({1, 2, 3});
    MMTransformMatrix matrix;
    frame.GetTransformation(matrix);
    EXPECT_FALSE(matrix.IsInversible());
    const Point local = Local(frame, {4, 6, 3});
    EXPECT_EQ(matrix(Point(4, 6, 3), false), local);
    frame.GetTransformationTo(matrix);
    EXPECT_FALSE(matrix.IsInversible());
    EXPECT_LT(Distance(matrix(local, false), {4, 6, 3}), 1e-14);
}

} // namespace
