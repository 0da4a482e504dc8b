#include "foundation/safe_length.h"
#include "primitives/enclosing_ball.h"

#include <norvek/foundation/constants.h>
#include <norvek/linalg/general_matrix.h>
#include <norvek/primitives/sphere.h>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Norvek::Math::Core;

namespace
{

using Point = MMPoint3d<double>;

// Few points are ever exchanged; the bound only stops rounding from going round in circles.
constexpr int kMostExchanges = 1000;

double Determinant(const std::array<std::array<double, 4>, 4>& rows)
{
    MGeneralMatrix matrix(4, 4);
    for (unsigned int i = 0; i < 4; ++i)
        for (unsigned int j = 0; j < 4; ++j)
            matrix(i, j) = rows[i][j];
    return matrix.Determinant(4);
}

// The centroid and the largest coordinate about it. False for no points and for non-finite ones.
bool CentreAndScale(const std::vector<Point>& points, Point& centre, double& scale)
{
    if (points.empty())
        return false;
    const auto n = static_cast<double>(points.size());
    centre = {};
    for (const Point& point : points)
        centre += point / n;
    scale = 0.0;
    for (const Point& point : points) {
        const Point p = point - centre;
        scale = std::max({scale, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
            return false;
    }
    return true;
}

} // namespace

MMSphere::~MMSphere() = default;

bool MMSphere::Fit4Points(const Point& p1, const Point& p2, const Point& p3, const Point& p4)
{
    // Column 0 is the squared length s, then x, y, z and 1; each determinant leaves one out.
    std::array<std::array<double, 5>, 4> all{};
    const std::array<const Point*, 4> points = {&p1, &p2, &p3, &p4};
    for (std::size_t i = 0; i < 4; ++i) {
        const Point& p = *points[i];
        all[i] = {p.x * p.x + p.y * p.y + p.z * p.z, p.x, p.y, p.z, 1.0};
    }
    const auto without = [&all](std::size_t left) {
        std::array<std::array<double, 4>, 4> rows{};
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t j = 0; j < 4; ++j)
                rows[i][j] = all[i][j < left ? j : j + 1];
        return Determinant(rows);
    };
    const double m11 = without(0);
    if (std::abs(m11) < kMomentDeterminantLimit)
        return false;
    const Point center(0.5 * without(1) / m11, -0.5 * without(2) / m11, 0.5 * without(3) / m11);
    const double squared =
        center.x * center.x + center.y * center.y + center.z * center.z - without(4) / m11;
    if (squared < kMomentDeterminantLimit)
        return false;
    _radius = std::sqrt(squared);
    _center = center;
    return true;
}

bool MMSphere::Compute(const Point& p1, const Point& p2, const Point& p3, const Point& p4)
{
    return Fit4Points(p1, p2, p3, p4);
}

bool MMSphere::Compute(const std::vector<Point>& points, const Point& center)
{
    double radius = -1.0;
    for (const Point& point : points) {
        const double distance = SafeLength(point - center);
        if (!std::isfinite(distance))
            return false;
        radius = std::max(radius, distance);
    }
    if (radius < 0.0)
        return false;
    _center = center;
    _radius = radius;
    return true;
}

// In units of the longer of two sides, so that squares neither overflow nor vanish.
bool MMSphere::Fit(const Point& p1, const Point& p2, const Point& p3)
{
    const Point b = p2 - p1;
    const Point c = p3 - p1;
    const double scale = std::max(SafeLength(b), SafeLength(c));
    Point center;
    if (!std::isfinite(scale) || !CircleCenter(center, b / scale, c / scale))
        return false;
    const double radius = center.Length() * scale;
    center = p1 + center * scale;
    if (!std::isfinite(radius) || !std::isfinite(SafeLength(center)))
        return false;
    _center = center;
    _radius = radius;
    return true;
}

bool MMSphere::Fit(const Point points[3])
{
    return Fit(points[0], points[1], points[2]);
}

bool MMSphere::CapturePoints(const std::vector<Point>& points)
{
    Point centre;
    double scale = 0.0;
    if (!CentreAndScale(points, centre, scale))
        return false;
    Ball ball;
    ball.center = {};
    ball.squaredRadius = 0.0;
    BallSupport support;
    for (int exchange = 0; scale > 0.0 && exchange < kMostExchanges; ++exchange) {
        Point farthest;
        double distance = -1.0;
        for (const Point& point : points) {
            const Point p = (point - centre) / scale;
            const double squared = (p - ball.center).LengthSquared();
            if (squared > distance) {
                distance = squared;
                farthest = p;
            }
        }
        const bool isSettled =
            support.count > 0 && !(distance > ball.squaredRadius * (1.0 + 1e-14));
        if (isSettled)
            break;
        const Ball next = AddToSupport(support, farthest);
        if (!(next.squaredRadius > ball.squaredRadius) && exchange > 0)
            break;
        ball = next;
    }
    return Compute(points, centre + ball.center * scale);
}
