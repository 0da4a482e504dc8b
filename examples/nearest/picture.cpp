#include "picture.h"

#include "support/svg.h"
#include "support/text.h"

#include <algorithm>
#include <cmath>

namespace nearest
{

using example::Fixed;
using example::SvgFile;

namespace
{

constexpr double kMargin = 40.0;
constexpr double kHeading = 40.0;
constexpr double kPerMetre = 36.0;
constexpr double kGap = 60.0;
// Space around the hall for points that noise has put behind the walls.
constexpr double kRim = 0.4;
constexpr double kPanelWidth = kPerMetre * (kHallLength + 2.0 * kRim);
constexpr double kPanelHeight = kPerMetre * (kHallDepth + 2.0 * kRim);
// The closer view: so many metres across, centred on the query.
constexpr double kCloseWidth = 8.0;

constexpr const char* kInk = "#3a4654";
constexpr const char* kRed = "#c8102e";
constexpr const char* kBlue = "#1450a0";
constexpr const char* kGreen = "#1a7f37";
constexpr const char* kAmber = "#9a6700";

// A window into the hall: the lower left corner, and the scale.
struct View
{
    double top;
    double left;
    double bottom;
    double scale;

    [[nodiscard]] double X(double x) const
    {
        return kMargin + (x - left) * scale;
    }

    [[nodiscard]] double Y(double y) const
    {
        return top + kPanelHeight - (y - bottom) * scale;
    }
};

class Picture
{
public:
    Picture(const Options& options, const Cloud& scan, const std::vector<Cell>& cells,
            const Answers& answers)
        : _options(options),
          _scan(scan),
          _cells(cells),
          _answers(answers),
          _file(options.picture, 2.0 * kMargin + kPanelWidth,
                2.0 * kMargin + 2.0 * (kHeading + kPanelHeight) + kGap),
          _out(_file.Out())
    {}

    void Write()
    {
        const double top = kMargin + kHeading;
        WriteWhole({top, -kRim, -kRim, kPerMetre});
        const double scale = kPanelWidth / kCloseWidth;
        WriteClose({top + kPanelHeight + kGap + kHeading, _options.query.x - kCloseWidth / 2.0,
                    _options.query.y - kPanelHeight / scale / 2.0, scale});
        _file.Close();
    }

private:
    // Splits of the first levels are drawn thicker.
    void WriteWhole(const View& view)
    {
        OpenPanel(view, "whole", "The tree over a scan: cells of at most ten points");
        WriteTouchedCells(view);
        for (const Cell& cell : _cells) {
            if (!cell.isLeaf)
                WriteSplit(view, cell, std::max(0.5, 3.0 - 0.4 * cell.depth));
        }
        for (const Point& p : _scan)
            WriteDot(view, p, 1.6, kInk);
        for (const Point& station : kStations)
            WriteDot(view, station, 5.0, kGreen);
        WriteCircle(view, _answers.nearest.GetDistance(), kRed);
        WriteDot(view, _options.query, 4.0, kRed);
        _out << "</g>\n";
        WriteKey(view,
                 {{"cells that the search enters", kAmber}, {"stations", kGreen}, {"query", kRed}});
    }

    void WriteClose(const View& view)
    {
        OpenPanel(view, "close", "Nearest, eight nearest, all within a radius");
        WriteTouchedCells(view);
        for (const Cell& cell : _cells) {
            if (!cell.isLeaf)
                WriteSplit(view, cell, 1.0);
        }
        for (const Point& p : _scan)
            WriteDot(view, p, 3.0, kInk);
        for (const MFoundPoint& found : _answers.within)
            WriteDot(view, _scan[found.index], 4.0, kBlue);
        for (const MFoundPoint& found : _answers.eight)
            WriteDot(view, _scan[found.index], 5.0, kGreen);
        WriteCircle(view, _options.radius, kBlue);
        WriteCircle(view, _answers.nearest.GetDistance(), kRed);
        const Point& answer = _answers.nearest.GetClosestPoint();
        _out << "<line x1=\"" << Fixed(view.X(_options.query.x), 1) << "\" y1=\""
             << Fixed(view.Y(_options.query.y), 1) << "\" x2=\"" << Fixed(view.X(answer.x), 1)
             << "\" y2=\"" << Fixed(view.Y(answer.y), 1) << "\" stroke=\"" << kRed
             << "\" stroke-width=\"2\"/>\n";
        WriteDot(view, _options.query, 6.0, kRed);
        _out << "</g>\n";
        WriteKey(view,
                 {{"within the radius", kBlue}, {"eight nearest", kGreen}, {"nearest", kRed}});
    }

