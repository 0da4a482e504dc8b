#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/ortho_transform.h>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;
using Values = std::vector<double>;

Eigen::Vector3d ToEigen(const Point& p)
{
    return {p.x, p.y, p.z};
}

// From the rows of [R | t], and those rows.
MMOrthoTransform From(const Values& elements)
{
    MMOrthoTransform transform;
    transform.SetFrom12Elements(elements.data());
    return transform;
}

Values ValuesOf(const MMOrthoTransform& transform)
{
    Values values;
    for (unsigned short i = 0; i < 12; ++i)
        values.push_back(transform.GetElement(i / 4, i % 4));
    return values;
}

void ExpectSame(const MMOrthoTransform& transform, const Eigen::Isometry3d& expected, Point p)
{
    Point q;
    transform.Transform(q, p);
    EXPECT_LT((ToEigen(q) - expected * ToEigen(p)).norm(), 1e-12);
    transform.InverseTransform(q, q);
    EXPECT_LT(Distance(q, p), 1e-12);
}

TEST(OrthoTransform, MovesLikeTheSameIsometry)
{
    Random random(341);
    for (int i = 0; i < 300; ++i) {
        const Point axis = random.Point(1.0);
        const Point center = random.Point(10.0);
        const Point offset = random.Point(10.0);
        const double angle = random.Uniform(-7.0, 7.0);
        const Eigen::Isometry3d turn = Eigen::Translation3d(ToEigen(center)) *
                                       Eigen::AngleAxisd(angle, ToEigen(axis).normalized()) *
                                       Eigen::Translation3d(-ToEigen(center));
        MMOrthoTransform a;
        a.MakeRotation(center, axis * std::abs(random.LogUniform(1e-300, 1e300)), angle, true);
        MMOrthoTransform b;
        b.MakeRotation(Point(), axis.Normalised(), angle, false);
        b.SetRotationCenter(center);
        EXPECT_TRUE(a.Verify() && a == b);
        b.Translate(offset);
        a.Concatenate(b);
        const Eigen::Isometry3d moved = Eigen::Translation3d(ToEigen(offset)) * turn * turn;
        ExpectSame(a, moved, center);
        a.Concatenate(a);
        ExpectSame(a, moved * moved, center);
        // Many points at a time get the bits of one.
        Point image;
        a.Transform(image, offset);
        std::vector<Point> points(11, offset);
        a.Transform(points);
        EXPECT_EQ(points, std::vector<Point>(11, image));
    }
}

TEST(OrthoTransform, KeepsWhatItIsGivenAndDoesNotTurnWithoutAnAxis)
{
    const Values elements = {1, 2, 3, 10, 4, 5, 6, 11, 7, 8, 9, 12};
    MMOrthoTransform a;
    a.MakeTransformation({10, 11, 12}, {1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    a.MakeRotation({1, 1, 1}, Point(), 1.0, true);
    a.MakeRotation({1, 1, 1}, {0, 0, NAN}, 1.0, true);
    EXPECT_TRUE(ValuesOf(a) == elements && ValuesOf(From(elements)) == elements);
    // A translation is a product, in which zero times infinity has its say.
    a.Translation()[0] = INFINITY;
    a.Translate({1, 1, 1});
    EXPECT_TRUE(a.GetElement(0, 3) == INFINITY && std::isnan(a.GetElement(1, 3)));
}

TEST(OrthoTransform, BoundsPassOrFailAsStated)
{
    const auto verify = [](double skew, double z) {
        const MMOrthoTransform a = From({1, skew, 0, 0, 0, 1, 0, 0, 0, 0, z, 0});
        return a.Verify() && a.Keeps2DOrientation() == (z > 0.0);
    };
    EXPECT_TRUE(verify(0.0, -1.0) && verify(1.1102230246251565e-12, 1.0));
    EXPECT_FALSE(verify(1.1102230246251567e-12, 1.0) || verify(0.0, 1.0 + 1e-11));
    const MMOrthoTransform identity;
    for (std::size_t i = 0; i < 12; ++i) {
        const double limit = i % 4 == 3 ? 1.4901161193847656e-06 : 1.4901161193847656e-07;
        for (const double difference : {-0.99 * limit, limit, double(NAN)}) {
            Values e = ValuesOf(identity);
            e[i] += difference;
            EXPECT_EQ(From(e) == identity, difference < 0.0) << i;
            EXPECT_EQ(From(e).IsSmall(1.4901161193847656e-07, 1.4901161193847656e-06),
                      difference < 0.0)
                << i;
        }
    }
}

TEST(OrthoTransform, BecomesAMatrixThatAddsTheRoundedTranslation)
{
    MMOrthoTransform rigid;
    rigid.MakeRotation({}, {1, 2, 3}, 0.7, true);
    rigid.SetTranslation({0.1, 1e300, -3.0});
    MMTransformMatrix matrix;
    EXPECT_TRUE(matrix.Make(rigid));
    EXPECT_EQ(matrix(Point(), false), Point(0.10000000149011612, INFINITY, -3.0));
    // A translation that is there stays; the new one counts times the corner of the bottom row.
    rigid.SetTranslation({0.1, 2.0, -3.0});
    matrix = Load({9, 8, 7, 5, 0, 5, 0, 6, 0, 0, 0, 7, 0, 0, 1, 2});
    matrix.Make(rigid);
    EXPECT_TRUE(matrix.IsOrthoNormal() && matrix.IsInversible() && !matrix.IsHomogeneous());
    EXPECT_EQ(matrix.GetElement(1, 2, false), rigid.GetElement(1, 2));
    EXPECT_EQ(matrix(Point(), false), Point(5.0 + 2.0 * 0.10000000149011612, 10.0, 1.0));
    EXPECT_LT(InverseError(matrix), 1e-14);
    EXPECT_TRUE(matrix.Make(From({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0})) && !matrix.IsInversible());
}

} // namespace
