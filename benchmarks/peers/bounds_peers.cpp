// Boxes of Eigen and CGAL over the same inputs.

#include "support/bounds_inputs.h"

#include <CGAL/Iso_cuboid_3.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/Triangle_3.h>
#include <CGAL/intersections.h>
#include <Eigen/Geometry>
#include <benchmark/benchmark.h>

namespace
{

void BM_BoxUnion_Eigen(benchmark::State& state)
{
    const auto points = norvek_benchmark::RandomPoints(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Eigen::AlignedBox3d box;
        for (const MMPoint3d<double>& point : points)
            box.extend(Eigen::Map<const Eigen::Vector3d>(&point.x));
        benchmark::DoNotOptimize(box);
    }
}
BENCHMARK(BM_BoxUnion_Eigen)->Arg(1000)->Arg(100000)->Arg(1000000);

void BM_BoxTriangle_CGAL(benchmark::State& state)
{
    using Kernel = CGAL::Simple_cartesian<double>;
    std::vector<Kernel::Triangle_3> triangles;
    for (const auto& t :
         norvek_benchmark::RandomTriangles(static_cast<std::size_t>(state.range(0))))
        triangles.emplace_back(Kernel::Point_3(t[0].x, t[0].y, t[0].z),
                               Kernel::Point_3(t[1].x, t[1].y, t[1].z),
                               Kernel::Point_3(t[2].x, t[2].y, t[2].z));
    const CGAL::Bbox_3 box(-20, -20, -20, 20, 20, 20);
    for (auto _ : state) {
        int hits = 0;
        for (const Kernel::Triangle_3& triangle : triangles)
            hits += CGAL::do_intersect(box, triangle) ? 1 : 0;
        benchmark::DoNotOptimize(hits);
    }
}
BENCHMARK(BM_BoxTriangle_CGAL)->Arg(1000)->Arg(10000)->Arg(100000);

} // namespace
