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
using Points = std::vector<Point>;
using Vector3 = Eigen::Matrix<long double, 3, 1>;
using Scale = MMapper3DPointsScale;
using Segments = MMapper3dSegments;

// Rotation and translation, in extended precision.
using Motion = Eigen::Matrix<long double, 3, 4>;

Vector3 Wide(const Point& p)
{
    return {p.x, p.y, p.z};
}

Motion RandomMotion(Random& random, const Point& translation, double factor = 1.0)
{
    const Vector3 axis = Wide(random.Point(1.0)).normalized();
    const Eigen::AngleAxis<long double> turn(random.Uniform(-3.1, 3.1), axis);
    Motion motion;
    motion << factor * turn.toRotationMatrix(), Wide(translation);
    return motion;
}

Motion Elements(const MMOrthoTransform& motion)
{
    return Motion::NullaryExpr([&](Eigen::Index i, Eigen::Index j) {
        return motion.GetElement(static_cast<unsigned short>(i), static_cast<unsigned short>(j));
    });
}

double TurnError(const MMOrthoTransform& found, const Motion& motion)
{
    return static_cast<double>((Elements(found) - motion).leftCols<3>().cwiseAbs().maxCoeff());
}

double ShiftError(const MMOrthoTransform& found, const Motion& motion)
{
    return static_cast<double>((Elements(found) - motion).col(3).norm());
}

// Two sets whose points belong together: a shape as second points, moved as first ones, and noise
// on both.
struct Sets
{
    Points first;
    Points second;

