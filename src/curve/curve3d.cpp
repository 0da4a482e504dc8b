#include "curve/chord.h"
#include "foundation/safe_length.h"

#include <norvek/curve/curve3d.h>

#include <algorithm>
#include <cmath>
#include <limits>

using Norvek::Math::Core::Chord;
using Norvek::Math::Core::SafeLength;

namespace
{

using Point = MMPoint3d<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// How closely a curve is looked at of which nothing else is known.
constexpr int kSamples = 32;

constexpr std::size_t kMostIntervals = std::size_t{1} << 20;

// 0 times NaN or infinity is NaN.
bool IsFinite(const Point& p)
{
    return 0.0 * p.x + 0.0 * p.y + 0.0 * p.z == 0.0;
}

// The point at t, NaN where the curve has none.
Point At(const M3dCurve& curve, double t)
{
    Point p(kNan, kNan, kNan);
    curve.EvaluatePosition(p, t);
    return p;
}

double ShareOf(double from, double to, int i)
{
    return from + (to - from) * i / kSamples;
}

} // namespace

M3dCurve::~M3dCurve() = default;

M3dCurve::error M3dCurve::Fit(const std::vector<Point>& points, bool isClosed)
{
    // Ahead of the flag: what has not been fitted stays what it was.
    if (points.empty())
        return kFailure;
    _isClosedLoop = isClosed;
    return _Fit(points);
}

bool M3dCurve::Sanity() const
{
    return true;
}

bool M3dCurve::_HasRange() const
{
    return std::isfinite(_minParameter) && std::isfinite(_maxParameter) &&
           _minParameter <= _maxParameter;
}

bool M3dCurve::_ParameterRangeAdjust(double& t) const
{
    if (_isClosedLoop)
        return false;
    if (t < _minParameter)
        t = _minParameter;
    else if (t > _maxParameter)
        t = _maxParameter;
    else
        return false;
    return true;
}

// Moved into the range, or round the loop.
double M3dCurve::_WithinRange(double t) const
{
    _ParameterRangeAdjust(t);
    const double turn = _maxParameter - _minParameter;
    if (_isClosedLoop && !(t >= _minParameter && t <= _maxParameter))
        t = turn > 0.0 ? t - turn * std::floor((t - _minParameter) / turn) : _minParameter;
    return std::clamp(t, _minParameter, _maxParameter);
}

Point M3dCurve::GetFirstPoint() const
{
    Point p;
    EvaluatePosition(p, _minParameter);
    return p;
}

Point M3dCurve::GetLastPoint() const
{
    Point p;
    EvaluatePosition(p, _maxParameter);
    return p;
}

M3dCurve::error M3dCurve::ProjectPoint(double& t, Point point, double tolerance,
                                       bool fromHere) const
{
    if (!_HasRange() || !IsFinite(point) || (fromHere && !std::isfinite(t)))
        return kFailure;
    double found = t;
    if (fromHere)
        found = _ProjectPoint(_WithinRange(t), point, tolerance);
    else if (!_FindNearest(found, point))
        return kFailure;
    if (std::isnan(found))
        return kFailure;
    t = found;
    return kSuccess;
}

// Down the branch of t, by Newton's method where the squared distance is convex. The places where
// its derivative was last seen falling and rising hold the minimum between them once both are
// known; a place that is farther from the point though the derivative says to go on lies beyond a
// hill, and counts as the other side. t runs on over the seam of a loop and
// is brought back at the end. NaN without points.
double M3dCurve::_ProjectPoint(double t, const Point& point, double tolerance) const
{
    std::vector<double> minimal;
    if (_SegmentMinimal(minimal) != kSuccess || minimal.empty())
        return kNan;
    const auto intervals = static_cast<double>(std::max<std::size_t>(minimal.size() - 1, 1));
    const double reach = (_maxParameter - _minParameter) / (4.0 * intervals);
    // Near the minimum rounding may raise the squared distance by this.
    constexpr double kNoise = 1e-9;
    double falling = -std::numeric_limits<double>::infinity();
    double rising = std::numeric_limits<double>::infinity();
    // The nearest place so far.
    double last = t;
    double lastSquared = std::numeric_limits<double>::infinity();
    for (std::size_t step = 0; step < 100 + 8 * minimal.size(); ++step) {
        Point position(kNan, kNan, kNan);
        Point speed;
        Point acceleration;
        EvaluateAcceleration(position, speed, acceleration, _WithinRange(t));
        const Point away = position - point;
        const double first = away.Dot(speed);
        const double second = speed.LengthSquared() + away.Dot(acceleration);
        if (std::isnan(first))
            return kNan;
        if (first == 0.0)
            break;
        const bool isFarther = away.LengthSquared() > (1.0 + kNoise) * lastSquared;
        const bool isBeyondHill = isFarther && (first > 0.0) != (t > last);
        ((first > 0.0) != isBeyondHill ? rising : falling) = t;
        if (!isFarther) {
            last = t;
            lastSquared = away.LengthSquared();
        }
        const double newton = second > 0.0 ? -first / second : std::copysign(reach, -first);
        double next = isBeyondHill ? t : t + std::clamp(newton, -reach, reach);
        if (!(next > falling && next < rising) && std::isfinite(rising - falling))
            next = falling + (rising - falling) / 2.0;
        _ParameterRangeAdjust(next);
        const double moved = std::abs(next - t);
        t = next;
        if (moved <= 2.0 * std::numeric_limits<double>::epsilon() * std::abs(t) ||
            moved * SafeLength(speed) <= tolerance)
            break;
    }
    return _WithinRange(t);
}

