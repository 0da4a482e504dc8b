#include "support/random.h"
#include "transform/point_kernel.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <vector>

namespace
{

using namespace Norvek::Math::Core;
using Points = std::vector<MMPoint3d<double>>;

void ExpectSameBits(const MMPoint3d<double>* a, const MMPoint3d<double>* b, std::size_t count)
{
    using Bits = std::array<std::uint64_t, 3>;
    for (std::size_t i = 0; i < count; ++i)
        ASSERT_EQ(std::bit_cast<Bits>(a[i]), std::bit_cast<Bits>(b[i])) << i;
}

// Short vectors, every remainder, the streamed length and odd starts: the same bits as one by one,
// and nothing written beyond the end.
TEST(PointKernel, GivesTheBitsOfOnePointAtATime)
{
    norvek_test::Random random(301);
    Matrix4 m;
    for (auto& row : m) {
        for (double& element : row)
            element = random.LogUniform(1e-3, 1e3);
    }
    const MMPoint3d<double> sentinel(1.0, 2.0, 3.0);
    constexpr std::size_t large = 90000;
    Points in(large + 20);
    for (MMPoint3d<double>& point : in)
        point = {random.LogUniform(1e-8, 1e8), random.LogUniform(1e-8, 1e8), random.Uniform(-1, 1)};
    in[7] = {0.0, -0.0, 1e308};
    for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{8},
                                    std::size_t{29}, std::size_t{1000}, large, large + 11})
    {
        for (std::size_t start = 0; start<9; start += count> 1000 ? 3 : 1) {
            Points expected(count);
            TransformPointsOneByOne(expected.data(), in.data() + start, count, m);
            Points out(count + 9, sentinel);
            TransformPoints(out.data() + start, in.data() + start, count, m);
            ExpectSameBits(out.data() + start, expected.data(), count);
            EXPECT_EQ(out[start == 0 ? count : start - 1], sentinel);
            EXPECT_EQ(out[count + start == count + 9 ? 0 : count + start], sentinel);

            Points inPlace = in;
            TransformPoints(inPlace.data() + start, inPlace.data() + start, count, m);
            ExpectSameBits(inPlace.data() + start, expected.data(), count);
        }
    }
}

} // namespace
