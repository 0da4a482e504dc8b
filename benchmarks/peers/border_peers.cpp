#include "support/border_inputs.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_2_algorithms.h>
#include <CGAL/Simple_cartesian.h>
#include <benchmark/benchmark.h>
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <boost/geometry/strategies/agnostic/point_in_poly_oriented_winding.hpp>
#include <boost/geometry/strategies/cartesian/point_in_poly_crossings_multiply.hpp>
#include <boost/geometry/strategies/cartesian/point_in_poly_franklin.hpp>
#include <boost/intrusive/list.hpp>
#include <boost/pool/object_pool.hpp>
#include <boost/pool/simple_segregated_storage.hpp>

namespace
{

using norvek_benchmark::Queries;
using norvek_benchmark::RoughOutline;
using norvek_benchmark::SettleHeap;

namespace bg = boost::geometry;

using BoostPoint = bg::model::d2::point_xy<double>;

bg::model::polygon<BoostPoint> BoostOutline(const benchmark::State& state)
{
    bg::model::polygon<BoostPoint> polygon;
    for (const auto& p : RoughOutline(static_cast<std::size_t>(state.range(0))))
        bg::append(polygon.outer(), BoostPoint(p.x, p.y));
    bg::correct(polygon);
    return polygon;
}

template <class Strategy>
void MeasureBoost(benchmark::State& state)
{
    const auto polygon = BoostOutline(state);
    const auto queries = Queries();
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        benchmark::DoNotOptimize(bg::within(BoostPoint(q.x, q.y), polygon, Strategy()));
    }
}

void BM_PointPosition_BoostWinding(benchmark::State& state)
{
    MeasureBoost<bg::strategy::within::cartesian_winding<BoostPoint>>(state);
}
BENCHMARK(BM_PointPosition_BoostWinding)->Arg(100)->Arg(10000)->Arg(1000000);

void BM_PointPosition_BoostFranklin(benchmark::State& state)
{
    MeasureBoost<bg::strategy::within::franklin<BoostPoint>>(state);
}
BENCHMARK(BM_PointPosition_BoostFranklin)->Arg(100)->Arg(10000)->Arg(1000000);

template <class Kernel>
void MeasureCgal(benchmark::State& state)
{
    using Point = typename Kernel::Point_2;
    std::vector<Point> points;
    for (const auto& p : RoughOutline(static_cast<std::size_t>(state.range(0))))
        points.emplace_back(p.x, p.y);
    const auto queries = Queries();
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& q = queries[i++ % queries.size()];
        benchmark::DoNotOptimize(
            CGAL::bounded_side_2(points.begin(), points.end(), Point(q.x, q.y), Kernel()));
    }
}

void BM_PointPosition_CgalExact(benchmark::State& state)
{
    MeasureCgal<CGAL::Exact_predicates_inexact_constructions_kernel>(state);
}
BENCHMARK(BM_PointPosition_CgalExact)->Arg(100)->Arg(10000)->Arg(1000000);

void BM_PointPosition_CgalDouble(benchmark::State& state)
{
    MeasureCgal<CGAL::Simple_cartesian<double>>(state);
}
BENCHMARK(BM_PointPosition_CgalDouble)->Arg(100)->Arg(10000)->Arg(1000000);

// The payload of a border point in a node of an intrusive list.
struct Node
    : boost::intrusive::list_base_hook<boost::intrusive::link_mode<boost::intrusive::normal_link>>
{
    Node(double xValue, double yValue, void* payloadValue)
        : x(xValue),
          y(yValue),
          payload(payloadValue)
    {}

    double x;
    double y;
    void* payload;
    std::uint32_t index = 0;
};

using List = boost::intrusive::list<Node>;

// Nodes are carved out of blocks that grow as the pool sees fit and go back all at once.
void BM_AppendAndFree_BoostObjectPool(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    SettleHeap();
    for (auto _ : state) {
        boost::object_pool<Node> pool;
        List list;
        for (std::size_t i = 0; i < count; ++i)
            list.push_back(*pool.construct(static_cast<double>(i), 1.0, nullptr));
        benchmark::DoNotOptimize(&list.front());
    }
}
BENCHMARK(BM_AppendAndFree_BoostObjectPool)->Arg(10000)->Arg(100000)->Arg(1000000);

// Blocks of as many nodes as ours, from the heap.
class SegregatedBlocks
{
public:
    template <class... Arguments>
    Node* Construct(Arguments... arguments)
    {
        if (_storage.empty()) {
            _blocks.push_back(std::make_unique<Block>());
            _storage.add_block(_blocks.back().get(), sizeof(Block), sizeof(Node));
        }
        return new (_storage.malloc()) Node(arguments...);
    }

    void Destroy(Node* node)
    {
        node->~Node();
        _storage.free(node);
    }

private:
    struct Block
    {
        alignas(Node) std::byte bytes[113 * sizeof(Node)];
    };

    boost::simple_segregated_storage<std::size_t> _storage;
    std::vector<std::unique_ptr<Block>> _blocks;
};

void BM_AppendAndFree_BoostSegregated(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    SettleHeap();
    for (auto _ : state) {
        SegregatedBlocks pool;
        List list;
        for (std::size_t i = 0; i < count; ++i)
            list.push_back(*pool.Construct(static_cast<double>(i), 1.0, nullptr));
        benchmark::DoNotOptimize(&list.front());
    }
}
BENCHMARK(BM_AppendAndFree_BoostSegregated)->Arg(10000)->Arg(100000)->Arg(1000000);

void BM_AppendAndRemove_BoostSegregated(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    SettleHeap();
    for (auto _ : state) {
        SegregatedBlocks pool;
        List list;
        for (std::size_t i = 0; i < count; ++i)
            list.push_back(*pool.Construct(static_cast<double>(i), 1.0, nullptr));
        while (!list.empty()) {
            Node* const node = &list.front();
            list.pop_front();
            pool.Destroy(node);
        }
    }
}
BENCHMARK(BM_AppendAndRemove_BoostSegregated)->Arg(10000)->Arg(100000)->Arg(1000000);

template <class Pool>
void MeasureWalk(benchmark::State& state, Pool construct)
{
    List list;
    for (const auto& p : RoughOutline(static_cast<std::size_t>(state.range(0))))
        list.push_back(*construct(p));
    for (auto _ : state) {
        double sum = 0.0;
        for (const Node& node : list)
            sum += node.x;
        benchmark::DoNotOptimize(sum);
    }
}

void BM_Walk_BoostObjectPool(benchmark::State& state)
{
    boost::object_pool<Node> pool;
    MeasureWalk(state, [&](const auto& p) { return pool.construct(p.x, p.y, nullptr); });
}
BENCHMARK(BM_Walk_BoostObjectPool)->Arg(10000)->Arg(100000)->Arg(1000000);

void BM_Walk_BoostSegregated(benchmark::State& state)
{
    SegregatedBlocks pool;
    MeasureWalk(state, [&](const auto& p) { return pool.Construct(p.x, p.y, nullptr); });
}
BENCHMARK(BM_Walk_BoostSegregated)->Arg(10000)->Arg(100000)->Arg(1000000);

} // namespace
