#pragma once

#include <norvek/foundation/export.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/// Weighted samples gathered into intervals: the total weight and the weighted mean of each.
///
/// n ascending boundaries make n + 1 intervals. Interval i reaches from boundary i - 1, excluded,
/// to boundary i, included; the first is open downwards and the last upwards.
///
/// **Samples go one slot up.** A sample of interval i is counted in slot i + 1, and one of the last
/// interval in slot 0; all readers take slots. Callers depend on it. With the boundaries 0, 1, 2:
///
/// | sample | interval, as `GetIntervalBounds` tells | slot that counts it |
/// |---|---|---|
/// | -3 | 0: up to 0 | 1 |
/// | 0.5, 1 | 1: 0 to 1 | 2 |
/// | 1.5 | 2: 1 to 2 | 3 |
/// | 5 | 3: from 2 | 0 |
///
/// The memory is that of the intervals, however many samples there are; mean and spread come from
/// the means of the slots. A histogram without boundaries has one interval, the whole line. Readers
/// of an empty histogram give 0. A NaN sample counts as one below the first boundary, and the mean
/// of its slot is NaN from there on.
class NORVEK_MATH_API MHistogram
{
public:
    /// One interval, the whole line.
    MHistogram();

    /// Intervals and samples. Moving copies as well: there is always an interval.
    MHistogram(const MHistogram& other) = default;

    /// Intervals and samples of `other`.
    MHistogram& operator=(MHistogram other) noexcept;

    /// Frees the intervals.
    ~MHistogram() = default;

    /// Takes new boundaries, which the caller has in ascending order, and clears. Without memory
    /// `std::bad_alloc` is thrown and nothing has changed.
    void SetIntervals(const std::vector<double>& boundaries);

    /// Takes `count` boundaries with equal steps from `lo` to `hi` and clears; with a count of 1
    /// the boundary is `lo`, with 0 there is none.
    void SetIntervals(double lo, double hi, unsigned int count);

    /// Counts a sample. A weight of 0 or less changes nothing, not even the limits; NaN is no such
    /// weight. Constant time where the boundaries are about evenly spaced, logarithmic in their
    /// number at worst.
    void AddValue(double value, double weight);

    /// Forgets the samples and keeps the intervals.
    void ClearValues();

    /// The number of intervals, one more than there are boundaries.
    [[nodiscard]] std::size_t GetIntervalsCount() const
    {
        return _slots.size();
    }

    /// The limits of interval `i`; the greatest magnitude of a double where it is open. The index
    /// is below `GetIntervalsCount`, asserted only, here and below.
    void GetIntervalBounds(unsigned int i, double& lo, double& hi) const;

    /// The total weight in slot `i`.
    [[nodiscard]] double GetWeight(unsigned int i) const;

    /// The weighted mean of the samples in slot `i`; 0 without any.
    [[nodiscard]] double GetAverageValue(unsigned int i) const;

    /// The share of slot `i` in the total weight.
    [[nodiscard]] double GetDensity(unsigned int i) const;

    /// The share of the slots 0 to `i`. Since slot 0 holds what lies above the last boundary, this
    /// is not the share of the samples below a limit.
    [[nodiscard]] double GetDistribution(unsigned int i) const;

    /// The weighted mean of all samples.
    [[nodiscard]] double GetAverageValue() const;

    /// The standard deviation of the slots' means: the spread within the slots does not count.
    [[nodiscard]] double GetStandartDeviation() const;

    /// The sum of all weights.
    [[nodiscard]] double GetTotalWeight() const
    {
        return _totalWeight;
    }

    /// The smallest sample; the greatest double when there is none.
    [[nodiscard]] double GetMinValue() const
    {
        return _minValue;
    }

    /// The largest sample; the lowest double when there is none.
    [[nodiscard]] double GetMaxValue() const
    {
        return _maxValue;
    }

private:
    // Weight and mean lie side by side: a sample touches both.
    struct Slot
    {
        double weight = 0.0;
        double average = 0.0;
    };

    // The cell of a number between the outer boundaries.
    [[nodiscard]] std::size_t _CellOf(double value) const
    {
        return static_cast<std::size_t>((value - _boundaries.front()) * _cellsPerUnit);
    }

    void _Swap(MHistogram& other) noexcept;
    [[nodiscard]] std::size_t _CountBelow(double value) const;
    void _MakeCells();

    std::vector<double> _boundaries;
    std::vector<Slot> _slots;
    // Cell c of the even cells over the boundaries holds boundaries start[c] to start[c + 1] - 1.
    // Empty where there are no such cells.
    std::vector<std::uint32_t> _cellStarts;
    double _cellsPerUnit = 0.0;
    double _totalWeight = 0.0;
    double _minValue = std::numeric_limits<double>::max();
    double _maxValue = std::numeric_limits<double>::lowest();
};
