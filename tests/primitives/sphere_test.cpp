#include "support/random.h"

#include <norvek/primitives/sphere.h>

#include <gtest/gtest.h>

#include <limits>

namespace
{

using Point = MMPoint3d<double>;
using norvek_test::Random;

TEST(Sphere, GoesThroughFourPoints)
{
    Random random(511);
    for (int round = 0; round < 300; ++round) {
        const Point centre = random.Point(50.0);
        const double radius = random.Uniform(1.0, 20.0);
        std::vector<Point> points = {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}};
        for (Point& p : points)
            p = centre + radius * (p + random.Point(0.4)).Normalised();
        MMSphere sphere;
        ASSERT_TRUE(sphere.Fit4Points(points[0], points[1], points[2], points[3]));
        EXPECT_LT((sphere.GetCenter() - centre).Length(), 1e-9);
        EXPECT_NEAR(sphere.GetRadius(), radius, 1e-9);
    }
}

// The limits are absolute: the same figure a hundred times smaller is refused.
TEST(Sphere, RefusesFlatAndSmallFigures)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    MMSphere sphere;
    sphere.SetRadius(7.0);
    const MMSphere before = sphere;
    EXPECT_FALSE(sphere.Fit4Points({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}));
    EXPECT_FALSE(sphere.Fit4Points({0.01, 0, 0}, {-0.01, 0, 0}, {0, 0.01, 0}, {0, 0, 0.01}));
    EXPECT_FALSE(sphere.Fit({0, 0, 0}, {1, 1, 1}, {3, 3, 3}));
    EXPECT_FALSE(sphere.Fit({0, 0, 0}, {0, 0, 0}, {0, 0, 0}));
    EXPECT_FALSE(sphere.Fit({0, 0, 0}, {1, 0, nan}, {0, 1, 0}));
    EXPECT_FALSE(sphere.Fit({0, 0, 0}, {1e308, 0, 0}, {5e307, 1e297, 0})); // its radius overflows
    EXPECT_FALSE(sphere.CapturePoints({}));
    EXPECT_FALSE(sphere.CapturePoints({{0, 0, 0}, {nan, 0, 0}}));
    EXPECT_FALSE(sphere.Compute({}, Point()));
    EXPECT_EQ(sphere, before);
    EXPECT_TRUE(sphere.Compute({1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
    EXPECT_TRUE(sphere.GetCenter() == Point() && sphere.GetRadius() == 1.0);
    // Spheres are ordered by the radius alone.
    EXPECT_TRUE(sphere < before && sphere <= before && before > sphere && before >= sphere);
    EXPECT_TRUE(sphere.Compute({{0, 0, 3}, {0, 7, 0}}, Point(0, 0, 0)));
    sphere.SetCenter({1, 0, 0});
    EXPECT_TRUE(sphere != before && !(sphere < before) && !(sphere > before));
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

// Compared with the slow descent of Badoiu and Clarkson: steps of 1 / (i + 1) towards the farthest
// point, each of which holds all points.
TEST(Sphere, CapturesPointsInTheSmallestSphere)
{
    Random random(513);
    for (int round = 0; round < 60; ++round) {
        std::vector<Point> points(static_cast<std::size_t>(random.Integer(1, 40)));
        for (Point& point : points)
            point = random.Point(3.0) + Point(1000, 0, 0);
        points.push_back(points[0]);
        const auto farthest = [&points](const Point& centre) {
            Point offset;
            for (const Point& p : points)
                offset = (p - centre).Length() > offset.Length() ? p - centre : offset;
            return offset;
        };
        MMSphere sphere;
        ASSERT_TRUE(sphere.CapturePoints(points));
        const double reach = farthest(sphere.GetCenter()).Length();
        EXPECT_NEAR(sphere.GetRadius(), reach, 1e-14 * reach);
        Point centre = points[0];
        double best = farthest(centre).Length();
        for (int i = 1; i < 3000; ++i) {
            centre += farthest(centre) / (i + 1);
            best = std::min(best, farthest(centre).Length());
        }
        EXPECT_LE(sphere.GetRadius(), best * (1.0 + 1e-12) + 1e-12);
    }
}

} // namespace
