#include "crops.h"

#include "support/failure.h"

#include <norvek/foundation/constants.h>
#include <norvek/search/closest_point_list.h>
#include <norvek/search/kd_tree_point_locator.h>

#include <cmath>

namespace registration
{

namespace
{

using Point = MMPoint3d<double>;

constexpr std::size_t kFewest = 100;

double Even(std::mt19937& engine)
{
    return static_cast<double>(engine()) * 0x1p-32;
}

// From the sum of twelve even numbers, which has the variance 1: the same on every system, where
// the standard's normal distribution is not.
double NearlyNormal(std::mt19937& engine)
{
    double sum = -6.0;
    for (int i = 0; i < 12; ++i)
        sum += Even(engine);
    return sum;
}

} // namespace

Crop CutCrop(const example::Surface& surface, const Window& window, int pointsPerTriangle,
             std::mt19937& engine)
{
    const M3DBoundingBox<double>& box = surface.box;
    const double left = box.minX + window.left * box.GetDeltaX();
    const double right = box.minX + window.right * box.GetDeltaX();
    const double front = box.minY + window.front * box.GetDeltaY();
    const double back = box.minY + window.back * box.GetDeltaY();
    Crop crop;
    for (const example::Surface::Triangle& triangle : surface.triangles) {
        const Point& a = surface.points[triangle[0]];
        if (a.x < left || a.x > right || a.y < front || a.y > back)
            continue;
        const Point u = surface.points[triangle[1]] - a;
        const Point v = surface.points[triangle[2]] - a;
        for (int i = 0; i < pointsPerTriangle; ++i) {
            // Evenly over the parallelogram; its farther half folds back onto the triangle.
            const double s = Even(engine);
            const double t = Even(engine);
            crop.truth.push_back(s + t <= 1.0 ? a + u * s + v * t
                                              : a + u * (1.0 - s) + v * (1.0 - t));
        }
    }
    if (crop.truth.size() < kFewest)
        throw example::Failure("the surface has too few points for crops");
    crop.points = crop.truth;
    return crop;
}

void MoveCrop(Crop& crop, double degrees, const MMPoint3d<double>& axis,
              const MMPoint3d<double>& shift, double noise, std::mt19937& engine)
{
    Point middle;
    for (const Point& p : crop.truth)
        middle += p;
    middle /= static_cast<double>(crop.truth.size());
    crop.motion.MakeRotation(middle, axis, degrees * CMathConst::kPi / 180.0, true);
    crop.motion.Translate(shift);
    crop.motion.Transform(crop.points, crop.truth);
    for (Point& p : crop.points) {
        p.x += noise * NearlyNormal(engine);
        p.y += noise * NearlyNormal(engine);
        p.z += noise * NearlyNormal(engine);
    }
}

double SpacingOf(const Cloud& cloud)
{
    MKDTreePointLocator locator;
    locator.BuildLocator(cloud);
    MClosestPointInfoList nearest;
    std::vector<MFoundPoint> found;
    for (std::size_t i = 0; i < cloud.size(); i += 1 + cloud.size() / 500) {
        // The nearest is the point itself.
        locator.FindClosestPoints(cloud[i], 2, found);
        nearest.emplace_back();
        nearest.back().SetDistance(found.back().distance);
    }
    return nearest.GetResiduMedian();
}

} // namespace registration
