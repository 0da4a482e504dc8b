#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/ortho_transform.h>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Eigen::Vector3d ToEigen(const Point& p)
{
    return {p.x, p.y, p.z};
}

bool HaveEqualBits(const MMOrthoTransform& a, const MMOrthoTransform& b)
{
    bool equal = true;
    for (unsigned short i = 0; i < 12; ++i)
        equal = equal && a.GetElement(i / 4, i % 4) == b.GetElement(i / 4, i % 4);
    return equal;
}

// The greatest distance of the images of a few points from those under `expected`.
double Difference(const MMOrthoTransform& transform, const Eigen::Isometry3d& expected)
{
    double difference = 0.0;
    for (const Point& p : {Point(), Point(1, 2, -3), Point(-7, 0.5, 1)}) {
        Point image;
        Point turned = p;
        Point back;
        transform.Transform(image, p);
        transform.Rotate(turned, turned);
        transform.InverseTransform(back, image);
        const Eigen::Vector3d q = ToEigen(p);
        difference = std::max({difference, Distance(back, p), //
                               (ToEigen(image) - expected * q).norm(),
                               (ToEigen(turned) - expected.linear() * q).norm()});
    }
    return difference;
}

TEST(OrthoTransform, MovesLikeTheSameIsometry)
{
    Random random(341);
    for (int i = 0; i < 300; ++i) {
        const Point axis = random.Point(1.0);
        const Point center = random.Point(10.0);
        const Point offset = random.Point(10.0);
        const double angle = random.Uniform(-7.0, 7.0);
        const double length = random.LogUniform(1e-300, 1e300);
        Eigen::Isometry3d turn(Eigen::AngleAxisd(angle, ToEigen(axis).normalized()));
        turn =
            Eigen::Translation3d(ToEigen(center)) * turn * Eigen::Translation3d(-ToEigen(center));
        MMOrthoTransform a;
        a.MakeRotation(center, length < 0.0 ? axis : axis * length, angle, true);
        EXPECT_LT(Difference(a, turn), 1e-13);
        EXPECT_TRUE(a.Verify());
        MMOrthoTransform b;
        b.MakeRotation(Point(), axis.Normalised(), angle, false);
        b.SetRotationCenter(center);
        EXPECT_TRUE(a == b);

        b.Translate(offset);
        a.Concatenate(b);
        const Eigen::Isometry3d moved = Eigen::Translation3d(ToEigen(offset)) * turn * turn;
        EXPECT_LT(Difference(a, moved), 1e-13);
        const MMOrthoTransform copy = a;
        b = a;
        b.Concatenate(copy);
        a.Concatenate(a);
        EXPECT_TRUE(HaveEqualBits(a, b));
        EXPECT_LT(Difference(a, moved * moved), 1e-12);
    }
}

