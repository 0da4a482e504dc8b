#include "curve/basis.h"
#include "curve/fit_options.h"
#include "platform/least_squares.h"

#include <norvek/curve/curve_creation.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <exception>
#include <memory>
#include <type_traits>
#include <vector>

using Norvek::Math::Core::EvaluateBasis;
using Norvek::Math::Core::FindKnotSpan;
using Norvek::Math::Core::FitOptions;
using Norvek::Math::Core::IsPointCountAccepted;
using Norvek::Math::Core::kNurbsZero;
using Norvek::Math::Core::RepairedFitOptions;

namespace
{

// The options that are read, by index.
constexpr std::size_t kPercentage = 1;
constexpr std::size_t kCloseStatus = 4;

// How far rounding may move a fitted curve, in parts of the extent of its points.
constexpr double kAccuracy = 1e-8;

// What the solver's rounding may amount to, in parts of the largest control point: 64 epsilons; 50
// have been seen.
constexpr double kSolverRounding = 0x1p-46;

using Values = std::vector<double>;

// The measured points: x, y and z in turn.
struct Points
{
    std::size_t count;
    const double* coordinates;
};

// NaN times 0 and infinity times 0 are NaN, everything else times 0 is 0.
bool AreFinite(const Points& points)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < 3 * points.count; ++i)
        sum += 0.0 * points.coordinates[i];
    return sum == 0.0;
}

// The step of the parameter over a squared distance that counts. What pow gives for exponents of 0
// and 1 is exact, and these are the usual ones.
double Step(double squaredDistance, double exponent)
{
    if (exponent == 0.0)
        return 1.0;
    const double distance = std::sqrt(squaredDistance);
    return exponent == 1.0 ? distance : std::pow(distance, exponent);
}

// Parameters from 0 to 1. False when they have no sum that could be divided by.
bool Parametrise(const Points& points, int percentage, Values& parameters)
{
    const double exponent = percentage / 100.0;
    parameters.assign(points.count, 0.0);
    for (std::size_t i = 1; i < points.count; ++i) {
        const double* const point = points.coordinates + 3 * i;
        const double dx = point[0] - point[-3];
        const double dy = point[1] - point[-2];
        const double dz = point[2] - point[-1];
        const double squaredDistance = dx * dx + dy * dy + dz * dz;
        parameters[i] = parameters[i - 1];
        // Compared with the point just before, not with the last one that counted: any number of
        // tiny steps adds up to nothing.
        if (!(squaredDistance < kNurbsZero))
            parameters[i] += Step(squaredDistance, exponent);
    }
    const double total = parameters.back();
    if (!(std::abs(total) > kNurbsZero) || !std::isfinite(total))
        return false;
    for (double& parameter : parameters)
        parameter /= total;
    return true;
}

// Even knots, j / spans. An open curve has its outer ones pushed together at the ends; a closed one
// lets them run on, which makes all of its B-splines shifts of one another.
void BuildKnots(const FitOptions& options, double* knots)
{
    const int spans = options.count - options.order + 1;
    for (int i = 0; i < options.count + options.order; ++i) {
        const int place = i - options.order + 1;
        knots[i] =
            static_cast<double>(options.closeStatus == 0 ? std::clamp(place, 0, spans) : place) /
            spans;
    }
}

// The least-squares system of all three coordinates: the basis values of each parameter, and where
// among the free control points they begin. The last control points of a periodic curve are the
// first ones again: its values wrap around, and where the free control points are fewer than the
// order, several of them meet.
class System
{
public:
    System(const FitOptions& options, const double* knots, const Values& parameters)
        : _columns(static_cast<std::size_t>(options.FreeCount())),
          _order(static_cast<std::size_t>(options.order)),
          _rows(parameters.size()),
          _basis(std::make_unique_for_overwrite<double[]>(_rows * _order)),
          _firsts(std::make_unique_for_overwrite<std::uint32_t[]>(_rows))
    {
        if (options.order == 4)
            _Fill(std::integral_constant<int, 4>{}, options, knots, parameters);
        else if (options.order == 3)
            _Fill(std::integral_constant<int, 3>{}, options, knots, parameters);
        else
            _Fill(options.order, options, knots, parameters);
    }

    [[nodiscard]] std::size_t Columns() const
    {
        return _columns;
    }

    // Replaces the right-hand sides, x, y and z of each point, by the solution, in its first rows.
    [[nodiscard]] bool Solve(Values& right) const
    {
        return Norvek::Math::Core::SolveLeastSquaresOfRuns(
            {_rows, _columns, _order, _basis.get(), _firsts.get()}, {_rows, 3, right.data()});
    }

