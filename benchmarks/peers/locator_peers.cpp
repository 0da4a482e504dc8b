// nanoflann and CGAL on the same clouds and queries.

#include "support/locator_inputs.h"

#include <CGAL/Orthogonal_k_neighbor_search.h>
#include <CGAL/Search_traits_3.h>
#include <CGAL/Simple_cartesian.h>
#include <benchmark/benchmark.h>

#include <limits>
#include <nanoflann.hpp>

namespace
{

using norvek_benchmark::Cloud;
using norvek_benchmark::CloudKind;

constexpr std::size_t kQueries = 10000;
constexpr std::size_t kLeafSize = 10;

struct Adaptor
{
    const Cloud& cloud;

    [[nodiscard]] std::size_t kdtree_get_point_count() const
    {
        return cloud.size();
    }
    [[nodiscard]] double kdtree_get_pt(std::size_t i, std::size_t axis) const
    {
        return axis == 0 ? cloud[i].x : axis == 1 ? cloud[i].y : cloud[i].z;
    }
    template <class Box>
    bool kdtree_get_bbox(Box&) const
    {
        return false;
    }
};

using Index = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Adaptor>,
                                                  Adaptor, 3, std::uint32_t>;

struct Case
{
    CloudKind kind;
    std::size_t count;
    Cloud cloud;
    Adaptor adaptor{cloud};
    Index index;

    explicit Case(const benchmark::State& state)
        : kind(static_cast<CloudKind>(state.range(0))),
          count(static_cast<std::size_t>(state.range(1))),
          cloud(norvek_benchmark::MakeCloud(kind, count)),
          index(3, adaptor, nanoflann::KDTreeSingleIndexAdaptorParams(kLeafSize))
    {
        index.buildIndex();
    }
};

void BM_LocatorBuild_nanoflann(benchmark::State& state)
{
    const Case c(state);
    for (auto _ : state) {
        const Cloud copy = c.cloud;
        const Adaptor adaptor{copy};
        Index index(3, adaptor, nanoflann::KDTreeSingleIndexAdaptorParams(kLeafSize));
        index.buildIndex();
        benchmark::DoNotOptimize(index.size(index));
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
    Index& index = const_cast<Index&>(c.index);
    state.counters["bytes"] =
        static_cast<double>(index.usedMemory(index) + c.count * sizeof(c.cloud[0]));
}

void Nearest(benchmark::State& state, const Case& c, const Cloud& queries)
{
    std::uint32_t sum = 0;
    for (auto _ : state) {
        for (const MMPoint3d<double>& query : queries) {
            std::uint32_t index = 0;
            double squared = 0.0;
            c.index.knnSearch(&query.x, 1, &index, &squared);
            sum += index & 1;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(queries.size()));
}

void BM_NearestNear_nanoflann(benchmark::State& state)
{
    const Case c(state);
    Nearest(state, c, norvek_benchmark::NearQueries(c.cloud, kQueries));
}

void BM_NearestRandom_nanoflann(benchmark::State& state)
{
    const Case c(state);
    Nearest(state, c, norvek_benchmark::RandomQueries(kQueries));
}

// The nearest within a radius: a result set of one that starts at the radius.
struct OneWithin
{
    double best;
    std::uint32_t index = 0;
    bool isFound = false;

    [[nodiscard]] bool full() const
    {
        return true;
    }
    bool addPoint(double squared, std::uint32_t at)
    {
        if (squared < best) {
            best = squared;
            index = at;
            isFound = true;
        }
        return true;
    }
    [[nodiscard]] double worstDist() const
    {
        return best;
    }
    [[nodiscard]] std::size_t size() const
    {
        return isFound ? 1 : 0;
    }
};

void BM_NearestWithin_nanoflann(benchmark::State& state)
{
    const Case c(state);
    const Cloud queries = norvek_benchmark::NearQueries(c.cloud, kQueries);
    const double radius = norvek_benchmark::TypicalRadius(c.kind, c.count);
    std::uint32_t sum = 0;
    for (auto _ : state) {
        for (const MMPoint3d<double>& query : queries) {
            OneWithin result{radius * radius};
            c.index.findNeighbors(result, &query.x, nanoflann::SearchParams());
            sum += result.index & 1;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kQueries));
}

void BM_EightNearest_nanoflann(benchmark::State& state)
{
    const Case c(state);
    const Cloud queries = norvek_benchmark::NearQueries(c.cloud, kQueries);
    std::uint32_t indices[8];
    double squared[8];
    for (auto _ : state) {
        for (const MMPoint3d<double>& query : queries)
            benchmark::DoNotOptimize(c.index.knnSearch(&query.x, 8, indices, squared));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kQueries));
}

void BM_AllWithin_nanoflann(benchmark::State& state)
{
    const Case c(state);
    const Cloud queries = norvek_benchmark::NearQueries(c.cloud, kQueries);
    const double radius = norvek_benchmark::TypicalRadius(c.kind, c.count);
    std::vector<std::pair<std::uint32_t, double>> found;
    nanoflann::SearchParams unsorted;
    unsorted.sorted = false;
    for (auto _ : state) {
        for (const MMPoint3d<double>& query : queries)
            benchmark::DoNotOptimize(
                c.index.radiusSearch(&query.x, radius * radius, found, unsorted));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kQueries));
}

using Kernel = CGAL::Simple_cartesian<double>;
using Search = CGAL::Orthogonal_k_neighbor_search<CGAL::Search_traits_3<Kernel>>;

void NearestCgal(benchmark::State& state, const Cloud& cloud, const Cloud& queries)
{
    Search::Tree tree;
    for (const MMPoint3d<double>& p : cloud)
        tree.insert(Kernel::Point_3(p.x, p.y, p.z));
    tree.build();
    double sum = 0.0;
    for (auto _ : state) {
        for (const MMPoint3d<double>& q : queries) {
            Search search(tree, Kernel::Point_3(q.x, q.y, q.z), 1);
            sum += search.begin()->second;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(queries.size()));
}

void BM_NearestNear_CGAL(benchmark::State& state)
{
    const Case c(state);
    NearestCgal(state, c.cloud, norvek_benchmark::NearQueries(c.cloud, kQueries));
}

void BM_NearestRandom_CGAL(benchmark::State& state)
{
    const Case c(state);
    NearestCgal(state, c.cloud, norvek_benchmark::RandomQueries(kQueries));
}

#define CLOUDS ->ArgsProduct({{0, 1, 2}, {10000, 100000, 1000000}})->Unit(benchmark::kMillisecond)
BENCHMARK(BM_LocatorBuild_nanoflann) CLOUDS;
BENCHMARK(BM_NearestNear_nanoflann) CLOUDS;
BENCHMARK(BM_NearestNear_CGAL) CLOUDS;
BENCHMARK(BM_NearestRandom_nanoflann) CLOUDS;
BENCHMARK(BM_NearestRandom_CGAL) CLOUDS;
BENCHMARK(BM_NearestWithin_nanoflann) CLOUDS;
BENCHMARK(BM_EightNearest_nanoflann) CLOUDS;
BENCHMARK(BM_AllWithin_nanoflann) CLOUDS;

} // namespace
