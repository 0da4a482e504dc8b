#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/ortho_transform.h>

#include <gtest/gtest.h>

namespace
{

using namespace norvek_test;
using Point = MMPoint3d<double>;
using Values = std::vector<double>;

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
        a.Concatenate(a);
        const Eigen::Isometry3d moved = Eigen::Translation3d(ToEigen(offset)) * turn * turn;
        Point image;
        a.Transform(image, center);
        EXPECT_LT((ToEigen(image) - moved * moved * ToEigen(center)).norm(), 1e-12);
        // Many points at a time get the bits of one.
        std::vector<Point> points(11, center);
        a.Transform(points);
        EXPECT_EQ(points, std::vector<Point>(11, image));
        a.InverseTransform(image, image);
        EXPECT_LT(Distance(image, center), 1e-12);
    }
}

TEST(OrthoTransform, KeepsWhatItIsGivenAndDoesNotTurnWithoutAnAxis)
{
    const Values elements = {1, 2, 3, 10, 4, 5, 6, 11, 7, 8, 9, 12};
    MMOrthoTransform a = From(elements);
    a.MakeRotation({1, 1, 1}, Point(), 1.0, true);
    a.MakeRotation({1, 1, 1}, {0, 0, NAN}, 1.0, true);
    EXPECT_EQ(ValuesOf(a), elements);
    // A translation is a product, in which zero times infinity has its say.
    a.Translation()[0] = INFINITY;
    a.Translate({1, 1, 1});
    EXPECT_TRUE(a.GetElement(0, 3) == INFINITY && std::isnan(a.GetElement(1, 3)));
    a.MakeIdentity();
    EXPECT_EQ(ValuesOf(a), ValuesOf(MMOrthoTransform()));
}

TEST(OrthoTransform, BoundsPassOrFailAsStated)
{
    const auto verify = [](double skew, double z) {
        const MMOrthoTransform a = From({1, skew, 0, 0, 0, 1, 0, 0, 0, 0, z, 0});
        return a.Verify() && a.Keeps2DOrientation() == (z > 0.0);
    };
    EXPECT_TRUE(verify(0.0, -1.0) && verify(1.1102230246251565e-12, 1.0));
    EXPECT_FALSE(verify(1.1102230246251567e-12, 1.0) || verify(0.0, 1.0 + 1e-11));
    const double turn = 1.4901161193847656e-07;
    for (std::size_t i = 0; i < 12; ++i) {
        const double limit = i % 4 == 3 ? 10.0 * turn : turn;
        for (const double difference : {-0.99 * limit, limit, double(NAN)}) {
            Values e = ValuesOf(MMOrthoTransform());
            e[i] += difference;
            EXPECT_EQ(From(e) == MMOrthoTransform(), difference < 0.0) << i;
            EXPECT_EQ(From(e).IsSmall(turn, 10.0 * turn), difference < 0.0) << i;
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
