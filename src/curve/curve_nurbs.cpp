#include "curve/bernstein.h"
#include "curve/chord.h"
#include "curve/fit_options.h"
#include "curve/nearest_on_curve.h"

#include <norvek/curve/curve_creation.h>
#include <norvek/curve/curve_nurbs.h>

#include <algorithm>
#include <cmath>
#include <limits>

using Norvek::Math::Core::Chord;
using Norvek::Math::Core::ExtractPiece;
using Norvek::Math::Core::FindKnotSpan;
using Norvek::Math::Core::FindNearestOnCurve;
using Norvek::Math::Core::FitOptions;
using Norvek::Math::Core::IsPointCountAccepted;
using Norvek::Math::Core::IsTakenApart;
using Norvek::Math::Core::RepairedFitOptions;
using Norvek::Math::Core::SpanInterval;

namespace
{

using Point = MMPoint3d<double>;

// The work size of fits, 2^21: 209715 points and 1448 control points.
constexpr int kWorkSize = 2097152;

constexpr int kMostControlPoints = 1 << 24;

Point ToPoint(const Nurbs::Point& p)
{
    return {p.x, p.y, p.z};
}

} // namespace

M3dCurveNurbs::M3dCurveNurbs(const M3dCurveNurbs& other) : M3dCurve(other)
{
    _Copy(other);
}

M3dCurveNurbs& M3dCurveNurbs::operator=(const M3dCurveNurbs& other)
{
    if (this != &other) {
        M3dCurve::operator=(other);
        _Copy(other);
    }
    return *this;
}

M3dCurveNurbs::~M3dCurveNurbs() = default;

void M3dCurveNurbs::_Copy(const M3dCurveNurbs& other)
{
    _knots = other._knots;
    _controlPoints = other._controlPoints;
    _defaultOrder = other._defaultOrder;
    _curve = other._curve;
    _ownsArrays = other._ownsArrays;
    _isCountSet = other._isCountSet;
    _isOrderSet = other._isOrderSet;
    _curve.knots = _ownsArrays ? _knots.data() : nullptr;
    _curve.controlPoints = _ownsArrays ? _controlPoints.data() : nullptr;
}

void M3dCurveNurbs::_DeleteNURBSCurv()
{
    _knots.clear();
    _controlPoints.clear();
    _curve.knots = nullptr;
    _curve.controlPoints = nullptr;
    _ownsArrays = false;
}

void M3dCurveNurbs::_Allocate(int order, int count)
{
    _knots.assign(static_cast<std::size_t>(order) + static_cast<std::size_t>(count), 0.0);
    _controlPoints.assign(static_cast<std::size_t>(count), Point4D{});
    _curve.knots = _knots.data();
    _curve.controlPoints = _controlPoints.data();
    _ownsArrays = true;
}

bool M3dCurveNurbs::_HasCurve() const
{
    const auto order = static_cast<std::size_t>(GetOrder());
    const auto count = static_cast<std::size_t>(GetNumberControlPoints());
    return _ownsArrays && order > 0 && order <= count && _controlPoints.size() == count &&
           _knots.size() == order + count;
}

void M3dCurveNurbs::SetOrder(std::uint32_t order)
{
    _curve.order = static_cast<int>(order);
    _isOrderSet = true;
}

void M3dCurveNurbs::SetNumberControlPoints(std::uint32_t count)
{
    _curve.numControlPoints = static_cast<int>(count);
    _isCountSet = true;
}

double M3dCurveNurbs::GetKnot(std::uint32_t i) const
{
    return i < _knots.size() ? _knots[i] : 0.0;
}

Point4D M3dCurveNurbs::GetControlPoint(std::uint32_t i) const
{
    return i < _controlPoints.size() ? _controlPoints[i] : Point4D{};
}

bool M3dCurveNurbs::InitNURBSCurv()
{
    if (_curve.order < 1 || _curve.order > _curve.numControlPoints ||
        _curve.numControlPoints > kMostControlPoints)
        return false;
    _Allocate(_curve.order, _curve.numControlPoints);
    _curve.startParameter = GetMinParameter();
    _curve.endParameter = GetMaxParameter();
    return true;
}

bool M3dCurveNurbs::BeforeKnot(std::uint32_t& i, double t) const
{
    i = 0;
    if (!_HasCurve())
        return false;
    while (t > _knots[i] && i < _controlPoints.size())
        ++i;
    return _knots[i] > t;
}

