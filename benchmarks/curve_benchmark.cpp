// Evaluation of cubic curves: the time of one parameter, over 4096 of them. Projection of points
// onto a curve of 150 spans: the time of one point, over 256 of them.

#include "support/curve_inputs.h"

#include <norvek/curve/curve_nurbs.h>

#include <benchmark/benchmark.h>

#include <algorithm>

namespace
{

// Arguments: derivatives, control points, sorted, even knots.
void BM_Evaluate(benchmark::State& state)
{
    norvek_benchmark::CurveInput input(state.range(1), state.range(2) != 0, state.range(3) != 0);
    const NURBSCurv curve{4,   static_cast<int>(state.range(1)), input.knots.data(), 0.0,
                          1.0, input.controlPoints.data()};
    const auto derivatives = static_cast<int>(state.range(0));
    for (auto _ : state) {
        for (const double t : input.parameters) {
            Nurbs::Point result[3];
            nurbs_curv_eval(derivatives, curve, t, result);
            benchmark::DoNotOptimize(result);
        }
    }
    state.SetItemsProcessed(state.iterations() *
                            static_cast<std::int64_t>(input.parameters.size()));
}
BENCHMARK(BM_Evaluate)->ArgsProduct({{0, 1, 2}, {20, 150, 1000}, {0, 1}, {0, 1}});

// Argument: near points.
void BM_Project(benchmark::State& state)
{
    const norvek_benchmark::CurveInput input(153, false, true);
    M3dCurveNurbs curve;
    curve.SetOrder(4);
    curve.SetNumberControlPoints(153);
    curve.InitNURBSCurv();
    std::copy(input.knots.begin(), input.knots.end(), curve.AccessKnots());
    std::copy(input.controlPoints.begin(), input.controlPoints.end(), curve.AccessControlPoints());
    const auto points = norvek_benchmark::QueriesAround(state.range(0) != 0);
    for (auto _ : state) {
        for (const MMPoint3d<double>& point : points) {
            double t = 0.0;
            curve.ProjectPoint(t, point, 1e-9, false);
            benchmark::DoNotOptimize(t);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(points.size()));
}
BENCHMARK(BM_Project)->Arg(0)->Arg(1);

} // namespace
