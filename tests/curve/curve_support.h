#pragma once

#include "support/random.h"

#include <norvek/curve/nurbs.h>

#include <limits>
#include <vector>

namespace norvek_test
{

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

/// A curve that owns its arrays: weights from 1/2 to 2, of either sign, and knots from 0 at random
/// steps, none, such that count as none, and others.
struct RandomCurve
{
    std::vector<double> knots;
    std::vector<Point4D> points;
    NURBSCurv record;

    RandomCurve(Random& random, int order, int count)
    {
        double knot = 0.0;
        for (int i = 0; i < count + order; ++i) {
            knots.push_back(knot);
            const double steps[] = {0.0, 5e-12, 1e-11, 0.3, 0.4, 0.8};
            knot += steps[random.Integer(0, 5)];
        }
        const double sign = random.Integer(0, 1) == 0 ? 1.0 : -1.0;
        for (int i = 0; i < count; ++i) {
            const MMPoint3d<double> p = random.Point(1.0);
            points.push_back({{p.x, p.y, p.z, sign * random.Uniform(0.5, 2.0)}});
        }
        const double start = knots[static_cast<std::size_t>(order - 1)];
        record = {order, count, knots.data(), start, knots[points.size()], points.data()};
    }
};

} // namespace norvek_test
