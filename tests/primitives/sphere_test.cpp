#include "support/random.h"

#include <norvek/primitives/sphere.h>

#include <gtest/gtest.h>

#include <limits>

namespace
{

using Point = MMPoint3d<double>;
using norvek_test::Random;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Point OnUnitSphere(Random& random)
{
    Point p;
    do
        p = random.Point(1.0);
    while (p.LengthSquared() > 1.0 || p.LengthSquared() < 0.01);
    return p.Normalised();
}

bool HoldsAll(const MMSphere& sphere, const std::vector<Point>& points)
{
    for (const Point& p : points)
        if ((p - sphere.GetCenter()).Length() > sphere.GetRadius() * (1.0 + 1e-14))
            return false;
    return true;
}

TEST(Sphere, GoesThroughFourPoints)
{
    Random random(511);
    int fitted = 0;
    for (int round = 0; round < 300; ++round) {
        const Point centre = random.Point(50.0);
        const double radius = random.Uniform(1.0, 20.0);
        Point p[4];
        for (Point& point : p)
            point = centre + OnUnitSphere(random) * radius;
        const double volume = std::abs((p[1] - p[0]).Cross(p[2] - p[0]).Dot(p[3] - p[0]));
        if (volume < 0.01 * radius * radius * radius)
            continue; // nearly flat
        MMSphere sphere;
        ASSERT_TRUE(sphere.Fit4Points(p[0], p[1], p[2], p[3]));
        EXPECT_LT((sphere.GetCenter() - centre).Length(), 1e-7);
        EXPECT_NEAR(sphere.GetRadius(), radius, 1e-7);
        ++fitted;
    }
    EXPECT_GT(fitted, 200);
}

// The limits are absolute: the same figure a hundred times smaller is refused.
TEST(Sphere, RefusesFlatAndSmallFigures)
{
    MMSphere sphere;
    sphere.SetRadius(7.0);
    const MMSphere before = sphere;
    EXPECT_FALSE(sphere.Fit4Points({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}));
    EXPECT_FALSE(sphere.Fit4Points({0.01, 0, 0}, {-0.01, 0, 0}, {0, 0.01, 0}, {0, 0, 0.01}));
    EXPECT_FALSE(sphere.Fit({0, 0, 0}, {1, 1, 1}, {3, 3, 3}));
    EXPECT_FALSE(sphere.Fit({0, 0, 0}, {0, 0, 0}, {0, 0, 0}));
    EXPECT_FALSE(sphere.Fit({0, 0, 0}, {1, 0, kNaN}, {0, 1, 0}));
    EXPECT_FALSE(sphere.Fit({0, 0, 0}, {1e308, 0, 0}, {5e307, 1e297, 0})); // its radius overflows
    EXPECT_FALSE(sphere.CapturePoints({}));
    EXPECT_FALSE(sphere.CapturePoints({{0, 0, 0}, {kNaN, 0, 0}}));
    EXPECT_FALSE(sphere.Compute({}, Point()));
    EXPECT_EQ(sphere, before);
    EXPECT_TRUE(sphere.Compute({1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
    EXPECT_EQ(sphere.GetCenter(), Point());
    EXPECT_EQ(sphere.GetRadius(), 1.0);
}

TEST(Sphere, ThroughThreePointsHasTheirCircleAsGreatCircle)
{
    Random random(512);
    for (int round = 0; round < 300; ++round) {
        const double size = std::abs(random.LogUniform(1e-150, 1e150));
        const Point p[3] = {random.Point(size), random.Point(size), random.Point(size)};
        MMSphere sphere;
        ASSERT_TRUE(sphere.Fit(p));
        const Point normal = ((p[1] - p[0]) / size).Cross((p[2] - p[0]) / size).Normalised();
        const double spread = sphere.GetRadius() / size; // large for nearly straight corners
        for (const Point& point : p) {
            const Point offset = (sphere.GetCenter() - point) / size;
            EXPECT_NEAR(offset.Length(), spread, 1e-9 * (1.0 + spread * spread));
            EXPECT_NEAR(offset.Dot(normal), 0.0, 1e-9 * (1.0 + spread * spread));
        }
    }
}

// No pair, triple or foursome of the points needs a larger sphere than the one found, and the one
// found is the smallest through some of them: compared with a slow descent on the radius.
TEST(Sphere, CapturesPointsInTheSmallestSphere)
{
    Random random(513);
    for (int round = 0; round < 60; ++round) {
        std::vector<Point> points;
        const int count = random.Integer(1, 40);
        points.resize(static_cast<std::size_t>(count));
        for (Point& point : points)
            point = random.Point(3.0) + Point(1000, 0, 0);
        points.insert(points.end(), points.begin(), points.begin() + count / 2);
        MMSphere sphere;
        ASSERT_TRUE(sphere.CapturePoints(points));
        EXPECT_TRUE(HoldsAll(sphere, points));
        // Badoiu and Clarkson: steps of 1 / (i + 1) towards the farthest point.
        Point centre = points[0];
        double best = std::numeric_limits<double>::max();
        for (int i = 1; i < 3000; ++i) {
            Point farthest = points[0];
            for (const Point& p : points)
                if ((p - centre).LengthSquared() > (farthest - centre).LengthSquared())
                    farthest = p;
            best = std::min(best, (farthest - centre).Length());
            centre += (farthest - centre) / (i + 1);
        }
        EXPECT_LE(sphere.GetRadius(), best * (1.0 + 1e-12) + 1e-12);
        EXPECT_GE(sphere.GetRadius(), best * 0.98);
    }
}

TEST(Sphere, OrdersByRadiusAlone)
{
    MMSphere small;
    small.SetRadius(1.0);
    MMSphere large;
    large.SetRadius(2.0);
    large.SetCenter({-9, 0, 0});
    EXPECT_TRUE(small < large && small <= large && large > small && large >= small);
    MMSphere moved = small;
    moved.SetCenter({1, 0, 0});
    EXPECT_TRUE(moved != small && !(moved < small) && !(small < moved));
    moved.SetRadius(kNaN);
    EXPECT_TRUE(moved != moved); // NOLINT(misc-redundant-expression)
    EXPECT_TRUE(small.Compute({{0, 0, 3}, {0, 4, 0}}, Point()));
    EXPECT_EQ(small.GetRadius(), 4.0);
}

} // namespace
