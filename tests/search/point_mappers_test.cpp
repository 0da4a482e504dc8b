#include "support/random.h"

#include <norvek/search/point_mappers.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace
{

using norvek_test::Random;
using Point = MMPoint3d<double>;
using Vector3 = Eigen::Matrix<long double, 3, 1>;
using Matrix3 = Eigen::Matrix<long double, 3, 3>;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

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
    const long double angle = random.Uniform(-3.1, 3.1);
    return Eigen::AngleAxis<long double>(angle, Wide(random.Point(1.0)).normalized())
        .toRotationMatrix();
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

double Angle(const Matrix3& a, const Matrix3& b)
{
    const Matrix3 d = a * b.transpose();
    const Vector3 axis(d(2, 1) - d(1, 2), d(0, 2) - d(2, 0), d(1, 0) - d(0, 1));
    return static_cast<double>(std::atan2(axis.norm(), d.trace() - 1.0L));
}

// Two sets whose points belong together, and the list of them.
struct Sets
{
    std::vector<Point> first;
    std::vector<Point> second;

    void Add(const Vector3& a, const Vector3& b)
    {
        first.push_back(Narrow(a));
        second.push_back(Narrow(b));
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
};

// The points of `shape` as second points, moved by R p + t as first ones.
Sets Moved(const std::vector<Point>& shape, const Matrix3& r, const Vector3& t)
{
    Sets sets;
    for (const Point& p : shape)
        sets.Add(r * Wide(p) + t, Wide(p));
    return sets;
}

std::vector<Point> Box(Random& random, int count, double x, double y, double z)
{
    std::vector<Point> points;
    for (int i = 0; i < count; ++i) {
        const Point p = random.Point(1.0);
        points.emplace_back(x * p.x, y * p.y, z * p.z);
    }
    return points;
}

// The best rotation by singular values in extended precision.
Matrix3 BestRotation(const Sets& sets)
{
    Vector3 a = Vector3::Zero();
    Vector3 b = Vector3::Zero();
    const auto n = static_cast<long double>(sets.first.size());
    for (std::size_t i = 0; i < sets.first.size(); ++i) {
        a += Wide(sets.first[i]) / n;
        b += Wide(sets.second[i]) / n;
    }
    Matrix3 moments = Matrix3::Zero();
    for (std::size_t i = 0; i < sets.first.size(); ++i)
        moments += (Wide(sets.first[i]) - a) * (Wide(sets.second[i]) - b).transpose();
    const Eigen::JacobiSVD<Matrix3> svd(moments, Eigen::ComputeFullU | Eigen::ComputeFullV);
    const Matrix3 turn = svd.matrixU() * svd.matrixV().transpose();
    const Vector3 signs(1.0L, 1.0L, turn.determinant() < 0.0L ? -1.0L : 1.0L);
    return svd.matrixU() * signs.asDiagonal() * svd.matrixV().transpose();
}

TEST(PointMappers, ExactMotionsComeBack)
{
    Random random(611);
    std::vector<Point> grid;
    for (int i = 0; i < 27; ++i)
        grid.emplace_back(i % 3, i / 3 % 3, i / 9);
    struct Case
    {
        std::vector<Point> shape;
        double tolerance;
    };
    const Case cases[] = {
        {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, 1e-14},
        {{{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}}, 1e-14},
        {grid, 1e-14},
        {{{0, 0, 0}, {1, 0, 0}, {0, 2, 0}}, 1e-14},
        {Box(random, 40, 1.0, 1.0, 0.0), 1e-14},
        {Box(random, 40, 1.0, 1.0, 1.0), 1e-14},
        {Box(random, 40, 1.0, 1e-2, 1e-2), 1e-14},
        {Box(random, 40, 1.0, 1e-3, 1e-3), 1e-12},
        // The sums of so many lose two digits; they come back.
        {Box(random, 100000, 1.0, 0.5, 0.7), 1e-15},
    };
    for (const auto& [shape, tolerance] : cases) {
        const int rounds = shape.size() > 1000 ? 1 : 50;
        for (int i = 0; i < rounds; ++i) {
            const Matrix3 r = RandomRotation(random);
            // Any unit of length, up to the ends of the doubles; powers of two are exact.
            const double unit = std::ldexp(1.0, random.Integer(-950, 950));
            const Vector3 t = Wide(random.Point(0.1));
            Sets sets = Moved(shape, r, t);
            for (std::size_t k = 0; k < shape.size(); ++k) {
                sets.first[k] *= unit;
                sets.second[k] *= unit;
            }
            MMOrthoTransform motion;
            ASSERT_TRUE(sets.Map(motion)) << shape.size() << " points, unit " << unit;
            EXPECT_LT(Angle(Rotation(motion), r), tolerance) << shape.size();
            EXPECT_LT((Translation(motion) / unit - t).norm(), 10.0 * tolerance);
            const Matrix3 square = Rotation(motion) * Rotation(motion).transpose();
            EXPECT_LT((square - Matrix3::Identity()).cwiseAbs().maxCoeff(), 2e-15);
            EXPECT_GT(Rotation(motion).determinant(), 0.0L);
        }
    }
}

TEST(PointMappers, NoisyMotionsFarFromTheOriginAreOptimal)
{
    Random random(612);
    for (const int count : {5, 60, 6000}) {
        for (const double size : {1e-3, 1.0, 1e3}) {
            for (const double offset : {0.0, 1e6}) {
                const Vector3 far = Wide(random.Point(offset));
                const Matrix3 r = RandomRotation(random);
                Sets sets;
                for (const Point& p : Box(random, count, size, size, 0.5 * size))
                    sets.Add(r * Wide(p) + Wide(random.Point(1e-2 * size)) - far, Wide(p) + far);
                MMOrthoTransform motion;
                ASSERT_TRUE(sets.Map(motion));
                // The centroids have the rounding of the coordinates, which counts as its square.
                const double rounding = 2.2e-16 * offset / size;
                EXPECT_LT(Angle(Rotation(motion), BestRotation(sets)),
                          1e-14 + 100.0 * rounding * rounding);
            }
        }
    }
}

TEST(PointMappers, OnlyMirroredSetsGiveAReflection)
{
    Random random(613);
    for (int i = 0; i < 200; ++i) {
        const Matrix3 r = RandomRotation(random);
        MMOrthoTransform motion;
        // A flat scan whose noise alone has a handedness.
        Sets flat;
        for (const Point& p : Box(random, 30, 1.0, 1.0, 0.0))
            flat.Add(r * Wide(p) + Wide(random.Point(0.02)), Wide(p + random.Point(0.02)));
        ASSERT_TRUE(flat.Map(motion));
        EXPECT_LT(Angle(Rotation(motion), BestRotation(flat)), 1e-13);
        // A mirrored thin set of another size, with noise.
        Sets mirrored;
        for (const Point& p : Box(random, 30, 1.0, 1.0, 0.1))
            mirrored.Add(-2.0L * r * Wide(p) + Wide(random.Point(0.005)), Wide(p));
        ASSERT_TRUE(mirrored.Map(motion));
        EXPECT_LT(Angle(-Rotation(motion), r), 0.01);
        EXPECT_LT(Rotation(motion).determinant(), 0.0L);
    }
}

TEST(PointMappers, PlainCases)
{
    const std::vector<Point> shape = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {0, 0, 8}};
    MMOrthoTransform motion;
    ASSERT_TRUE(Moved(shape, Matrix3::Identity(), {1, 2, 3}).Map(motion));
    EXPECT_LT((Rotation(motion) - Matrix3::Identity()).norm(), 1e-15L);
    EXPECT_LT((Translation(motion) - Vector3(1, 2, 3)).norm(), 1e-14L);
    // The second points are the first turned by 90 degrees about z and shifted.
    Sets turned;
    for (const Point& p : shape)
        turned.Add(Wide(p), Vector3(-p.y + 5, p.x + 6, p.z + 7));
    ASSERT_TRUE(turned.Map(motion));
    for (std::size_t i = 0; i < shape.size(); ++i) {
        Point back;
        motion.Transform(back, turned.second[i]);
        EXPECT_LT((back - shape[i]).Length(), 1e-14);
    }
    MBasePointMapper::FindTranslation(motion, {{1, 1, 1}, {2, 0, 0}});
    Point moved;
    motion.Transform(moved, {2, 0, 0});
    EXPECT_LT((moved - Point(1, 1, 1)).Length(), 1e-14);
    EXPECT_GT(motion.GetElement(0, 1), 0.9);
}

TEST(PointMappers, RefusalsLeaveTheResult)
{
    const std::vector<Point> shape = {{0.1, 0, 0}, {1, 0, 0.3}, {0, 1, 0}, {0, 0.2, 1}};
    const auto refuses = [](Sets sets) {
        MMOrthoTransform motion;
        motion.SetTranslation({7, 8, 9});
        return !sets.Map(motion) && motion.GetElement(1, 3) == 8.0 && motion.GetElement(1, 1) == 1;
    };
    const auto with = [&shape](std::size_t point, double value) {
        Sets sets = Moved(shape, Matrix3::Identity(), {1, 2, 3});
        (point < 4 ? sets.first[point].y : sets.second[point - 4].z) = value;
        return sets;
    };
    EXPECT_FALSE(refuses(with(0, 0.0)));
    for (std::size_t i = 0; i < 8; ++i) {
        for (const double value : {kNan, kInfinity, -kInfinity})
            EXPECT_TRUE(refuses(with(i, value)));
    }
    const auto image = [&refuses](const std::vector<Point>& points) {
        return refuses(Moved(points, Matrix3::Identity(), {0.1L, 0.2L, 0.3L}));
    };
    EXPECT_TRUE(image({}));
    EXPECT_TRUE(image({{0, 0, 0}, {1, 0, 0}}));
    EXPECT_TRUE(image({{0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}}));
    EXPECT_TRUE(image({{0, 0, 0}, {0.1, 0.2, 0.3}, {0.2, 0.4, 0.6}, {0.7, 1.4, 2.1}}));
    EXPECT_TRUE(image({{1e308, 0, 0}, {1.1e308, 1e308, 0}, {1e308, 0, 1e308}}));
}

TEST(PointMappersScale, RatioOfDistancesAndCentroid)
{
    Random random(614);
    double scale = -1.0;
    Point centre(1, 2, 3);
    const auto map = [&](Sets sets) {
        return MMapper3DPointsScale::MapPoints(scale, centre, sets.List());
    };
    EXPECT_FALSE(map(Moved(Box(random, 2, 1, 1, 1), Matrix3::Identity(), {1, 2, 3})));
    EXPECT_TRUE(scale == -1.0 && centre == Point(1, 2, 3));
    for (const double size : {1e-200, 1e-3, 1.0, 1e3, 1e200}) {
        const std::vector<Point> shape = Box(random, 50, size, size, size);
        const Vector3 t = Wide({3.0 * size, 2.0 * size, size});
        ASSERT_TRUE(map(Moved(shape, 2.0L * RandomRotation(random), t)));
        EXPECT_NEAR(scale, 2.0, 1e-12);
        Point sum;
        for (const Point& p : shape)
            sum += p;
        EXPECT_EQ(centre, sum / 50.0);
        ASSERT_TRUE(map(Moved(shape, 2.0L * Matrix3::Identity(), {0, 0, 0})));
        EXPECT_EQ(scale, 2.0);
    }
    const Matrix3 toPoint = Matrix3::Zero();
    Sets collapsed = Moved({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, toPoint, {1, 2, 4});
    EXPECT_TRUE(map(collapsed));
    EXPECT_EQ(scale, 0.0);
    std::swap(collapsed.first, collapsed.second);
    EXPECT_TRUE(map(collapsed));
    EXPECT_EQ(scale, kInfinity);
    // Outputs among the inputs.
    Sets sets = Moved({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, Matrix3::Identity(), {0, 0, 0});
    EXPECT_TRUE(MMapper3DPointsScale::MapPoints(sets.first[0].x, sets.second[1], sets.List()));
    EXPECT_EQ(sets.first[0].x, 1.0);
}

using Segments = MMapper3dSegments::SegmentList;

TEST(SegmentMapper, OneDirectionTurnsByTheSmallestAngle)
{
    Random random(615);
    for (int i = 0; i < 500; ++i) {
        const double size = random.LogUniform(1e-250, 1e250);
        const Point u = random.Point(1.0);
        // Any direction, nearly the same, nearly and exactly the opposite.
        const Point v = i % 4 == 0   ? random.Point(1.0)
                        : i % 4 == 1 ? u + random.Point(1e-9)
                        : i % 4 == 2 ? -u + random.Point(1e-9)
                                     : -2.0 * u;
        const Point p = random.Point(1.0);
        Segments pairs;
        for (int k = 0; k <= i % 3; ++k) {
            const double at = 3.0 * k;
            pairs.push_back({{(p + at * u) * size, (p + (at + 1.0) * u) * size},
                             {at * v * size, (at + 1.0) * v * size}});
        }
        MMOrthoTransform motion;
        ASSERT_TRUE(MMapper3dSegments::MapSegments(motion, pairs));
        EXPECT_TRUE(motion.Verify());
        Point image;
        motion.Rotate(image, v);
        EXPECT_LT((image.Normalised() - u.Normalised()).Length(), 1e-14);
        const double cosine = u.Dot(v) / (u.Length() * v.Length());
        EXPECT_NEAR(static_cast<double>(Rotation(motion).trace()), 1.0 + 2.0 * cosine, 1e-13);
        EXPECT_GT(Rotation(motion).determinant(), 0.0L);
        motion.Transform(image, (3.0 * (i % 3) + 1.0) / 2.0 * v * size);
        const Point middle = (p + (3.0 * (i % 3) + 1.0) / 2.0 * u) * size;
        EXPECT_LT((Wide(image) - Wide(middle)).norm() / std::abs(size), 3e-14L);
    }
}

TEST(SegmentMapper, SeveralSegmentsGiveTheirMotion)
{
    Random random(616);
    const Matrix3 r = RandomRotation(random);
    Segments pairs;
    const auto image = [&r](const Point& p) {
        return Narrow(r * Wide(p) + Vector3(1, 2, 3));
    };
    for (int i = 0; i < 2; ++i) {
        const Point a = random.Point(1.0);
        const Point b = random.Point(1.0);
        pairs.push_back({{image(a), image(b)}, {a, b}});
    }
    MMOrthoTransform motion;
    EXPECT_FALSE(MMapper3dSegments::MapSegments(motion, {}));
    ASSERT_TRUE(MMapper3dSegments::MapSegments(motion, pairs));
    EXPECT_LT(Angle(Rotation(motion), r), 1e-14);
    EXPECT_LT((Translation(motion) - Vector3(1, 2, 3)).norm(), 1e-14L);
    // Segments of no length are moved, not turned.
    ASSERT_TRUE(
        MMapper3dSegments::MapSegments(motion, {{{{1, 2, 3}, {1, 2, 3}}, {{4, 4, 4}, {4, 4, 4}}}}));
    EXPECT_EQ(Rotation(motion), Matrix3::Identity());
    EXPECT_EQ(Translation(motion), Vector3(-3, -2, -1));
    // Moments that cancel though neither set is a point.
    ASSERT_TRUE(MMapper3dSegments::MapSegments(
        motion, {{{{-1, 0, 0}, {1, 0, 0}}, {{0, 0, 0}, {0, 0, 0}}},
                 {{{0, 0, 0}, {0, 0, 0}}, {{0, -1, 0}, {0, 1, 0}}}}));
    EXPECT_EQ(Rotation(motion), Matrix3::Identity());
    pairs.front().second.first.x = kNan;
    EXPECT_FALSE(MMapper3dSegments::MapSegments(motion, pairs));
    pairs.front().second.first.x = kInfinity;
    EXPECT_FALSE(MMapper3dSegments::MapSegments(motion, pairs));
    EXPECT_EQ(Rotation(motion), Matrix3::Identity());
}

} // namespace
