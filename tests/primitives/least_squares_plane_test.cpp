#include "support/random.h"

#include <norvek/primitives/least_squares_plane.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <limits>

namespace
{

using Point = MMPoint3d<double>;
using WeightedPoint = std::pair<Point, double>;
using norvek_test::Random;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The smallest principal axis of points about a centre, from Eigen's iterative solver on moments in
// extended precision.
Point ReferenceNormal(const std::vector<Point>& points, const Point& centre)
{
    using Long3 = Eigen::Matrix<long double, 3, 1>;
    Eigen::Matrix<long double, 3, 3> scatter = Eigen::Matrix<long double, 3, 3>::Zero();
    for (const Point& point : points) {
        const Long3 p(point.x - static_cast<long double>(centre.x),
                      point.y - static_cast<long double>(centre.y),
                      point.z - static_cast<long double>(centre.z));
        scatter += p * p.transpose();
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix<long double, 3, 3>> solver(scatter);
    const Long3 axis = solver.eigenvectors().col(0);
    return {static_cast<double>(axis[0]), static_cast<double>(axis[1]),
            static_cast<double>(axis[2])};
}

double Angle(const Point& a, const Point& b)
{
    return a.Cross(b).Length();
}

// A slab of the given size and thickness, turned at random.
std::vector<Point> Slab(Random& random, double size, double thickness, int count)
{
    const Point u = random.Point(1.0).Normalised();
    const Point v = u.Cross(random.Point(1.0)).Normalised();
    const Point n = u.Cross(v);
    std::vector<Point> points(static_cast<std::size_t>(count));
    for (Point& point : points)
        point = u * random.Uniform(-size, size) + v * random.Uniform(-0.6 * size, 0.6 * size) +
                n * random.Uniform(-thickness, thickness);
    return points;
}

TEST(LeastSquaresPlane, AgreesWithPrincipalAxes)
{
    Random random(501);
    for (int round = 0; round < 300; ++round) {
        const double size = std::abs(random.LogUniform(1e-2, 1e5));
        const std::vector<Point> points = Slab(random, size, 0.1 * size, 50);
        MMLeastSquarePlane fit;
        for (const Point& p : points)
            fit.AddPoint(p.x, p.y, p.z);
        const MMPlaneEq<double> plane = fit.GetPlane();
        ASSERT_FALSE(fit.GetIsLine());
        EXPECT_LT(Angle(plane.GetNormal(), ReferenceNormal(points, fit.GetAveragePoint())), 1e-12);
        EXPECT_NEAR(plane.Distance(fit.GetAveragePoint()), 0.0, 1e-15 * size);

        // The vector form has the bits of the stream.
        MMLeastSquarePlane atOnce;
        atOnce.Calculate(points);
        EXPECT_EQ(atOnce.GetPlane(), plane);
        EXPECT_EQ(atOnce.GetNumPoints(), 50U);

        fit.CalculateThroughOrigin();
        EXPECT_LT(Angle(fit.GetPlane().GetNormal(), ReferenceNormal(points, Point())), 1e-11);
        EXPECT_EQ(fit.GetPlane().D(), 0.0);
    }
}

// Exact planes and tiny objects fall below the absolute threshold on the determinant.
TEST(LeastSquaresPlane, ThroughTheOriginNeedsNoSize)
{
    Random random(502);
    for (int round = 0; round < 300; ++round) {
        const double size = std::abs(random.LogUniform(1e-6, 1e6));
        const std::vector<Point> points = Slab(random, size, 0.0, 20);
        MMLeastSquarePlane fit;
        fit.Calculate(points);
        fit.CalculateThroughOrigin();
        ASSERT_FALSE(fit.GetIsLine()) << size;
        EXPECT_LT(Angle(fit.GetPlane().GetNormal(), ReferenceNormal(points, Point())), 1e-7);
        for (const Point& p : points)
            EXPECT_NEAR(fit.GetPlane().Distance(p), 0.0, 1e-7 * size);
    }
    MMLeastSquarePlane line;
    for (int i = -5; i <= 5; ++i)
        line.AddPoint(0.1 * i, 0.3 * i, -0.7 * i);
    line.CalculateThroughOrigin();
    EXPECT_TRUE(line.GetIsLine());
}

TEST(LeastSquaresPlane, WeightsCountLikeRepetitions)
{
    Random random(503);
    for (int round = 0; round < 100; ++round) {
        const std::vector<Point> points = Slab(random, 10.0, 2.0, 12);
        std::vector<WeightedPoint> weighted;
        std::vector<Point> repeated;
        for (const Point& point : points) {
            const int weight = random.Integer(1, 4);
            weighted.emplace_back(point + Point(100, 200, 300), weight);
            repeated.insert(repeated.end(), static_cast<std::size_t>(weight),
                            point + Point(100, 200, 300));
        }
        MMLeastSquarePlane fit;
        fit.CalculateWeighted(weighted);
        MMLeastSquarePlane plain;
        plain.Calculate(repeated);
        EXPECT_LT(Angle(fit.GetPlane().GetNormal(), plain.GetPlane().GetNormal()), 1e-9);
        EXPECT_NEAR(std::abs(fit.GetPlane().D()), std::abs(plain.GetPlane().D()), 1e-7);
        EXPECT_LT((fit.GetAveragePoint() - plain.GetAveragePoint()).Length(), 1e-11);
        // A fit from the sums that were left behind finds the plane again.
        const Point normal = fit.GetPlane().GetNormal();
        fit.Calculate();
        EXPECT_LT(Angle(fit.GetPlane().GetNormal(), normal), 1e-8);
    }
}

TEST(LeastSquaresPlane, SetsThatDefineNoPlaneKeepTheOldOne)
{
    MMLeastSquarePlane fit;
    EXPECT_TRUE(fit.GetIsLine());
    EXPECT_EQ(fit.GetPlane(), MMPlaneEq<double>());
    EXPECT_EQ(fit.GetAveragePoint(), Point());
    fit.Calculate({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}});
    const MMPlaneEq<double> plane = fit.GetPlane();
    EXPECT_EQ(std::abs(plane.C()), 1.0);
    EXPECT_EQ(plane.D(), -plane.C());

    fit.CalculateWeighted({{{0, 0, 0}, 1.0}, {{1, 0, 0}, 1.0}, {{0, 1, 0}, -2.0}});
    EXPECT_TRUE(fit.GetIsLine()); // the weights cancel
    fit.Calculate({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}});
    EXPECT_TRUE(fit.GetIsLine());
    fit.Calculate({{0, 0, 0}, {1, 0, 0}});
    EXPECT_TRUE(fit.GetIsLine());
    EXPECT_EQ(fit.GetPlane(), plane);
    fit.Init();
    EXPECT_EQ(fit.GetPlane(), plane);

