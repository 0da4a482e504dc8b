#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/transform_exception.h>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <limits>
#include <numbers>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Point Column(const MMTransformMatrix& matrix, unsigned short i)
{
    Point column;
    matrix.GetColumn(column, i);
    return column;
}

Eigen::Matrix3d Turn(double degrees, int axis)
{
    const Eigen::AngleAxisd turn(degrees * std::numbers::pi / 180.0, Eigen::Vector3d::Unit(axis));
    return turn.toRotationMatrix();
}

TEST(Makers, EulerRotationsTurnInTheirOrder)
{
    Random random(321);
    for (int i = 0; i < 200; ++i) {
        const Point a = random.Point(400.0);
        const Point center = random.Point(100.0);
        const Eigen::Matrix3d xyz = Turn(a.z, 2) * Turn(a.y, 1) * Turn(a.x, 0);
        const Eigen::Matrix3d zyx = Turn(a.x, 0) * Turn(a.y, 1) * Turn(a.z, 2);
        MMTransformMatrix matrix = Load({9, 0, 0, 8, 7, 6, 0, 5, 4, 0, 3, 2});
        EXPECT_TRUE(matrix.MakeRotationXYZ(center, a.x, a.y, a.z));
        EXPECT_LT(Difference(Part(matrix), xyz), 1e-14);
        EXPECT_LT(Distance(matrix(center, false), center), 1e-12);
        EXPECT_TRUE(matrix.IsOrthoNormal() && matrix.IsInversible());
        MMTransformMatrix second;
        EXPECT_TRUE(second.MakeRotationZYX(center, a.x, a.y, a.z));
        EXPECT_LT(Difference(Part(second), zyx), 1e-14);
        EXPECT_LT(Distance(second(center, false), center), 1e-12);
        // Applied to a transform, a rotation turns its translation as well.
        EXPECT_TRUE(second.MakeRotationZYX(a.x, a.y, a.z));
        const Matrix4 product = Elements(second) * Elements(matrix);
        EXPECT_TRUE(matrix.DoRotationZYX(a.x, a.y, a.z));
        EXPECT_LT(Difference(Elements(matrix), product), 1e-12);
    }
}

