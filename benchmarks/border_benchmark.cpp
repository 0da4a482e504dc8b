#include "support/border_inputs.h"

#include <norvek/border/border_algorithms.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace
{

using norvek_benchmark::Queries;
using norvek_benchmark::RoughOutline;
using norvek_benchmark::SettleHeap;
using norvek_benchmark::ShuffledPieces;

using Contour = M3dBorderContour<double, void*>;

template <class Coord, class Payload>
void BM_PointPosition(benchmark::State& state)
{
    M3dBorderContour<Coord, Payload> contour;
    for (const auto& p : RoughOutline(static_cast<std::size_t>(state.range(0))))
        contour.InsertAtEnd(static_cast<Coord>(p.x), static_cast<Coord>(p.y), Payload{});
    const auto queries = Queries();
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        benchmark::DoNotOptimize(contour.CalculatePositionXY(q.x, q.y));
    }
}
BENCHMARK(BM_PointPosition<double, void*>)->Arg(100)->Arg(10000)->Arg(1000000);
BENCHMARK(BM_PointPosition<float, float>)->Arg(100)->Arg(10000)->Arg(1000000);

void BM_AppendAndFree(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    SettleHeap();
    for (auto _ : state) {
        Contour contour;
        for (std::size_t i = 0; i < count; ++i)
            contour.InsertAtEnd(static_cast<double>(i), 1.0, nullptr);
        benchmark::DoNotOptimize(contour.GetFirstPoint());
    }
}
BENCHMARK(BM_AppendAndFree)->Arg(10000)->Arg(100000)->Arg(1000000);

// The same with the points given back one by one.
void BM_AppendAndRemove(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    SettleHeap();
    for (auto _ : state) {
        Contour contour;
        for (std::size_t i = 0; i < count; ++i)
            contour.InsertAtEnd(static_cast<double>(i), 1.0, nullptr);
        while (contour.GetFirstPoint() != nullptr)
            contour.RemovePoint(contour.GetFirstPoint());
    }
}
BENCHMARK(BM_AppendAndRemove)->Arg(10000)->Arg(100000)->Arg(1000000);

void BM_Walk(benchmark::State& state)
{
    Contour contour;
    for (const auto& p : RoughOutline(static_cast<std::size_t>(state.range(0))))
        contour.InsertAtEnd(p.x, p.y, nullptr);
    for (auto _ : state) {
        double sum = 0.0;
        for (const auto& point : contour)
            sum += point.x;
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_Walk)->Arg(10000)->Arg(100000)->Arg(1000000);

// As many orders of few pieces as make up one of many, in turn: a processor learns a short sequence
// of joins by heart when it is repeated, which no program does.
void BM_MergeBorder(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<M3dBorder<float, float>> inputs;
    for (std::size_t seed = 0; seed < 100000 / count; ++seed)
        inputs.push_back(ShuffledPieces(count, seed));
    std::size_t i = 0;
    for (auto _ : state) {
        state.PauseTiming();
        {
            auto source = std::make_unique<M3dBorder<float, float>>(inputs[i++ % inputs.size()]);
            auto target = std::make_unique<M3dBorder<float, float>>();
            state.ResumeTiming();
            MergeBorder<float, float>(*target, *source);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}
BENCHMARK(BM_MergeBorder)->Arg(1000)->Arg(10000)->Arg(100000);

} // namespace
