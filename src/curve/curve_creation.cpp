#include "curve/basis.h"
#include "curve/fit_options.h"
#include "platform/least_squares.h"

#include <norvek/curve/curve_creation.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <exception>
#include <limits>
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
// order, several of them meet. Basis values are made whenever they are wanted: with many points it
// is the memory that would take the time.
class System final : public Norvek::Math::Core::RunSource
{
public:
    System(const FitOptions& options, const double* knots, const Values& parameters)
        : _options(options),
          _knots(knots),
          _parameters(parameters),
          _columns(static_cast<std::size_t>(options.FreeCount()))
    {}

    [[nodiscard]] std::size_t Columns() const
    {
        return _columns;
    }

    // Solves for the control points; the right-hand sides are x, y and z of each point.
    [[nodiscard]] bool Solve(const double* right, Values& solution) const
    {
        const std::size_t rows = _parameters.size();
        solution.resize(3 * _columns);
        return Norvek::Math::Core::SolveLeastSquaresOfRuns(
            {rows, _columns, static_cast<std::size_t>(_options.order), this}, {rows, 3, right},
            solution.data());
    }

    void Make(std::size_t begin, std::size_t end, double* values,
              std::uint32_t* firsts) const override
    {
        // The usual orders are unrolled.
        if (_options.order == 4)
            _Make(std::integral_constant<int, 4>{}, begin, end, values, firsts);
        else if (_options.order == 3)
            _Make(std::integral_constant<int, 3>{}, begin, end, values, firsts);
        else
            _Make(_options.order, begin, end, values, firsts);
    }

    // The points of the curve with these control points at all parameters.
    [[nodiscard]] Values Evaluate(const Values& solution) const
    {
        Values points(3 * _parameters.size());
        Values basis(static_cast<std::size_t>(_options.order));
        for (std::size_t i = 0; i < _parameters.size(); ++i) {
            std::uint32_t first = 0;
            Make(i, i + 1, basis.data(), &first);
            for (std::size_t r = 0; r < basis.size(); ++r) {
                const double* const from = solution.data() + 3 * ((first + r) % _columns);
                for (std::size_t c = 0; c < 3; ++c)
                    points[3 * i + c] += basis[r] * from[c];
            }
        }
        return points;
    }

private:
    template <class Order>
    void _Make(Order order, std::size_t begin, std::size_t end, double* values,
               std::uint32_t* firsts) const
    {
        for (std::size_t i = begin; i < end; ++i, values += static_cast<std::ptrdiff_t>(order)) {
            const double t = _parameters[i];
            const std::int32_t span = FindKnotSpan(order, _options.count, _knots, t);
            EvaluateBasis(t, order, _knots + span, values, nullptr, nullptr);
            firsts[i - begin] = static_cast<std::uint32_t>(span - order);
        }
    }

    const FitOptions& _options;
    const double* _knots;
    const Values& _parameters;
    std::size_t _columns;
};

// The largest difference between a coordinate and that of the first point; the first one that is
// `enough` ends the search.
double Reach(const double* coordinates, std::size_t count, const double* origin,
             double enough = std::numeric_limits<double>::infinity())
{
    double reach = 0.0;
    for (std::size_t i = 0; i < 3 * count && reach < enough; ++i)
        reach = std::max(reach, std::abs(coordinates[i] - origin[i % 3]));
    return reach;
}

// Whether rounding in the solver has moved the curve by no more than a tiny part of the points'
// extent. Where the system is nearly short of rank, control points swing so far out that even their
// last digits matter. Only then, the remaining differences are fitted once more: what that finds
// is what the first solution lacks.
bool IsAccurate(const System& system, const Points& points, const Values& solution)
{
    const double rounding =
        kSolverRounding * Reach(solution.data(), system.Columns(), points.coordinates);
    // Nearly always a few points are far enough apart.
    const double bound = kAccuracy * Reach(points.coordinates, points.count, points.coordinates,
                                           2.0 * rounding / kAccuracy);
    if (rounding <= bound)
        return true;
    Values lacking = system.Evaluate(solution);
    for (std::size_t i = 0; i < lacking.size(); ++i)
        lacking[i] = points.coordinates[i] - lacking[i];
    Values missing;
    if (!system.Solve(lacking.data(), missing))
        return false;
    const Values moved = system.Evaluate(missing);
    return std::all_of(moved.begin(), moved.end(),
                       [&](double value) { return std::abs(value) <= bound; });
}

bool Fit(const FitOptions& options, const Points& points, const Values& parameters,
         const NURBSCurv& curve)
{
    const System system(options, curve.knots, parameters);
    Values solution;
    if (!system.Solve(points.coordinates, solution) || !IsAccurate(system, points, solution))
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
