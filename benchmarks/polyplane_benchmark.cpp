#include "support/border_inputs.h"

#include <norvek/polyplane/poly_plane.h>
#include <norvek/polyplane/poly_plane_sectors.h>

#include <benchmark/benchmark.h>

namespace
{

using norvek_benchmark::Queries;
using norvek_benchmark::RoughOutline;

template <class Plane>
Plane Swept(const benchmark::State& state)
{
    Plane plane;
    plane.SetZeroPlane({0.0, 0.0, 1.0}, {});
    for (const auto& p : RoughOutline(static_cast<std::size_t>(state.range(0))))
        plane.AddPoint({p.x, p.y, 3.0});
    return plane;
}

void BM_IsInside(benchmark::State& state)
{
    const auto plane = Swept<MPolyPlane>(state);
    const auto queries = Queries();
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        benchmark::DoNotOptimize(plane.IsInside({q.x, q.y, 1.0}));
    }
}
BENCHMARK(BM_IsInside)->Arg(100)->Arg(1000)->Arg(10000);

// Nothing but crossings, over the projected polygon, with queries that are projected already.
void BM_IsInside_PlainLoop(benchmark::State& state)
{
    const auto points = RoughOutline(static_cast<std::size_t>(state.range(0)));
    const auto queries = Queries();
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        bool inside = false;
        const auto* p = &points.back();
        for (const auto& c : points) {
            if ((p->y > q.y) != (c.y > q.y) &&
                p->x + (c.x - p->x) * (q.y - p->y) / (c.y - p->y) > q.x)
                inside = !inside;
            p = &c;
        }
        benchmark::DoNotOptimize(inside);
    }
}
BENCHMARK(BM_IsInside_PlainLoop)->Arg(100)->Arg(1000)->Arg(10000);

void BM_TriangleIntersects(benchmark::State& state)
{
    const auto plane = Swept<MPolyPlane>(state);
    const auto queries = Queries();
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        benchmark::DoNotOptimize(plane.TriangleIntersects({q.x, q.y, 1.0}, {q.x + 3.0, q.y, 2.0},
                                                          {q.x, q.y + 3.0, 3.0}));
    }
}
BENCHMARK(BM_TriangleIntersects)->Arg(100)->Arg(1000)->Arg(10000);

void BM_SeekPosition(benchmark::State& state)
{
    const auto plane = Swept<MPolyPlaneSectors>(state);
    const auto queries = Queries();
    std::size_t i = 0;
    bool found = false;
    bool beyond = false;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        benchmark::DoNotOptimize(
            plane.SeekPositionAlongDescribingPolyline({q.x, q.y, 1.0}, found, beyond));
    }
}
BENCHMARK(BM_SeekPosition)->Arg(100)->Arg(1000)->Arg(10000);

} // namespace
