#include "support/random.h"

#include <norvek/linalg/matrix3x3.h>
#include <norvek/search/point_mappers.h>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

namespace
{

using norvek_test::Random;
using Point = MMPoint3d<double>;
using Vector3 = Eigen::Matrix<long double, 3, 1>;
using Matrix3 = Eigen::Matrix<long double, 3, 3>;
using Scale = MMapper3DPointsScale;

Vector3 Wide(const Point& p)
{
    return {p.x, p.y, p.z};
}

Point Narrow(const Vector3& v)
{
    return {static_cast<double>(v.x()), static_cast<double>(v.y()), static_cast<double>(v.z())};
}

Matrix3 RandomRotation(Random& random)
{
    const Vector3 axis = Wide(random.Point(1.0)).normalized();
    return Eigen::AngleAxis<long double>(random.Uniform(-3.1, 3.1), axis).toRotationMatrix();
}

Matrix3 Rotation(const MMOrthoTransform& motion)
{
    Matrix3 r;
    for (unsigned short i = 0; i < 9; ++i)
        r(i / 3, i % 3) = motion.GetElement(i / 3, i % 3);
    return r;
}

Vector3 Translation(const MMOrthoTransform& motion)
{
    return {motion.GetElement(0, 3), motion.GetElement(1, 3), motion.GetElement(2, 3)};
}

double Difference(const Matrix3& a, const Matrix3& b)
{
    return static_cast<double>((a - b).cwiseAbs().maxCoeff());
}

// Two sets whose points belong together.
struct Sets
{
    std::vector<Point> first;
    std::vector<Point> second;

    // The shape as second points, moved by R p + t as first ones, and noise on both.
    Sets(const std::vector<Point>& shape, const Matrix3& r, const Vector3& t, double noise = 0.0)
    {
        Random random(610);
        for (const Point& p : shape) {
            first.push_back(Narrow(r * Wide(p) + t) + random.Point(noise));
            second.push_back(p + random.Point(noise));
        }
    }

    MBasePointMapper::PairList List()
    {
        MBasePointMapper::PairList pairs;
        for (std::size_t i = 0; i < first.size(); ++i)
            pairs.emplace_back(&first[i], &second[i]);
        return pairs;
    }

    bool Map(MMOrthoTransform& result)
    {
        return MMapper3DPoints::MapPoints(result, List());
    }

    // The best rotation, in extended precision.
    [[nodiscard]] Matrix3 Best() const
    {
        Eigen::Matrix<long double, 3, Eigen::Dynamic> a(3, first.size());
        Eigen::Matrix<long double, 3, Eigen::Dynamic> b(3, first.size());
        for (std::size_t i = 0; i < first.size(); ++i) {
            a.col(static_cast<Eigen::Index>(i)) = Wide(first[i]);
            b.col(static_cast<Eigen::Index>(i)) = Wide(second[i]);
        }
        return Eigen::umeyama(b, a, false).topLeftCorner<3, 3>();
    }
};

std::vector<Point> Box(Random& random, int count, double x, double y, double z)
{
    std::vector<Point> points(static_cast<std::size_t>(count));
    for (Point& p : points)
        p = {random.Uniform(-x, x), random.Uniform(-y, y), random.Uniform(-z, z)};
    return points;
}

TEST(PointMappers, ExactMotionsComeBack)
{
    Random random(611);
    const std::vector<Point> shapes[] = {
        {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}},
        {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}},
        Box(random, 40, 1.0, 1.0, 0.0),
        Box(random, 40, 1.0, 1e-2, 1e-2),
        Box(random, 100000, 1.0, 0.5, 0.7),
    };
    for (const std::vector<Point>& shape : shapes) {
        // Plain sums of so many would lose a digit.
        const bool areMany = shape.size() > 1000;
        const double tolerance = areMany ? 1e-15 : 1e-14;
        for (int i = 0; i < (areMany ? 1 : 50); ++i) {
            const Matrix3 r = RandomRotation(random);
            const Vector3 t = Wide(random.Point(0.1));
            Sets sets(shape, r, t);
            // In any unit of length; powers of two are exact.
            const double unit = std::ldexp(1.0, random.Integer(-450, 450));
            for (std::size_t k = 0; k < shape.size(); ++k) {
                sets.first[k] *= unit;
                sets.second[k] *= unit;
            }
            MMOrthoTransform motion;
            ASSERT_TRUE(sets.Map(motion)) << shape.size() << " points, unit " << unit;
            EXPECT_LT(Difference(Rotation(motion), r), tolerance) << shape.size();
            EXPECT_LT((Translation(motion) / unit - t).norm(), 10.0 * tolerance);
            const Matrix3 square = Rotation(motion) * Rotation(motion).transpose();
            EXPECT_LT(Difference(square, Matrix3::Identity()), 1e-14);
        }
    }
}

