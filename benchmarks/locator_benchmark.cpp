// The k-d tree: building it, and looking for the nearest, several nearest and all within a radius.

#include "support/locator_inputs.h"

#include <norvek/search/kd_tree_point_locator.h>

#include <benchmark/benchmark.h>

#include <memory>

namespace
{

using norvek_benchmark::Cloud;
using norvek_benchmark::CloudKind;

constexpr std::size_t kQueries = 10000;

struct Case
{
    CloudKind kind;
    std::size_t count;
    Cloud cloud;
    MKDTreePointLocator locator;

    explicit Case(const benchmark::State& state)
        : kind(static_cast<CloudKind>(state.range(0))),
          count(static_cast<std::size_t>(state.range(1))),
          cloud(norvek_benchmark::MakeCloud(kind, count))
    {
        locator.BuildLocator(cloud);
    }
};

void BM_LocatorBuild(benchmark::State& state)
{
    const Case c(state);
    for (auto _ : state) {
        MKDTreePointLocator locator;
        locator.BuildLocator(c.cloud);
        benchmark::DoNotOptimize(locator.GetNumPoints());
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
    state.counters["bytes"] = static_cast<double>(c.locator.GetMemory());
}

void Nearest(benchmark::State& state, const Case& c, const Cloud& queries, double radius)
{
    std::int32_t sum = 0;
    for (auto _ : state) {
        for (const MMPoint3d<double>& query : queries) {
            MClosestPointInfo info;
            info.SetQueryPoint(query);
            info.SetDistance(radius);
            c.locator.FindClosestPointWithinRadius(info);
            sum += info.GetFoundIndex() & 1;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(queries.size()));
}

void BM_NearestNear(benchmark::State& state)
{
    const Case c(state);
    Nearest(state, c, norvek_benchmark::NearQueries(c.cloud, kQueries),
            MClosestPointInfo::kInfiniteDistance);
}

void BM_NearestRandom(benchmark::State& state)
{
    const Case c(state);
    Nearest(state, c, norvek_benchmark::RandomQueries(kQueries),
            MClosestPointInfo::kInfiniteDistance);
}

void BM_NearestWithin(benchmark::State& state)
{
    const Case c(state);
    Nearest(state, c, norvek_benchmark::NearQueries(c.cloud, kQueries),
            norvek_benchmark::TypicalRadius(c.kind, c.count));
}

void BM_EightNearest(benchmark::State& state)
{
    const Case c(state);
    const Cloud queries = norvek_benchmark::NearQueries(c.cloud, kQueries);
    std::vector<MFoundPoint> found;
    for (auto _ : state) {
        for (const MMPoint3d<double>& query : queries)
            benchmark::DoNotOptimize(c.locator.FindClosestPoints(query, 8, found));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kQueries));
}

void BM_AllWithin(benchmark::State& state)
{
    const Case c(state);
    const Cloud queries = norvek_benchmark::NearQueries(c.cloud, kQueries);
    const double radius = norvek_benchmark::TypicalRadius(c.kind, c.count);
    std::vector<MFoundPoint> found;
    for (auto _ : state) {
        for (const MMPoint3d<double>& query : queries)
            benchmark::DoNotOptimize(c.locator.FindPointsWithinRadius(query, radius, found));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kQueries));
}

// One tree for all threads: each searches it for queries of its own.
std::unique_ptr<const Case> sharedCase;

void BuildShared(const benchmark::State& state)
{
    sharedCase = std::make_unique<const Case>(state);
}

void ReleaseShared(const benchmark::State& /*state*/)
{
    sharedCase.reset();
}

void BM_NearestShared(benchmark::State& state)
{
    Nearest(state, *sharedCase, norvek_benchmark::NearQueries(sharedCase->cloud, kQueries),
            MClosestPointInfo::kInfiniteDistance);
}

#define CLOUDS ->ArgsProduct({{0, 1, 2}, {10000, 100000, 1000000}})->Unit(benchmark::kMillisecond)
BENCHMARK(BM_LocatorBuild) CLOUDS;
BENCHMARK(BM_NearestNear) CLOUDS;
BENCHMARK(BM_NearestRandom) CLOUDS;
BENCHMARK(BM_NearestWithin) CLOUDS;
BENCHMARK(BM_EightNearest) CLOUDS;
BENCHMARK(BM_AllWithin) CLOUDS;
BENCHMARK(BM_NearestShared)
CLOUDS->Setup(BuildShared)->Teardown(ReleaseShared)->ThreadRange(1, 2)->UseRealTime();

} // namespace
