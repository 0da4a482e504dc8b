#include "picture.h"

#include "support/svg.h"
#include "support/text.h"

#include <algorithm>
#include <limits>
#include <map>

namespace bent_cut
{

using example::Colour;
using example::Fixed;
using Point = MMPoint3d<double>;

namespace
{

constexpr double kMapSize = 700.0;
constexpr double kMargin = 24.0;
constexpr double kLegend = 64.0;

// Warm inside, red where the cut passes, grey outside.
constexpr std::array<Colour, 3> kTints{{{232, 190, 120}, {196, 58, 49}, {176, 188, 196}}};
constexpr std::array<const char*, 3> kNames{"inside", "crossed", "outside"};

class Sheet
{
public:
    explicit Sheet(const M3DBoundingBox<double>& box)
        : _box(box),
          _scale(kMapSize / std::max({box.GetDeltaX(), box.GetDeltaY(), 1e-300}))
    {}

    [[nodiscard]] std::string At(const Point& p) const
    {
        return Fixed(kMargin + (p.x - _box.minX) * _scale, 1) + ' ' +
               Fixed(kMargin + (_box.maxY - p.y) * _scale, 1);
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
    M3DBoundingBox<double> _box;
    double _scale;
};

// In steps of eight, so that many triangles share a colour and a path.
std::string Shade(Side side, double light)
{
    Colour colour = kTints[static_cast<std::size_t>(side)];
    for (int& part : colour)
        part = std::clamp(static_cast<int>(part * light) / 8 * 8, 0, 255);
    return example::Hex(colour);
}

void WriteTriangles(std::ostream& out, const Sheet& sheet, const example::Surface& surface,
                    const Split& split)
{
    const Point sun = Point(-0.55, 0.55, 0.75).Normalised();
    std::map<std::string, std::string> paths;
    for (std::size_t i = 0; i < split.sides.size(); ++i) {
        const Point& a = surface.points[surface.triangles[i][0]];
        const Point& b = surface.points[surface.triangles[i][1]];
        const Point& c = surface.points[surface.triangles[i][2]];
        const Point normal = (b - a).Cross(c - a).Normalised();
        std::string& path = paths[Shade(split.sides[i], 0.35 + 0.85 * std::abs(normal.Dot(sun)))];
        for (const std::string& part :
             {std::string("M"), sheet.At(a), std::string("L"), sheet.At(b), std::string(" "),
              sheet.At(c), std::string("z")})
            path += part;
    }
    for (const auto& [colour, path] : paths)
        out << "<path fill=\"" << colour << "\" stroke=\"" << colour
            << "\" stroke-width=\"0.5\" d=\"" << path << "\"/>\n";
}

// Closed, in the zero plane, which passes through the middle of the surface.
void WriteOutline(std::ostream& out, const Sheet& sheet, MPolyPlaneSectors& cut,
                  double displacement, const char* style)
{
    out << "<path fill=\"none\" stroke-linejoin=\"round\" " << style << " d=\"";
    for (int i = 0; i < cut.GetNumSegments(); ++i)
        out << (i == 0 ? 'M' : 'L')
            << sheet.At(
                   cut.GetPointOnDerivedPolyline(static_cast<unsigned short>(i), displacement));
    out << "z\"/>\n";
}

} // namespace

void WritePicture(const std::string& path, const example::Surface& surface, MPolyPlaneSectors& cut,
                  const Split& split)
{
    const Sheet sheet(surface.box);
    example::SvgFile file(path, sheet.Width() + 2 * kMargin,
                          sheet.Height() + 2 * kMargin + kLegend);
    WriteTriangles(file.Out(), sheet, surface, split);
    WriteOutline(file.Out(), sheet, cut, 0.0, "stroke=\"#14507f\" stroke-width=\"2\"");
    if (cut.GetNegDisplacement() > -std::numeric_limits<double>::max())
        WriteOutline(file.Out(), sheet, cut, 0.3 * cut.GetNegDisplacement(),
                     "stroke=\"#14507f\" stroke-width=\"1.2\" stroke-dasharray=\"6 4\"");
    double x = kMargin;
    const double y = sheet.Height() + kMargin + 30.0;
    for (std::size_t i = 0; i < kTints.size(); ++i) {
        file.Out() << "<rect x=\"" << x << "\" y=\"" << y - 12.0
                   << "\" width=\"14\" height=\"14\" fill=\"" << example::Hex(kTints[i])
                   << "\"/>\n";
        file.Text(x + 20.0, y,
                  std::string(kNames[i]) + ", " + std::to_string(split.parts[i].count));
        x += 150.0;
    }
    file.Text(kMargin, y + 28.0,
              "blue: the outline in the zero plane; dashed: displaced to the inside",
              "font-size=\"12\" fill=\"#14507f\"");
    file.Close();
}

} // namespace bent_cut
