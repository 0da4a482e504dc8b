#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_matrix.h>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <numbers>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;

constexpr double kDegree = std::numbers::pi / 180.0;

Eigen::Matrix3d Turn(double degrees, const Eigen::Vector3d& axis)
{
    return Eigen::AngleAxisd(degrees * kDegree, axis).toRotationMatrix();
}

TEST(TransformMatrixMakers, EulerRotationsTurnInTheirOrder)
{
    Random random(321);
    const Eigen::Vector3d x = Eigen::Vector3d::UnitX();
    const Eigen::Vector3d y = Eigen::Vector3d::UnitY();
    const Eigen::Vector3d z = Eigen::Vector3d::UnitZ();
    for (int i = 0; i < 200; ++i) {
        const double ax = random.Uniform(-400.0, 400.0);
        const double ay = random.Uniform(-400.0, 400.0);
        const double az = random.Uniform(-400.0, 400.0);
        const Eigen::Matrix3d xyz = Turn(az, z) * Turn(ay, y) * Turn(ax, x);
        const Eigen::Matrix3d zyx = Turn(ax, x) * Turn(ay, y) * Turn(az, z);
        MMTransformMatrix matrix;
        matrix.MakeScale1D(9.0);
        EXPECT_TRUE(matrix.MakeRotationXYZ(ax, ay, az));
        EXPECT_LT(Difference(Part(matrix), xyz), 1e-14);
        EXPECT_TRUE(matrix.IsOrthoNormal() && matrix.IsInversible());
        EXPECT_TRUE(matrix.DoRotationZYX(ax, ay, az));
        EXPECT_LT(Difference(Part(matrix), zyx * xyz), 1e-14);

        const Point center = random.Point(100.0);
        EXPECT_TRUE(matrix.MakeRotationZYX(center, ax, ay, az));
        EXPECT_LT(Difference(Part(matrix), zyx), 1e-14);
        EXPECT_LT(Distance(matrix(center, false), center), 1e-12);
    }
    // A rotation applied to a transform turns its translation as well.
    MMTransformMatrix moved;
    moved.MakeTranslation({1.0, 0.0, 0.0});
    moved.DoRotationXYZ(0.0, 0.0, 90.0);
    EXPECT_LT(Distance(moved(Point(), false), {0.0, 1.0, 0.0}), 1e-15);
}

TEST(TransformMatrixMakers, AxisAngleIsInRadiansAndAcceptsAnyLength)
{
    Random random(322);
    for (int i = 0; i < 300; ++i) {
        const Point direction = random.Point(1.0);
        const Point center = random.Point(10.0);
        const double angle = random.Uniform(-7.0, 7.0);
        const Eigen::Vector3d axis(direction.x, direction.y, direction.z);
        const Eigen::Matrix3d expected =
            Eigen::AngleAxisd(angle, axis.normalized()).toRotationMatrix();
        MMTransformMatrix matrix;
        for (const double scale : {1.0, 1e200, 1e-200}) {
            EXPECT_TRUE(matrix.MakeRotation(center, direction * scale, angle));
            EXPECT_LT(Difference(Part(matrix), expected), 1e-14);
            EXPECT_LT(Distance(matrix(center, false), center), 1e-13);
            EXPECT_TRUE(matrix.IsOrthoNormal());
        }
        EXPECT_FALSE(matrix.MakeRotation(Point(), Point(), 1.0));
        EXPECT_LT(Difference(Part(matrix), expected), 1e-14);
    }
}