// Plain sums from the left, divided by the square of the mean spread.
MMatrix3x3 ConditionedMoments(const Sets& sets)
{
    const auto n = static_cast<double>(sets.first.size());
    const Point centreA = std::accumulate(sets.first.begin(), sets.first.end(), Point()) / n;
    const Point centreB = std::accumulate(sets.second.begin(), sets.second.end(), Point()) / n;
    MMatrix3x3 sum;
    double distances = 0.0;
    for (std::size_t i = 0; i < sets.first.size(); ++i) {
        MMatrix3x3 product;
        product.PDotQTranspose(sets.first[i] - centreA, sets.second[i] - centreB);
        sum = sum + product;
        distances += (sets.first[i] - centreA).Length() + (sets.second[i] - centreB).Length();
    }
    const double spread = distances / (2.0 * n);
    sum /= spread * spread;
    return sum;
}

TEST(PointMappers, RoundSetsGiveTheNearestOrthonormalMatrixBitForBit)
{
    Random random(617);
    const std::vector<Point> shapes[] = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                         {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}},
                                         Box(random, 1000, 1.0, 1.0, 1.0),
                                         Box(random, 4096, 1.0, 1.0, 1.0)};
    for (const std::vector<Point>& shape : shapes) {
        Sets sets(shape, RandomRotation(random), {100, 200, 300}, 0.01);
        MMatrix3x3 nearest;
        ASSERT_TRUE(ConditionedMoments(sets).NearestOrthonormal(nearest));
        MMOrthoTransform motion;
        ASSERT_TRUE(sets.Map(motion));
        for (unsigned short i = 0; i < 9; ++i)
            EXPECT_EQ(motion.GetElement(i / 3, i % 3), nearest.Value(i / 3, i % 3));
    }
}

TEST(PointMappers, NoisyMotionsFarFromTheOriginAreOptimal)
{
    Random random(612);
    for (const int count : {5, 60, 60000}) {
        for (const double size : {1e-3, 1.0, 1e3}) {
            std::vector<Point> shape = Box(random, count, size, size, 0.5 * size);
            for (Point& p : shape)
                p += {1e6, 2e5, -4e5};
            Sets sets(shape, RandomRotation(random), {3, 2, 1}, 1e-2 * size);
            MMOrthoTransform motion;
            ASSERT_TRUE(sets.Map(motion));
            // The centroids have the rounding of the coordinates, which counts as its square.
            const double rounding = 2.2e-10 / size;
            EXPECT_LT(Difference(Rotation(motion), sets.Best()),
                      1e-14 + 100.0 * rounding * rounding);
        }
    }
}

TEST(PointMappers, OnlyMirroredSetsGiveAReflection)
{
    Random random(613);
    for (int i = 0; i < 200; ++i) {
        const Matrix3 r = RandomRotation(random);
        MMOrthoTransform motion;
        // A flat scan, whose noise alone has a handedness.
        Sets flat(Box(random, 30, 1.0, 1.0, 0.0), r, {1, 2, 3}, 0.02);
        ASSERT_TRUE(flat.Map(motion));
        EXPECT_LT(Difference(Rotation(motion), flat.Best()), 1e-13);
        // A mirrored thin set of another size.
        ASSERT_TRUE(Sets(Box(random, 30, 1.0, 1.0, 0.1), -2.0L * r, {1, 2, 3}, 0.005).Map(motion));
        EXPECT_LT(Difference(-Rotation(motion), r), 0.02);
    }
}

TEST(PointMappers, RefusalsLeaveTheResult)
{
    // Two points, a point, a line; coordinates that are no numbers or overflow.
    const std::vector<Point> shapes[] = {
        {{0, 0, 0}, {1, 0, 0}},
        {{0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}},
        {{0, 0, 0}, {0.1, 0.2, 0.3}, {0.2, 0.4, 0.6}, {0.7, 1.4, 2.1}},
        {{0, 0, 0}, {1, 0, NAN}, {0, 1, 0}},
        {{0, 0, 0}, {1, 0, 0}, {0, -INFINITY, 0}},
        {{1e308, 0, 0}, {1e308, 1e308, 0}, {1e308, 0, 1e308}},
    };
    for (const std::vector<Point>& shape : shapes) {
        Sets sets(shape, Matrix3::Identity(), {0.1L, 0.2L, 0.3L});
        MMOrthoTransform motion;
        motion.SetTranslation({7, 8, 9});
        EXPECT_FALSE(sets.Map(motion));
        EXPECT_TRUE(Translation(motion) == Vector3(7, 8, 9) && motion.GetElement(1, 1) == 1.0);
    }
}

