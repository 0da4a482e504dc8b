#include "support/random.h"

#include <norvek/foundation/integer_grid.h>

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

namespace
{

using namespace Norvek::Math::Core;

TEST(GreatestCommonDivisor, AgreesWithTheStandardAndWithTheZeroCases)
{
    constexpr long long lowest = std::numeric_limits<long long>::lowest();
    EXPECT_TRUE(GCD(0, 0) == 0 && GCD(-7, 0) == 7 && GCD(lowest, 0) == lowest);
    EXPECT_EQ(GCD(lowest, 6), 2);
    norvek_test::Random random(101);
    for (int i = 0; i < 1000; ++i) {
        const long long a = 36LL * random.Integer(-100000, 100000);
        const long long b = 36LL * random.Integer(-100000, 100000);
        EXPECT_EQ(GCD(a, b), std::gcd(a, b));
    }
}

// Brute force over the grid, for phases strictly below the step. A value in [0, offset) answers
// with the phase itself, which is the smallest member.
TEST(IntegerGrid, GivesTheNeighbouringGridMembers)
{
    norvek_test::Random random(102);
    for (int i = 0; i < 2000; ++i) {
        const std::int32_t step = random.Integer(1, 30);
        const std::int32_t offset = random.Integer(0, step - 1);
        const std::int32_t value = random.Integer(-200, 200);
        std::int32_t above = value;
        while ((above - offset) % step != 0)
            ++above;
        const std::int32_t below = above == value ? value : above - step;
        EXPECT_EQ(GetFirstMultipleGreaterThan(value, step, offset), above)
            << value << ' ' << step << ' ' << offset;
        EXPECT_EQ(GetFirstMultipleSmallerThan(value, step, offset), below)
            << value << ' ' << step << ' ' << offset;
    }
}

TEST(IntegerGrid, KeepsTheRulesAtTheEdges)
{
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::lowest();
    EXPECT_EQ(GetFirstMultipleGreaterThan(0, 5, 5), 5);
    EXPECT_EQ(GetFirstMultipleSmallerThan(0, 5, 5), 0);
    EXPECT_EQ(GetFirstMultipleGreaterThan(lowest, 5, 0), -2147483645);
    EXPECT_EQ(GetFirstMultipleGreaterThan(lowest, 5, 2), lowest);
    EXPECT_EQ(GetFirstMultipleSmallerThan(lowest, 5, 2), lowest);
    // -2147483650 and 2147483650 do not fit and wrap.
    EXPECT_EQ(GetFirstMultipleSmallerThan(lowest, 5, 0), 2147483646);
    EXPECT_EQ(GetFirstMultipleGreaterThan(2147483647, 5, 0), -2147483646);
}

} // namespace