bool M3dCurve::_FindNearest(double& t, const Point& point) const
{
    std::vector<double> minimal;
    if (_SegmentMinimal(minimal) != kSuccess || minimal.empty())
        return false;
    std::vector<double> parameters;
    parameters.reserve(kSamples * minimal.size());
    for (std::size_t i = 1; i < minimal.size(); ++i) {
        for (int k = 0; k < kSamples; ++k)
            parameters.push_back(ShareOf(minimal[i - 1], minimal[i], k));
    }
    parameters.push_back(minimal.back());
    std::vector<double> distances;
    distances.reserve(parameters.size());
    for (const double parameter : parameters)
        distances.push_back(SafeLength(At(*this, parameter) - point));
    double best = std::numeric_limits<double>::infinity();
    const auto offer = [&](double parameter) {
        const double distance = SafeLength(At(*this, parameter) - point);
        if (distance < best) {
            best = distance;
            t = parameter;
        }
    };
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const bool isBelowLeft = i == 0 || distances[i] <= distances[i - 1];
        const bool isBelowRight = i + 1 == parameters.size() || distances[i] <= distances[i + 1];
        if (isBelowLeft && isBelowRight) {
            offer(parameters[i]);
            offer(_ProjectPoint(parameters[i], point, 0.0));
        }
    }
    return best < std::numeric_limits<double>::infinity();
}

double M3dCurve::Distance(Point point, double tolerance) const
{
    double t = 0.0;
    return Distance(point, tolerance, t);
}

double M3dCurve::Distance(Point point, double tolerance, double& t) const
{
    double found = 0.0;
    if (ProjectPoint(found, point, tolerance, false) != kSuccess)
        return std::numeric_limits<double>::infinity();
    t = found;
    return SafeLength(At(*this, found) - point);
}

double M3dCurve::_ChordDeviation(double from, double to) const
{
    Chord chord(At(*this, from), At(*this, to));
    for (int i = 0; i <= kSamples; ++i)
        chord.Add(At(*this, ShareOf(from, to, i)));
    return chord.Deviation();
}

M3dCurve::error M3dCurve::Segment(std::vector<double>& parameters, double tolerance,
                                  bool keepMinimal) const
{
    std::vector<double> ends;
    if (!_HasRange() || !(tolerance > 0.0) || _SegmentMinimal(ends) != kSuccess || ends.empty())
        return kFailure;
    if (!keepMinimal)
        ends = {_minParameter, _maxParameter};
    std::vector<double> found{ends.front()};
    // The ends of intervals still to come, the next one last.
    std::vector<double> open(ends.rbegin(), ends.rend() - 1);
    while (!open.empty()) {
        const double from = found.back();
        const double to = open.back();
        const double deviation = _ChordDeviation(from, to);
        const double middle = from + (to - from) / 2.0;
        if (deviation <= tolerance) {
            if (to > from)
                found.push_back(to);
            open.pop_back();
        } else if (std::isnan(deviation) || !(middle > from && middle < to) ||
                   found.size() + open.size() > kMostIntervals)
        {
            return kFailure;
        } else {
            open.push_back(middle);
        }
    }
    parameters = std::move(found);
    return kSuccess;
}

M3dCurve::error M3dCurve::Segment(std::vector<Point>& points, double tolerance) const
{
    std::vector<double> parameters;
    if (Segment(parameters, tolerance, false) != kSuccess)
        return kFailure;
    return ParametersToPoints(points, parameters);
}

M3dCurve::error M3dCurve::ParametersToPoints(std::vector<Point>& points,
                                             const std::vector<double>& parameters) const
{
    points.assign(parameters.size(), Point());
    for (std::size_t i = 0; i < parameters.size(); ++i)
        EvaluatePosition(points[i], parameters[i]);
    return kSuccess;
}

M3dCurve::error M3dCurve::PointsToParameters(std::vector<double>& parameters,
                                             const std::vector<Point>& points) const
{
    std::vector<double> found(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (ProjectPoint(found[i], points[i], 0.0, false) != kSuccess)
            return kFailure;
    }
    parameters = std::move(found);
    return kSuccess;
}
