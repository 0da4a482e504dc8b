#include "picture.h"

#include "support/svg.h"
#include "support/text.h"

#include <algorithm>
#include <cmath>

namespace histogram
{

using example::Fixed;
using example::ShortNumber;
using example::SvgFile;

namespace
{

// The sheet, in SVG units.
constexpr double kLeft = 70.0;
constexpr double kTop = 84.0;
constexpr double kWidth = 760.0;
constexpr double kHeight = 340.0;
constexpr double kRight = 70.0;
constexpr double kBottom = 64.0;

// The next 1, 2, 2.5 or 5 times a power of ten.
double RoundUp(double value)
{
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double digit : {1.0, 2.0, 2.5, 5.0}) {
        if (value <= digit * power)
            return digit * power;
    }
    return 10.0 * power;
}

class Picture
{
public:
    Picture(const Options& options, const Heights& heights)
        : _file(options.picture, kLeft + kWidth + kRight, kTop + kHeight + kBottom),
          _out(_file.Out()),
          _options(options),
          _heights(heights),
          _low(heights.intervals.front().low),
          _high(heights.intervals.back().high)
    {
        double greatest = 1e-4;
        for (const Interval& interval : heights.intervals)
            greatest = std::max(greatest, interval.share);
        _greatest = std::min(1.0, 4.0 * RoundUp(1.05 * greatest / 4.0));
    }

    void Write()
    {
        WriteTitle();
        WriteGrid();
        WriteBars();
        WriteBelow();
        WriteMean();
        WriteMode();
        WriteAxis();
        _file.Close();
    }

private:
    [[nodiscard]] double X(double height) const
    {
        return kLeft + kWidth * (height - _low) / (_high - _low);
    }

    // On the scale of the bars, on the left.
    [[nodiscard]] double Y(double share) const
    {
        return kTop + kHeight * (1.0 - share / _greatest);
    }

    // On the scale of what lies below, on the right.
    [[nodiscard]] static double YBelow(double share)
    {
        return kTop + kHeight * (1.0 - share);
    }

    [[nodiscard]] std::string WithUnit(double height, int digits) const
    {
        return Fixed(height, digits) + (_options.unit.empty() ? "" : " " + _options.unit);
    }

    void WriteTitle()
    {
        const std::string name = _options.surface.substr(_options.surface.rfind('/') + 1);
        _file.Text(kLeft, 34.0, "Heights of " + name, "font-size=\"19\" font-weight=\"bold\"");
        _file.Text(kLeft, 56.0,
                   Fixed(_heights.counts.GetTotalWeight(), 0) + " heights in intervals of " +
                       ShortNumber(_heights.step) +
                       (_options.unit.empty() ? "" : " " + _options.unit),
                   "fill=\"#666\"");
    }

    // Five lines; their labels on the left for the bars, on the right for the curve.
    void WriteGrid()
    {
        for (int i = 0; i <= 4; ++i) {
            const double y = YBelow(i / 4.0);
            _out << "<path stroke=\"#e3e6ea\" d=\"M" << kLeft << ' ' << y << "h" << kWidth
                 << "\"/>\n";
            _file.Text(kLeft - 8.0, y + 5.0, ShortNumber(100.0 * _greatest * i / 4.0) + " %",
                       "text-anchor=\"end\" font-size=\"12\" fill=\"#5b7a9d\"");
            _file.Text(kLeft + kWidth + 8.0, y + 5.0, Fixed(25.0 * i, 0) + " %",
                       "font-size=\"12\" fill=\"#b4552d\"");
        }
    }

    void WriteBars()
    {
        _out << "<g fill=\"#8fb0d3\" stroke=\"#fff\" stroke-width=\"0.8\">\n";
        for (const Interval& interval : _heights.intervals) {
            if (interval.share > 0.0)
                _out << "<path d=\"M" << Fixed(X(interval.low), 1) << ' ' << kTop + kHeight << 'V'
                     << Fixed(Y(interval.share), 1) << 'H' << Fixed(X(interval.high), 1) << 'V'
                     << kTop + kHeight << "z\"/>\n";
        }
        _out << "</g>\n";
    }

    void WriteBelow()
    {
        _out << "<path fill=\"none\" stroke=\"#b4552d\" stroke-width=\"2.2\" d=\"M"
             << Fixed(X(_low), 1) << ' ' << YBelow(0.0);
        for (const Interval& interval : _heights.intervals)
            _out << 'L' << Fixed(X(interval.high), 1) << ' '
                 << Fixed(YBelow(interval.shareBelow), 1);
        _out << "\"/>\n";
    }

