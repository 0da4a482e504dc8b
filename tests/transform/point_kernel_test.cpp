#include "support/random.h"
#include "transform/point_kernel.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace
{

using namespace Norvek::Math::Core;
using Points = std::vector<MMPoint3d<double>>;

// Short vectors, every remainder, the streamed length and odd starts: the same bits as one by one,
// and nothing written before the start or beyond the end.
TEST(PointKernel, GivesTheBitsOfOnePointAtATime)
{
    norvek_test::Random random(301);
    Matrix4 m;
    for (auto& row : m) {
        for (double& element : row)
            element = random.LogUniform(1e-3, 1e3);
    }
    Points in(90020);
    for (MMPoint3d<double>& point : in)
        point = {random.LogUniform(1e-8, 1e8), random.LogUniform(1e-8, 1e8), random.Uniform(-1, 1)};
    in[7] = {0.0, -0.0, 1e308};
    const std::size_t size = in.size() * sizeof(in[0]);
    for (const std::size_t count : {0U, 1U, 7U, 8U, 29U, 1000U, 90000U, 90011U}) {
        for (std::size_t start = 0; start<9; start += count> 1000 ? 3 : 1) {
            Points expected = in;
            TransformPointsOneByOne(&expected[start], &in[start], count, m);
            Points out = in;
            TransformPoints(&out[start], &in[start], count, m);
            EXPECT_EQ(std::memcmp(out.data(), expected.data(), size), 0) << count << ' ' << start;
            out = in;
            TransformPoints(&out[start], &out[start], count, m);
            EXPECT_EQ(std::memcmp(out.data(), expected.data(), size), 0) << count << ' ' << start;
        }
    }
}

} // namespace
