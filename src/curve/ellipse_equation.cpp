#include "curve/ellipse_parameter.h"
#include "foundation/safe_length.h"

#include <norvek/curve/curve_equation_2d.h>
#include <norvek/foundation/constants.h>

#include <cmath>

using Norvek::Math::Core::FindEllipseFeet;
using Norvek::Math::Core::SafeDirection;

M2dCurveEq::~M2dCurveEq() = default;

M2dEllipseEq::~M2dEllipseEq() = default;

MMPoint2d<double> M2dCurveEq::NormalDirection2d(double t) const
{
    const MMPoint2d<double> tangent = TangentDirection2d(t);
    return {tangent.y, -tangent.x};
}

MMPoint3d<double> M2dCurveEq::FromUVtoXYZ(double u, double v) const
{
    const MMPoint2d<double> p = Evaluate1d(u);
    MMPoint3d<double> point(p.x, p.y, v);
    _placement.Transform(point, false);
    return point;
}

MMPoint2d<double> M2dCurveEq::FromXYZtoUV(double x, double y, double z) const
{
    MMPoint3d<double> local;
    _placement.InverseTransform(local, {x, y, z}, false);
    return {_NearestParameter({local.x, local.y}), local.z};
}

double M2dCurveEq::GetCurveScale() const
{
    return 1.0;
}

void M2dEllipseEq::Set(const MMPoint2d<double>& centre, const MMPoint2d<double>& radii,
                       const MMPoint2d<double>& axis)
{
    _centre = centre;
    _radii = radii;
    _axis = SafeDirection(axis);
    const double a = _radii.x;
    const double b = _radii.y;
    // Multiplied by pi and divided by 2 pi, as the perimeter is and its share: meant, as the bits
    // of the scale depend on it.
    _scale = (3.0 * (a + b) - std::sqrt((3.0 * a + b) * (a + 3.0 * b))) * CMathConst::kPi /
             (2.0 * CMathConst::kPi);
    _Derive();
}

void M2dEllipseEq::Get(MMPoint2d<double>& centre, MMPoint2d<double>& radii,
                       MMPoint2d<double>& axis) const
{
    centre = _centre;
    radii = _radii;
    axis = _axis;
}

MMPoint2d<double> M2dEllipseEq::Evaluate1d(double t) const
{
    const double c = std::cos(t);
    const double s = std::sin(t);
    return {_centre.x + _axis.x * _radii.x * c - _axis.y * _radii.y * s,
            _centre.y + _axis.y * _radii.x * c + _axis.x * _radii.y * s};
}

MMPoint2d<double> M2dEllipseEq::_ToAxes(const MMPoint2d<double>& point) const
{
    const double dx = point.x - _centre.x;
    const double dy = point.y - _centre.y;
    return {_axis.x * dx + _axis.y * dy, -_axis.y * dx + _axis.x * dy};
}

double M2dEllipseEq::Evaluate2d(double x, double y) const
{
    const MMPoint2d<double> local = _ToAxes({x, y});
    const double p = local.x / _radii.x;
    const double q = local.y / _radii.y;
    return _sign * (p * p + q * q - 1.0);
}

MMPoint2d<double> M2dEllipseEq::_Derivative(double t) const
{
    const double along = -_radii.x * std::sin(t);
    const double across = _radii.y * std::cos(t);
    return {_axis.x * along - _axis.y * across, _axis.y * along + _axis.x * across};
}

MMPoint2d<double> M2dEllipseEq::TangentDirection2d(double t) const
{
    return _sign * _Derivative(t);
}

double M2dEllipseEq::GetCurveScale() const
{
    return _scale;
}

void M2dEllipseEq::Invert()
{
    _sign = -_sign;
}

double M2dEllipseEq::_NearestParameter(const MMPoint2d<double>& point) const
{
    return FindEllipseFeet(_ToAxes(point), _radii).nearest;
}

void M2dEllipseEq::_Derive()
{}
