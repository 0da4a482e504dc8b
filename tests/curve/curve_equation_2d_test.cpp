#include "support/random.h"

#include <norvek/curve/curve_equation_2d.h>
#include <norvek/foundation/constants.h>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace
{

using norvek_test::Random;
using Point = MMPoint2d<double>;

constexpr double kPi = CMathConst::kPi;

// Any radii, one of them a tenth of the other at least, anywhere, and turned over now and then.
template <class Ellipse>
Ellipse RandomEllipse(Random& random)
{
    Ellipse ellipse;
    MMTransformMatrix placement;
    placement.MakeRotationXYZ(random.Uniform(0, 360), random.Uniform(0, 360), 20.0);
    placement.AddTranslation(random.Point(3.0));
    ellipse.SetPlacement(placement);
    const double a = random.LogUniform(0.5, 5.0);
    const Point axis(random.Uniform(-1, 1), random.Uniform(-1, 1));
    const double b = random.LogUniform(0.5, 5.0);
    // The scale of radii of opposite signs is no number, and continues no arc.
    const bool isArc = std::is_same_v<Ellipse, MArcEllipseEquation2d>;
    ellipse.Set({random.Uniform(-2, 2), 1.0}, {std::abs(a), isArc ? std::abs(b) : b}, 1e200 * axis);
    if (a < 0.0)
        ellipse.Invert();
    return ellipse;
}

double Deviation(const M2dCurveEq& curve, double t, const Point& point)
{
    return (curve.Evaluate1d(t) - point).Length();
}

TEST(Ellipse, FormsOfTheSameCurveAgree)
{
    Random random(951);
    for (int i = 0; i < 500; ++i) {
        const auto ellipse = RandomEllipse<M2dEllipseEq>(random);
        Point centre, radii, axis;
        ellipse.Get(centre, radii, axis);
        EXPECT_NEAR(axis.Length(), 1.0, 1e-15);
        const double sign = -ellipse.Evaluate2d(centre.x, centre.y);
        EXPECT_EQ(std::abs(sign), 1.0);
        const double t = random.Uniform(-kPi, kPi);
        const Point p = ellipse.Evaluate1d(t);
        EXPECT_NEAR(ellipse.Evaluate2d(p.x, p.y), 0.0, 1e-13);
        // Tangents by differences; the normal points to where the implicit function grows.
        const Point step = (ellipse.Evaluate1d(t + 1e-6) - ellipse.Evaluate1d(t - 1e-6)) / 2e-6;
        EXPECT_LT((sign * step - ellipse.TangentDirection2d(t)).Length(), 1e-8);
        const Point outside = p + 0.01 * ellipse.NormalDirection2d(t);
        EXPECT_EQ(ellipse.Evaluate2d(outside.x, outside.y) > 0.0, radii.y > 0.0);
    }
}

// Curves of both kinds, points of space over and beside them, against a comparison with thousands
// of points of the curve.
template <class Curve>
void TryPairs(Random& random, double low, double high)
{
    for (int i = 0; i < 300; ++i) {
        auto curve = RandomEllipse<Curve>(random);
        if constexpr (std::is_same_v<Curve, MArcEllipseEquation2d>)
            curve.SetAngles(-0.3 - random.Uniform(0, 3), random.Uniform(-0.2, 2.0));
        const double t = random.Uniform(low, high);
        const MMPoint3d<double> p = curve.FromUVtoXYZ(t, -0.75);
        const Point uv = curve.FromXYZtoUV(p.x, p.y, p.z);
        EXPECT_NEAR(uv.y, -0.75, 1e-13);
        EXPECT_LT(Deviation(curve, uv.x, curve.Evaluate1d(t)), 1e-13) << t;
        if (high <= kPi) {
            EXPECT_NEAR(uv.x, t, 1e-12);
        }
        MMPoint3d<double> q = 3.0 * random.Point(2.0);
        const double u = curve.FromXYZtoUV(q.x, q.y, q.z).x;
        curve.GetPlacement().InverseTransform(q, false);
        double least = INFINITY;
        for (int k = 0; k <= 4000; ++k)
            least = std::min(least, Deviation(curve, low + (high - low) * k / 4000.0, {q.x, q.y}));
        EXPECT_LE(Deviation(curve, u, {q.x, q.y}), least + 1e-15) << u;
    }
}

TEST(Ellipse, PairsComeBackAndAreNearest)
{
    Random random(952);
    TryPairs<M2dEllipseEq>(random, -kPi, kPi);
    TryPairs<MArcEllipseEquation2d>(random, -9.0, 9.0);
}

TEST(Ellipse, EquallyNearPointsGiveThePositiveParameter)
{
    const std::tuple<Point, Point, double> cases[] = {
        {{2, 1}, {0, 0}, kPi / 2},
        {{1, 2}, {0, 0}, 0.0},
        {{2, 1}, {-1.5, -0.0}, kPi},
        {{2, 1}, {-9, -1e-300}, kPi},
        {{2, 1}, {0.75, 0}, kPi / 3},
        {{1, 2}, {0, -5}, -kPi / 2},
        {{1, 2}, {-1e-9, 0}, kPi},
        {{1e-200, 1e-200}, {1, 1}, kPi / 4},
        {{1e200, 1e200}, {-1, 1}, 3 * kPi / 4},
    };
    for (const auto& [radii, point, t] : cases) {
        M2dEllipseEq ellipse;
        ellipse.Set({0, 0}, radii, {1, 0});
        EXPECT_NEAR(ellipse.FromXYZtoUV(point.x, point.y, 1.0).x, t, 1e-15)
            << radii << ' ' << point;
    }
    // The foot across the longer axis, where an upper half leaves out the nearest one.
    MArcEllipseEquation2d arc;
    arc.Set({0, 0}, {2, 1}, {1, 0});
    arc.SetAngles(0.05, kPi - 0.05);
    const double right = arc.FromXYZtoUV(0.1, -0.05, 0.0).x;
    EXPECT_NEAR(arc.FromXYZtoUV(-0.1, -0.05, 0.0).x, kPi - right, 1e-14);
}

TEST(Arc, ContinuesAtUnitSpeedAndKeepsItsInside)
{
    Random random(953);
    for (int i = 0; i < 300; ++i) {
        auto arc = RandomEllipse<MArcEllipseEquation2d>(random);
        // Half a turn, behind which the second line is tangent, too. `Set` after the angles.
        const double start = random.Uniform(-kPi, kPi);
        arc.SetAngles(start, start + kPi);
        Point centre, radii, axis;
        arc.Get(centre, radii, axis);
        arc.Set(centre, radii, axis);
        const double sign = -arc.M2dEllipseEq::Evaluate2d(centre.x, centre.y);
        for (const double end : {start, start + kPi}) {
            const double beyond = end == start ? start - 0.25 : end + 0.25;
            EXPECT_NEAR(Deviation(arc, beyond, arc.Evaluate1d(end)), 0.25 * arc.GetCurveScale(),
                        1e-14);
            const Point tangent = arc.TangentDirection2d(beyond);
            EXPECT_NEAR(tangent.Dot(arc.TangentDirection2d(end).Normalised()), arc.GetCurveScale(),
                        1e-13);
            const Point p = arc.Evaluate1d(beyond);
            const Point n = 0.01 * sign * arc.NormalDirection2d(beyond);
            EXPECT_NEAR(arc.Evaluate2d(p.x, p.y), 0.0, 1e-12);
            EXPECT_GT(sign * arc.Evaluate2d(p.x + n.x, p.y + n.y), 0.0);
            EXPECT_LT(sign * arc.Evaluate2d(p.x - n.x, p.y - n.y), 0.0);
        }
    }
}

} // namespace