    Sets(const Points& shape, const Motion& motion, double noise = 0.0)
    {
        Random random(610);
        for (const Point& p : shape) {
            const Eigen::Vector3d moved = (motion * Wide(p).homogeneous()).cast<double>();
            first.push_back(Point(moved.x(), moved.y(), moved.z()) + random.Point(noise));
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

    // The motion with the best rotation.
    [[nodiscard]] Motion Best() const
    {
        const auto columns = [](const Points& points) {
            const auto count = static_cast<Eigen::Index>(points.size());
            return Eigen::Map<const Eigen::Matrix3Xd>(&points[0].x, 3, count);
        };
        return Eigen::umeyama(columns(second).cast<long double>().eval(),
                              columns(first).cast<long double>().eval(), false)
            .topRows<3>();
    }
};

Points Box(Random& random, std::size_t count, double x, double y, double z)
{
    Points points(count);
    for (Point& p : points)
        p = {random.Uniform(-x, x), random.Uniform(-y, y), random.Uniform(-z, z)};
    return points;
}

TEST(PointMappers, ExactMotionsComeBack)
{
    Random random(611);
    const Points shapes[] = {
        {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}},
        {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}},
        Box(random, 40, 1.0, 1.0, 0.0),
        Box(random, 40, 1.0, 1e-2, 1e-2),
        Box(random, 100000, 1.0, 0.5, 0.7),
    };
    for (const Points& shape : shapes) {
        // Plain sums of so many would lose a digit.
        const bool areMany = shape.size() > 1000;
        const double tolerance = areMany ? 1e-15 : 1e-14;
        for (int i = 0; i < (areMany ? 1 : 50); ++i) {
            // In any unit of length; powers of two are exact.
            const double unit = std::ldexp(1.0, random.Integer(-450, 450));
            Points scaled;
            for (const Point& p : shape)
                scaled.push_back(unit * p);
            const Motion motion = RandomMotion(random, random.Point(0.1 * unit));
            Sets sets(scaled, motion);
            MMOrthoTransform found;
            ASSERT_TRUE(sets.Map(found)) << shape.size() << " points, unit " << unit;
            EXPECT_LT(TurnError(found, motion), tolerance) << shape.size();
            EXPECT_LT(ShiftError(found, motion), 10.0 * tolerance * unit);
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

// Where so many points are random that they are round, and one block holds them, that is the
// nearest orthonormal matrix, bit for bit.
TEST(PointMappers, NoisyMotionsFarFromTheOriginAreOptimal)
{
    Random random(612);
    for (const std::size_t count : {5U, 60U, 1000U, 4096U, 60000U}) {
        for (const double size : {1e-3, 1.0, 1e3}) {
            Points shape = Box(random, count, size, size, 0.5 * size);
            for (Point& p : shape)
                p += {1e6, 2e5, -4e5};
            Sets sets(shape, RandomMotion(random, {3, 2, 1}), 1e-2 * size);
            MMOrthoTransform found;
            ASSERT_TRUE(sets.Map(found));
            // The centroids have the rounding of the coordinates, which counts as its square.
            const double rounding = 2.2e-10 / size;
            EXPECT_LT(TurnError(found, sets.Best()), 1e-14 + 100.0 * rounding * rounding);
            const bool isPlain = count >= 1000 && count <= 4096;
            MMatrix3x3 nearest;
            ASSERT_TRUE(ConditionedMoments(sets).NearestOrthonormal(nearest));
            for (unsigned short i = 0; i < 9 && isPlain; ++i)
                EXPECT_EQ(found.GetElement(i / 3, i % 3), nearest.Value(i / 3, i % 3));
        }
    }
}

TEST(PointMappers, OnlyMirroredSetsGiveAReflection)
{
    Random random(613);
    for (int i = 0; i < 200; ++i) {
        MMOrthoTransform found;
        // A flat scan, whose noise alone has a handedness.
        Sets flat(Box(random, 30, 1.0, 1.0, 0.0), RandomMotion(random, {1, 2, 3}), 0.02);
        ASSERT_TRUE(flat.Map(found));
        EXPECT_LT(TurnError(found, flat.Best()), 1e-13);
        // A mirrored thin set of another size.
        const Motion mirror = RandomMotion(random, {1, 2, 3}, -2.0);
        ASSERT_TRUE(Sets(Box(random, 30, 1.0, 1.0, 0.1), mirror, 0.005).Map(found));
        EXPECT_LT(TurnError(found, 0.5L * mirror), 0.02);
    }
}

TEST(PointMappers, RefusalsLeaveTheResult)
{
    // Two points, a point, a line; coordinates that are no numbers or overflow.
    const Points shapes[] = {
        {{0, 0, 0}, {1, 0, 0}},
        {{0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}},
        {{0, 0, 0}, {0.1, 0.2, 0.3}, {0.2, 0.4, 0.6}, {0.7, 1.4, 2.1}},
        {{0, 0, 0}, {1, 0, NAN}, {0, 1, 0}},
        {{0, 0, 0}, {1, 0, 0}, {0, -INFINITY, 0}},
        {{1e308, 0, 0}, {1e308, 1e308, 0}, {1e308, 0, 1e308}},
    };
    for (const Points& shape : shapes) {
        MMOrthoTransform found;
        found.SetTranslation({7, 8, 9});
        const MMOrthoTransform before = found;
        EXPECT_FALSE(Sets(shape, Motion::Identity()).Map(found));
        EXPECT_TRUE(found == before);
    }
}

TEST(PointMappers, ScaleIsTheRatioOfDistances)
{
    Random random(614);
    double scale = -1.0;
    Point centre;
    const Points shape = Box(random, 50, 1.0, 1.0, 1.0);
    Sets copies(shape, RandomMotion(random, {1, 2, 3}, 2.0));
    ASSERT_TRUE(Scale::MapPoints(scale, centre, copies.List()));
    EXPECT_NEAR(scale, 2.0, 1e-14);
    EXPECT_EQ(centre, std::accumulate(shape.begin(), shape.end(), Point()) / 50.0);
    EXPECT_FALSE(Scale::MapPoints(scale, centre, Sets(Points(2), Motion::Identity()).List()));
    // Outputs among the inputs; then a set that is a point.
    Sets sets({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, Motion::Identity());
    EXPECT_TRUE(Scale::MapPoints(sets.first[0].x, sets.second[1], sets.List()));
    EXPECT_EQ(sets.first[0].x, 1.0);
    sets.second.assign(3, {1, 2, 4});
    EXPECT_TRUE(Scale::MapPoints(scale, centre, sets.List()));
    EXPECT_EQ(scale, INFINITY);
}

TEST(SegmentMapper, OneDirectionTurnsByTheSmallestAngleAndSeveralGiveTheirMotion)
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
        Segments::SegmentList pairs;
        for (int at = 0; at <= i % 3; ++at)
            pairs.push_back({{(p + at * u) * size, (p + (at + 0.5) * u) * size},
                             {at * v * size, (at + 0.5) * v * size}});
        MMOrthoTransform found;
        ASSERT_TRUE(Segments::MapSegments(found, pairs));
        const double cosine = u.Dot(v) / (u.Length() * v.Length());
        EXPECT_NEAR(static_cast<double>(Elements(found).trace()), 1.0 + 2.0 * cosine, 1e-13);
        Point image;
        found.Rotate(image, v);
        EXPECT_LT((image.Normalised() - u.Normalised()).Length(), 1e-14);
        const double middle = 0.5 * (i % 3) + 0.25;
        found.Transform(image, middle * v * size);
        EXPECT_LT((image / size - (p + middle * u)).Length(), 3e-14);
    }
    // Several segments give their motion, and none gives no answer.
    const Motion motion = RandomMotion(random, {1, 2, 3});
    const auto [a, b] = Sets(Box(random, 4, 1.0, 1.0, 1.0), motion);
    MMOrthoTransform found;
    EXPECT_FALSE(Segments::MapSegments(found, {}));
    ASSERT_TRUE(
        Segments::MapSegments(found, {{{a[0], a[1]}, {b[0], b[1]}}, {{a[2], a[3]}, {b[2], b[3]}}}));
    EXPECT_LT(TurnError(found, motion) + ShiftError(found, motion), 1e-14);
    // Segments of no length are moved and not turned.
    ASSERT_TRUE(Segments::MapSegments(found, {{{{1, 2, 3}, {1, 2, 3}}, {{4, 4, 4}, {4, 4, 4}}}}));
    EXPECT_EQ(TurnError(found, Motion::Identity()), 0.0);
    EXPECT_EQ(Elements(found).col(3), Vector3(-3, -2, -1));
}

} // namespace
