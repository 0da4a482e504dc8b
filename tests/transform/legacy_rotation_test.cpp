#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/legacy_rotation.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace
{

using Eigen::Vector3f;
using norvek_test::Random;
using norvek_test::Turn;
using Rows = float[3][3];

auto ToEigen(const Rows& rows)
{
    return Eigen::Map<const Eigen::Matrix<float, 3, 3, Eigen::RowMajor>>(rows[0]);
}

Vector3f RandomVector(Random& random, double size)
{
    return norvek_test::ToEigen(random.Point(size)).cast<float>();
}

// With the nearest floats to cosine and sine of the angle in float, and every step in float.
Vector3f Turned(Vector3f p, std::int32_t axis, float degrees)
{
    const long double radians = static_cast<float>(double{degrees} * 3.14159265359 / 180.0);
    const auto c = static_cast<float>(std::cos(radians));
    const auto s = static_cast<float>(std::sin(radians));
    float& i = p[(axis + 1) % 3];
    float& j = p[(axis + 2) % 3];
    const float oldI = i;
    i = i * c - j * s;
    j = oldI * s + j * c;
    return p;
}

void ExpectUndone(Vector3f angles)
{
    Rows product;
    Rows old;
    ANGLES_TO_MATRIX(old, angles.data());
    ROTEER_INVERSE(angles[0], angles[1], angles[2]);
    ANGLES_TO_MATRIX(product, angles.data());
    MATRIX_MATRIX(product, product, old);
    EXPECT_TRUE(ToEigen(product).isIdentity(2e-6F)) << angles;
}

TEST(LegacyRotation, InverseAnglesUndoEveryRotation)
{
    for (int i = 0; i < 17 * 17 * 17; ++i) {
        const Eigen::Vector3i eighths(i % 17 - 8, i / 17 % 17 - 8, i / 289 - 8);
        ExpectUndone(45.0F * eighths.cast<float>());
    }
    Random random(381);
    for (int i = 0; i < 30000; ++i) {
        const Vector3f a = RandomVector(random, 360.0);
        const auto off = static_cast<float>(random.LogUniform(1e-7, 1.0));
        ExpectUndone(a);
        ExpectUndone({a.x(), std::copysign(90.0F, a.x()) + off, a.z()});
        ExpectUndone({a.x() * 1e6F, off, a.z() * 1e35F});
    }
}

TEST(LegacyRotation, EveryRoutineHasTheBitsOfTurnsInFloat)
{
    Random random(382);
    for (int i = 0; i < 2000; ++i) {
        Vector3f a = RandomVector(random, 400.0);
        const Vector3f p = RandomVector(random, 1.0);
        const Vector3f turned = Turned(Turned(Turned(p, 2, a.z()), 1, a.y()), 0, a.x());
        const Eigen::Matrix3d turn = Turn(a.x(), 0) * Turn(a.y(), 1) * Turn(a.z(), 2);
        EXPECT_LT((turned - turn.cast<float>() * p).norm(), 3e-6F);
        Vector3f q = p;
        ROTEER_3D(q[0], q[1], q[2], a.x(), a.y(), a.z());
        EXPECT_EQ(q, turned);
        Rows m;
        ANGLES_TO_MATRIX(m, a.data());
        MATRIX_VECTOR(q.data(), m, p.data());
        EXPECT_LT((q - turned).norm(), 3e-6F);

        const std::int32_t axis = i % 3;
        const Vector3f column = ToEigen(m).col(axis);
        ROTEER_ENKEL(m, axis, a.x());
        EXPECT_EQ(ToEigen(m).col(axis), Turned(column, axis, a.x()));
        Vector3f about = p;
        ROTEER_ENKEL(about.data(), axis, a.x(), q.data());
        Vector3f expected = q + Turned(p - q, axis, a.x());
        expected[axis] = p[axis];
        EXPECT_EQ(about, expected);
        FILL_TRANSFORM(m, axis, a.x());
        EXPECT_LT((ToEigen(m) - Turn(a.x(), axis).cast<float>()).norm(), 3e-6F);
        // Of another conversion.
        const long double older = a.x() * 0.017453292F;
        EXPECT_EQ(m[(axis + 2) % 3][(axis + 1) % 3], static_cast<float>(std::sin(older)));
        // Aligned, the component of the target is positive and the other zero.
        for (const std::int32_t target : {(axis + 1) % 3, (axis + 2) % 3}) {
            ROTEER_ENKEL(q.data(), axis, GET_ALIGN_ROTATION(q.data(), axis, target));
            EXPECT_GT(q[target], 0.0F);
            EXPECT_NEAR(q[3 - axis - target], 0.0F, 1e-6F);
        }
    }
    // A sum begins with +0.
    const Rows rows = {{0.0F, 0.0F, 0.0F}, {0.0F, 0.0F, 0.0F}, {1.0F, 1.0F, 1.0F}};
    float negative[] = {-0.0F, -0.0F, -0.0F};
    MATRIX_VECTOR(negative, rows, negative);
    EXPECT_FALSE(std::signbit(negative[2]));
}

template <class Integer>
void ExpectTurned(std::array<Integer, 3> p, float az, const std::array<Integer, 3>& expected)
{
    ROTEER_3D(p[0], p[1], p[2], 0.0F, 0.0F, az);
    EXPECT_EQ(p, expected);
}

TEST(LegacyRotation, IntegerPointsRoundHalfAwayAndSaturate)
{
    ExpectTurned<short>({10, 0, 0}, 45.0F, {7, 7, 0});
    ExpectTurned<short>({-1, 3, 0}, 60.0F, {-3, 1, 0});
    ExpectTurned<short>({32767, 32767, -32768}, 45.0F, {0, 32767, -32768});
    ExpectTurned<short>({7, 8, 9}, NAN, {0, 0, 0});
    ExpectTurned<std::int32_t>({8388609, -8388609, 16777217}, 0.0F, {8388609, -8388609, 16777216});
    ExpectTurned<std::int32_t>({2147483647, -2147483647, 7}, 0.0F, {2147483647, -2147483648, 7});
}

} // namespace