TEST(Makers, AxisAngleIsInRadiansAndAcceptsAnyLength)
{
    Random random(322);
    for (int i = 0; i < 300; ++i) {
        const Point axis = random.Point(1.0);
        const Point center = random.Point(10.0);
        const double angle = random.Uniform(-7.0, 7.0);
        const Eigen::Vector3d unit = Eigen::Vector3d(axis.x, axis.y, axis.z).normalized();
        const Eigen::Matrix3d expected = Eigen::AngleAxisd(angle, unit).toRotationMatrix();
        MMTransformMatrix matrix;
        for (const double scale : {1.0, 1e200, 1e-200}) {
            EXPECT_TRUE(matrix.MakeRotation(center, axis * scale, angle));
            EXPECT_LT(Difference(Part(matrix), expected), 1e-14);
            EXPECT_LT(Distance(matrix(center, false), center), 1e-13);
            EXPECT_LT(InverseError(matrix), 1e-13);
        }
        EXPECT_FALSE(matrix.MakeRotation(Point(), Point(), 1.0));
        EXPECT_LT(Difference(Part(matrix), expected), 1e-14);
    }
    // The centre goes through a projective bottom row, which stays, as a direction.
    MMTransformMatrix matrix = Load({1, 0, 0, 7, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 3});
    EXPECT_TRUE(matrix.MakeRotation({1.0, 0.0, 2.0}, {0.0, 0.0, 1.0}, 0.0));
    const Matrix4 moved = Elements(Load({1, 0, 0, 0.5, 0, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 3}));
    EXPECT_EQ(Elements(matrix), moved);
    EXPECT_THROW(matrix.MakeRotation({1.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, 1.0), MMTransformException);
    EXPECT_EQ(Elements(matrix), moved);
}

TEST(Makers, RotationOfAMatrixRoundsRowLengthsToSinglePrecision)
{
    const MMTransformMatrix source = Load({1, 2, 3, 4, 5, 6, 8, 5, 0.3, 0.2, 0.1, 6, 0, 0, 1, 7});
    Matrix4 matrix = Elements(source);
    Matrix4 inverse = Elements(source, true);
    for (int i = 0; i < 3; ++i) {
        const volatile float length = static_cast<float>(matrix.row(i).head<3>().norm());
        matrix.row(i) /= length;
        inverse.col(i) *= length;
    }
    matrix.col(3) << 0, 0, 0, 1;
    matrix.row(3) << 0, 0, 0, 1;
    inverse.row(3) << 0, 0, 0, 1;
    MMTransformMatrix rotation;
    EXPECT_TRUE(rotation.MakeRotation(source) && rotation.IsHomogeneous());
    EXPECT_LT(Difference(Elements(rotation), matrix), 1e-15);
    EXPECT_LT(Difference(Elements(rotation, true), inverse), 1e-14);
}

TEST(Makers, FramesMapLocalCoordinates)
{
    MMTransformMatrix frame;
    EXPECT_TRUE(frame.MakeTransformation({1, 2, 3}, {2, 0, 0}, {0, 0, 1}, {0, 1, 1}));
    EXPECT_EQ(frame(Point(1.0, 10.0, 100.0), false), Point(3.0, 102.0, 113.0));
    Random random(323);
    for (int i = 0; i < 200; ++i) {
        const Point origin = random.Point(50.0);
        const Point point = random.Point(50.0);
        const auto expectAxis = [&](bool made, const Point& axis) {
            EXPECT_TRUE(made && frame.IsOrthoNormal() && frame(Point(), false) == origin);
            EXPECT_LT(Distance(frame(axis, true), (point - origin).Normalised()), 1e-14);
        };
        expectAxis(frame.MakeNewXAxis(origin, point), {1.0, 0.0, 0.0});
        expectAxis(frame.MakeNewYAxis(origin, point), {0.0, 1.0, 0.0});
        expectAxis(frame.MakeNewZAxis(origin, point), {0.0, 0.0, 1.0});
    }
    EXPECT_TRUE(frame.MakeNewZAxis({1, 2, 3}, {1, 2, 3}));
    EXPECT_EQ(Elements(frame), Elements(Load({1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3})));
}

TEST(Makers, ProjectionsMapTheirBox)
{
    MMTransformMatrix matrix;
    EXPECT_TRUE(matrix.MakeOrthoGraphicProjection(0, 2, 0, 2, 0, 2));
    EXPECT_EQ(matrix(Point(2.0, 0.0, 0.0), false), Point(1.0, 1.0, 1.0));
    EXPECT_FALSE(matrix.MakeOrthoGraphicProjection(0, 1, 2, 2, 0, 2));
    EXPECT_FALSE(matrix.MakePerspectiveProjection(0, 1, 0, 2, 3, 3, 9));
    EXPECT_FALSE(matrix.MakePerspectiveProjection(1, 1, 0, 2, 3, 4, 9));
    EXPECT_EQ(matrix(Point(1.0, 1.0, 1.0), false), Point());

    // The window of the near plane, and the middle of the far one, seen from z = 9.
    EXPECT_TRUE(matrix.MakePerspectiveProjection(-1, 3, -2, 4, -10, 4, 9));
    EXPECT_LT(Distance(matrix(Point(-1.0, -2.0, 4.0), false), {-1.0, 1.0, -1.0}), 1e-14);
    EXPECT_LT(Distance(matrix(Point(3.0, 4.0, 4.0), false), {1.0, -1.0, -1.0}), 1e-14);
    EXPECT_NEAR(matrix(Point(0.0, 0.0, -10.0), false).z, 1.0, 1e-14);
    EXPECT_LT(InverseError(matrix), 1e-14);
}

// Decomposes and rebuilds, in both orders, from columns of any length.
void ExpectRebuilt(const MMTransformMatrix& rotation, double scale)
{
    MMTransformMatrix scaled;
    scaled.MakeTransformation({1, 2, 3}, Column(rotation, 0) * scale, Column(rotation, 1),
                              Column(rotation, 2) * 3.0);
    Point a;
    MMTransformMatrix rebuilt;
    ASSERT_TRUE(scaled.GetRotationXYZ(a.x, a.y, a.z) && rebuilt.MakeRotationXYZ(a.x, a.y, a.z));
    EXPECT_LT(Difference(Part(rebuilt), Part(rotation)), 1e-13) << a;
    ASSERT_TRUE(scaled.GetRotationZYX(a.x, a.y, a.z) && rebuilt.MakeRotationZYX(a.x, a.y, a.z));
    EXPECT_LT(Difference(Part(rebuilt), Part(rotation)), 1e-13) << a;
}

TEST(EulerAngles, RebuildTheRotationAtAndNearGimbalLock)
{
    Random random(331);
    MMTransformMatrix rotation;
    for (int i = 0; i < 2000; ++i) {
        // From far away down to exactly at the pole, at either pole.
        const double off = i % 5 == 0 ? 0.0 : random.LogUniform(1e-17, 1e2);
        const double ay = (i % 2 == 0 ? 90.0 : -90.0) + off;
        const double scale = std::abs(random.LogUniform(1e-6, 1e6));
        rotation.MakeRotationXYZ(random.Uniform(-180, 180), ay, random.Uniform(-180, 180));
        ExpectRebuilt(rotation, scale);
        rotation.MakeRotationZYX(random.Uniform(-180, 180), ay, random.Uniform(-180, 180));
        ExpectRebuilt(rotation, scale);
    }
    Point a;
    rotation.MakeRotationXYZ(30.0, 90.0, 40.0);
    EXPECT_TRUE(rotation.GetRotationXYZ(a.x, a.y, a.z) && a.z == 0.0);
    for (const auto& rows :
         std::vector<std::vector<double>>{{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0},
                                          {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0},
                                          {1, 1e-3, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
                                          {1, 0, 1e-3, 0, 0, 1, 0, 0, 0, 0, 1, 0},
                                          {1, 0, 0, 0, 0, 1, -1e-3, 0, 0, 0, 1, 0},
                                          {kNan, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
                                          {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, kInfinity, 0}})
    {
        const MMTransformMatrix none = Load(rows);
        a = {7.0, 8.0, 9.0};
        EXPECT_FALSE(none.GetRotationXYZ(a.x, a.y, a.z) || none.GetRotationZYX(a.x, a.y, a.z));
        EXPECT_EQ(a, Point(7.0, 8.0, 9.0));
    }
}

TEST(RotationInPlane, TurnsOneDirectionOntoTheOther)
{
    Random random(332);
    MMTransformMatrix matrix;
    for (int i = 0; i < 3000; ++i) {
        const Point from = random.Point(1.0).Normalised();
        // Close to, and exactly, equal or opposite directions are the hard ones.
        const double off = i % 7 == 0 ? 0.0 : std::abs(random.LogUniform(1e-18, 1.0));
        const Point to = (i % 3 == 0 ? from : -from) + random.Point(off);
        const double scale = std::abs(random.LogUniform(1e-10, 1e10));
        ASSERT_TRUE(matrix.MakeRotationInPlane(from * scale, to, i % 2 == 0 ? Point() : from));
        EXPECT_TRUE(matrix.IsOrthoNormal()) << from << to;
        EXPECT_LT(Distance(matrix(from, true), to.Normalised()), 2e-15) << from << to;
        // Within their plane: its normal stays where it is.
        const Point normal = from.Cross(to).Length() > 1e-6 ? from.Cross(to) : Point();
        EXPECT_LE(Distance(matrix(normal, true), normal), 1e-9 * normal.Length());
    }
    // Opposite directions turn about the normal, or the part of it that is perpendicular.
    EXPECT_TRUE(matrix.MakeRotationInPlane({1, 2, 3}, {-1, -2, -3}, {4, 2, 2}));
    EXPECT_LT(Distance(matrix(Point(3.0, 0.0, -1.0), true), {3.0, 0.0, -1.0}), 1e-14);
    for (const Point& none : {Point(1e-17, 0, 0), Point(kNan, 0, 0), Point(0, kInfinity, 0)}) {
        EXPECT_FALSE(matrix.MakeRotationInPlane(none, {1, 0, 0}, {0, 1, 0}));
        EXPECT_FALSE(matrix.MakeRotationInPlane({1, 0, 0}, none, {0, 1, 0}));
    }
    EXPECT_GT(matrix.Determinant(), 0.9);
    EXPECT_TRUE(matrix.MakeRotationInPlane({1.5e308, 1.5e308, 0}, {0, 0, 1}, {}));
    EXPECT_LT(Distance(matrix(Point(1.0, 1.0, 0.0), true), {0.0, 0.0, std::sqrt(2.0)}), 1e-15);
}

TEST(MakeOrthoNormal, KeepsTheXAxisAndTheHandedness)
{
    Random random(333);
    MMTransformMatrix matrix;
    for (int i = 0; i < 1000; ++i) {
        const Point x = random.Point(1.0) * std::abs(random.LogUniform(1e-150, 1e150));
        // Often nearly in line with x.
        const Point y = x * 2.0 + random.Point(x.Length() * std::abs(random.LogUniform(1e-9, 1.0)));
        const Point z = random.Point(1.0);
        matrix.MakeTransformation({1, 2, 3}, x, y, z);
        const bool right = x.Normalised().Cross(y.Normalised()).Dot(z) > 0.0;
        ASSERT_TRUE(matrix.MakeOrthoNormal());
        EXPECT_TRUE(matrix.IsOrthoNormal()) << x << y << z;
        EXPECT_LT(Distance(Column(matrix, 0), x.Normalised()), 1e-15);
        EXPECT_NEAR(matrix.Determinant(), right ? 1.0 : -1.0, 1e-14);
        EXPECT_EQ(Column(matrix, 3), Point(1.0, 2.0, 3.0));
    }
    for (const auto& rows : std::vector<std::vector<double>>{{1, 2, 0, 0, 2, 4, 0, 0, 3, 6, 1, 0},
                                                             {1, 0, 1, 0, 0, 2, 1, 0, 0, 0, 0, 0},
                                                             {1, 0, 0, 0, 0, 2, 9, 0, 0, 0, 0, 0}})
    {
        matrix = Load(rows);
        EXPECT_FALSE(matrix.MakeOrthoNormal());
        EXPECT_EQ(matrix.GetElement(1, 1, false), rows[5]);
    }
}

TEST(SetRotationCenter, FixesThePoint)
{
    Random random(334);
    MMTransformMatrix matrix;
    for (int i = 0; i < 200; ++i) {
        matrix.MakeTransformation(random.Point(1), random.Point(1), random.Point(1), {1, 2, 3});
        if (i % 2 == 0)
            matrix.Transpose();
        const Eigen::Matrix3d before = Part(matrix);
        const Point center = random.Point(5.0);
        EXPECT_TRUE(matrix.SetRotationCenter(center) && Part(matrix) == before);
        EXPECT_LT(Distance(matrix(center, false), center), 1e-11);
    }
    matrix = Load({1, 0, 0, 7, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0});
    EXPECT_FALSE(matrix.SetRotationCenter({1.0, 1.0, 0.0}));
    EXPECT_EQ(Column(matrix, 3).x, 7.0);
}

} // namespace
