#include "vessel.h"

#include <norvek/foundation/constants.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace centreline
{

Point TrueCentreline(double t)
{
    const double angle = 2.0 * CMathConst::kPi * t;
    return {120.0 * t + 8.0 * std::sin(3.0 * angle + 0.4), 22.0 * std::sin(2.3 * angle),
            16.0 * std::cos(1.7 * angle) + 5.0 * std::sin(4.0 * angle)};
}

Points Measure(int count, double noise)
{
    std::mt19937 engine(2026);
    std::normal_distribution<double> bell(0.0, 1.0);
    Points points;
    for (int i = 0; i < count; ++i) {
        const double x = noise * bell(engine);
        const double y = noise * bell(engine);
        points.push_back(TrueCentreline(static_cast<double>(i) / (count - 1)) +
                         Point(x, y, noise * bell(engine)));
    }
    return points;
}

Deviation DeviationFrom(const M3dCurveNurbs& curve, const Points& points)
{
    Deviation deviation;
    for (const Point& point : points) {
        const double distance = curve.Distance(point, 0.0);
        deviation.mean += distance * distance / static_cast<double>(points.size());
        deviation.largest = std::max(deviation.largest, distance);
    }
    deviation.mean = std::sqrt(deviation.mean);
    return deviation;
}

Points PointsBeside(int count)
{
    std::mt19937 engine(7);
    std::uniform_real_distribution<double> away(-11.0, 11.0);
    Points points;
    for (int i = 0; i < count; ++i) {
        const double y = away(engine);
        points.push_back(TrueCentreline((i + 0.5) / count) + Point(0.0, y, away(engine)));
    }
    return points;
}

} // namespace centreline
