// Counts the heights of a surface in intervals, finds the most frequent height and draws them.

#include "heights.h"
#include "options.h"
#include "picture.h"
#include "support/program.h"
#include "support/progress.h"
#include "support/text.h"

#include <iomanip>
#include <iostream>

namespace histogram
{

using example::Fixed;
using example::ShortNumber;

namespace
{

void WriteReport(std::ostream& out, const Options& options, const Heights& heights)
{
    const MHistogram& counts = heights.counts;
    const std::string unit = options.unit.empty() ? "" : " " + options.unit;
    out << "Heights        " << Fixed(counts.GetTotalWeight(), 0) << ", from "
        << Fixed(counts.GetMinValue(), 3) << " to " << Fixed(counts.GetMaxValue(), 3) << unit
        << "\nMean           " << Fixed(counts.GetAverageValue(), 3) << unit << "\nSpread         "
        << Fixed(counts.GetStandartDeviation(), 3) << unit << ", of the means of the intervals\n";
    if (heights.peak)
        out << "Most frequent  " << Fixed(heights.mode, 3) << unit << '\n';
    out << "\n        above       up to     share     below        mean\n";
    for (const Interval& interval : heights.intervals) {
        out << std::setw(13) << ShortNumber(interval.low) << std::setw(12)
            << ShortNumber(interval.high) << std::setw(8) << Fixed(100.0 * interval.share, 2)
            << " %" << std::setw(8) << Fixed(100.0 * interval.shareBelow, 2) << " %"
            << std::setw(12) << (interval.share > 0.0 ? Fixed(interval.mean, 3) : "-") << '\n';
    }
}

void Run(const Options& options)
{
    example::Progress progress;
    progress.Begin("read");
    const example::Surface surface = example::ReadSurface(options.surface, progress);
    progress.Begin("count");
    const Heights heights = CountHeights(surface, options);
    if (!options.picture.empty())
        WritePicture(options, heights);
    progress.Wipe();
    WriteReport(std::cout, options, heights);
}

} // namespace

} // namespace histogram

int main(int argc, char** argv)
{
    return example::RunProgram("histogram", histogram::kHelp, histogram::ReadOptions,
                               histogram::Run, argc, argv);
}