    void OpenPanel(const View& view, const char* name, const char* title)
    {
        _file.Text(kMargin, view.top - 14.0, title, "font-size=\"19\" font-weight=\"bold\"");
        _out << "<clipPath id=\"" << name << "\"><rect x=\"" << kMargin << "\" y=\"" << view.top
             << "\" width=\"" << kPanelWidth << "\" height=\"" << kPanelHeight
             << "\"/></clipPath>\n<g clip-path=\"url(#" << name << ")\">\n<rect x=\"" << kMargin
             << "\" y=\"" << view.top << "\" width=\"" << kPanelWidth << "\" height=\""
             << kPanelHeight << "\" fill=\"#f7f8fa\"/>\n";
    }

    // The cells that hold a point of the circle of the answer, or of its inside: the search cannot
    // do without looking into them.
    void WriteTouchedCells(const View& view)
    {
        for (const Cell& cell : _cells) {
            const double x =
                std::clamp(_options.query.x, cell.low[0], cell.high[0]) - _options.query.x;
            const double y =
                std::clamp(_options.query.y, cell.low[1], cell.high[1]) - _options.query.y;
            if (!cell.isLeaf || std::hypot(x, y) > _answers.nearest.GetDistance())
                continue;
            _out << "<rect x=\"" << Fixed(view.X(cell.low[0]), 1) << "\" y=\""
                 << Fixed(view.Y(cell.high[1]), 1) << "\" width=\""
                 << Fixed((cell.high[0] - cell.low[0]) * view.scale, 1) << "\" height=\""
                 << Fixed((cell.high[1] - cell.low[1]) * view.scale, 1)
                 << "\" fill=\"#fbe3b0\"/>\n";
        }
    }

    void WriteSplit(const View& view, const Cell& cell, double width)
    {
        const bool isUpright = cell.axis == 0;
        const double x1 = view.X(isUpright ? cell.split : cell.low[0]);
        const double x2 = view.X(isUpright ? cell.split : cell.high[0]);
        const double y1 = view.Y(isUpright ? cell.low[1] : cell.split);
        const double y2 = view.Y(isUpright ? cell.high[1] : cell.split);
        _out << "<line x1=\"" << Fixed(x1, 1) << "\" y1=\"" << Fixed(y1, 1) << "\" x2=\""
             << Fixed(x2, 1) << "\" y2=\"" << Fixed(y2, 1)
             << "\" stroke=\"#8fa3b8\" stroke-width=\"" << Fixed(width, 1) << "\"/>\n";
    }

    void WriteDot(const View& view, const Point& p, double radius, const char* colour)
    {
        _out << "<circle cx=\"" << Fixed(view.X(p.x), 1) << "\" cy=\"" << Fixed(view.Y(p.y), 1)
             << "\" r=\"" << radius << "\" fill=\"" << colour << "\"/>\n";
    }

    void WriteCircle(const View& view, double radius, const char* colour)
    {
        _out << "<circle cx=\"" << Fixed(view.X(_options.query.x), 1) << "\" cy=\""
             << Fixed(view.Y(_options.query.y), 1) << "\" r=\"" << Fixed(radius * view.scale, 1)
             << "\" fill=\"none\" stroke=\"" << colour << "\" stroke-width=\"2\"/>\n";
    }

    void WriteKey(const View& view, const std::vector<std::pair<const char*, const char*>>& entries)
    {
        double right = kMargin + kPanelWidth;
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            _file.Text(right, view.top - 14.0, entry->first,
                       ("text-anchor=\"end\" fill=\"" + std::string(entry->second) + '"').c_str());
            right -= 8.0 * static_cast<double>(std::string(entry->first).size()) + 12.0;
        }
    }

    const Options& _options;
    const Cloud& _scan;
    const std::vector<Cell>& _cells;
    const Answers& _answers;
    SvgFile _file;
    std::ostream& _out;
};

} // namespace

void WritePicture(const Options& options, const Cloud& scan, const std::vector<Cell>& cells,
                  const Answers& answers)
{
    Picture(options, scan, cells, answers).Write();
}

} // namespace nearest