    // A point after a plane makes the next request compute anew.
    fit.Calculate({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    fit.AddPoint(0, 0, 9);
    EXPECT_NE(fit.GetPlane().GetNormal(), Point(0, 0, 1));
}

TEST(LeastSquaresPlane, GathersDeviations)
{
    MMLeastSquarePlane fit;
    fit.Calculate({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}});
    fit._InitDeviation();
    fit._UpdateDeviation(Point(5, 5, 2));
    fit._UpdateDeviation(Point(-3, 0, 0));
    EXPECT_FALSE(fit.GetIsDeviationValid());
    fit._UpdateDeviation(2U);
    EXPECT_TRUE(fit.GetIsDeviationValid());
    EXPECT_DOUBLE_EQ(fit.GetStandardDeviation(), 1.0);
    EXPECT_DOUBLE_EQ(fit.GetMaxDeviation(), 1.0);
    fit.Init();
    EXPECT_DOUBLE_EQ(fit.GetMaxDeviation(), 1.0);
}

TEST(LeastSquaresPlane, NonFinitePointsReturn)
{
    for (const double bad : {kNaN, kInfinity, 1e200}) {
        MMLeastSquarePlane fit;
        fit.Calculate({{0, 0, 0}, {1, 0, 0}, {0, 1, bad}, {bad, 1, 1}});
        fit.CalculateThroughOrigin();
        fit.CalculateWeighted({{{0, 0, bad}, 1}, {{1, 0, 0}, bad}, {{0, 1, 1}, 1}});
        static_cast<void>(fit.GetPlane());
    }
}

} // namespace