    void WriteLabel(double x, double y, const std::string& text, const char* colour)
    {
        const std::string style = std::string("font-size=\"13\" paint-order=\"stroke\" ") +
                                  "stroke=\"#fff\" stroke-width=\"4\" fill=\"" + colour + '"' +
                                  (x > kLeft + kWidth / 2.0 ? " text-anchor=\"end\"" : "");
        _file.Text(x + (x > kLeft + kWidth / 2.0 ? -7.0 : 7.0), y, text, style.c_str());
    }

    // The mean, and a bar for the spread.
    void WriteMean()
    {
        const double mean = _heights.counts.GetAverageValue();
        const double spread = _heights.counts.GetStandartDeviation();
        const double y = kTop - 10.0;
        _out << "<path fill=\"none\" stroke=\"#222\" stroke-width=\"1.4\" d=\"M"
             << Fixed(X(mean), 1) << ' ' << kTop + kHeight << 'V' << kTop
             << "\"/>\n<path fill=\"none\" stroke=\"#222\" "
             << "stroke-width=\"1.4\" d=\"M" << Fixed(X(mean - spread), 1) << ' ' << y - 5.0
             << "v10m0 -5H" << Fixed(X(mean + spread), 1) << "m0 -5v10\"/>\n";
        WriteLabel(X(mean), y + 20.0,
                   "mean " + WithUnit(mean, 1) + ", spread " + WithUnit(spread, 1), "#222");
    }

    // The parabola as far as it lies above half its top.
    void WriteMode()
    {
        if (!_heights.peak)
            return;
        double x = 0.0;
        double top = 0.0;
        _heights.peak->GetTopOfQuadratic(x, top);
        _out << "<path fill=\"none\" stroke=\"#14507f\" stroke-width=\"2.2\" d=\"";
        bool isFirst = true;
        for (int i = -35; i <= 35; ++i) {
            const double place = x + i / 10.0;
            const double share = (*_heights.peak)(place);
            if (share < top / 2.0)
                continue;
            _out << (isFirst ? 'M' : 'L')
                 << Fixed(X(_heights.mode + (place - x) * _heights.step), 1) << ' '
                 << Fixed(Y(share), 1);
            isFirst = false;
        }
        _out << "\"/>\n<circle cx=\"" << Fixed(X(_heights.mode), 1) << "\" cy=\""
             << Fixed(Y(top), 1) << "\" r=\"4\" fill=\"#14507f\"/>\n";
        WriteLabel(X(_heights.mode), Y(top) - 8.0, "most frequent " + WithUnit(_heights.mode, 1),
                   "#14507f");
    }

    // About eight round heights below the bars.
    void WriteAxis()
    {
        const auto every = std::max<std::size_t>(1, (_heights.intervals.size() + 7) / 8);
        _out << "<path stroke=\"#222\" d=\"M" << kLeft << ' ' << kTop + kHeight << 'h' << kWidth
             << "\"/>\n";
        for (std::size_t i = 0; i < _heights.intervals.size(); i += every) {
            const double height = _heights.intervals[i].low;
            _out << "<path stroke=\"#222\" d=\"M" << Fixed(X(height), 1) << ' ' << kTop + kHeight
                 << "v6\"/>\n";
            _file.Text(X(height), kTop + kHeight + 22.0, ShortNumber(height),
                       "text-anchor=\"middle\" font-size=\"12\"");
        }
        _file.Text(kLeft, kTop + kHeight + 48.0, "bars: share of each interval",
                   "font-size=\"12\" fill=\"#5b7a9d\"");
        _file.Text(kLeft + kWidth, kTop + kHeight + 48.0, "curve: share of what lies below",
                   "text-anchor=\"end\" font-size=\"12\" fill=\"#b4552d\"");
        if (!_options.unit.empty())
            _file.Text(kLeft + kWidth / 2.0, kTop + kHeight + 48.0, "height, " + _options.unit,
                       "text-anchor=\"middle\" font-size=\"12\"");
    }

    SvgFile _file;
    std::ostream& _out;
    const Options& _options;
    const Heights& _heights;
    double _low;
    double _high;
    double _greatest = 0.0;
};

} // namespace

void WritePicture(const Options& options, const Heights& heights)
{
    Picture(options, heights).Write();
}

} // namespace histogram
