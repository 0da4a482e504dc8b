// SISL s1221, which is told the span it found last, and Eigen's splines of fixed degree, over the
// same curves and parameters; SISL s1953, which finds all nearest points, over the same points.

#include "support/curve_inputs.h"

#include <Eigen/Core>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <sisl.h>
#include <unsupported/Eigen/Splines>

namespace
{

using norvek_benchmark::CurveInput;

CurveInput Input(const benchmark::State& state)
{
    return {state.range(1), state.range(2) != 0, state.range(3) != 0};
}

std::vector<double> Coordinates(const CurveInput& input)
{
    std::vector<double> coordinates;
    for (const Point4D& point : input.controlPoints)
        coordinates.insert(coordinates.end(), point.coordinates, point.coordinates + 3);
    return coordinates;
}

void BM_Evaluate_SISL(benchmark::State& state)
{
    CurveInput input = Input(state);
    std::vector<double> coordinates = Coordinates(input);
    SISLCurve* const curve = newCurve(static_cast<int>(state.range(1)), 4, input.knots.data(),
                                      coordinates.data(), 1, 3, 0);
    const auto derivatives = static_cast<int>(state.range(0));
    for (auto _ : state) {
        int span = 0;
        for (const double t : input.parameters) {
            double result[9];
            int status = 0;
            s1221(curve, derivatives, t, &span, result, &status);
            benchmark::DoNotOptimize(result);
        }
    }
    freeCurve(curve);
}
BENCHMARK(BM_Evaluate_SISL)->ArgsProduct({{0, 1, 2}, {20, 150, 1000}, {0, 1}, {0, 1}});

void BM_Project_SISL(benchmark::State& state)
{
    CurveInput input(153, false, true);
    std::vector<double> coordinates = Coordinates(input);
    SISLCurve* const curve = newCurve(153, 4, input.knots.data(), coordinates.data(), 1, 3, 0);
    const auto points = norvek_benchmark::QueriesAround(state.range(0) != 0);
    for (auto _ : state) {
        for (const MMPoint3d<double>& point : points) {
            double query[3] = {point.x, point.y, point.z};
            int numPoints = 0;
            double* parameters = nullptr;
            int numCurves = 0;
            SISLIntcurve** curves = nullptr;
            int status = 0;
            s1953(curve, query, 3, 1e-15, 1e-9, &numPoints, &parameters, &numCurves, &curves,
                  &status);
            benchmark::DoNotOptimize(parameters);
            std::free(parameters);
            freeIntcrvlist(curves, numCurves);
        }
    }
    freeCurve(curve);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(points.size()));
}
BENCHMARK(BM_Project_SISL)->Arg(0)->Arg(1);

using Spline = Eigen::Spline<double, 3, 3>;

template <int kDerivatives>
void EvaluateAll(const Spline& spline, const std::vector<double>& parameters)
{
    for (const double t : parameters) {
        if constexpr (kDerivatives == 0) {
            auto result = spline(t);
            benchmark::DoNotOptimize(result);
        } else {
            auto result = spline.derivatives<kDerivatives>(t);
            benchmark::DoNotOptimize(result);
        }
    }
}

void BM_Evaluate_Eigen(benchmark::State& state)
{
    const CurveInput input = Input(state);
    const std::vector<double> coordinates = Coordinates(input);
    const Eigen::Map<const Spline::KnotVectorType> knots(
        input.knots.data(), static_cast<Eigen::Index>(input.knots.size()));
    const Eigen::Map<const Spline::ControlPointVectorType> points(coordinates.data(), 3,
                                                                  state.range(1));
    const Spline spline(knots, points);
    for (auto _ : state) {
        if (state.range(0) == 0)
            EvaluateAll<0>(spline, input.parameters);
        else if (state.range(0) == 1)
            EvaluateAll<1>(spline, input.parameters);
        else
            EvaluateAll<2>(spline, input.parameters);
    }
}
BENCHMARK(BM_Evaluate_Eigen)->ArgsProduct({{0, 1, 2}, {20, 150, 1000}, {0, 1}, {0, 1}});

} // namespace
