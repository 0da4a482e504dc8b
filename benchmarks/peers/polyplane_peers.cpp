#include "support/border_inputs.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_2_algorithms.h>
#include <benchmark/benchmark.h>
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>

namespace
{

using norvek_benchmark::Queries;
using norvek_benchmark::RoughOutline;

// Both are asked in the plane, with points that are projected already.
void BM_IsInside_Boost(benchmark::State& state)
{
    namespace bg = boost::geometry;
    using Point = bg::model::d2::point_xy<double>;
    bg::model::polygon<Point> polygon;
    for (const auto& p : RoughOutline(static_cast<std::size_t>(state.range(0))))
        bg::append(polygon.outer(), Point(p.x, p.y));
    bg::correct(polygon);
    const auto queries = Queries();
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        benchmark::DoNotOptimize(bg::within(Point(q.x, q.y), polygon));
    }
}
BENCHMARK(BM_IsInside_Boost)->Arg(100)->Arg(1000)->Arg(10000);

void BM_IsInside_Cgal(benchmark::State& state)
{
    using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
    std::vector<Kernel::Point_2> points;
    for (const auto& p : RoughOutline(static_cast<std::size_t>(state.range(0))))
        points.emplace_back(p.x, p.y);
    const auto queries = Queries();
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        benchmark::DoNotOptimize(CGAL::bounded_side_2(points.begin(), points.end(),
                                                      Kernel::Point_2(q.x, q.y), Kernel()));
    }
}
BENCHMARK(BM_IsInside_Cgal)->Arg(100)->Arg(1000)->Arg(10000);

} // namespace