// Arrays for the order and the number that the fit is going to use after its repairs, which may be
// larger than what is asked for.
void M3dCurveNurbs::_InitNURBSCurv(std::int32_t numPoints)
{
    if (!_isOrderSet)
        SetOrder(_defaultOrder);
    if (!_isCountSet)
        SetNumberControlPoints(static_cast<std::uint32_t>(numPoints));
    _DeleteNURBSCurv();
    _curve.startParameter = GetMinParameter();
    _curve.endParameter = GetMaxParameter();
    // The fit refuses these points before it writes anything.
    if (!IsPointCountAccepted(numPoints, kWorkSize))
        return;
    const FitOptions used = RepairedFitOptions(
        {.order = _curve.order, .count = _curve.numControlPoints}, numPoints, kWorkSize);
    _Allocate(used.order, used.count);
}

M3dCurve::error M3dCurveNurbs::_Fit(const std::vector<Point>& points)
{
    std::vector<double> coordinates;
    coordinates.reserve(3 * points.size());
    for (const Point& point : points)
        coordinates.insert(coordinates.end(), {point.x, point.y, point.z});
    int options[14] = {14, 0, 0, 0, IsClosedLoop() ? 1 : 0};
    spd_Comm comm{.workSize = kWorkSize};
    const auto numPoints = static_cast<std::int32_t>(
        std::min(points.size(), std::size_t{std::numeric_limits<std::int32_t>::max()}));
    _InitNURBSCurv(numPoints);
    std::wstring message;
    const int status = spd_create_curve(numPoints, coordinates.data(), options, &_curve, &comm);
    return NURBS_ERROR_HANDLING(message, status) ? kFailure : kSuccess;
}

M3dCurve::error M3dCurveNurbs::EvaluatePosition(Point& position, double t) const
{
    Nurbs::Point p;
    if (_HasCurve() && nurbs_curv_eval(0, _curve, t, &p) == Nurbs::kNoError)
        position = ToPoint(p);
    return kSuccess;
}

M3dCurve::error M3dCurveNurbs::EvaluateSpeed(Point& position, Point& speed, double t) const
{
    Nurbs::Point p[2];
    if (_HasCurve() && nurbs_curv_eval(1, _curve, t, p) == Nurbs::kNoError) {
        position = ToPoint(p[0]);
        speed = ToPoint(p[1]);
    }
    return kSuccess;
}

M3dCurve::error M3dCurveNurbs::EvaluateAcceleration(Point& position, Point& speed,
                                                    Point& acceleration, double t) const
{
    Nurbs::Point p[3];
    if (_HasCurve() && nurbs_curv_eval(2, _curve, t, p) == Nurbs::kNoError) {
        position = ToPoint(p[0]);
        speed = ToPoint(p[1]);
        acceleration = ToPoint(p[2]);
    }
    return kSuccess;
}

M3dCurve::error M3dCurveNurbs::_SegmentMinimal(std::vector<double>& parameters) const
{
    if (!_HasCurve())
        return kFailure;
    const double from = GetMinParameter();
    const double to = GetMaxParameter();
    parameters.assign(1, from);
    for (const double knot : _knots) {
        if (knot > parameters.back() && knot < to)
            parameters.push_back(knot);
    }
    if (to > parameters.back())
        parameters.push_back(to);
    return kSuccess;
}

bool M3dCurveNurbs::_FindNearest(double& t, const Point& point) const
{
    if (!_HasCurve())
        return false;
    if (!IsTakenApart(_curve))
        return M3dCurve::_FindNearest(t, point);
    return FindNearestOnCurve(_curve, GetMinParameter(), GetMaxParameter(), point, t);
}

double M3dCurveNurbs::_ChordDeviation(double from, double to) const
{
    if (!_HasCurve() || !IsTakenApart(_curve))
        return M3dCurve::_ChordDeviation(from, to);
    Nurbs::Point ends[2];
    if (nurbs_curv_eval(0, _curve, from, &ends[0]) != Nurbs::kNoError ||
        nurbs_curv_eval(0, _curve, to, &ends[1]) != Nurbs::kNoError)
        return std::numeric_limits<double>::quiet_NaN();
    Chord chord(ToPoint(ends[0]), ToPoint(ends[1]));
    std::vector<Point4D> piece(2 * static_cast<std::size_t>(_curve.order));
    const int last = FindKnotSpan(_curve.order, _curve.numControlPoints, _curve.knots, to);
    for (int span = FindKnotSpan(_curve.order, _curve.numControlPoints, _curve.knots, from);
         span <= last; ++span)
    {
        const SpanInterval interval(_curve, span, from, to);
        if (!(interval.from < interval.to))
            continue;
        ExtractPiece(_curve, span, interval, piece.data());
        for (int j = 0; j < _curve.order; ++j) {
            const Point4D& p = piece[static_cast<std::size_t>(j)];
            chord.Add({p.x / p.w, p.y / p.w, p.z / p.w});
        }
    }
    return chord.Deviation();
}
