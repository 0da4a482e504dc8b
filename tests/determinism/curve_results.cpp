#include "determinism/results.h"

#include <norvek/curve/curve_creation.h>
#include <norvek/curve/curve_equation_2d.h>
#include <norvek/curve/curve_nurbs.h>

#include <vector>

namespace norvek_test
{

// Fits of all kinds, banded and full, and evaluations of every order on them with weights.
void HashNurbs(Hash& hash, Numbers& numbers, int round)
{
    auto points = numbers.Fill(std::vector<double>(3 * static_cast<std::size_t>(80 + round)), 5.0);
    std::vector<double> knots(60);
    std::vector<Point4D> controlPoints(40);
    NURBSCurv curve{1 + round % 20, 21 + round % 9, knots.data(), 0, 0, controlPoints.data()};
    int options[5] = {0, 25 * (round % 5), 0, 0, round % 3};
    spd_Comm comm{0, 2097152};
    hash << spd_create_curve(80 + round, points.data(), options, &curve, &comm);
    for (Point4D& point : controlPoints)
        point.w += numbers.Next(0.2);
    NURBSSurf surface{1,   1,           knots.data(),           0.0,
                      0.0, curve.order, curve.numControlPoints, knots.data(),
                      0.0, 0.0,         controlPoints.data()};
    for (int i = 0; i < 30; ++i) {
        std::array<Nurbs::Point, 9> result{};
        const double t = numbers.Next(1.0);
        hash << nurbs_curv_eval(2, curve, t, result.data())
             << nurbs_surf_eval(2, &surface, {{0.5, t}}, &result[3]) << result;
    }
}

// Projections and divisions of fitted curves, with weights and without, and pairs around arcs.
void HashCurveObjects(Hash& hash, Numbers& numbers, int round)
{
    M3dCurveNurbs curve;
    curve.SetOrder(2 + static_cast<std::uint32_t>(round % 6));
    curve.SetNumberControlPoints(20);
    const std::vector<MMPoint3d<double>> points(static_cast<std::size_t>(60 + round));
    hash << curve.Fit(numbers.Fill(points, 5.0), round % 3 == 0);
    for (std::uint32_t j = 0; round % 2 == 0 && j < curve.GetNumberControlPoints(); ++j)
        curve.AccessControlPoints()[j].w += numbers.Next(0.5);
    const MMPoint3d<double> r = numbers.Point(1.5);
    MArcEllipseEquation2d arc;
    arc.SetAngles(-2.0 + 0.5 * r.z, 1.0 + 2.0 * numbers.Next(1.5));
    arc.Set({2.0 + r.x, 2.0 + r.y}, {2.0 + r.x, 2.0 + r.y}, {2.0 + r.y, -2.0 - r.x});
    for (int k = 0; k < 20; ++k) {
        const MMPoint3d<double> p = numbers.Point(6.0);
        double t = 0.0;
        hash << curve.Distance(p, 0.0, t) << t;
        t = 0.5 + numbers.Next(0.5);
        hash << curve.ProjectPoint(t, p, 0.0, true) << t;
        const MMPoint2d<double> uv = arc.FromXYZtoUV(p.x, p.y, p.z);
        hash << uv << arc.FromUVtoXYZ(uv.x, uv.y) << arc.Evaluate2d(p.x, p.y);
    }
    std::vector<double> parameters;
    hash << curve.Segment(parameters, 0.01, round % 4 == 0) << parameters;
}

} // namespace norvek_test
