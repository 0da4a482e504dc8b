#include "picture.h"

#include "support/svg.h"
#include "support/text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace registration
{

using example::Fixed;
using example::SvgFile;

namespace
{

using Point = MMPoint3d<double>;

// The sheet, in SVG units: two columns; profiles, residuals, maps.
constexpr double kMargin = 40.0;
constexpr double kPanelWidth = 480.0;
constexpr double kProfileHeight = 190.0;
constexpr double kResidualHeight = 150.0;
constexpr double kMapHeight = 500.0;
constexpr double kHeading = 44.0;
constexpr double kGap = 46.0;
constexpr double kResidualTop = kMargin + kHeading + kProfileHeight + kGap + kHeading;
constexpr double kMapTop = kResidualTop + kResidualHeight + kGap + kHeading;

// The residuals are counted in so many intervals, up to so many times the lower quartile before the
// alignment: what lies beyond belongs to the part that the crops do not share.
constexpr std::size_t kNumBars = 48;
constexpr double kShownQuartiles = 2.0;

constexpr const char* kColours[]{"#3a4654", "#c8102e", "#1450a0", "#1a7f37", "#b46a00"};

// A rectangle of the sheet and what of the world it shows.
struct Panel
{
    double left;
    double top;
    double width;
    double height;
    double lowX;
    double highX;
    double lowY;
    double highY;

    [[nodiscard]] std::string Place(double x, double y) const
    {
        return Fixed(left + width * (x - lowX) / (highX - lowX), 1) + ' ' +
               Fixed(top + height * (highY - y) / (highY - lowY), 1);
    }
};

class Picture
{
public:
    Picture(const Options& options, const example::Surface& surface)
        : _file(options.picture, 3 * kMargin + 2 * kPanelWidth, kMapTop + kMapHeight + kMargin),
          _out(_file.Out()),
          _box(surface.box)
    {}

    void WritePair(const Pair& pair)
    {
        Cloud returned;
        pair.alignment.motion.Transform(returned, pair.moved.points);
        WriteProfile(0, "Two crops in profile, before", pair.fixed.points, pair.moved.points);
        WriteProfile(1, "after " + std::to_string(pair.alignment.numIterations) + " iterations",
                     pair.fixed.points, returned);
        const double reach = kShownQuartiles * LowerQuartileOf(pair.before);
        const auto before = CountBars(pair.before, reach);
        const auto after = CountBars(pair.after, reach);
        const double most = std::max(*std::max_element(before.begin(), before.end()),
                                     *std::max_element(after.begin(), after.end()));
        WriteResiduals(0,
                       "Distances to the fixed crop: lower quartile " +
                           Fixed(LowerQuartileOf(pair.before), 0),
                       before, reach, most);
        WriteResiduals(1, "after: lower quartile " + Fixed(LowerQuartileOf(pair.after), 0), after,
                       reach, most);
    }

    void WriteMap(const Map& map)
    {
        std::vector<Cloud> before;
        for (const Crop& crop : map.crops)
            before.push_back(crop.points);
        WriteFromAbove(0, "Five crops from above, before", before);
        WriteFromAbove(1, "joined into one map", map.joined);
    }

    void Close()
    {
        _file.Close();
    }

private:
    static double Left(int column)
    {
        return kMargin + column * (kPanelWidth + kMargin);
    }

    void WriteFrame(const Panel& panel, const std::string& title)
    {
        _file.Text(panel.left, panel.top - 16.0, title, "font-size=\"18\" font-weight=\"bold\"");
        _out << "<rect x=\"" << panel.left << "\" y=\"" << panel.top << "\" width=\"" << panel.width
             << "\" height=\"" << panel.height << "\" fill=\"#f7f8fa\" stroke=\"#c3cad2\"/>\n";
    }

    // Dots are strokes of no length with round ends.
    void WriteDots(const Panel& panel, const Cloud& dots, const char* colour, double size)
    {
        _out << "<path fill=\"none\" stroke-linecap=\"round\" stroke=\"" << colour
             << "\" stroke-width=\"" << size << "\" d=\"";
        for (const Point& dot : dots)
            _out << 'M' << panel.Place(dot.x, dot.y) << "h0";
        _out << "\"/>\n";
    }

    // What lies within a row of points of the middle, seen from the front, heights exaggerated.
    void WriteProfile(int column, const std::string& title, const Cloud& fixed, const Cloud& moved)
    {
        const double middle = (_box.minY + _box.maxY) / 2.0;
        const double reach = _box.GetDeltaY() / 160.0;
        const double low = _box.minX + 0.25 * _box.GetDeltaX();
        const double high = _box.minX + 0.75 * _box.GetDeltaX();
        const auto slice = [&](const Cloud& cloud) {
            Cloud dots;
            for (const Point& p : cloud) {
                if (std::abs(p.y - middle) <= reach && low <= p.x && p.x <= high)
                    dots.emplace_back(p.x, p.z, 0.0);
            }
            return dots;
        };
        const Cloud ground = slice(fixed);
        const Cloud lifted = slice(moved);
        double lowest = _box.maxZ;
        double highest = _box.minZ;
        for (const Cloud* dots : {&ground, &lifted}) {
            for (const Point& dot : *dots) {
                lowest = std::min(lowest, dot.y);
                highest = std::max(highest, dot.y);
            }
        }
        const double room = 0.08 * (highest - lowest) + 1e-9;
        const Panel panel{Left(column), kMargin + kHeading, kPanelWidth,   kProfileHeight, low,
                          high,         lowest - room,      highest + room};
        WriteFrame(panel, title);
        WriteDots(panel, ground, kColours[2], 4.2);
        WriteDots(panel, lifted, kColours[1], 3.4);
        _file.Text(panel.left + panel.width, panel.top - 16.0, "fixed",
                   "text-anchor=\"end\" fill=\"#1450a0\"");
        _file.Text(panel.left + panel.width - 44.0, panel.top - 16.0, "moved",
                   "text-anchor=\"end\" fill=\"#c8102e\"");
    }

    static double LowerQuartileOf(std::vector<double> values)
    {
        const auto quarter = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 4);
        std::nth_element(values.begin(), quarter, values.end());
        return *quarter;
    }

    // The share of the residuals in each interval; what lies beyond the last one is left out.
    static std::vector<double> CountBars(const std::vector<double>& residuals, double reach)
    {
        std::vector<double> bars(kNumBars, 0.0);
        for (const double residual : residuals) {
            const double place = residual / reach * static_cast<double>(kNumBars);
            if (place < static_cast<double>(kNumBars))
                bars[static_cast<std::size_t>(place)] +=
                    1.0 / static_cast<double>(residuals.size());
        }
        return bars;
    }

    void WriteResiduals(int column, const std::string& title, const std::vector<double>& bars,
                        double reach, double most)
    {
        const Panel panel{Left(column), kResidualTop, kPanelWidth, kResidualHeight,
                          0.0,          reach,        0.0,         1.08 * most};
        WriteFrame(panel, title);
        const double width = panel.width / static_cast<double>(bars.size());
        for (std::size_t i = 0; i < bars.size(); ++i) {
            const double height = panel.height * bars[i] / panel.highY;
            _out << "<rect x=\"" << Fixed(panel.left + width * static_cast<double>(i), 1)
                 << "\" y=\"" << Fixed(panel.top + panel.height - height, 1) << "\" width=\""
                 << Fixed(width - 1.0, 1) << "\" height=\"" << Fixed(height, 1) << "\" fill=\""
                 << kColours[1] << "\"/>\n";
        }
        const double below = panel.top + panel.height + 18.0;
        _file.Text(panel.left, below, "0");
        _file.Text(panel.left + panel.width, below, example::ShortNumber(std::round(reach)),
                   "text-anchor=\"end\"");
    }

    void WriteFromAbove(int column, const std::string& title, const std::vector<Cloud>& clouds)
    {
        const double scale =
            std::max(_box.GetDeltaX() / kPanelWidth, _box.GetDeltaY() / kMapHeight);
        const double width = 1.08 * scale * kPanelWidth;
        const double depth = 1.08 * scale * kMapHeight;
        const double x = (_box.minX + _box.maxX) / 2.0;
        const double y = (_box.minY + _box.maxY) / 2.0;
        const Panel panel{Left(column),    kMapTop,         kPanelWidth,     kMapHeight,
                          x - width / 2.0, x + width / 2.0, y - depth / 2.0, y + depth / 2.0};
        WriteFrame(panel, title);
        for (std::size_t i = 0; i < clouds.size(); ++i) {
            // About every fifth point, which leaves room between them; scrambled, as the points
            // come in rows.
            Cloud dots;
            for (std::size_t k = 0; k < clouds[i].size(); ++k) {
                if (static_cast<std::uint32_t>(k * k + k / 3) * 2654435761U < 0x33333333U)
                    dots.push_back(clouds[i][k]);
            }
            WriteDots(panel, dots, kColours[i % std::size(kColours)], 2.2);
        }
    }

    SvgFile _file;
    std::ostream& _out;
    const M3DBoundingBox<double>& _box;
};

} // namespace

void WritePicture(const Options& options, const example::Surface& surface, const Pair& pair,
                  const Map& map)
{
    Picture picture(options, surface);
    picture.WritePair(pair);
    picture.WriteMap(map);
    picture.Close();
}

} // namespace registration
