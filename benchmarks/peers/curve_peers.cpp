// SISL s1221, which is told the span it found last, and Eigen's splines of fixed degree, over the
// same curves and parameters.

#include "support/curve_inputs.h"

#include <Eigen/Core>
#include <benchmark/benchmark.h>

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
