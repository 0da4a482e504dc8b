#include "support/random.h"

#include <norvek/foundation/histogram.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <type_traits>

namespace
{

using norvek_test::Random;

constexpr double kGreatest = std::numeric_limits<double>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Few and many boundaries, and crowded, equal, infinite, overflowing and disordered ones, which
// leave no room for even cells.
TEST(Histogram, CountsOneSlotAboveTheIntervalWhateverTheSpacing)
{
    Random random(621);
    std::vector<std::vector<double>> cases{{-kGreatest, 0.0, 1.0, kGreatest},
                                           {-kInfinity, 0.0, 1.0, kInfinity},
                                           {2.0, 2.0, 2.0, 2.0},
                                           {0.0, kNan, 5.0},
                                           {0.0, kNan, -1e9, kNan, 5.0},
                                           {0.0, 9.0, -9.0, 5.0},
                                           {0.0, 5e-324, 1e-323, 1.5e-323}};
    for (const std::size_t count : {0U, 1U, 2U, 3U, 8U, 9U, 200U, 1000U}) {
        std::vector<double>& boundaries = cases.emplace_back(count);
        for (double& boundary : boundaries)
            boundary = random.LogUniform(1e-12, 1e12);
        std::sort(boundaries.begin(), boundaries.end());
    }
    for (const std::vector<double>& boundaries : cases) {
        MHistogram histogram;
        histogram.SetIntervals(boundaries);
        std::vector<double> values{-1.0, 0.0, 1e13};
        for (const double boundary : boundaries)
            values.insert(values.end(),
                          {boundary, std::nextafter(boundary, kInfinity),
                           std::nextafter(boundary, -kInfinity), random.LogUniform(1e-13, 1e13)});
        std::vector<double> weights(boundaries.size() + 1);
        for (const double value : values) {
            const double weight = random.Integer(0, 3); // whole, so that sums are exact
            histogram.AddValue(value, weight);
            const auto below = static_cast<std::size_t>(
                std::lower_bound(boundaries.begin(), boundaries.end(), value) - boundaries.begin());
            weights[below == boundaries.size() ? 0 : below + 1] += weight;
        }
        ASSERT_EQ(histogram.GetIntervalsCount(), weights.size());
        for (unsigned int i = 0; i < weights.size(); ++i)
            EXPECT_EQ(histogram.GetWeight(i), weights[i]) << i;
    }
}

TEST(Histogram, StatisticsAreThoseOfTheSlots)
{
    Random random(622);
    MHistogram histogram;
    histogram.SetIntervals(-10.0, 10.0, 6); // whole boundaries, four apart
    double weights[7]{};
    double sums[7]{};
    for (int i = 0; i < 1000; ++i) {
        const int value = random.Integer(-13, 13);
        const double weight = random.Integer(0, 3);
        histogram.AddValue(value, weight);
        const int slot = value > 10 ? 0 : value <= -10 ? 1 : (value + 13) / 4 + 1;
        weights[slot] += weight;
        sums[slot] += weight * value;
    }
    double total = 0.0;
    double sum = 0.0;
    double squares = 0.0;
    for (unsigned int i = 0; i < 7; ++i) {
        total += weights[i];
        sum += sums[i];
        squares += sums[i] * sums[i] / weights[i];
        EXPECT_NEAR(histogram.GetAverageValue(i), sums[i] / weights[i], 1e-12);
        EXPECT_NEAR(histogram.GetDistribution(i), total / histogram.GetTotalWeight(), 1e-12);
        EXPECT_EQ(histogram.GetDensity(i), weights[i] / histogram.GetTotalWeight());
    }
    EXPECT_EQ(histogram.GetTotalWeight(), total);
    EXPECT_NEAR(histogram.GetAverageValue(), sum / total, 1e-12);
    const double variance = squares / total - sum / total * (sum / total);
    EXPECT_NEAR(histogram.GetStandartDeviation(), std::sqrt(variance), 1e-12);
}

TEST(Histogram, BoundsLimitsAndEmptyAnswers)
{
    MHistogram histogram;
    histogram.AddValue(3.0, 2.0);
    EXPECT_EQ(histogram.GetWeight(0), 2.0);
    histogram.SetIntervals(0.0, 10.0, 3);
    EXPECT_EQ(histogram.GetTotalWeight() + histogram.GetAverageValue() + histogram.GetDensity(1) +
                  histogram.GetDistribution(2) + histogram.GetStandartDeviation(),
              0.0);
    const double bounds[]{-kGreatest, 0.0, 5.0, 10.0, kGreatest};
    for (unsigned int i = 0; i < 4; ++i) {
        double lo = 0.0;
        double hi = 0.0;
        histogram.GetIntervalBounds(i, lo, hi);
        EXPECT_TRUE(lo == bounds[i] && hi == bounds[i + 1]);
    }
    histogram.AddValue(-50.0, 0.0);
    histogram.AddValue(50.0, -1.0);
    EXPECT_TRUE(histogram.GetMinValue() == kGreatest && histogram.GetMaxValue() == -kGreatest);
    histogram.AddValue(4.0, 1.0);
    histogram.AddValue(kNan, 1.0);
    EXPECT_TRUE(histogram.GetMinValue() == 4.0 && histogram.GetMaxValue() == 4.0);
    EXPECT_TRUE(histogram.GetWeight(1) == 1.0 && std::isnan(histogram.GetAverageValue(1)));
    histogram.ClearValues();
    EXPECT_EQ(histogram.GetAverageValue(1), 0.0);
    EXPECT_EQ(histogram.GetIntervalsCount(), 4U);
    EXPECT_EQ(histogram.GetMaxValue(), -kGreatest);
    histogram.SetIntervals(2.0, 10.0, 1);
    histogram.AddValue(2.0, 1.0);
    // What was moved from still counts: moving copies.
    EXPECT_FALSE(std::is_nothrow_move_constructible_v<MHistogram>);
    MHistogram other;
    other = histogram;
    histogram.SetIntervals(2.0, 10.0, 0);
    EXPECT_TRUE(histogram.GetIntervalsCount() == 1 && other.GetWeight(1) == 1.0);
}

} // namespace
