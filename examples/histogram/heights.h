#pragma once

#include "options.h"
#include "support/surface.h"

#include <norvek/foundation/histogram.h>
#include <norvek/foundation/quadratic.h>

#include <optional>
#include <vector>

namespace histogram
{

/// One interval of heights.
struct Interval
{
    double low;
    double high;
    /// The share of the heights in it, and of those in it or below.
    double share;
    double shareBelow;
    /// The mean of the heights in it.
    double mean;
};

/// The heights of a surface, counted.
struct Heights
{
    MHistogram counts;
    double step;
    /// The intervals from the lowest height to the highest.
    std::vector<Interval> intervals;
    /// The parabola through the shares around the most frequent interval, where it has a top.
    std::optional<MM1dQuadratic> peak;
    /// The height at that top.
    double mode = 0.0;
};

/// Counts the heights. Throws `example::Failure` when there would be too many intervals.
Heights CountHeights(const example::Surface& surface, const Options& options);

} // namespace histogram