TEST(PointMappers, ScaleIsTheRatioOfDistances)
{
    Random random(614);
    double scale = -1.0;
    Point centre;
    EXPECT_FALSE(Scale::MapPoints(
        scale, centre, Sets({{0, 0, 0}, {1, 0, 0}}, Matrix3::Identity(), {0, 0, 0}).List()));
    const std::vector<Point> shape = Box(random, 50, 1.0, 1.0, 1.0);
    Sets copies(shape, 2.0L * RandomRotation(random), {1, 2, 3});
    ASSERT_TRUE(Scale::MapPoints(scale, centre, copies.List()));
    EXPECT_NEAR(scale, 2.0, 1e-14);
    EXPECT_EQ(centre, std::accumulate(shape.begin(), shape.end(), Point()) / 50.0);
    // Outputs among the inputs; then a set that is a point.
    Sets sets({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, Matrix3::Identity(), {0, 0, 0});
    EXPECT_TRUE(Scale::MapPoints(sets.first[0].x, sets.second[1], sets.List()));
    EXPECT_EQ(sets.first[0].x, 1.0);
    sets.second = std::vector<Point>(3, {1, 2, 4});
    EXPECT_TRUE(Scale::MapPoints(scale, centre, sets.List()));
    EXPECT_EQ(scale, INFINITY);
}

using Segments = MMapper3dSegments::SegmentList;

TEST(SegmentMapper, OneDirectionTurnsByTheSmallestAngle)
{
    Random random(615);
    for (int i = 0; i < 500; ++i) {
        const double size = random.LogUniform(1e-140, 1e140);
        const Point u = random.Point(1.0);
        // Any direction, nearly the same, nearly and exactly the opposite.
        const Point others[] = {random.Point(1.0), u + random.Point(1e-9), -u + random.Point(1e-9),
                                -2.0 * u};
        const Point v = others[i % 4];
        const Point p = random.Point(1.0);
        Segments pairs;
        for (int at = 0; at <= i % 3; ++at)
            pairs.push_back({{(p + at * u) * size, (p + (at + 0.5) * u) * size},
                             {at * v * size, (at + 0.5) * v * size}});
        MMOrthoTransform motion;
        ASSERT_TRUE(MMapper3dSegments::MapSegments(motion, pairs));
        const double cosine = u.Dot(v) / (u.Length() * v.Length());
        EXPECT_NEAR(static_cast<double>(Rotation(motion).trace()), 1.0 + 2.0 * cosine, 1e-13);
        Point image;
        motion.Rotate(image, v);
        EXPECT_LT((image.Normalised() - u.Normalised()).Length(), 1e-14);
        const double middle = 0.5 * (i % 3) + 0.25;
        motion.Transform(image, middle * v * size);
        EXPECT_LT((Wide(image) - Wide((p + middle * u) * size)).norm() / std::abs(size), 3e-14L);
    }
}

TEST(SegmentMapper, SeveralSegmentsGiveTheirMotion)
{
    Random random(616);
    const Matrix3 r = RandomRotation(random);
    const Sets ends(Box(random, 4, 1.0, 1.0, 1.0), r, {1, 2, 3});
    Segments pairs;
    for (const std::size_t i : {0U, 2U})
        pairs.push_back({{ends.first[i], ends.first[i + 1]}, {ends.second[i], ends.second[i + 1]}});
    MMOrthoTransform motion;
    EXPECT_FALSE(MMapper3dSegments::MapSegments(motion, {}));
    ASSERT_TRUE(MMapper3dSegments::MapSegments(motion, pairs));
    EXPECT_LT(Difference(Rotation(motion), r), 1e-14);
    EXPECT_LT((Translation(motion) - Vector3(1, 2, 3)).norm(), 1e-14L);
    // Segments of no length are moved and not turned.
    ASSERT_TRUE(
        MMapper3dSegments::MapSegments(motion, {{{{1, 2, 3}, {1, 2, 3}}, {{4, 4, 4}, {4, 4, 4}}}}));
    EXPECT_EQ(Rotation(motion), Matrix3::Identity());
    EXPECT_EQ(Translation(motion), Vector3(-3, -2, -1));
}

} // namespace
