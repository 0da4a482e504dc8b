// Evaluation of cubic curves: the time of one parameter, over 4096 of them.

#include "support/curve_inputs.h"

#include <benchmark/benchmark.h>

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

} // namespace
