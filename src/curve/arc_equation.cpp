#include "curve/ellipse_parameter.h"
#include "foundation/safe_length.h"

#include <norvek/curve/curve_equation_2d.h>
#include <norvek/foundation/constants.h>

#include <cmath>
#include <limits>

using Norvek::Math::Core::EllipseFeet;
using Norvek::Math::Core::FindEllipseFeet;
using Norvek::Math::Core::SafeDirection;
using Norvek::Math::Core::SafeLength;

namespace
{

constexpr double kTurn = 2.0 * CMathConst::kPi;

// Keeps the nearest of the parameters that it is offered, the first of equally near ones.
class Nearest
{
public:
    Nearest(const M2dCurveEq& curve, const MMPoint2d<double>& point) : _curve(curve), _point(point)
    {}

    void Offer(double t)
    {
        const double distance = SafeLength(_curve.Evaluate1d(t) - _point);
        if (distance < _distance) {
            _distance = distance;
            _parameter = t;
        }
    }

    [[nodiscard]] double Parameter() const
    {
        return _parameter;
    }

private:
    const M2dCurveEq& _curve;
    MMPoint2d<double> _point;
    double _distance = std::numeric_limits<double>::infinity();
    double _parameter = std::numeric_limits<double>::quiet_NaN();
};

} // namespace

MArcEllipseEquation2d::MArcEllipseEquation2d() : _start(-CMathConst::kPi), _end(CMathConst::kPi)
{
    MArcEllipseEquation2d::_Derive();
}

MArcEllipseEquation2d::~MArcEllipseEquation2d() = default;

void MArcEllipseEquation2d::SetAngles(double start, double end)
{
    _start = start;
    _end = end;
    _Derive();
}

void MArcEllipseEquation2d::_Derive()
{
    _first = M2dEllipseEq::Evaluate1d(_start);
    _last = M2dEllipseEq::Evaluate1d(_end);
    // Free of the orientation sign, which does not change where the curve runs.
    _continuation = SafeDirection(_Derivative(_start));
}

MMPoint2d<double> MArcEllipseEquation2d::Evaluate1d(double t) const
{
    if (t < _start)
        return _first + (t - _start) * GetCurveScale() * _continuation;
    // The same vector and the opposite difference: the line leaves the end along -g. Meant.
    if (t > _end)
        return _last + (_end - t) * GetCurveScale() * _continuation;
    return M2dEllipseEq::Evaluate1d(t);
}

MMPoint2d<double> MArcEllipseEquation2d::TangentDirection2d(double t) const
{
    if (t < _start)
        return _Sign() * GetCurveScale() * _continuation;
    if (t > _end)
        return -_Sign() * GetCurveScale() * _continuation;
    return M2dEllipseEq::TangentDirection2d(t);
}

double MArcEllipseEquation2d::_NearestParameter(const MMPoint2d<double>& point) const
{
    Nearest nearest(*this, point);
    const EllipseFeet feet = FindEllipseFeet(_ToAxes(point), _Radii());
    for (const double foot : {feet.nearest, feet.other}) {
        const double t = foot + std::ceil((_start - foot) / kTurn) * kTurn;
        if (t <= _end)
            nearest.Offer(t);
    }
    nearest.Offer(_start);
    nearest.Offer(_end);
    // On either line the way from its end is measured along -g, and only what lies ahead counts.
    const double scale = GetCurveScale();
    const double before = (_first - point).Dot(_continuation) / scale;
    if (before > 0.0)
        nearest.Offer(_start - before);
    const double behind = (_last - point).Dot(_continuation) / scale;
    if (behind > 0.0)
        nearest.Offer(_end + behind);
    return nearest.Parameter();
}

double MArcEllipseEquation2d::Evaluate2d(double x, double y) const
{
    const MMPoint2d<double> point(x, y);
    const double t = _NearestParameter(point);
    MMPoint2d<double> carried = point;
    if (t < _start)
        carried -= Evaluate1d(t) - _first;
    else if (t > _end)
        carried -= Evaluate1d(t) - _last;
    return M2dEllipseEq::Evaluate2d(carried.x, carried.y);
}
