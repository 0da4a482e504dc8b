#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/bounds/axes_binded.h>

#include <gtest/gtest.h>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;

// The matrices, loaded over one that would leave its traces: there bit for bit, and back.
void ExpectMatricesAgree(const M3DAxesBinded& frame, const Point& p)
{
    MMTransformMatrix to = Load({1, 2, 3, 4, 0, 1, 2, 3, 5, 0, 1, 2, 1, 2, 3, 5});
    MMTransformMatrix from = to;
    frame.GetTransformation(to);
    frame.GetTransformationTo(from);
    EXPECT_TRUE(to.IsInversible() && from.IsInversible());
    EXPECT_TRUE(Elements(to) == Elements(from, true) && Elements(to, true) == Elements(from));
    Point local = p;
    frame._TransformPointToLocalSystem(local);
    EXPECT_EQ(to(p, false), local);
    EXPECT_LT(Distance(from(local, false), p), 1e-9);
    EXPECT_LT(InverseError(to), 1e-9);
}

TEST(AxesBinded, NormalChoosesThePerpendicularByItsFirstLargeCoordinate)
{
    const double h = std::sqrt(0.5);
    const double d = std::sqrt(1.0 / 3.0);
    // (1, 1, 1) lies just above the threshold.
    const Point cases[][3] = {{{0, 0, 2}, {1, 0, 0}, {0, 1, 0}},
                              {{3, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                              {{1, 1, 0}, {0, 0, 1}, {h, -h, 0}},
                              {{1, 1, 1}, {-d * h, -d * h, 2 * d * h}, {h, -h, 0}},
                              {{0, 1e300, 1e300}, {1, 0, 0}, {0, h, -h}}};
    M3DAxesBinded frame;
    for (const Point(&c)[3] : cases) {
        frame.SetNormal(c[0]);
        EXPECT_LT(Distance(frame.X_Axis(), c[1]), 1e-15) << c[0];
        EXPECT_LT(Distance(frame.Y_Axis(), c[2]), 1e-15) << c[0];
    }
    frame.SetNormal(Point());
    EXPECT_TRUE(std::isnan(frame.X_Axis().x) && frame.Z_Axis() == Point());
}

TEST(AxesBinded, FramesConvertBothWaysWhateverTheirAxes)
{
    M3DAxesBinded turned;
    turned.SetXYZAxes({-1, 0, 0}, {0, -1, 0}, {0, 0, -1}); // a uniform scale, whose inverse is lazy
    ExpectMatricesAgree(turned, {1, 2, 3});
    Random random(501);
    for (int i = 0; i < 300; ++i) {
        const Point p = random.Point(100.0);
        M3DAxesBinded frame;
        frame.SetNormal(random.Point(1.0) * std::abs(random.LogUniform(1e-300, 1e300)));
        frame.SetCenter(random.Point(50.0));
        EXPECT_LT(Distance(frame.X_Axis().Cross(frame.Y_Axis()), frame.Z_Axis()), 1e-14);
        ExpectMatricesAgree(frame, p);
        MMTransformMatrix matrix;
        frame.GetTransformationTo(matrix);
        EXPECT_EQ(matrix(Point(), false), frame.Center());
        // Skewed, mirrored and of uneven length; then with the translation of the axes before.
        for (const auto set :
             {&M3DAxesBinded::SetXAxis, &M3DAxesBinded::SetYAxis, &M3DAxesBinded::SetZAxis})
        {
            (frame.*set)(random.Point(1.0));
            Point center = frame.Center();
            frame._TransformPointToLocalSystem(center);
            EXPECT_LT(center.Length(), 1e-13);
        }
        frame.GenerateY();
        ExpectMatricesAgree(frame, p);
        const Point translation = frame.Translation();
        frame.GenerateXYZ();
        EXPECT_EQ(M3DAxesBinded(frame).Translation(), translation);
        ExpectMatricesAgree(frame, p);
    }
}

TEST(AxesBinded, GeneratorsNormaliseWhatTheySay)
{
    const double h = std::sqrt(0.75);
    M3DAxesBinded f;
    f.SetXZAxes({5, 0, 0}, {0.5, 0, h}); // at 60 degrees: Y keeps the sine as its length
    EXPECT_NEAR(f.Y_Axis().y, h, 1e-15);
    f.GenerateX();
    EXPECT_NEAR(f.X_Axis().Length(), 1.0, 1e-15);
    f.SetXYAxes({0, 2, 0}, {0, h, 0.5});
    EXPECT_LT(Distance(f.Z_Axis(), {1, 0, 0}), 1e-15);
}

TEST(AxesBinded, OwnMembersAreArgumentsLikeCopies)
{
    M3DAxesBinded g;
    g.SetCenter({1, 2, 3});
    g.SetXYAxes({1, 2, 2}, {2, 1, -2});
    const auto expectSame = [&g](auto set) {
        M3DAxesBinded own = g;
        M3DAxesBinded other = g;
        set(own, own);
        set(other, g);
        EXPECT_TRUE(own.X_Axis() == other.X_Axis() && own.Y_Axis() == other.Y_Axis() &&
                    own.Z_Axis() == other.Z_Axis() && own.Translation() == other.Translation());
    };
    expectSame([](auto& a, const auto& b) { a.SetXYAxes(b.Y_Axis(), b.X_Axis()); });
    expectSame([](auto& a, const auto& b) { a.SetXZAxes(b.Z_Axis(), b.Center()); });
    expectSame([](auto& a, const auto& b) { a.SetYZAxes(b.Z_Axis(), b.Y_Axis()); });
    expectSame([](auto& a, const auto& b) { a.SetNormal(b.X_Axis()); });
}

TEST(AxesBinded, FrameWithoutInverseSaysSoAndMapsWhatItReaches)
{
    M3DAxesBinded frame;
    frame.SetXYZAxes({0.6, 0.8, 0}, {-0.8, 0.6, 0}, Point());
    frame.SetCenter({1, 2, 3});
    MMTransformMatrix matrix;
    frame.GetTransformation(matrix);
    EXPECT_FALSE(matrix.IsInversible());
    const Point local = matrix(Point(4, 6, 3), false);
    frame.GetTransformationTo(matrix);
    EXPECT_FALSE(matrix.IsInversible());
    EXPECT_LT(Distance(matrix(local, false), {4, 6, 3}), 1e-14);
}

} // namespace