    // The points of the curve with these control points at all parameters.
    [[nodiscard]] Values Evaluate(const Values& solution) const
    {
        Values points(3 * _rows);
        for (std::size_t i = 0; i < _rows; ++i) {
            for (std::size_t r = 0; r < _order; ++r) {
                const double* const from = solution.data() + 3 * ((_firsts[i] + r) % _columns);
                for (std::size_t c = 0; c < 3; ++c)
                    points[3 * i + c] += _basis[i * _order + r] * from[c];
            }
        }
        return points;
    }

private:
    // The usual orders are unrolled.
    template <class Order>
    void _Fill(Order order, const FitOptions& options, const double* knots,
               const Values& parameters)
    {
        double* row = _basis.get();
        for (std::size_t i = 0; i < _rows; ++i, row += _order) {
            const std::int32_t span = FindKnotSpan(order, options.count, knots, parameters[i]);
            EvaluateBasis(parameters[i], order, knots + span, row, nullptr, nullptr);
            _firsts[i] =
                static_cast<std::uint32_t>(span - order) % static_cast<std::uint32_t>(_columns);
        }
    }

    std::size_t _columns;
    std::size_t _order;
    std::size_t _rows;
    // Not set to zero first: with many points the memory is what takes the time.
    std::unique_ptr<double[]> _basis;
    std::unique_ptr<std::uint32_t[]> _firsts;
};

// The largest difference between a coordinate and that of the first point.
double Reach(const double* coordinates, std::size_t count, const double* origin)
{
    double reach = 0.0;
    for (std::size_t i = 0; i < 3 * count; ++i)
        reach = std::max(reach, std::abs(coordinates[i] - origin[i % 3]));
    return reach;
}

// Whether rounding in the solver has moved the curve by no more than a tiny part of the points'
// extent. Where the system is nearly short of rank, control points swing so far out that even their
// last digits matter. Only then, the remaining differences are fitted once more: what that finds
// is what the first solution lacks.
bool IsAccurate(const System& system, const Points& points, const Values& solution)
{
    const double bound = kAccuracy * Reach(points.coordinates, points.count, points.coordinates);
    if (Reach(solution.data(), system.Columns(), points.coordinates) * kSolverRounding <= bound)
        return true;
    Values lacking = system.Evaluate(solution);
    for (std::size_t i = 0; i < lacking.size(); ++i)
        lacking[i] = points.coordinates[i] - lacking[i];
    if (!system.Solve(lacking))
        return false;
    const Values moved = system.Evaluate(lacking);
    return std::all_of(moved.begin(), moved.end(),
                       [&](double value) { return std::abs(value) <= bound; });
}

bool Fit(const FitOptions& options, const Points& points, const Values& parameters,
         const NURBSCurv& curve)
{
    const System system(options, curve.knots, parameters);
    Values solution(points.coordinates, points.coordinates + 3 * points.count);
    if (!system.Solve(solution) || !IsAccurate(system, points, solution))
        return false;
    for (std::size_t j = 0; j < static_cast<std::size_t>(options.count); ++j)
        std::copy_n(solution.data() + 3 * (j % system.Columns()), 3,
                    curve.controlPoints[j].coordinates);
    return true;
}

bool DoesFit(const FitOptions& options, const spd_Comm& comm)
{
    const bool doKnotsFit =
        comm.knotCapacity <= 0 || options.count + options.order <= comm.knotCapacity;
    return doKnotsFit &&
           (comm.controlPointCapacity <= 0 || options.count <= comm.controlPointCapacity);
}

// In the order of what a failure leaves behind: parameters before any knot is written, control
// points at the origin before the solver is asked.
int Create(const FitOptions& options, const Points& points, NURBSCurv& curve)
{
    Values parameters;
    if (!Parametrise(points, options.percentage, parameters))
        return Nurbs::kParametrisationError;
    BuildKnots(options, curve.knots);
    curve.startParameter = curve.knots[options.order - 1];
    curve.endParameter = curve.knots[options.count];
    std::fill_n(curve.controlPoints, options.count, Point4D{{0.0, 0.0, 0.0, 1.0}});
    return Fit(options, points, parameters, curve) ? options.warnings : Nurbs::kLeastSquareFitError;
}

} // namespace

int spd_create_curve(std::int32_t numPoints, double* points, int* options, NURBSCurv* curve,
                     spd_Comm* comm)
{
    if (points == nullptr || options == nullptr || curve == nullptr || comm == nullptr ||
        curve->knots == nullptr || curve->controlPoints == nullptr ||
        !IsPointCountAccepted(numPoints, comm->workSize))
        return Nurbs::kMeasurementPointError;
    const Points measured{static_cast<std::size_t>(numPoints), points};
    if (!AreFinite(measured))
        return Nurbs::kMeasurementPointError;
    const FitOptions used = RepairedFitOptions({.percentage = options[kPercentage],
                                                .closeStatus = options[kCloseStatus],
                                                .order = curve->order,
                                                .count = curve->numControlPoints},
                                               numPoints, comm->workSize);
    options[kPercentage] = used.percentage;
    options[kCloseStatus] = used.closeStatus;
    // The repairs stay even where the parameters fail.
    curve->order = used.order;
    curve->numControlPoints = used.count;
    if (!DoesFit(used, *comm))
        return Nurbs::kMemoryError;
    // The work memory is the one thing that throws; the curve's own storage is the caller's.
    try {
        return Create(used, measured, *curve);
    } catch (const std::exception&) {
        return Nurbs::kLeastSquareFitError;
    }
}
