#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/bounds/axes_binded.h>

#include <gtest/gtest.h>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;
using Frame = M3DAxesBinded;

// The matrices, loaded over one that would leave its traces: there bit for bit, and back.
void ExpectMatricesAgree(const Frame& frame, const Point& p)
{
    MMTransformMatrix to = Load({1, 2, 3, 4, 0, 1, 2, 3, 5, 0, 1, 2, 1, 2, 3, 5});
    MMTransformMatrix from = to;
    frame.GetTransformation(to);
    frame.GetTransformationTo(from);
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
    Frame frame;
    for (const auto& [normal, x, y] : cases) {
        frame.SetNormal(normal);
        EXPECT_LT(Distance(frame.X_Axis(), x) + Distance(frame.Y_Axis(), y), 1e-15) << normal;
    }
    frame.SetNormal(Point());
    EXPECT_TRUE(std::isnan(frame.X_Axis().x) && frame.Z_Axis() == Point());
}

TEST(AxesBinded, FramesConvertBothWaysWhateverTheirAxes)
{
    Frame frame;
    frame.SetXYZAxes({-1, 0, 0}, {0, -1, 0}, {0, 0, -1}); // a uniform scale, whose inverse is lazy
    ExpectMatricesAgree(frame, {1, 2, 3});
    Random random(501);
    for (int i = 0; i < 300; ++i) {
        const Point p = random.Point(100.0);
        const auto expectCentreAtOrigin = [&] {
            MMTransformMatrix matrix;
            frame.GetTransformationTo(matrix);
            EXPECT_EQ(matrix(Point(), false), frame.Center());
            ExpectMatricesAgree(frame, p);
        };
        frame.SetNormal(random.Point(1.0) * std::abs(random.LogUniform(1e-300, 1e300)));
        frame.SetCenter(random.Point(50.0));
        EXPECT_LT(Distance(frame.X_Axis().Cross(frame.Y_Axis()), frame.Z_Axis()), 1e-14);
        expectCentreAtOrigin();
        // Skewed, mirrored and of uneven length; then with the translation of the axes before.
        const Point axes[] = {random.Point(9.0), random.Point(9.0), random.Point(9.0)};
        frame.SetXAxis(axes[0]);
        expectCentreAtOrigin();
        frame.SetYAxis(axes[1]);
        expectCentreAtOrigin();
        frame.SetZAxis(axes[2]);
        Frame atOnce = frame;
        atOnce.SetXYZAxes(axes[0], axes[1], axes[2]);
        EXPECT_TRUE(frame.X_Axis() == atOnce.X_Axis() && frame.Y_Axis() == atOnce.Y_Axis() &&
                    frame.Z_Axis() == atOnce.Z_Axis());
        expectCentreAtOrigin();
        frame.GenerateY();
        expectCentreAtOrigin();
        const Point translation = frame.Translation();
        frame.GenerateXYZ();
        EXPECT_TRUE(Frame(frame).Translation() == translation && frame.X_Axis() == Point(1, 0, 0));
        ExpectMatricesAgree(frame, p);
    }
}

TEST(AxesBinded, GeneratorsNormaliseWhatTheySay)
{
    const double h = std::sqrt(0.75);
    Frame f;
    f.SetXZAxes({5, 0, 0}, {0.5, 0, h}); // at 60 degrees: Y keeps the sine as its length
    EXPECT_NEAR(f.Y_Axis().y, h, 1e-15);
    f.GenerateX();
    EXPECT_NEAR(f.X_Axis().Length(), 1.0, 1e-15);
    f.SetXYAxes({0, 2, 0}, {0, h, 0.5});
    EXPECT_LT(Distance(f.Z_Axis(), {1, 0, 0}), 1e-15);
    // Own axes are arguments like copies.
    const Frame before = f;
    f.SetXYZAxes(f.Z_Axis(), f.X_Axis(), f.Y_Axis());
    EXPECT_TRUE(f.X_Axis() == before.Z_Axis() && f.Y_Axis() == before.X_Axis());
    EXPECT_LT(Distance(f.Z_Axis(), before.Y_Axis()), 1e-15);
}

TEST(AxesBinded, FrameWithoutInverseSaysSoAndMapsWhatItReaches)
{
    const Point x(0.6, 0.8, 0.0);
    const Point y(-0.48, 0.36, 0.8);
    Frame frame;
    frame.SetXYZAxes(x, y, x);
    frame.SetCenter({1, 2, 3});
    MMTransformMatrix matrix;
    frame.GetTransformation(matrix);
    EXPECT_FALSE(matrix.IsInversible());
    EXPECT_LT(Distance(matrix(Point(1, 2, 3) + 5.0 * y, false), {0, 5, 0}), 1e-14);
    frame.GetTransformationTo(matrix);
    EXPECT_FALSE(matrix.IsInversible());
    EXPECT_LT(Distance(matrix(Point(4, 5, 6), false), Point(1, 2, 3) + 10.0 * x + 5.0 * y), 1e-14);
}

} // namespace
