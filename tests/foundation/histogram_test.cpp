#include "support/random.h"

#include <norvek/foundation/histogram.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

namespace
{

using norvek_test::Random;

constexpr double kGreatest = std::numeric_limits<double>::max();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Histogram, CountsOneSlotAboveTheInterval)
{
    Random random(621);
    for (const std::size_t count : {0U, 1U, 2U, 3U, 7U, 8U, 9U, 100U, 1000U}) {
        std::vector<double> boundaries(count);
        for (double& boundary : boundaries)
            boundary = random.Integer(-500, 500);
        std::sort(boundaries.begin(), boundaries.end());
        MHistogram histogram;
        histogram.SetIntervals(boundaries);
        ASSERT_EQ(histogram.GetIntervalsCount(), count + 1);
        std::vector<double> weights(count + 1);
        std::vector<double> sums(count + 1);
        double square = 0.0;
        double sum = 0.0;
        // Whole numbers, so that samples lie on boundaries and the sums are exact.
        for (int i = 0; i < 3000; ++i) {
            const double value = random.Integer(-510, 510);
            const double weight = random.Integer(0, 3);
            histogram.AddValue(value, weight);
            const auto interval = static_cast<std::size_t>(
                std::count_if(boundaries.begin(), boundaries.end(),
                              [&](double boundary) { return boundary < value; }));
            const std::size_t slot = interval == count ? 0 : interval + 1;
            weights[slot] += weight;
            sums[slot] += weight * value;
        }
        double total = 0.0;
        for (unsigned int i = 0; i <= count; ++i) {
            EXPECT_EQ(histogram.GetWeight(i), weights[i]);
            const double mean = weights[i] > 0.0 ? sums[i] / weights[i] : 0.0;
            EXPECT_NEAR(histogram.GetAverageValue(i), mean, 1e-9);
            total += weights[i];
            sum += sums[i];
            EXPECT_NEAR(histogram.GetDistribution(i), total / histogram.GetTotalWeight(), 1e-12);
            EXPECT_EQ(histogram.GetDensity(i), weights[i] / histogram.GetTotalWeight());
        }
        EXPECT_EQ(histogram.GetTotalWeight(), total);
        EXPECT_NEAR(histogram.GetAverageValue(), sum / total, 1e-9);
        for (unsigned int i = 0; i <= count; ++i) {
            const double d = histogram.GetAverageValue(i) - sum / total;
            square += d * d * weights[i];
        }
        EXPECT_NEAR(histogram.GetStandartDeviation(), std::sqrt(square / total), 1e-9);
    }
}

// Crowded, equal, infinite, overflowing and disordered boundaries, which leave no room for even
// cells.
TEST(Histogram, FindsTheIntervalWhateverTheSpacing)
{
    Random random(622);
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<std::vector<double>> cases{{-kGreatest, 0.0, 1.0, kGreatest},
                                           {-infinity, 0.0, 1.0, infinity},
                                           {2.0, 2.0, 2.0, 2.0},
                                           {0.0, kNan, 5.0},
                                           {0.0, kNan, -1e9, kNan, 5.0},
                                           {0.0, 9.0, -9.0, 5.0},
                                           {0.0, 5e-324, 1e-323, 1.5e-323}};
    for (int i = 0; i < 20; ++i) {
        std::vector<double> boundaries(200);
        for (double& boundary : boundaries)
            boundary = random.LogUniform(1e-12, 1e12);
        std::sort(boundaries.begin(), boundaries.end());
        cases.push_back(boundaries);
    }
    for (const std::vector<double>& boundaries : cases) {
        MHistogram histogram;
        histogram.SetIntervals(boundaries);
        std::vector<double> values = boundaries;
        for (const double boundary : boundaries) {
            values.push_back(std::nextafter(boundary, infinity));
            values.push_back(std::nextafter(boundary, -infinity));
            values.push_back(random.LogUniform(1e-13, 1e13));
        }
        for (const double value : values) {
            const auto below = static_cast<std::size_t>(
                std::lower_bound(boundaries.begin(), boundaries.end(), value) - boundaries.begin());
            const auto slot = static_cast<unsigned int>(below == boundaries.size() ? 0 : below + 1);
            histogram.ClearValues();
            histogram.AddValue(value, 1.0);
            EXPECT_EQ(histogram.GetWeight(slot), 1.0) << value;
        }
    }
}

TEST(Histogram, BoundsLimitsAndEmptyAnswers)
{
    MHistogram histogram;
    histogram.AddValue(3.0, 2.0);
    EXPECT_EQ(histogram.GetWeight(0), 2.0);
    histogram.SetIntervals(0.0, 10.0, 3);
    EXPECT_EQ(histogram.GetTotalWeight(), 0.0);
    EXPECT_EQ(histogram.GetAverageValue() + histogram.GetDensity(1) + histogram.GetDistribution(2) +
                  histogram.GetStandartDeviation(),
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
    EXPECT_EQ(histogram.GetMinValue(), kGreatest);
    EXPECT_EQ(histogram.GetMaxValue(), -kGreatest);
    histogram.AddValue(4.0, 1.0);
    histogram.AddValue(kNan, 1.0);
    EXPECT_EQ(histogram.GetMinValue(), 4.0);
    EXPECT_EQ(histogram.GetMaxValue(), 4.0);
    EXPECT_EQ(histogram.GetWeight(1), 1.0);
    EXPECT_TRUE(std::isnan(histogram.GetAverageValue(1)));
    histogram.ClearValues();
    EXPECT_EQ(histogram.GetAverageValue(1), 0.0);
    EXPECT_EQ(histogram.GetIntervalsCount(), 4U);
    histogram.SetIntervals(2.0, 10.0, 1);
    histogram.AddValue(2.0, 1.0);
    EXPECT_EQ(histogram.GetWeight(1), 1.0);
    // What was moved from still counts: moving copies.
    EXPECT_FALSE(std::is_nothrow_move_constructible_v<MHistogram>);
    MHistogram other = histogram;
    histogram.AddValue(2.0, 1.0);
    other = histogram;
    EXPECT_EQ(other.GetWeight(1), 2.0);
    histogram.SetIntervals(2.0, 10.0, 0);
    EXPECT_EQ(histogram.GetIntervalsCount(), 1U);
}

} // namespace
