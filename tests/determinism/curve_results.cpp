#include "determinism/results.h"

#include <norvek/curve/curve_creation.h>

#include <vector>

namespace norvek_test
{

// Fits of all kinds, banded and full, and evaluations of every order on them with weights.
std::uint64_t HashNurbs(Numbers numbers)
{
    Hash hash;
    for (int fit = 0; fit < 60; ++fit) {
        std::vector<double> points(3 * static_cast<std::size_t>(80 + fit));
        for (double& coordinate : points)
            coordinate = numbers.Next(5.0);
        std::vector<double> knots(60);
        std::vector<Point4D> controlPoints(40);
        NURBSCurv curve{1 + fit % 20, 21 + fit % 9, knots.data(), 0, 0, controlPoints.data()};
        int options[5] = {0, 25 * (fit % 5), 0, 0, fit % 3};
        spd_Comm comm{0, 2097152};
        hash.Add(spd_create_curve(80 + fit, points.data(), options, &curve, &comm));
        for (Point4D& point : controlPoints)
            point.w += numbers.Next(0.2);
        NURBSSurf surface{.orderU = 1,
                          .numControlPointsU = 1,
                          .knotsU = knots.data(),
                          .orderV = curve.order,
                          .numControlPointsV = curve.numControlPoints,
                          .knotsV = knots.data(),
                          .controlPoints = controlPoints.data()};
        for (int i = 0; i < 30; ++i) {
            Nurbs::Point result[9]{};
            const double t = numbers.Next(1.0);
            hash.Add(nurbs_curv_eval(2, curve, t, result));
            hash.Add(nurbs_surf_eval(2, &surface, {{0.5, t}}, result + 3));
            for (const Nurbs::Point& point : result)
                hash.Add(MMPoint3d<double>{point.x, point.y, point.z});
        }
    }
    return hash.Value();
}

} // namespace norvek_test
