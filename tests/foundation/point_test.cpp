#include "foundation/round_to_float.h"
#include "foundation/safe_length.h"
#include "support/random.h"

#include <norvek/foundation/vector.h>

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace
{

using namespace Norvek::Math::Core;
using Integers = MMPoint3d<std::int32_t>;
using Reals = MMPoint3d<double>;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::lowest();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

static_assert(Reals(3.0, 4.0, 12.0).Length() == 13.0);
static_assert(Reals(0.0, 3.0, 4.0).Normalised() == Reals(0.0, 0.6, 0.8));
static_assert(MMPoint3d<float>(0.0F, 3.0F, 4.0F).Length() == 5.0F);
static_assert(Integers(2, 3, 5).Cross({7, 11, 13}) == Integers(-16, 9, 1));
static_assert(2.0 * MMPoint2d<double>(1.0, 2.0) / 4.0 == MMPoint2d<double>(0.5, 1.0));
static_assert(-Integers(kLowest, 1, 2) == Integers(kLowest, -1, -2));
static_assert(Reals().Normalised() == Reals() && MMPoint2d<float>().Normalised().y == 0.0F);

TEST(Point, ScalarOperandsAreTakenByValue)
{
    Reals p(2.0, 4.0, 6.0);
    p /= p.x;
    EXPECT_EQ(p, Reals(1.0, 2.0, 3.0));
    MMPoint2d<std::int32_t> q(3, 5);
    q *= q.y;
    EXPECT_EQ(q, MMPoint2d<std::int32_t>(15, 25));
}

TEST(Point, IntegersWrapAndConversionsSaturate)
{
    const Integers corner(kHighest, kLowest, kLowest);
    EXPECT_EQ(corner + Integers(1, -1, 0), Integers(kLowest, kHighest, kLowest));
    EXPECT_EQ(corner / -1, Integers(-kHighest, kLowest, kLowest));
    EXPECT_GT(corner.Length(), 3.7e9);
    EXPECT_EQ(Integers(Reals(1e10, -1e300, kNan)), Integers(kHighest, kLowest, 0));
    EXPECT_EQ(Integers(MMPoint3d<float>(-2.9F, 2.9F, 2147483520.0F)), Integers(-2, 2, 2147483520));
}

TEST(Point, PrintsItsCoordinates)
{
    std::ostringstream text;
    text << Reals(1.5, -2.0, 3.0) << MMPoint2d<std::int32_t>(4, 5)
         << MMVector<double, 3>{0.5, 1.0, 2.0};
    EXPECT_EQ(text.str(), "(1.5, -2, 3)(4, 5)(0.5, 1, 2)");
}

TEST(SquareRoot, BitByBitGivesTheBitsOfTheProcessor)
{
    norvek_test::Random random(103);
    std::vector<double> values{1.0,
                               4.0,
                               std::numeric_limits<double>::max(),
                               5e-324,
                               std::nextafter(1.0, 0.0),
                               std::nextafter(4.0, 5.0)};
    for (int i = 0; i < 20000; ++i)
        values.push_back(std::abs(random.LogUniform(1e-307, 1e308)));
    for (const double value : values)
        EXPECT_EQ(SquareRootBitByBit(value), std::sqrt(value)) << value;
}

TEST(SafeLength, NeitherOverflowsNorUnderflows)
{
    EXPECT_TRUE(std::isnan(SafeLength(0.0, kNan, 0.0)));
    norvek_test::Random random(104);
    for (const double unit : {0.0, 0x1p-700, 1.0, 0x1p+700})
        for (int i = 0; i < 1000; ++i) {
            const Reals p = random.Point(1e3);
            EXPECT_NEAR(SafeLength(p * unit), p.Length() * unit, 1e-12 * unit);
            // The result does not depend on which coordinate is the largest.
            EXPECT_EQ(SafeLength(p.x, p.y, 0.0), SafeLength(p.y, p.x, 0.0));
        }
}

// Several roundings in a row are what an optimiser likes to vectorise away.
TEST(RoundToFloat, SurvivesOptimisation)
{
    std::vector<double> values(8, 1.0 + 1e-9);
    for (double& value : values)
        value = RoundToFloat(value);
    EXPECT_EQ(values, std::vector<double>(8, 1.0));
}

} // namespace