TEST(OrthoTransform, KeepsWhatItIsGivenAndDoesNotTurnWithoutAnAxis)
{
    const double elements[] = {1, 2, 3, 10, 4, 5, 6, 11, 7, 8, 9, 12};
    MMOrthoTransform a;
    MMOrthoTransform b;
    a.SetFrom12Elements(elements);
    b.MakeTransformation({10, 11, 12}, {1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    EXPECT_TRUE(HaveEqualBits(a, b));
    for (const Point& axis : {Point(), Point(kNan, 1, 0), Point(0, 0, kNan)})
        a.MakeRotation({1, 1, 1}, axis, 1.0, true);
    EXPECT_TRUE(HaveEqualBits(a, b));
    a.Translation()[1] = 0.0;
    Point image;
    a.Transform(image, {1, 0, 0});
    EXPECT_EQ(image, Point(11, 4, 19));
    a.MakeIdentity();
    EXPECT_TRUE(a.IsSmall(1e-300, 1e-300));
    // A translation is a product, in which zero times infinity has its say.
    a.Translation()[0] = kInfinity;
    a.Translate({1, 1, 1});
    EXPECT_TRUE(a.GetElement(0, 3) == kInfinity && std::isnan(a.GetElement(1, 3)));
}

TEST(OrthoTransform, BoundsPassOrFailAsStated)
{
    MMOrthoTransform a;
    const auto reflection = [&a](double z) {
        a.MakeTransformation({}, {1, 0, 0}, {0, 1, 0}, {0, 0, z});
        return a.Verify();
    };
    EXPECT_TRUE(reflection(-1.0) && !a.Keeps2DOrientation());
    EXPECT_FALSE(reflection(1.0 + 1e-11) || reflection(kNan));
    a.MakeTransformation({}, {1, 1.1102230246251565e-12, 0}, {0, 1, 0}, {0, 0, 1});
    EXPECT_TRUE(a.Verify());
    a.MakeTransformation({}, {1, 1.1102230246251567e-12, 0}, {0, 1, 0}, {0, 0, 1});
    EXPECT_FALSE(a.Verify());

    const MMOrthoTransform identity;
    EXPECT_TRUE(identity.IsSmall(1e-9, 1e-9) && !identity.IsSmall(0.0, 1.0));
    for (unsigned short i = 0; i < 12; ++i) {
        const double limit = i % 4 < 3 ? 1.4901161193847656e-07 : 1.4901161193847656e-06;
        double e[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
        const auto set = [&](double value) {
            e[i] = (i % 5 == 0 ? 1.0 : 0.0) + value;
            a.SetFrom12Elements(e);
        };
        set(limit); // exact also beside 1
        EXPECT_FALSE(a == identity || a.IsSmall(limit, limit)) << i;
        EXPECT_TRUE(a.IsSmall(i % 4 < 3 ? 1.0 : 1e-12, i % 4 < 3 ? 1e-12 : 1.0)) << i;
        set(-0.99 * limit);
        EXPECT_TRUE(a == identity && a.IsSmall(limit, limit)) << i;
        set(kNan);
        EXPECT_FALSE(a == a || a.IsSmall(1.0, 1.0)) << i;
    }
}

TEST(OrthoTransform, BecomesAMatrixThatAddsTheRoundedTranslation)
{
    MMOrthoTransform rigid;
    rigid.MakeRotation({}, {1, 2, 3}, 0.7, true);
    rigid.SetTranslation({0.1, 1e300, -3.0});
    MMTransformMatrix matrix;
    EXPECT_TRUE(matrix.Make(rigid));
    EXPECT_EQ(matrix.GetElement(0, 3, false), 0.10000000149011612);
    EXPECT_EQ(matrix.GetElement(1, 3, false), kInfinity);
    EXPECT_EQ(matrix.GetElement(2, 3, false), -3.0);
    rigid.SetTranslation({0.1, 2.0, -3.0});
    // A translation that is there stays, times the corner of a projective bottom row.
    matrix = Load({9, 8, 7, 5, 0, 5, 0, 6, 0, 0, 0, 7, 0, 0, 1, 2});
    matrix.Make(rigid);
    EXPECT_TRUE(matrix.IsOrthoNormal() && matrix.IsInversible() && !matrix.IsHomogeneous());
    for (unsigned short i = 0; i < 9; ++i)
        EXPECT_EQ(matrix.GetElement(i / 3, i % 3, false), rigid.GetElement(i / 3, i % 3));
    EXPECT_EQ(matrix(Point(), false), Point(5.0 + 2.0 * 0.10000000149011612, 10.0, 1.0));
    EXPECT_LT(InverseError(matrix), 1e-14);
    // Singular and only that.
    rigid.MakeTransformation({}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0});
    EXPECT_TRUE(matrix.Make(rigid) && !matrix.IsInversible());
}

TEST(OrthoTransform, VectorsGetTheBitsOfOnePointAtATime)
{
    Random random(342);
    MMOrthoTransform rigid;
    rigid.MakeRotation(random.Point(5.0), random.Point(1.0), 2.0, true);
    std::vector<Point> in(100003);
    std::vector<Point> expected(in.size());
    for (std::size_t i = 0; i < in.size(); ++i) {
        in[i] = random.Point(1e3);
        rigid.Transform(expected[i], in[i]);
    }
    std::vector<Point> out;
    rigid.Transform(out, in);
    EXPECT_EQ(std::memcmp(out.data(), expected.data(), in.size() * sizeof(Point)), 0);
    rigid.Transform(in);
    EXPECT_EQ(std::memcmp(in.data(), expected.data(), in.size() * sizeof(Point)), 0);
}

} // namespace
