#include "determinism/results.h"

#include <norvek/curve/curve_creation.h>
#include <norvek/curve/curve_equation_2d.h>
#include <norvek/curve/curve_nurbs.h>

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
        NURBSSurf surface{1,   1,           knots.data(),           0.0,
                          0.0, curve.order, curve.numControlPoints, knots.data(),
                          0.0, 0.0,         controlPoints.data()};
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

// Projections and divisions of fitted curves, with weights and without, and pairs around arcs.
std::uint64_t HashCurveObjects(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < 40; ++i) {
        std::vector<MMPoint3d<double>> points(static_cast<std::size_t>(60 + i));
        for (MMPoint3d<double>& point : points)
            point = numbers.Point(5.0);
        M3dCurveNurbs curve;
        curve.SetOrder(2 + static_cast<std::uint32_t>(i % 6));
        curve.SetNumberControlPoints(20);
        hash.Add(static_cast<int>(curve.Fit(points, i % 3 == 0)));
        for (std::uint32_t j = 0; i % 2 == 0 && j < curve.GetNumberControlPoints(); ++j)
            curve.AccessControlPoints()[j].w += numbers.Next(0.5);
        MArcEllipseEquation2d arc;
        const double start = -2.0 + numbers.Next(1.0);
        arc.SetAngles(start, 1.0 + numbers.Next(3.0));
        const double a = 2.0 + numbers.Next(1.5);
        const double b = 2.0 + numbers.Next(1.5);
        arc.Set({a, b}, {a, b}, {b, -a});
        for (int k = 0; k < 20; ++k) {
            const MMPoint3d<double> point = numbers.Point(6.0);
            double t = 0.0;
            hash.Add(curve.Distance(point, 0.0, t));
            hash.Add(t);
            t = 0.5 + numbers.Next(0.5);
            hash.Add(static_cast<int>(curve.ProjectPoint(t, point, 0.0, true)));
            hash.Add(t);
            const MMPoint2d<double> uv = arc.FromXYZtoUV(point.x, point.y, point.z);
            hash.Add(uv);
            hash.Add(arc.FromUVtoXYZ(uv.x, uv.y));
            hash.Add(arc.Evaluate2d(point.x, point.y));
        }
        std::vector<double> parameters;
        hash.Add(static_cast<int>(curve.Segment(parameters, 0.01, i % 4 == 0)));
        for (const double t : parameters)
            hash.Add(t);
    }
    return hash.Value();
}

} // namespace norvek_test
