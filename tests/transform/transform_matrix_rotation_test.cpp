#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/transform_matrix.h>

#include <gtest/gtest.h>

#include <limits>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

Point Column(const MMTransformMatrix& matrix, unsigned short i)
{
    Point column;
    matrix.GetColumn(column, i);
    return column;
}

// Decomposes and rebuilds, in both orders; `rotation` itself and with scaled columns.
void ExpectRebuilt(const MMTransformMatrix& rotation, const Point& scale)
{
    MMTransformMatrix scaled;
    scaled.MakeTransformation({1, 2, 3}, Column(rotation, 0) * scale.x,
                              Column(rotation, 1) * scale.y, Column(rotation, 2) * scale.z);
    Point a;
    MMTransformMatrix rebuilt;
    ASSERT_TRUE(scaled.GetRotationXYZ(a.x, a.y, a.z));
    rebuilt.MakeRotationXYZ(a.x, a.y, a.z);
    EXPECT_LT(Difference(Part(rebuilt), Part(rotation)), 1e-13) << a;
    ASSERT_TRUE(scaled.GetRotationZYX(a.x, a.y, a.z));
    rebuilt.MakeRotationZYX(a.x, a.y, a.z);
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
        const Point scale(std::abs(random.LogUniform(1e-6, 1e6)), 1.0, 3.0);
        rotation.MakeRotationXYZ(random.Uniform(-180, 180), ay, random.Uniform(-180, 180));
        ExpectRebuilt(rotation, scale);
        rotation.MakeRotationZYX(random.Uniform(-180, 180), ay, random.Uniform(-180, 180));
        ExpectRebuilt(rotation, scale);
    }
    Point a;
    rotation.MakeRotationXYZ(30.0, 90.0, 40.0);
    EXPECT_TRUE(rotation.GetRotationXYZ(a.x, a.y, a.z));
    EXPECT_EQ(a.z, 0.0);
    rotation.MakeRotationXYZ(-170.0, 80.0, 12.5);
    EXPECT_TRUE(rotation.GetRotationXYZ(a.x, a.y, a.z));
    EXPECT_LT(Distance(a, {-170.0, 80.0, 12.5}), 1e-11);
}

TEST(EulerAngles, RefuseWhatIsNoRotation)
{
    const Point x(1, 0, 0);
    const Point y(0, 1, 0);
    const Point z(0, 0, 1);
    const Point columns[][3] = {{x, Point(), z},
                                {x, y, -z},
                                {x, Point(1e-3, 1, 0), z},
                                {Point(kNan, 0, 0), y, z},
                                {x, y, 1e308 * 10.0 * z}};
    for (const auto& c : columns) {
        MMTransformMatrix matrix;
        matrix.MakeTransformation({}, c[0], c[1], c[2]);
        Point a(7.0, 8.0, 9.0);
        EXPECT_FALSE(matrix.GetRotationXYZ(a.x, a.y, a.z));
        EXPECT_FALSE(matrix.GetRotationZYX(a.x, a.y, a.z));
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
        const Point normal = from.Cross(to);
        if (normal.Length() > 1e-6) {
            const Point unit = normal.Normalised();
            EXPECT_LT(Distance(matrix(unit, true), unit), 1e-9);
        }
    }
}

TEST(RotationInPlane, OppositeDirectionsTurnAboutTheNormalGiven)
{
    MMTransformMatrix matrix;
    EXPECT_TRUE(matrix.MakeRotationInPlane({2, 0, 0}, {-5, 0, 0}, {0, 0, 3}));
    EXPECT_LT(Distance(matrix(Point(0.0, 1.0, 2.0), true), {0.0, -1.0, 2.0}), 1e-15);
    // A normal that is not perpendicular counts with the part that is.
    EXPECT_TRUE(matrix.MakeRotationInPlane({1, 2, 3}, {-1, -2, -3}, {4, 2, 2}));
    EXPECT_LT(Distance(matrix(Point(3.0, 0.0, -1.0), true), {3.0, 0.0, -1.0}), 1e-14);

    const Point directions[] = {{1e-17, 0, 0}, {}, {kNan, 0, 0}, {0, 1e308 * 10.0, 0}};
    for (const Point& degenerate : directions) {
        EXPECT_FALSE(matrix.MakeRotationInPlane(degenerate, {1, 0, 0}, {0, 1, 0}));
        EXPECT_FALSE(matrix.MakeRotationInPlane({1, 0, 0}, degenerate, {0, 1, 0}));
    }
    EXPECT_GT(matrix.Determinant(), 0.9);
    EXPECT_TRUE(matrix.MakeRotationInPlane({1.5e308, 1.5e308, 0}, {0, 0, 1}, {}));
    EXPECT_LT(Distance(matrix(Point(1.0, 1.0, 0.0), true), {0.0, 0.0, std::sqrt(2.0)}), 1e-15);
}

TEST(MakeOrthoNormal, KeepsTheXAxisAndTheHandedness)
{
    Random random(333);
    for (int i = 0; i < 1000; ++i) {
        const Point x = random.Point(1.0) * std::abs(random.LogUniform(1e-150, 1e150));
        // Often nearly in line with x.
        const Point y = x * 2.0 + random.Point(x.Length() * std::abs(random.LogUniform(1e-9, 1.0)));
        const Point z = random.Point(1.0);
        MMTransformMatrix matrix;
        matrix.MakeTransformation({1, 2, 3}, x, y, z);
        const bool right = x.Normalised().Cross(y.Normalised()).Dot(z) > 0.0;
        ASSERT_TRUE(matrix.MakeOrthoNormal());
        EXPECT_TRUE(matrix.IsOrthoNormal()) << x << y << z;
        EXPECT_LT(Distance(Column(matrix, 0), x.Normalised()), 1e-15);
        EXPECT_NEAR(matrix.Determinant(), right ? 1.0 : -1.0, 1e-14);
        EXPECT_EQ(Column(matrix, 3), Point(1.0, 2.0, 3.0));
    }
    const Point flat[][3] = {{{1, 2, 3}, {2, 4, 6}, {0, 0, 1}},
                             {{1, 0, 0}, {0, 1, 0}, {1, 1, 0}},
                             {{1, 0, 0}, {0, 1, 0}, {0, kNan, 1}},
                             {{}, {0, 1, 0}, {0, 0, 1}}};
    for (const auto& c : flat) {
        MMTransformMatrix matrix;
        matrix.MakeTransformation({}, c[0], c[1], c[2]);
        EXPECT_FALSE(matrix.MakeOrthoNormal());
        EXPECT_EQ(Column(matrix, 1), c[1]);
    }
}

TEST(SetRotationCenter, FixesThePoint)
{
    Random random(334);
    for (int i = 0; i < 200; ++i) {
        MMTransformMatrix matrix;
        matrix.MakeTransformation(random.Point(1), random.Point(1), random.Point(1), {1, 2, 3});
        if (i % 2 == 0)
            matrix.Transpose();
        const MMTransformMatrix before = matrix;
        const Point center = random.Point(5.0);
        EXPECT_TRUE(matrix.SetRotationCenter(center));
        EXPECT_LT(Distance(matrix(center, false), center), 1e-11);
        EXPECT_EQ(Part(matrix), Part(before));
    }
    const double projective[16] = {1, 0, 0, 7, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0};
    MMTransformMatrix matrix;
    matrix.MakeFromDouble16(projective);
    EXPECT_FALSE(matrix.SetRotationCenter({1.0, 1.0, 0.0}));
    EXPECT_EQ(Column(matrix, 3).x, 7.0);
}

} // namespace
