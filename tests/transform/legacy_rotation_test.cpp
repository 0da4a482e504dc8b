#include "support/random.h"

#include <norvek/transform/legacy_rotation.h>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

namespace
{

using norvek_test::Random;
using Rows = float[3][3];

Eigen::Matrix3d Wide(const Rows& rows)
{
    return Eigen::Map<const Eigen::Matrix<float, 3, 3, Eigen::RowMajor>>(rows[0]).cast<double>();
}

Eigen::Matrix3d Turn(double degrees, int axis)
{
    const double radians = degrees * std::numbers::pi / 180.0;
    return Eigen::AngleAxisd(radians, Eigen::Vector3d::Unit(axis)).toRotationMatrix();
}

Eigen::Vector3f RandomVector(Random& random, double size)
{
    const MMPoint3d<float> p(random.Point(size));
    return {p.x, p.y, p.z};
}

void ExpectUndone(float x, float y, float z)
{
    Rows product;
    Rows old;
    float angles[] = {x, y, z};
    ANGLES_TO_MATRIX(old, angles);
    ROTEER_INVERSE(angles[0], angles[1], angles[2]);
    ANGLES_TO_MATRIX(product, angles);
    MATRIX_MATRIX(product, product, old);
    const Eigen::Matrix3d off = Wide(product) - Eigen::Matrix3d::Identity();
    EXPECT_LT(off.cwiseAbs().maxCoeff(), 2e-6) << x << ' ' << y << ' ' << z;
}

TEST(LegacyRotation, InverseAnglesUndoEveryRotation)
{
    const auto eighths = [](int count) {
        return 45.0F * static_cast<float>(count - 8);
    };
    for (int i = 0; i < 17 * 17 * 17; ++i)
        ExpectUndone(eighths(i % 17), eighths(i / 17 % 17), eighths(i / 289));
    Random random(381);
    for (int i = 0; i < 30000; ++i) {
        const Eigen::Vector3f a = RandomVector(random, 360.0);
        const double off = random.LogUniform(1e-7, 1.0);
        ExpectUndone(a.x(), a.y(), a.z());
        ExpectUndone(a.x(), static_cast<float>(std::copysign(90.0, a.x()) + off), a.z());
        ExpectUndone(a.x() * 1e6F, static_cast<float>(off), a.z() * 1e35F);
    }
}

TEST(LegacyRotation, EveryRoutineTurnsInTheStatedSense)
{
    Random random(382);
    for (int i = 0; i < 2000; ++i) {
        Eigen::Vector3f a = RandomVector(random, 400.0);
        const Eigen::Vector3f p = RandomVector(random, 1.0);
        const Eigen::Matrix3d turn = Turn(a.x(), 0) * Turn(a.y(), 1) * Turn(a.z(), 2);
        const Eigen::Vector3d turned = turn * p.cast<double>();
        Rows m;
        ANGLES_TO_MATRIX(m, a.data());
        Eigen::Vector3f q = p;
        MATRIX_VECTOR(q.data(), m, q.data());
        EXPECT_LT((q.cast<double>() - turned).norm(), 3e-6);
        q = p;
        ROTEER_3D(q[0], q[1], q[2], a.x(), a.y(), a.z());
        EXPECT_LT((q.cast<double>() - turned).norm(), 3e-6);

        const std::int32_t axis = i % 3;
        const Eigen::Matrix3d single = Turn(a.x(), axis);
        ROTEER_ENKEL(m, axis, a.x());
        EXPECT_LT((Wide(m) - single * turn).norm(), 3e-6);
        FILL_TRANSFORM(m, axis, a.x());
        EXPECT_LT((Wide(m) - single).norm(), 3e-6);
        Eigen::Vector3f r = p;
        ROTEER_ENKEL(r.data(), axis, a.x(), q.data());
        EXPECT_LT((r - q - single.cast<float>() * (p - q)).norm(), 3e-6F);
        EXPECT_EQ(r[axis], p[axis]);
        // Aligned, the component of the target is positive and the other zero.
        for (const std::int32_t target : {(axis + 1) % 3, (axis + 2) % 3}) {
            ROTEER_ENKEL(q.data(), axis, GET_ALIGN_ROTATION(q.data(), axis, target));
            EXPECT_GT(q[target], 0.0F);
            EXPECT_NEAR(q[3 - axis - target], 0.0F, 1e-6F);
        }
    }
}

TEST(LegacyRotation, EveryStepIsRoundedToFloat)
{
    // A product or sum of two floats in double, rounded once, is that in float.
    const auto sum = [](float a, float b, float c, float d) {
        const auto left = static_cast<float>(double{a} * double{b});
        const auto right = static_cast<float>(double{c} * double{d});
        return static_cast<float>(double{left} + double{right});
    };
    Random random(383);
    Rows m;
    for (int i = 0; i < 2000; ++i) {
        const Eigen::Vector3f p = RandomVector(random, 300.0);
        float turn[] = {1.0F, 0.0F, 0.0F};
        ROTEER_ENKEL(turn, 2, p.z());
        // The two conversions, and the nearest floats to cosine and sine of what they give.
        const auto radians = static_cast<float>(double{p.z()} * 3.14159265359 / 180.0);
        EXPECT_EQ(turn[0], static_cast<float>(std::cos(static_cast<long double>(radians))));
        FILL_TRANSFORM(m, 2, p.z());
        const long double older = p.z() * 0.017453292F;
        EXPECT_EQ(m[1][0], static_cast<float>(std::sin(older)));
        Eigen::Vector3f q = p;
        ROTEER_3D(q[0], q[1], q[2], 0.0F, 0.0F, p.z());
        EXPECT_EQ(q[0], sum(p[0], turn[0], -p[1], turn[1]));
        EXPECT_EQ(q[1], sum(p[0], turn[1], p[1], turn[0]));
    }
    // Neither conversion makes 90 degrees exactly a quarter turn.
    FILL_TRANSFORM(m, 2, 90.0F);
    float v[] = {1.0F, -0.0F, 0.0F};
    ROTEER_ENKEL(v, 2, 90.0F);
    EXPECT_EQ(m[0][0], v[0]);
    EXPECT_NEAR(v[0], -4.37e-8F, 1e-10F);
    EXPECT_TRUE(m[0][1] == -1.0F && m[1][0] == 1.0F && v[1] == 1.0F);
    // A sum begins with +0.
    float negative[] = {-0.0F, -0.0F, -0.0F};
    m[2][0] = m[2][1] = 1.0F;
    MATRIX_VECTOR(negative, m, negative);
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
    ExpectTurned<short>({-3, 0, 5}, 0.0F, {-3, 0, 5});
    ExpectTurned<short>({-1, 3, 0}, 60.0F, {-3, 1, 0});
    ExpectTurned<short>({32767, 32767, -32768}, 45.0F, {0, 32767, -32768});
    ExpectTurned<short>({-32768, -32768, 1}, 45.0F, {0, -32768, 1});
    ExpectTurned<short>({7, 8, 9}, NAN, {0, 0, 0});
    ExpectTurned<std::int32_t>({8388609, -8388609, 16777217}, 0.0F, {8388609, -8388609, 16777216});
    ExpectTurned<std::int32_t>({2147483647, -2147483647, 7}, 0.0F, {2147483647, -2147483648, 7});
    ExpectTurned<std::int32_t>({5, 5, 5}, INFINITY, {0, 0, 0});
}

} // namespace
