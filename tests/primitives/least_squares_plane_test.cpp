#include "support/random.h"

#include <norvek/primitives/least_squares_plane.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

namespace
{

using Point = MMPoint3d<double>;
using norvek_test::Random;

// The sine of the angle between a normal and the smallest principal axis of points about a centre,
// from Eigen's iterative solver on moments in extended precision.
double NormalError(const MMPlaneEq<double>& plane, const std::vector<Point>& points,
                   const Point& centre = Point())
{
    using Long3 = Eigen::Matrix<long double, 3, 1>;
    Eigen::Matrix<long double, 3, 3> scatter = Eigen::Matrix<long double, 3, 3>::Zero();
    for (const Point& point : points) {
        const Long3 p = Long3(point.x, point.y, point.z) - Long3(centre.x, centre.y, centre.z);
        scatter += p * p.transpose();
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix<long double, 3, 3>> solver(scatter);
    const Long3 normal(plane.A(), plane.B(), plane.C());
    return static_cast<double>(solver.eigenvectors().col(0).cross(normal).norm());
}

// A slab of the given size and thickness, turned at random.
std::vector<Point> Slab(Random& random, double size, double thickness, std::size_t count)
{
    const Point u = random.Point(1.0).Normalised();
    const Point v = u.Cross(random.Point(1.0)).Normalised();
    std::vector<Point> points(count);
    for (Point& point : points)
        point = u * random.Uniform(-size, size) + v * random.Uniform(-0.6 * size, 0.6 * size) +
                u.Cross(v) * random.Uniform(-thickness, thickness);
    return points;
}

TEST(LeastSquaresPlane, AgreesWithPrincipalAxes)
{
    Random random(501);
    for (int round = 0; round < 300; ++round) {
        const double size = std::abs(random.LogUniform(1e-2, 1e5));
        std::vector<Point> points = Slab(random, size, 0.1 * size, 50);
        MMLeastSquarePlane fit;
        for (const Point& p : points)
            fit.AddPoint(p.x, p.y, p.z);
        const MMPlaneEq<double> plane = fit.GetPlane();
        EXPECT_LT(NormalError(plane, points, fit.GetAveragePoint()), 1e-12);
        EXPECT_NEAR(plane.Distance(fit.GetAveragePoint()), 0.0, 1e-15 * size);
        // The vector form has the bits of the stream.
        MMLeastSquarePlane atOnce;
        atOnce.Calculate(points);
        EXPECT_TRUE(atOnce.GetPlane() == plane && atOnce.GetNumPoints() == 50);
        fit.CalculateThroughOrigin();
        EXPECT_LT(NormalError(fit.GetPlane(), points), 1e-11);

        // Exact planes and tiny objects fall below the absolute threshold on the determinant.
        points = Slab(random, size * size * 1e-2, 0.0, 20);
        fit.Calculate(points);
        fit.CalculateThroughOrigin();
        EXPECT_TRUE(!fit.GetIsLine() && fit.GetPlane().D() == 0.0) << size;
        EXPECT_LT(NormalError(fit.GetPlane(), points), 1e-7);
    }
}

TEST(LeastSquaresPlane, WeightsCountLikeRepetitions)
{
    Random random(503);
    for (int round = 0; round < 100; ++round) {
        std::vector<std::pair<Point, double>> weighted;
        std::vector<Point> repeated;
        for (const Point& offset : Slab(random, 10.0, 2.0, 12)) {
            const Point point = offset + Point(100, 200, 300);
            weighted.emplace_back(point, random.Integer(1, 4));
            repeated.insert(repeated.end(), static_cast<std::size_t>(weighted.back().second),
                            point);
        }
        MMLeastSquarePlane plain;
        plain.Calculate(repeated);
        const Point centre = plain.GetAveragePoint();
        MMLeastSquarePlane fit;
        fit.CalculateWeighted(weighted);
        EXPECT_LT(NormalError(fit.GetPlane(), repeated, centre), 1e-9);
        EXPECT_NEAR(fit.GetPlane().Distance(centre), 0.0, 1e-11);
        EXPECT_LT((fit.GetAveragePoint() - centre).Length(), 1e-11);
        // A fit from the sums that were left behind finds the plane again.
        fit.Calculate();
        EXPECT_LT(NormalError(fit.GetPlane(), repeated, centre), 1e-8);
    }
}

TEST(LeastSquaresPlane, SetsThatDefineNoPlaneKeepTheOldOne)
{
    MMLeastSquarePlane fit;
    EXPECT_TRUE(fit.GetIsLine() && fit.GetAveragePoint() == Point() && !fit.GetPlane().IsPlane());
    fit.Calculate({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}});
    const MMPlaneEq<double> plane = fit.GetPlane();
    EXPECT_TRUE(std::abs(plane.C()) == 1.0 && plane.D() == -plane.C());

    fit.CalculateWeighted({{{0, 0, 0}, 1.0}, {{1, 0, 0}, 1.0}, {{0, 1, 0}, -2.0}});
    EXPECT_TRUE(fit.GetIsLine()); // the weights cancel
    const std::vector<Point> sets[] = {
        {{0, 0, 0}, {0.1, 0.3, -0.7}, {0.2, 0.6, -1.4}}, {{0, 0, 0}, {1, 0, 0}}, {}};
    for (const std::vector<Point>& set : sets) {
        fit.Calculate(set);
        EXPECT_TRUE(fit.GetIsLine() && fit.GetPlane() == plane);
        fit.CalculateThroughOrigin();
        EXPECT_TRUE(fit.GetIsLine() && fit.GetPlane() == plane);
    }
    // A point after a plane makes the next request compute anew.
    fit.Calculate({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    fit.AddPoint(0, 0, 9);
    EXPECT_NE(fit.GetPlane().GetNormal(), Point(0, 0, 1));
}

TEST(LeastSquaresPlane, GathersDeviations)
{
    MMLeastSquarePlane fit;
    for (int pass = 0; pass < 2; ++pass) {
        fit.Calculate({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}});
        fit._InitDeviation();
        fit._UpdateDeviation(Point(5, 5, 2));
        fit._UpdateDeviation(Point(-3, 0, 0));
        EXPECT_FALSE(fit.GetIsDeviationValid());
        fit._UpdateDeviation(2U);
        fit.Init();
        EXPECT_TRUE(fit.GetIsDeviationValid());
        EXPECT_DOUBLE_EQ(fit.GetStandardDeviation(), 1.0);
        EXPECT_DOUBLE_EQ(fit.GetMaxDeviation(), 1.0);
    }
}

} // namespace
