// Borders as regions: triangles, nesting and crossings.

#include "support/region_inputs.h"

#include <norvek/border/border.h>

#include <benchmark/benchmark.h>

#include <algorithm>

namespace
{

using norvek_benchmark::MakeOutline;
using norvek_benchmark::OutlineKind;
using norvek_benchmark::PlaneRing;
using Border = M3dBorder<double, void*>;

void AddRing(Border& border, const PlaneRing& ring)
{
    auto* const contour = border.AddContourAtEnd();
    for (const MMPoint2d<double>& p : ring)
        contour->InsertAtEnd(p.x, p.y, nullptr);
}

void BM_Triangulate(benchmark::State& state)
{
    Border border;
    for (const PlaneRing& ring : MakeOutline(static_cast<OutlineKind>(state.range(0)),
                                             static_cast<std::size_t>(state.range(1))))
        AddRing(border, ring);
    std::int32_t count = 0;
    std::vector<void*> payloads;
    for (auto _ : state) {
        if (!border.FillWithTriangles(count, payloads))
            state.SkipWithError("edges cross");
        benchmark::DoNotOptimize(payloads.data());
    }
    state.SetItemsProcessed(state.iterations() * border.GetNumPoints());
}

// A million points in all: rings within rings, four deep.
void BM_Nesting(benchmark::State& state)
{
    const auto numRings = static_cast<std::size_t>(state.range(0));
    const std::size_t size = 1000000 / numRings;
    Border border;
    for (std::size_t i = 0; i < numRings; ++i) {
        PlaneRing ring;
        const double radius = 1.0 + static_cast<double>(i % 4);
        for (std::size_t k = 0; k < size; ++k) {
            const double angle =
                6.283185307179586 * static_cast<double>(k) / static_cast<double>(size);
            ring.emplace_back(radius * std::cos(angle) + 10.0 * static_cast<double>(i / 4 % 50),
                              radius * std::sin(angle) + 10.0 * static_cast<double>(i / 200));
        }
        AddRing(border, ring);
    }
    for (auto _ : state)
        border.CalculateOrderOfContours();
    state.SetItemsProcessed(state.iterations() * border.GetNumPoints());
}

// A square plate with rows of square holes; the copy that is merged counts too.
void BM_MergeHoles(benchmark::State& state)
{
    const auto numRows = static_cast<int>(state.range(0));
    Border border;
    const auto addSquare = [&](double x, double y, double half) {
        AddRing(border, {{x - half, y - half},
                         {x + half, y - half},
                         {x + half, y + half},
                         {x - half, y + half}});
    };
    addSquare(0.5 * numRows, 0.5 * numRows, numRows);
    for (int i = 0; i < numRows; ++i)
        for (int k = 0; k < numRows; ++k)
            addSquare(i, k, 0.3);
    for (auto _ : state) {
        Border merged(border);
        merged.MergeToOnlyOuterContours();
        if (merged.GetNumContours() != 1)
            state.SkipWithError("holes are left");
    }
    state.SetItemsProcessed(state.iterations() * border.GetNumPoints());
}

// Two waved rings of 1e5 edges each that meet in forty places.
std::vector<PlaneRing> CrossingRings()
{
    constexpr std::size_t kSize = 100000;
    std::vector<PlaneRing> rings(2);
    for (std::size_t ring = 0; ring < 2; ++ring) {
        for (std::size_t i = 0; i < kSize; ++i) {
            const double angle = 6.283185307179586 * static_cast<double>(i) / kSize;
            const double radius = 100.0 + 3.0 * std::sin(20.0 * angle + static_cast<double>(ring));
            rings[ring].emplace_back(radius * std::cos(angle), radius * std::sin(angle));
        }
    }
    return rings;
}

void BM_Crossings(benchmark::State& state)
{
    Border border;
    for (const PlaneRing& ring : CrossingRings())
        AddRing(border, ring);
    std::vector<std::vector<MIntersectionValue>> values;
    for (auto _ : state)
        border.DetermineIntersectionValues(true, state.range(0) != 0, values);
    state.counters["found"] = static_cast<double>(values[0].size());
}

// The measure of crossings: the ends of the same edges, sorted.
void BM_SortEnds(benchmark::State& state)
{
    PlaneRing ends;
    for (const PlaneRing& ring : CrossingRings()) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            ends.push_back(ring[i]);
            ends.push_back(ring[(i + 1) % ring.size()]);
        }
    }
    PlaneRing sorted;
    for (auto _ : state) {
        sorted = ends;
        std::sort(sorted.begin(), sorted.end(),
                  [](const auto& a, const auto& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
        benchmark::DoNotOptimize(sorted.data());
    }
}

BENCHMARK(BM_Triangulate)
    ->ArgsProduct({{0, 1, 2}, {100, 10000, 100000}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Nesting)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MergeHoles)->Arg(10)->Arg(100)->Arg(300)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Crossings)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortEnds)->Unit(benchmark::kMillisecond);

} // namespace
