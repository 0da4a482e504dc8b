#include "picture.h"

#include "support/svg.h"
#include "support/text.h"

#include <norvek/foundation/point2d.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace section
{

using example::Colour;
using example::Fixed;
using example::Hex;
using example::ShortNumber;
using example::SvgFile;

namespace
{

// The sheet, in SVG units: the map on the left, the legend on the right.
constexpr double kMapSize = 860.0;
constexpr double kMargin = 30.0;
constexpr double kLegendWidth = 230.0;
// Path coordinates are whole tenths of a unit, which keeps the file small.
constexpr double kTenths = 10.0;

using Point = MMPoint3d<double>;

// What is seen from where: the axes of the picture in reduced coordinates and its place on the
// sheet.
class View
{
public:
    View(const Surface& surface, const Section& section)
        : _right(Axis(section, 0)),
          _up(Axis(section, 1)),
          _towards(Axis(section, 2))
    {
        for (const Point& point : surface.points)
            _box.AddPoint(Seen(point));
        _scale = kMapSize / std::max({_box.GetDeltaX(), _box.GetDeltaY(), 1e-300});
    }

    // Right, up and towards the viewer, in the units of the surface.
    [[nodiscard]] Point Seen(const Point& point) const
    {
        return {_right.Dot(point), _up.Dot(point), _towards.Dot(point)};
    }

    // Tenths of a unit on the sheet, x to the right, y down.
    [[nodiscard]] MMPoint2d<std::int32_t> OnSheet(const Point& point) const
    {
        const Point seen = Seen(point);
        return MMPoint2d<std::int32_t>(
            MMPoint2d<double>(std::round((kMargin + (seen.x - _box.minX) * _scale) * kTenths),
                              std::round((kMargin + (_box.maxY - seen.y) * _scale) * kTenths)));
    }

    [[nodiscard]] const M3DBoundingBox<double>& Box() const
    {
        return _box;
    }

    [[nodiscard]] double Scale() const
    {
        return _scale;
    }

    [[nodiscard]] double Width() const
    {
        return _box.GetDeltaX() * _scale;
    }

    [[nodiscard]] double Height() const
    {
        return _box.GetDeltaY() * _scale;
    }

private:
    static Point Axis(const Section& section, unsigned short column)
    {
        Point axis;
        section.frame.GetColumn(axis, column);
        axis.Normalise();
        return axis;
    }

    Point _right;
    Point _up;
    Point _towards;
    M3DBoundingBox<double> _box;
    double _scale = 1.0;
};

// The tint of a height between 0 and 1: lowland green over ochre and brown to light rock.
std::array<double, 3> Tint(double height)
{
    constexpr std::array<std::array<double, 3>, 5> stops{
        {{126, 158, 122}, {178, 186, 138}, {214, 192, 146}, {186, 150, 118}, {240, 236, 230}}};
    const double place = std::clamp(height, 0.0, 1.0) * (stops.size() - 1);
    const std::size_t index = std::min(static_cast<std::size_t>(place), stops.size() - 2);
    const double share = place - static_cast<double>(index);
    std::array<double, 3> tint{};
    for (std::size_t i = 0; i < 3; ++i)
        tint[i] = stops[index][i] + share * (stops[index + 1][i] - stops[index][i]);
    return tint;
}

// In steps of six, so that many triangles share a colour.
Colour Shaded(const std::array<double, 3>& tint, double light)
{
    Colour colour{};
    for (std::size_t i = 0; i < 3; ++i)
        colour[i] = static_cast<int>(std::clamp(tint[i] * light, 0.0, 255.0) / 6.0) * 6;
    return colour;
}

std::string Pair(std::int32_t x, std::int32_t y)
{
    return std::to_string(x) + (y < 0 ? "" : " ") + std::to_string(y);
}

class Picture
{
public:
    Picture(const std::string& path, const Surface& surface, const View& view)
        : _file(path, kMargin + view.Width() + kMargin + kLegendWidth,
                std::max(view.Height(), 470.0) + 2 * kMargin),
          _out(_file.Out()),
          _surface(surface),
          _view(view)
    {}

    void Write(const Options& options, const std::optional<PlaneFit>& fit,
               const std::vector<Section>& sections)
    {
        _out << "<g transform=\"scale(0.1)\" stroke-linejoin=\"round\">\n";
        WriteSurface();
        for (const SectionKind kind :
             {SectionKind::Level, SectionKind::IndexLevel, SectionKind::Plane, SectionKind::Fit})
            WriteSections(sections, kind);
        _out << "</g>\n";
        WriteLegend(options, fit, sections);
        _file.Close();
    }

private:
    [[nodiscard]] double LegendPlace() const
    {
        return kMargin + _view.Width() + kMargin;
    }

    struct Face
    {
        Colour colour;
        double depth;
        const Surface::Triangle* triangle;
    };

    // Faces turned away are not seen. A height grid looked at from above hides nothing, so that its
    // faces may be sorted by colour; those of a mesh are painted from back to front.
    void WriteSurface()
    {
        const Point sun = Point(-0.55, 0.55, 0.75).Normalised();
        std::vector<Face> faces;
        bool isSteep = false;
        for (const Surface::Triangle& triangle : _surface.triangles) {
            const Point a = _view.Seen(_surface.points[triangle[0]]);
            const Point b = _view.Seen(_surface.points[triangle[1]]);
            const Point c = _view.Seen(_surface.points[triangle[2]]);
            const Point normal = (b - a).Cross(c - a).Normalised();
            isSteep = isSteep || !(normal.z > 0.0);
            if (!(normal.z > 0.0))
                continue;
            const double depth = (a.z + b.z + c.z) / 3.0;
            const double height =
                (depth - _view.Box().minZ) / std::max(_view.Box().GetDeltaZ(), 1e-300);
            const double light = 0.42 + 0.8 * std::max(0.0, normal.Dot(sun));
            faces.push_back({Shaded(Tint(height), light), depth, &triangle});
        }
        const bool hidesNothing = _surface.isHeightGrid && !isSteep;
        std::stable_sort(faces.begin(), faces.end(), [&](const Face& a, const Face& b) {
            return hidesNothing ? a.colour < b.colour : a.depth < b.depth;
        });
        for (std::size_t i = 0; i < faces.size(); ++i) {
            if (i == 0 || faces[i].colour != faces[i - 1].colour) {
                const std::string colour = Hex(faces[i].colour);
                _out << (i == 0 ? "" : "\"/>\n") << "<path fill=\"" << colour << "\" stroke=\""
                     << colour << "\" stroke-width=\"6\" d=\"";
            }
            WriteFace(*faces[i].triangle);
        }
        _out << (faces.empty() ? "" : "\"/>\n");
    }

    void WriteFace(const Surface::Triangle& triangle)
    {
        const auto a = _view.OnSheet(_surface.points[triangle[0]]);
        const auto b = _view.OnSheet(_surface.points[triangle[1]]) - a;
        const auto c = _view.OnSheet(_surface.points[triangle[2]]) - a - b;
        _out << 'M' << Pair(a.x, a.y) << 'l' << Pair(b.x, b.y) << (c.x < 0 ? "" : " ")
             << Pair(c.x, c.y) << 'z';
    }

    struct Pen
    {
        const char* colour;
        int width;
        double opacity;
    };

    static Pen PenOf(SectionKind kind)
    {
        switch (kind) {
        case SectionKind::Level:
            return {"#4a3524", 6, 0.55};
        case SectionKind::IndexLevel:
            return {"#3a2716", 13, 0.8};
        case SectionKind::Plane:
            return {"#1450a0", 24, 1.0};
        case SectionKind::Fit:
            break;
        }
        return {"#c8102e", 24, 1.0};
    }

    void WriteSections(const std::vector<Section>& sections, SectionKind kind)
    {
        const Pen pen = PenOf(kind);
        for (const Section& section : sections) {
            if (section.kind != kind)
                continue;
            _out << "<path fill=\"none\" stroke=\"" << pen.colour << "\" stroke-width=\""
                 << pen.width << "\" stroke-opacity=\"" << pen.opacity << "\" d=\"";
            for (const SectionContour& contour : section.border.Contours())
                WriteContour(contour);
            _out << "\"><title>" << section.name << "</title></path>\n";
        }
    }

    // Points that fall on the same tenth are written once.
    void WriteContour(const SectionContour& contour)
    {
        MMPoint2d<std::int32_t> last;
        bool isFirst = true;
        for (const SectionPoint& point : contour) {
            const auto next = _view.OnSheet(Point(point.x, point.y, point.payload));
            if (isFirst)
                _out << 'M' << Pair(next.x, next.y);
            else if (!(next == last))
                _out << 'l' << Pair(next.x - last.x, next.y - last.y);
            isFirst = false;
            last = next;
        }
        if (contour.GetIsClosed())
            _out << 'z';
    }

    void WriteLegend(const Options& options, const std::optional<PlaneFit>& fit,
                     const std::vector<Section>& sections)
    {
        const double x = LegendPlace();
        double y = kMargin + 18.0;
        const std::string unit = options.unit.empty() ? "" : " " + options.unit;
        const std::string name = options.surface.substr(options.surface.rfind('/') + 1);
        _file.Text(x, y, "Sections of", "font-size=\"15\"");
        y += 22.0;
        _file.Text(x, y, name, "font-size=\"17\" font-weight=\"bold\"");
        y += 12.0;
        const auto has = [&](SectionKind kind) {
            return std::any_of(sections.begin(), sections.end(),
                               [&](const Section& section) { return section.kind == kind; });
        };
        const auto line = [&](SectionKind kind, const std::string& text) {
            const Pen pen = PenOf(kind);
            y += 26.0;
            _out << "<path d=\"M" << x << ' ' << y - 5 << "h34\" stroke=\"" << pen.colour
                 << "\" stroke-opacity=\"" << pen.opacity << "\" stroke-width=\""
                 << pen.width / kTenths << "\"/>\n";
            _file.Text(x + 44.0, y, text);
        };
        if (has(SectionKind::Level))
            line(SectionKind::Level, "every " + ShortNumber(options.levelStep) + unit);
        if (has(SectionKind::IndexLevel))
            line(SectionKind::IndexLevel, "every " + ShortNumber(5.0 * options.levelStep) + unit);
        if (has(SectionKind::Plane))
            line(SectionKind::Plane, "plane");
        if (fit && has(SectionKind::Fit)) {
            line(SectionKind::Fit, "fitted plane");
            y += 18.0;
            _file.Text(x + 44.0, y, "rms " + ShortNumber(std::round(fit->rms * 10.0) / 10.0) + unit,
                       "font-size=\"12\" fill=\"#666\"");
        }
        WriteRamp(x, y + 40.0, unit);
        WriteScaleBar(x, y + 330.0, unit);
    }

    // The tints from the lowest to the highest depth seen.
    void WriteRamp(double x, double y, const std::string& unit)
    {
        constexpr int steps = 40;
        constexpr double height = 220.0;
        for (int i = 0; i < steps; ++i)
            _out << "<rect x=\"" << x << "\" y=\"" << y + height * i / steps
                 << "\" width=\"22\" height=\"" << height / steps + 0.5 << "\" fill=\""
                 << Hex(Shaded(Tint(1.0 - (i + 0.5) / steps), 1.0)) << "\"/>\n";
        const double centre = _view.Seen(_surface.centre).z;
        const double low = _view.Box().minZ + centre;
        const double high = _view.Box().maxZ + centre;
        const int digits = high - low > 20.0 ? 0 : 3;
        for (int i = 0; i <= 4; ++i)
            _file.Text(x + 32.0, y + height * i / 4.0 + 5.0,
                       Fixed(high + (low - high) * i / 4.0, digits) + unit);
    }

    // A round length of about a quarter of the map.
    void WriteScaleBar(double x, double y, const std::string& unit)
    {
        const double wanted = kLegendWidth * 0.8 / _view.Scale();
        const double power = std::pow(10.0, std::floor(std::log10(wanted)));
        const double length = power * (wanted >= 5 * power ? 5 : wanted >= 2 * power ? 2 : 1);
        const double width = length * _view.Scale();
        for (int i = 0; i < 4; ++i)
            _out << "<rect x=\"" << Fixed(x + width * i / 4, 2) << "\" y=\"" << y << "\" width=\""
                 << Fixed(width / 4, 2) << "\" height=\"7\" stroke=\"#222\" fill=\""
                 << (i % 2 == 0 ? "#222" : "#fff") << "\"/>\n";
        _file.Text(x, y + 24.0, "0");
        _file.Text(x + width, y + 24.0, ShortNumber(length) + unit, "text-anchor=\"end\"");
    }

    SvgFile _file;
    std::ostream& _out;
    const Surface& _surface;
    const View& _view;
};

} // namespace

void WritePicture(const Options& options, const Surface& surface,
                  const std::optional<PlaneFit>& fit, const std::vector<Section>& sections)
{
    const View view(surface, sections.front());
    Picture(options.picture, surface, view).Write(options, fit, sections);
}

} // namespace section
