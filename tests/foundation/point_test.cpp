#include "foundation/round_to_float.h"
#include "foundation/safe_length.h"
#include "support/random.h"

#include <norvek/foundation/constants.h>
#include <norvek/foundation/point2d.h>
#include <norvek/foundation/point3d.h>
#include <norvek/foundation/vector.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <sstream>

namespace
{

using Norvek::Math::Core::RoundToFloat;
using Norvek::Math::Core::SafeLength;
using Norvek::Math::Core::SquareRootBitByBit;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::lowest();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

static_assert(MMPoint3d<double>(3.0, 4.0, 12.0).Length() == 13.0);
static_assert(MMPoint3d<double>(0.0, 3.0, 4.0).Normalised() == MMPoint3d<double>(0.0, 0.6, 0.8));
static_assert(MMPoint3d<float>(0.0F, 3.0F, 4.0F).Length() == 5.0F);
static_assert(MMPoint3d<std::int32_t>(1, 0, 0).Cross({0, 1, 0}) ==
              MMPoint3d<std::int32_t>(0, 0, 1));
static_assert(2.0 * MMPoint2d<double>(1.0, 2.0) / 4.0 == MMPoint2d<double>(0.5, 1.0));
static_assert(-MMPoint3d<std::int32_t>(kLowest, 1, 2) == MMPoint3d<std::int32_t>(kLowest, -1, -2));

TEST(Point, ScalarOperandsAreTakenByValue)
{
    MMPoint3d<double> p(2.0, 4.0, 6.0);
    p /= p.x;
    EXPECT_EQ(p, MMPoint3d<double>(1.0, 2.0, 3.0));
    MMPoint2d<std::int32_t> q(3, 5);
    q *= q.y;
    EXPECT_EQ(q, MMPoint2d<std::int32_t>(15, 25));
}

TEST(Point, ZeroStaysZeroWhenNormalised)
{
    MMPoint3d<double> zero;
    zero.Normalise();
    EXPECT_EQ(zero, MMPoint3d<double>());
    EXPECT_EQ(MMPoint2d<float>().Normalised(), MMPoint2d<float>());
}

TEST(Point, IntegersWrapAndConversionsSaturate)
{
    const MMPoint3d<std::int32_t> corner(kHighest, kLowest, kLowest);
    EXPECT_EQ(corner + MMPoint3d<std::int32_t>(1, -1, 0),
              MMPoint3d<std::int32_t>(kLowest, kHighest, kLowest));
    EXPECT_EQ(corner / -1, MMPoint3d<std::int32_t>(-kHighest, kLowest, kLowest));
    EXPECT_GT(corner.Length(), 3.7e9);

    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(MMPoint3d<std::int32_t>(MMPoint3d<double>(1e10, -1e300, nan)),
              MMPoint3d<std::int32_t>(kHighest, kLowest, 0));
    EXPECT_EQ(MMPoint3d<std::int32_t>(MMPoint3d<float>(-2.9F, 2.9F, 2147483520.0F)),
              MMPoint3d<std::int32_t>(-2, 2, 2147483520));
    EXPECT_EQ(MMPoint3d<float>(MMPoint3d<double>(1.0 + 1e-12, 0.0, 0.0)).x, 1.0F);
}

TEST(Point, PrintsItsCoordinates)
{
    std::ostringstream text;
    text << MMPoint3d<double>(1.5, -2.0, 3.0) << MMPoint2d<std::int32_t>(4, 5)
         << MMVector<double, 3>{0.5, 1.0, 2.0};
    EXPECT_EQ(text.str(), "(1.5, -2, 3)(4, 5)(0.5, 1, 2)");
}

TEST(SquareRoot, BitByBitGivesTheBitsOfTheProcessor)
{
    norvek_test::Random random(103);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::abs(random.LogUniform(1e-307, 1e308));
        EXPECT_EQ(SquareRootBitByBit(value), std::sqrt(value)) << value;
    }
    for (const double value : {1.0, 4.0, std::numeric_limits<double>::max(), 5e-324,
                               std::nextafter(1.0, 0.0), std::nextafter(4.0, 5.0)})
        EXPECT_EQ(SquareRootBitByBit(value), std::sqrt(value)) << value;
}

TEST(SafeLength, NeitherOverflowsNorUnderflows)
{
    EXPECT_EQ(SafeLength(0.0, 0.0, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(SafeLength(3e200, 4e200, 0.0), 5e200);
    EXPECT_DOUBLE_EQ(SafeLength(0.0, -3e-200, 4e-200), 5e-200);
    EXPECT_TRUE(std::isnan(SafeLength(0.0, std::numeric_limits<double>::quiet_NaN(), 0.0)));
    norvek_test::Random random(104);
    for (int i = 0; i < 1000; ++i) {
        const MMPoint3d<double> p = random.Point(1e3);
        EXPECT_NEAR(SafeLength(p), p.Length(), 1e-12);
        // The result does not depend on which coordinate is the largest.
        EXPECT_EQ(SafeLength(p.x, p.y, 0.0), SafeLength(p.y, p.x, 0.0));
    }
}

// Several roundings in a row are what an optimiser likes to vectorise away.
TEST(RoundToFloat, SurvivesOptimisation)
{
    std::array<double, 8> values{};
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = 1.0 + 1e-9 * static_cast<double>(i + 1);
    for (double& value : values)
        value = RoundToFloat(value);
    for (const double value : values)
        EXPECT_EQ(value, 1.0);
    EXPECT_EQ(RoundToFloat(MMPoint3d<double>(0.1, 0.2, 1e300)).x, static_cast<double>(0.1F));
}

} // namespace
