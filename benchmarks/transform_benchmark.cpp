#include "support/transform_inputs.h"

#include <norvek/transform/ortho_transform.h>
#include <norvek/transform/transform_matrix.h>
#include <norvek/transform/transform_stack.h>

#include <benchmark/benchmark.h>

namespace
{

using norvek_benchmark::kAffineRows;
using norvek_benchmark::kAngles;
using norvek_benchmark::kTranslation;
using norvek_benchmark::RandomPoints;

MMTransformMatrix Rigid()
{
    MMTransformMatrix matrix;
    matrix.MakeRotationXYZ(kAngles[0], kAngles[1], kAngles[2]);
    matrix.FillInTranslation(kTranslation);
    return matrix;
}

void BM_Points(benchmark::State& state)
{
    const auto in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    std::vector<MMPoint3d<double>> out(in.size());
    const MMTransformMatrix matrix = Rigid();
    for (auto _ : state) {
        matrix.Transform(out, in);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Points)->Arg(1000)->Arg(100000)->Arg(10000000);

void BM_PointsInPlace(benchmark::State& state)
{
    auto points = RandomPoints(static_cast<std::size_t>(state.range(0)));
    const MMTransformMatrix matrix = Rigid();
    for (auto _ : state) {
        matrix.Transform(points);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_PointsInPlace)->Arg(1000)->Arg(100000);

MMOrthoTransform RigidMotion()
{
    const MMTransformMatrix matrix = Rigid();
    double rows[16];
    matrix.ConvertToDouble16(rows);
    MMOrthoTransform motion;
    motion.SetFrom12Elements(rows);
    return motion;
}

void BM_RigidPoints(benchmark::State& state)
{
    const auto in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    std::vector<MMPoint3d<double>> out(in.size());
    const MMOrthoTransform motion = RigidMotion();
    for (auto _ : state) {
        motion.Transform(out, in);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_RigidPoints)->Arg(1000)->Arg(1000000);

void BM_RigidPointsOneByOne(benchmark::State& state)
{
    const auto in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    std::vector<MMPoint3d<double>> out(in.size());
    const MMOrthoTransform motion = RigidMotion();
    for (auto _ : state) {
        for (std::size_t i = 0; i < in.size(); ++i)
            motion.Transform(out[i], in[i]);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_RigidPointsOneByOne)->Arg(1000)->Arg(1000000);

MMTransformStack ThreeMatrices()
{
    MMTransformMatrix affine;
    affine.MakeFromDouble12(kAffineRows);
    MMTransformStack stack;
    stack.PostMultiply(Rigid());
    stack.PostMultiply(affine);
    stack.PostMultiply(Rigid());
    return stack;
}

void BM_StackPoints(benchmark::State& state)
{
    const auto in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    std::vector<MMPoint3d<double>> out(in.size());
    const MMTransformStack stack = ThreeMatrices();
    for (auto _ : state) {
        stack.Transform(out, in);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_StackPoints)->Arg(1000)->Arg(1000000);

// What the stack saves its user: the vector forms of its matrices, one after the other.
void BM_StackPoints_MatrixByMatrix(benchmark::State& state)
{
    const auto in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    std::vector<MMPoint3d<double>> out(in.size());
    const MMTransformStack stack = ThreeMatrices();
    for (auto _ : state) {
        stack[2]->Transform(out, in);
        stack[1]->Transform(out);
        stack[0]->Transform(out);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_StackPoints_MatrixByMatrix)->Arg(1000)->Arg(1000000);

void BM_Product(benchmark::State& state)
{
    MMTransformMatrix a = Rigid();
    MMTransformMatrix b;
    b.MakeFromDouble12(kAffineRows);
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        MMTransformMatrix product = a * b;
        benchmark::DoNotOptimize(product);
    }
}
BENCHMARK(BM_Product);

void BM_RigidInverse(benchmark::State& state)
{
    MMTransformMatrix matrix = Rigid();
    for (auto _ : state) {
        benchmark::DoNotOptimize(matrix);
        matrix.ComputeInverse();
        benchmark::DoNotOptimize(matrix);
    }
}
BENCHMARK(BM_RigidInverse);

void BM_RotationXYZ(benchmark::State& state)
{
    double angles[3] = {kAngles[0], kAngles[1], kAngles[2]};
    MMTransformMatrix matrix;
    for (auto _ : state) {
        benchmark::DoNotOptimize(angles);
        matrix.MakeRotationXYZ(angles[0], angles[1], angles[2]);
        benchmark::DoNotOptimize(matrix);
    }
}
BENCHMARK(BM_RotationXYZ);

} // namespace
