#include "support/random.h"

#include <norvek/foundation/integer_grid.h>

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

namespace
{

using Norvek::Math::Core::GCD;
using Norvek::Math::Core::GetFirstMultipleGreaterThan;
using Norvek::Math::Core::GetFirstMultipleSmallerThan;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::lowest();

TEST(GreatestCommonDivisor, AgreesWithTheStandardAndWithTheZeroCases)
{
    EXPECT_EQ(GCD(0, 0), 0);
    EXPECT_EQ(GCD(-7, 0), 7);
    EXPECT_EQ(GCD(-12, 18), 6);
    constexpr long long lowest = std::numeric_limits<long long>::lowest();
    EXPECT_EQ(GCD(lowest, 0), lowest);
    EXPECT_EQ(GCD(lowest, 6), 2);
    norvek_test::Random random(101);
    for (int i = 0; i < 1000; ++i) {
        const long long a = random.Integer(-100000, 100000);
        const long long b = random.Integer(-100000, 100000);
        EXPECT_EQ(GCD(a * 36, b * 36), std::gcd(a * 36, b * 36));
    }
}

// Brute force over the grid, for phases strictly below the step.
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
        std::int32_t below = value;
        while ((below - offset) % step != 0)
            --below;
        // A value in [0, offset) answers with the phase itself, which is the smallest member.
        EXPECT_EQ(GetFirstMultipleGreaterThan(value, step, offset), above)
            << value << ' ' << step << ' ' << offset;
        EXPECT_EQ(GetFirstMultipleSmallerThan(value, step, offset), below)
            << value << ' ' << step << ' ' << offset;
    }
}

TEST(IntegerGrid, KeepsTheRulesAtTheEdges)
{
    EXPECT_EQ(GetFirstMultipleGreaterThan(0, 5, 5), 5);
    EXPECT_EQ(GetFirstMultipleSmallerThan(0, 5, 5), 0);
    EXPECT_EQ(GetFirstMultipleGreaterThan(kLowest, 5, 0), -2147483645);
    EXPECT_EQ(GetFirstMultipleGreaterThan(kLowest, 5, 2), -2147483648);
    EXPECT_EQ(GetFirstMultipleGreaterThan(kLowest, 1, 0), kLowest);
    EXPECT_EQ(GetFirstMultipleSmallerThan(kLowest, 5, 2), kLowest);
    // -2147483650 does not fit and wraps.
    EXPECT_EQ(GetFirstMultipleSmallerThan(kLowest, 5, 0), 2147483646);
    EXPECT_EQ(GetFirstMultipleGreaterThan(2147483647, 5, 0), -2147483646);
}

} // namespace
