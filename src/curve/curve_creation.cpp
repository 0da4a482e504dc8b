#include "curve/basis.h"
#include "curve/fit_options.h"
#include "platform/least_squares.h"

#include <norvek/curve/curve_creation.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <exception>
#include <limits>
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

// The step of the parameter over a squared distance that counts.
double Step(double squaredDistance, double exponent)
{
    // What pow gives for an exponent of 0, without the call: the usual exponent of curve objects.
    return exponent == 0.0 ? 1.0 : std::pow(std::sqrt(squaredDistance), exponent);
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

// The basis values of every parameter, a row each.
Values CollocationMatrix(const FitOptions& options, const double* knots, const Values& parameters)
{
    const auto columns = static_cast<std::size_t>(options.FreeCount());
    const auto order = static_cast<std::size_t>(options.order);
    Values matrix(parameters.size() * columns);
    double basis[20];
    double* row = matrix.data();
    for (const double t : parameters) {
        const std::int32_t span = FindKnotSpan(options.order, options.count, knots, t);
        EvaluateBasis(t, options.order, knots + span, basis, nullptr, nullptr);
        // The last control points of a periodic curve are the first ones again. When those are
        // fewer than the order, several values meet in a column.
        std::size_t column = static_cast<std::size_t>(span - options.order) % columns;
        for (std::size_t r = 0; r < order; ++r) {
            row[column] += basis[r];
            column = column + 1 == columns ? 0 : column + 1;
        }
        row += columns;
    }
    return matrix;
}

bool Fit(const FitOptions& options, const Points& points, const Values& parameters,
         const NURBSCurv& curve)
{
    const auto columns = static_cast<std::size_t>(options.FreeCount());
    Values solution(points.coordinates, points.coordinates + 3 * points.count);
    const Values matrix = CollocationMatrix(options, curve.knots, parameters);
    if (!Norvek::Math::Core::SolveDenseLeastSquares({points.count, columns, matrix.data()},
                                                    {points.count, 3, solution.data()}))
        return false;
    for (std::size_t j = 0; j < static_cast<std::size_t>(options.count); ++j)
        std::copy_n(solution.data() + 3 * (j % columns), 3, curve.controlPoints[j].coordinates);
    return true;
}

bool DoesFit(const FitOptions& options, const spd_Comm& comm)
{
    const bool doKnotsFit =
        comm.knotCapacity <= 0 || options.count + options.order <= comm.knotCapacity;
    return doKnotsFit &&
           (comm.controlPointCapacity <= 0 || options.count <= comm.controlPointCapacity);
}

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
    curve->order = used.order;
    curve->numControlPoints = used.count;
    if (!DoesFit(used, *comm))
        return Nurbs::kMemoryError;
    try {
        return Create(used, measured, *curve);
    } catch (const std::exception&) {
        return Nurbs::kLeastSquareFitError;
    }
}
