#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/transform_exception.h>

#include <gtest/gtest.h>

#include <cmath>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;

Point Column(const MMTransformMatrix& matrix, unsigned short i)
{
    Point column;
    matrix.GetColumn(column, i);
    return column;
}

void ExpectTurn(MMTransformMatrix matrix, const Eigen::Matrix3d& turn, const Point& center)
{
    EXPECT_LT(Difference(Part(matrix), turn), 1e-14);
    EXPECT_LT(Distance(matrix(center, false), center), 1e-14 * center.Length());
    EXPECT_LT(InverseError(matrix), 1e-14 * center.Length());
    EXPECT_TRUE(matrix.IsOrthoNormal() && matrix.IsInversible());
}

TEST(Makers, RotationsTurnAboutTheirCentre)
{
    Random random(321);
    for (int i = 0; i < 300; ++i) {
        const Point a = random.Point(400.0);
        const Point center = random.Point(100.0);
        const Eigen::Matrix3d xyz = Turn(a.z, 2) * Turn(a.y, 1) * Turn(a.x, 0);
        MMTransformMatrix matrix = Load({9, 0, 0, 8, 7, 6, 0, 5, 4, 0, 3, 2});
        EXPECT_TRUE(matrix.MakeRotationXYZ(center, a.x, a.y, a.z));
        ExpectTurn(matrix, xyz, center);
        MMTransformMatrix second;
        EXPECT_TRUE(second.MakeRotationZYX(center, a.x, a.y, a.z));
        ExpectTurn(second, Turn(a.x, 0) * Turn(a.y, 1) * Turn(a.z, 2), center);
        // Applied to a transform, a rotation turns its translation as well.
        EXPECT_TRUE(second.MakeRotationZYX(a.x, a.y, a.z));
        const Matrix4 product = Elements(second) * Elements(matrix);
        EXPECT_TRUE(matrix.DoRotationZYX(a.x, a.y, a.z));
        EXPECT_LT(Difference(Elements(matrix), product), 1e-12);
        // The axis may have any length, and the angle is in radians.
        const Eigen::Matrix3d aboutAxis =
            Eigen::AngleAxisd(a.x / 50.0, ToEigen(a).normalized()).toRotationMatrix();
        MMTransformMatrix turned;
        for (const double scale : {1.0, 1e200, 1e-200}) {
            EXPECT_TRUE(turned.MakeRotation(center, a * scale, a.x / 50.0));
            ExpectTurn(turned, aboutAxis, center);
        }
        EXPECT_FALSE(turned.MakeRotation(Point(), Point(), 1.0));
        EXPECT_TRUE(turned.SetRotationCenter(a));
        ExpectTurn(turned, aboutAxis, a);
    }
    // The centre goes through a projective bottom row, which stays, as a direction.
    MMTransformMatrix matrix = Load({1, 0, 0, 7, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 3});
    EXPECT_TRUE(matrix.MakeRotation({1.0, 0.0, 2.0}, {0.0, 0.0, 1.0}, 0.0));
    const Matrix4 moved = Elements(Load({1, 0, 0, 0.5, 0, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 3}));
    EXPECT_EQ(Elements(matrix), moved);
    EXPECT_THROW(matrix.MakeRotation({1.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, 1.0), MMTransformException);
    EXPECT_EQ(Elements(matrix), moved);
    EXPECT_TRUE(matrix.SetRotationCenter({1.0, 2.0, 4.0}));
    EXPECT_EQ(matrix(Point(1.0, 2.0, 4.0), false), Point(1.0, 2.0, 4.0));
    EXPECT_FALSE(matrix.SetRotationCenter({1.0, 2.0, -3.0}));
    EXPECT_EQ(Column(matrix, 3), Point(6.0, 12.0, 24.0));
}

TEST(Makers, RotationOfAMatrixRoundsRowLengthsToSinglePrecision)
{
    const MMTransformMatrix source = Load({1, 2, 3, 4, 5, 6, 8, 5, 0.3, 0.2, 0.1, 6, 0, 0, 1, 7});
    Matrix4 matrix = Matrix4::Identity();
    Matrix4 inverse = Elements(source, true);
    for (int i = 0; i < 3; ++i) {
        const Eigen::RowVector3d row = Part(source).row(i);
        const volatile auto length = static_cast<float>(row.norm());
        matrix.row(i).head<3>() = row / length;
        inverse.col(i) *= length;
    }
    inverse.row(3) << 0, 0, 0, 1;
    MMTransformMatrix rotation;
    EXPECT_TRUE(rotation.MakeRotation(source) && rotation.IsHomogeneous());
    EXPECT_LT(Difference(Elements(rotation), matrix), 1e-15);
    EXPECT_LT(Difference(Elements(rotation, true), inverse), 1e-14);
}

TEST(Makers, FramesMapLocalCoordinates)
{
    MMTransformMatrix frame;
    Random random(323);
    for (int i = 0; i < 200; ++i) {
        const Point origin = random.Point(50.0);
        const Point point = random.Point(50.0);
        for (unsigned short axis = 0; axis < 3; ++axis) {
            EXPECT_TRUE(axis == 0   ? frame.MakeNewXAxis(origin, point)
                        : axis == 1 ? frame.MakeNewYAxis(origin, point)
                                    : frame.MakeNewZAxis(origin, point));
            EXPECT_TRUE(frame.IsOrthoNormal() && frame(Point(), false) == origin);
            EXPECT_LT(Distance(Column(frame, axis), (point - origin).Normalised()), 1e-14);
        }
    }
    EXPECT_TRUE(frame.MakeNewZAxis({1, 2, 3}, {1, 2, 3}));
    EXPECT_EQ(Elements(frame), Elements(Load({1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3})));
}

TEST(Makers, ProjectionsMapTheirBox)
{
    MMTransformMatrix matrix;
    EXPECT_TRUE(matrix.MakeOrthoGraphicProjection(0, 2, 0, 2, 0, 2));
    EXPECT_FALSE(matrix.MakeOrthoGraphicProjection(0, 1, 2, 2, 0, 2));
    EXPECT_FALSE(matrix.MakePerspectiveProjection(0, 1, 0, 2, 3, 3, 9));
    EXPECT_FALSE(matrix.MakePerspectiveProjection(1, 1, 0, 2, 3, 4, 9));
    EXPECT_EQ(matrix(Point(2.0, 0.0, 0.0), false), Point(1.0, 1.0, 1.0));

    // The window of the near plane, and the middle of the far one, seen from z = 9.
    EXPECT_TRUE(matrix.MakePerspectiveProjection(-1, 3, -2, 4, -10, 4, 9));
    EXPECT_LT(Distance(matrix(Point(-1.0, -2.0, 4.0), false), {-1.0, 1.0, -1.0}), 1e-14);
    EXPECT_LT(Distance(matrix(Point(3.0, 4.0, 4.0), false), {1.0, -1.0, -1.0}), 1e-14);
    EXPECT_NEAR(matrix(Point(0.0, 0.0, -10.0), false).z, 1.0, 1e-14);
    EXPECT_LT(InverseError(matrix), 1e-14);
}

TEST(EulerAngles, RebuildTheRotationAtAndNearGimbalLock)
{
    Random random(331);
    MMTransformMatrix rotation;
    MMTransformMatrix scaled;
    Point a;
    for (int i = 0; i < 4000; ++i) {
        // From far away down to exactly at the pole, at either pole of either order.
        const double off = i % 5 == 0 ? 0.0 : random.LogUniform(1e-17, 1e2);
        const Point angles(random.Uniform(-180, 180), (i % 2 == 0 ? 90.0 : -90.0) + off,
                           random.Uniform(-180, 180));
        if (i % 4 < 2)
            rotation.MakeRotationXYZ(angles.x, angles.y, angles.z);
        else
            rotation.MakeRotationZYX(angles.x, angles.y, angles.z);
        const Eigen::Matrix3d expected = Part(rotation);
        // Columns of any length.
        const double scale = std::abs(random.LogUniform(1e-6, 1e6));
        scaled.MakeTransformation({1, 2, 3}, Column(rotation, 0) * scale, Column(rotation, 1),
                                  Column(rotation, 2) * 3.0);
        ASSERT_TRUE(scaled.GetRotationXYZ(a.x, a.y, a.z));
        rotation.MakeRotationXYZ(a.x, a.y, a.z);
        EXPECT_LT(Difference(Part(rotation), expected), 1e-13) << angles;
        ASSERT_TRUE(scaled.GetRotationZYX(a.x, a.y, a.z));
        rotation.MakeRotationZYX(a.x, a.y, a.z);
        EXPECT_LT(Difference(Part(rotation), expected), 1e-13) << angles;
    }
    rotation.MakeRotationXYZ(30.0, 90.0, 40.0);
    EXPECT_TRUE(rotation.GetRotationXYZ(a.x, a.y, a.z) && a.z == 0.0);
    // What one element in place of the identity's makes of it is no rotation.
    const std::pair<std::size_t, double> faults[] = {
        {5, 0.0}, {10, -1.0}, {1, 1e-3}, {2, 1e-3}, {6, -1e-3}, {0, NAN}, {10, INFINITY}};
    for (const auto& [index, value] : faults) {
        std::vector<double> rows = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
        rows[index] = value;
        a = {7.0, 8.0, 9.0};
        EXPECT_FALSE(Load(rows).GetRotationXYZ(a.x, a.y, a.z) ||
                     Load(rows).GetRotationZYX(a.x, a.y, a.z));
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
    for (const Point& none : {Point(1e-17, 0, 0), Point(NAN, 0, 0), Point(0, INFINITY, 0)}) {
        EXPECT_FALSE(matrix.MakeRotationInPlane(none, {1, 0, 0}, {0, 1, 0}));
        EXPECT_FALSE(matrix.MakeRotationInPlane({1, 0, 0}, none, {0, 1, 0}));
    }
    EXPECT_LT(Distance(matrix(Point(3.0, 0.0, -1.0), true), {3.0, 0.0, -1.0}), 1e-14);
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
    // Neither from two columns in line nor from three in a plane.
    for (const std::vector<double>& flat :
         {std::vector<double>{1, 2, 0, 0, 2, 4, 0, 0, 3, 6, 1, 0},
          std::vector<double>{1, 0, 1, 0, 0, 2, 1, 0, 0, 0, 0, 0}})
    {
        matrix = Load(flat);
        EXPECT_FALSE(matrix.MakeOrthoNormal());
        EXPECT_EQ(matrix.GetElement(1, 1, false), flat[5]);
    }
}

} // namespace
