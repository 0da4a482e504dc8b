#include "support/region_inputs.h"

#include <CGAL/Constrained_Delaunay_triangulation_2.h>
#include <CGAL/Constrained_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <benchmark/benchmark.h>

namespace
{

using norvek_benchmark::MakeOutline;
using norvek_benchmark::OutlineKind;

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Plain = CGAL::Constrained_triangulation_2<Kernel>;
using Delaunay = CGAL::Constrained_Delaunay_triangulation_2<Kernel>;

using Edges = std::vector<std::pair<std::size_t, std::size_t>>;

// Points of a ring follow each other, so that each is looked for from the one before.
void Build(Plain& triangulation, const std::vector<Kernel::Point_2>& points, const Edges& edges)
{
    std::vector<Plain::Vertex_handle> vertices;
    vertices.reserve(points.size());
    Plain::Face_handle hint;
    for (const Kernel::Point_2& p : points) {
        vertices.push_back(triangulation.insert(p, hint));
        hint = vertices.back()->face();
    }
    for (const auto& [from, to] : edges)
        triangulation.insert_constraint(vertices[from], vertices[to]);
}

void Build(Delaunay& triangulation, const std::vector<Kernel::Point_2>& points, const Edges& edges)
{
    triangulation.insert_constraints(points.begin(), points.end(), edges.begin(), edges.end());
}

// Only the triangulation under the constraints; telling inside from outside would come on top.
template <class Triangulation>
void BM_Triangulate_Cgal(benchmark::State& state)
{
    std::vector<Kernel::Point_2> points;
    Edges edges;
    for (const auto& ring : MakeOutline(static_cast<OutlineKind>(state.range(0)),
                                        static_cast<std::size_t>(state.range(1))))
    {
        const std::size_t first = points.size();
        for (const auto& p : ring) {
            points.emplace_back(p.x, p.y);
            edges.emplace_back(points.size() - 1, points.size());
        }
        edges.back().second = first;
    }
    for (auto _ : state) {
        Triangulation triangulation;
        Build(triangulation, points, edges);
        benchmark::DoNotOptimize(triangulation.number_of_faces());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(points.size()));
}

BENCHMARK_TEMPLATE(BM_Triangulate_Cgal, Plain)
    ->ArgsProduct({{0, 1, 2}, {100, 10000, 100000}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_Triangulate_Cgal, Delaunay)
    ->ArgsProduct({{0, 1, 2}, {100, 10000, 100000}})
    ->Unit(benchmark::kMicrosecond);

} // namespace
