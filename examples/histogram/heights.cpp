#include "heights.h"

#include "support/failure.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace histogram
{

namespace
{

constexpr double kUsualCount = 40.0;
constexpr double kMostIntervals = 1000.0;

// Intervals on either side of the most frequent one that the parabola goes through.
constexpr std::size_t kPeakReach = 3;

// 1, 2 or 5 times a power of ten; 1 for a level surface.
double RoundStep(double extent)
{
    const double wanted = extent > 0.0 ? extent / kUsualCount : 1.0;
    const double power = std::pow(10.0, std::floor(std::log10(wanted)));
    const double digit = wanted / power;
    return power * (digit < 1.5 ? 1.0 : digit < 3.5 ? 2.0 : digit < 7.5 ? 5.0 : 10.0);
}

// [slots]
// Samples of interval i are counted in slot i + 1, those above the last boundary in slot 0.
unsigned int SlotOf(const MHistogram& counts, std::size_t interval)
{
    const std::size_t slot = interval + 1;
    return static_cast<unsigned int>(slot == counts.GetIntervalsCount() ? 0 : slot);
}
// [slots]

void ListIntervals(Heights& heights)
{
    const MHistogram& counts = heights.counts;
    double below = 0.0;
    for (unsigned int i = 0; i < counts.GetIntervalsCount(); ++i) {
        const unsigned int slot = SlotOf(counts, i);
        Interval interval{};
        counts.GetIntervalBounds(i, interval.low, interval.high);
        // The outer ones are open; no height lies farther out than a step.
        if (i == 0)
            interval.low = interval.high - heights.step;
        if (i + 1 == counts.GetIntervalsCount())
            interval.high = interval.low + heights.step;
        interval.share = counts.GetDensity(slot);
        below += interval.share;
        interval.shareBelow = below;
        interval.mean = counts.GetAverageValue(slot);
        heights.intervals.push_back(interval);
    }
}

// [peak]
// A parabola through the shares around the greatest one. Heights are taken from its interval, in
// steps, so that the sums of their fourth powers keep their digits.
void FindMode(Heights& heights)
{
    const auto& intervals = heights.intervals;
    const auto greatest =
        std::max_element(intervals.begin(), intervals.end(),
                         [](const Interval& a, const Interval& b) { return a.share < b.share; });
    const auto middle = static_cast<std::size_t>(greatest - intervals.begin());
    const std::size_t first = middle - std::min(middle, kPeakReach);
    const std::size_t last = std::min(middle + kPeakReach, intervals.size() - 1);
    const double origin = (greatest->low + greatest->high) / 2.0;
    std::map<double, double> points;
    for (std::size_t i = first; i <= last; ++i) {
        const double centre = (intervals[i].low + intervals[i].high) / 2.0;
        points[(centre - origin) / heights.step] = intervals[i].share;
    }
    MM1dQuadratic parabola;
    double x = 0.0;
    double top = 0.0;
    if (!parabola.FitThroughMap(points) || !parabola.GetTopOfQuadratic(x, top) ||
        top < parabola(x + 1.0) || std::abs(x) > kPeakReach)
        return;
    heights.peak = parabola;
    heights.mode = origin + x * heights.step;
}
// [peak]

} // namespace

Heights CountHeights(const example::Surface& surface, const Options& options)
{
    const double low = surface.box.minZ + surface.centre.z;
    const double high = surface.box.maxZ + surface.centre.z;
    Heights heights;
    heights.step = options.step > 0.0 ? options.step : RoundStep(high - low);
    if (!((high - low) / heights.step < kMostIntervals &&
          std::max(std::abs(low), std::abs(high)) / heights.step < 0x1p50))
        throw example::Failure("--step is too small for a surface of this height");
    // [count]
    // The boundaries are the multiples of the step from the lowest height up to the highest.
    const double first = std::floor(low / heights.step) + 1.0;
    const double last = std::max(first, std::ceil(high / heights.step) - 1.0);
    heights.counts.SetIntervals(first * heights.step, last * heights.step,
                                static_cast<unsigned int>(last - first) + 1);
    for (const MMPoint3d<double>& point : surface.points)
        heights.counts.AddValue(point.z + surface.centre.z, 1.0);
    // [count]
    ListIntervals(heights);
    FindMode(heights);
    return heights;
}

} // namespace histogram