// The centre goes through a projective bottom row as a direction.
TEST(TransformMatrixMakers, AxisAngleKeepsTheBottomRow)
{
    const double rows[16] = {1, 0, 0, 7, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 3};
    MMTransformMatrix matrix;
    matrix.MakeFromDouble16(rows);
    EXPECT_TRUE(matrix.MakeRotation({1.0, 0.0, 2.0}, {0.0, 0.0, 1.0}, 0.0));
    EXPECT_EQ(matrix.GetElement(3, 3, false), 3.0);
    EXPECT_EQ(matrix.GetElement(0, 3, false), 1.0 - 1.0 / 2.0);
    EXPECT_THROW(matrix.MakeRotation({1.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, 1.0), MMTransformException);
    EXPECT_EQ(Part(matrix), Eigen::Matrix3d::Identity());
    EXPECT_EQ(matrix.GetElement(0, 3, false), 0.5);
}

TEST(TransformMatrixMakers, RotationOfAMatrixRoundsRowLengthsToSinglePrecision)
{
    const double rows[12] = {0, -1.0 / 3.0, 0, 4, 1.0 / 3.0, 0, 0, 5, 0, 0, 1.0 / 3.0, 6};
    MMTransformMatrix source;
    source.MakeFromDouble12(rows);
    MMTransformMatrix rotation;
    EXPECT_TRUE(rotation.MakeRotation(source));
    const volatile float length = 1.0F / 3.0F;
    EXPECT_EQ(rotation.GetElement(1, 0, false), 1.0 / 3.0 / static_cast<double>(length));
    EXPECT_EQ(rotation.GetElement(1, 0, true),
              source.GetElement(1, 0, true) * static_cast<double>(length));
    EXPECT_EQ(rotation.GetElement(0, 3, false), 0.0);
    // Class and the inverse's translation are those of the source.
    EXPECT_EQ(rotation.IsOrthoNormal(), source.IsOrthoNormal());
    EXPECT_EQ(rotation.GetElement(0, 3, true), source.GetElement(0, 3, true));
}

TEST(TransformMatrixMakers, FramesMapLocalCoordinates)
{
    MMTransformMatrix frame;
    EXPECT_TRUE(frame.MakeTransformation({1, 2, 3}, {2, 0, 0}, {0, 0, 1}, {0, 1, 1}));
    EXPECT_EQ(frame(Point(1.0, 10.0, 100.0), false), Point(3.0, 102.0, 113.0));

    Random random(323);
    for (int i = 0; i < 200; ++i) {
        const Point origin = random.Point(50.0);
        const Point point = random.Point(50.0);
        const Point direction = (point - origin).Normalised();
        const auto expectAxis = [&](bool made, const Point& axis) {
            EXPECT_TRUE(made && frame.IsOrthoNormal());
            EXPECT_LT(Distance(frame(axis, true), direction), 1e-14);
            EXPECT_EQ(frame(Point(), false), origin);
        };
        expectAxis(frame.MakeNewXAxis(origin, point), {1.0, 0.0, 0.0});
        expectAxis(frame.MakeNewYAxis(origin, point), {0.0, 1.0, 0.0});
        expectAxis(frame.MakeNewZAxis(origin, point), {0.0, 0.0, 1.0});
    }
    EXPECT_TRUE(frame.MakeNewZAxis({1, 2, 3}, {1, 2, 3}));
    EXPECT_EQ(Part(frame), Eigen::Matrix3d::Identity());
    EXPECT_EQ(frame(Point(), false), Point(1.0, 2.0, 3.0));
}

TEST(TransformMatrixMakers, ProjectionsMapTheirBox)
{
    MMTransformMatrix matrix;
    EXPECT_TRUE(matrix.MakeOrthoGraphicProjection(0, 2, 0, 2, 0, 2));
    EXPECT_EQ(matrix(Point(1.0, 1.0, 1.0), false), Point());
    EXPECT_EQ(matrix(Point(2.0, 0.0, 0.0), false), Point(1.0, 1.0, 1.0));
    EXPECT_FALSE(matrix.MakeOrthoGraphicProjection(1, 1, 0, 2, 0, 2));
    EXPECT_FALSE(matrix.MakePerspectiveProjection(0, 1, 0, 2, 3, 3, 9));
    EXPECT_EQ(matrix(Point(1.0, 1.0, 1.0), false), Point());

    // The window of the near plane, and the middle of the far one, seen from z = 9.
    EXPECT_TRUE(matrix.MakePerspectiveProjection(-1, 3, -2, 2, -10, 4, 9));
    EXPECT_LT(Distance(matrix(Point(-1.0, -2.0, 4.0), false), {-1.0, 1.0, -1.0}), 1e-14);
    EXPECT_LT(Distance(matrix(Point(3.0, 2.0, 4.0), false), {1.0, -1.0, -1.0}), 1e-14);
    EXPECT_NEAR(matrix(Point(0.0, 0.0, -10.0), false).z, 1.0, 1e-14);
}

} // namespace
