#include "support/transform_inputs.h"

#include <Eigen/Geometry>
#include <benchmark/benchmark.h>

#include <cstring>

namespace
{

using norvek_benchmark::kAffineRows;
using norvek_benchmark::kAngles;
using norvek_benchmark::kTranslation;
using norvek_benchmark::RandomPoints;
using Points = std::vector<MMPoint3d<double>>;

// Three turns in degrees, about x first. The product of the three is a quaternion.
Eigen::Isometry3d Rotation(const double (&angles)[3])
{
    const double degree = 3.141592653589793 / 180.0;
    Eigen::Isometry3d transform = Eigen::Isometry3d::Identity();
    transform.linear() = (Eigen::AngleAxisd(angles[2] * degree, Eigen::Vector3d::UnitZ()) *
                          Eigen::AngleAxisd(angles[1] * degree, Eigen::Vector3d::UnitY()) *
                          Eigen::AngleAxisd(angles[0] * degree, Eigen::Vector3d::UnitX()))
                             .toRotationMatrix();
    return transform;
}

Eigen::Isometry3d Rigid()
{
    Eigen::Isometry3d transform = Rotation(kAngles);
    transform.translation() = Eigen::Map<const Eigen::Vector3d>(kTranslation);
    return transform;
}

// One product of a 3x3 matrix with all points, evaluated coefficient by coefficient.
void BM_Points_EigenLazyProduct(benchmark::State& state)
{
    const Points in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    Points out(in.size());
    const Eigen::Isometry3d transform = Rigid();
    const Eigen::Matrix3d linear = transform.linear();
    const Eigen::Vector3d translation = transform.translation();
    const Eigen::Map<const Eigen::Matrix3Xd> from(&in[0].x, 3, state.range(0));
    Eigen::Map<Eigen::Matrix3Xd> to(&out[0].x, 3, state.range(0));
    for (auto _ : state) {
        to.noalias() = linear.lazyProduct(from).colwise() + translation;
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Points_EigenLazyProduct)->Arg(1000)->Arg(100000)->Arg(10000000);

template <class Transform>
void TransformOneByOne(const Transform& transform, const MMPoint3d<double>* in,
                       MMPoint3d<double>* out, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        Eigen::Map<Eigen::Vector3d>(&out[i].x) =
            transform * Eigen::Vector3d(in[i].x, in[i].y, in[i].z);
    }
}

void BM_Points_EigenAffine(benchmark::State& state)
{
    const Points in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    Points out(in.size());
    const Eigen::Affine3d transform(Rigid());
    for (auto _ : state) {
        TransformOneByOne(transform, in.data(), out.data(), in.size());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Points_EigenAffine)->Arg(1000)->Arg(100000)->Arg(10000000);

void BM_RigidPoints_EigenIsometry(benchmark::State& state)
{
    const Points in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    Points out(in.size());
    const Eigen::Isometry3d transform = Rigid();
    for (auto _ : state) {
        TransformOneByOne(transform, in.data(), out.data(), in.size());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_RigidPoints_EigenIsometry)->Arg(1000)->Arg(1000000);

void BM_Points_Memcpy(benchmark::State& state)
{
    const Points in = RandomPoints(static_cast<std::size_t>(state.range(0)));
    Points out(in.size());
    for (auto _ : state) {
        std::memcpy(out.data(), in.data(), in.size() * sizeof(in[0]));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Points_Memcpy)->Arg(10000000);

void BM_PointsInPlace_EigenAffine(benchmark::State& state)
{
    Points points = RandomPoints(static_cast<std::size_t>(state.range(0)));
    const Eigen::Affine3d transform(Rigid());
    for (auto _ : state) {
        TransformOneByOne(transform, points.data(), points.data(), points.size());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_PointsInPlace_EigenAffine)->Arg(1000)->Arg(100000);

void BM_Product_Eigen(benchmark::State& state)
{
    Eigen::Matrix4d a = Rigid().matrix();
    Eigen::Matrix4d b = Eigen::Matrix4d::Identity();
    b.topRows<3>() = Eigen::Map<const Eigen::Matrix<double, 3, 4, Eigen::RowMajor>>(kAffineRows);
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        Eigen::Matrix4d product = a * b;
        Eigen::Matrix4d inverse = product.inverse();
        benchmark::DoNotOptimize(product);
        benchmark::DoNotOptimize(inverse);
    }
}
BENCHMARK(BM_Product_Eigen);

void BM_RigidInverse_Eigen(benchmark::State& state)
{
    Eigen::Isometry3d transform = Rigid();
    for (auto _ : state) {
        benchmark::DoNotOptimize(transform);
        Eigen::Isometry3d inverse = transform.inverse();
        benchmark::DoNotOptimize(inverse);
    }
}
BENCHMARK(BM_RigidInverse_Eigen);

void BM_RotationXYZ_Eigen(benchmark::State& state)
{
    double angles[3] = {kAngles[0], kAngles[1], kAngles[2]};
    for (auto _ : state) {
        benchmark::DoNotOptimize(angles);
        Eigen::Isometry3d transform = Rotation(angles);
        Eigen::Isometry3d inverse = transform.inverse();
        benchmark::DoNotOptimize(transform);
        benchmark::DoNotOptimize(inverse);
    }
}
BENCHMARK(BM_RotationXYZ_Eigen);

} // namespace
