#include "notions.h"

#include "support/svg.h"
#include "support/text.h"

#include <norvek/polyplane/poly_plane_sectors.h>

#include <array>
#include <vector>

namespace bent_cut
{

using example::Fixed;
using example::SvgFile;
using Point = MMPoint3d<double>;

namespace
{

constexpr double kPanelWidth = 440.0;
constexpr double kPanelHeight = 390.0;
constexpr double kUnit = 48.0;

constexpr const char* kLine = "stroke=\"#222\" stroke-width=\"2\" fill=\"none\"";
constexpr const char* kThin = "stroke=\"#888\" stroke-width=\"1\" fill=\"none\"";
constexpr const char* kBlue = "stroke=\"#14507f\" stroke-width=\"1.8\" fill=\"none\"";
constexpr const char* kRed = "stroke=\"#c43a31\" stroke-width=\"1.8\" fill=\"none\"";
constexpr const char* kDashed =
    "stroke=\"#888\" stroke-width=\"1.2\" fill=\"none\" stroke-dasharray=\"5 4\"";

// The outline of all drawings, counter-clockwise, with the heights of its points.
constexpr std::array<std::array<double, 3>, 6> kPoints{{{0.4, 0.5, 2.0},
                                                        {5.2, 0.2, 2.6},
                                                        {6.6, 3.0, 3.4},
                                                        {4.4, 2.8, 2.8},
                                                        {3.2, 4.9, 3.8},
                                                        {0.8, 4.1, 2.4}}};
constexpr double kBottom = 0.6;
constexpr unsigned short kCount = kPoints.size();

MPolyPlaneSectors MakeOutline()
{
    MPolyPlaneSectors plane;
    plane.SetZeroPlane({0, 0, 1}, {0, 0, 0});
    plane.SetBottomHeight(kBottom);
    for (const auto& [x, y, height] : kPoints)
        plane.AddPoint({x, y, height});
    return plane;
}

// One drawing: a title and a field of coordinates, x to the right and y up.
class Panel
{
public:
    Panel(SvgFile& file, int column, int row, const std::string& title)
        : _file(file),
          _left(30.0 + kPanelWidth * column),
          _bottom(kPanelHeight * (row + 1) - 60.0)
    {
        file.Text(_left, kPanelHeight * row + 34.0, title, "font-size=\"16\" font-weight=\"bold\"");
    }

    [[nodiscard]] std::string At(const Point& p) const
    {
        return Fixed(_left + kUnit * p.x, 1) + ' ' + Fixed(_bottom - kUnit * p.y, 1);
    }

    void Path(const std::vector<Point>& points, const std::string& style, bool isClosed)
    {
        _file.Out() << "<path " << style << " d=\"";
        for (std::size_t i = 0; i < points.size(); ++i)
            _file.Out() << (i == 0 ? 'M' : 'L') << At(points[i]);
        _file.Out() << (isClosed ? "z\"/>\n" : "\"/>\n");
    }

    void Line(const Point& a, const Point& b, const std::string& style)
    {
        Path({a, b}, style, false);
    }

    // With a head of its own, so that no marker has to be defined.
    void Arrow(const Point& a, const Point& b, const std::string& style)
    {
        const Point along = (b - a).Normalised() * 0.17;
        const Point across(-along.y * 0.5, along.x * 0.5, 0.0);
        Line(a, b, style);
        Path({b - along + across, b, b - along - across}, style, false);
    }

    void Dot(const Point& p, const char* colour)
    {
        _file.Out() << "<circle cx=\"" << Fixed(_left + kUnit * p.x, 1) << "\" cy=\""
                    << Fixed(_bottom - kUnit * p.y, 1) << "\" r=\"3.4\" fill=\"" << colour
                    << "\"/>\n";
    }

    void Label(const Point& p, const std::string& text, const char* colour = "#222")
    {
        const std::string style =
            std::string("text-anchor=\"middle\" font-size=\"12.5\" paint-order=\"stroke\" ") +
            "stroke=\"#fff\" stroke-width=\"3\" fill=\"" + colour + '"';
        _file.Text(_left + kUnit * p.x, _bottom - kUnit * p.y + 4.0, text, style.c_str());
    }

    void Note(const std::string& text)
    {
        _file.Text(_left, _bottom + 44.0, text, "font-size=\"12\" fill=\"#666\"");
    }

private:
    SvgFile& _file;
    double _left;
    double _bottom;
};

std::vector<Point> Derived(const MPolyPlaneSectors& plane, double displacement)
{
    std::vector<Point> points(kCount);
    for (unsigned short i = 0; i < kCount; ++i)
        points[i] = plane.GetPointOnDerivedPolyline(i, displacement);
    return points;
}

void DrawOutline(Panel panel, MPolyPlaneSectors& plane)
{
    panel.Path(Derived(plane, 0.0), "fill=\"#f3ead6\" stroke=\"#222\" stroke-width=\"2\"", true);
    for (int k = 1; k < plane.GetLengthOfDescribingPolyline(); ++k) {
        const Point p = plane.GetPointAtPositionAlongDescribingPolyline(k);
        const Point n = plane.GetNormalAtPositionAlongDescribingPolyline(k) * 0.09;
        panel.Line(p - n, p + n, kLine);
        if (k % 5 == 0)
            panel.Label(p - n * 3.4, std::to_string(k));
    }
    for (unsigned short i = 0; i < kCount; ++i) {
        const Point p = plane.GetPoint(i);
        const Point e = plane.GetPointOnDescribingPolyline(static_cast<unsigned short>(i + 1)) - p;
        panel.Arrow(p + e * 0.5, p + e * 0.5 + plane.GetNormal(i) * 0.55, kBlue);
        panel.Label(p + e * 0.5 + plane.GetNormal(i) * 0.78, "n" + std::to_string(i), "#14507f");
        panel.Dot(p, "#222");
        panel.Label(p + (p - Point(3.1, 2.3, 0)).Normalised() * 0.3, std::to_string(i));
    }
    panel.Note("Seen against the direction. Ticks: positions, from point 0 on. Shaded: inside.");
}

void DrawCrossings(Panel panel, MPolyPlaneSectors& plane)
{
    panel.Path(Derived(plane, 0.0), kLine, true);
    // The strip of segment 1, and a point beside it.
    bool inside = false;
    const Point q(7.3, 1.3, 0.0);
    const double distance = plane.DistanceToPlaneSegment(q, 1, inside);
    for (unsigned short i = 1; i <= 2; ++i) {
        const Point end = plane.GetPoint(i);
        panel.Line(end - plane.GetNormal(1) * 0.7, end + plane.GetNormal(1) * 1.9, kDashed);
    }
    panel.Arrow(q - plane.GetNormal(1) * distance, q, kBlue);
    panel.Dot(q, "#14507f");
    panel.Label(q + Point(0.1, -0.35, 0), Fixed(distance, 2), "#14507f");
    const std::array<std::array<Point, 3>, 5> triangles{
        {{Point(1.4, 1.2, 0), Point(2.6, 1.1, 0), Point(1.9, 2.1, 0)},
         {Point(2.8, -0.3, 0), Point(4.1, -0.2, 0), Point(3.5, 1.2, 0)},
         {Point(3.9, 2.3, 0), Point(5.0, 2.3, 0), Point(4.3, 3.6, 0)},
         {Point(4.9, 3.7, 0), Point(6.2, 3.6, 0), Point(5.6, 4.6, 0)},
         {Point(0.5, 3.2, 0), Point(1.4, 3.4, 0), Point(0.7, 4.4, 0)}}};
    for (const auto& [a, b, c] : triangles) {
        const bool crosses = plane.TriangleIntersects(a, b, c);
        panel.Path({a, b, c},
                   crosses ? "stroke=\"#c43a31\" fill=\"#c43a31\" fill-opacity=\"0.25\""
                           : "stroke=\"#5a7a52\" fill=\"#5a7a52\" fill-opacity=\"0.25\"",
                   true);
        const char* const text = crosses                             ? "crossed"
                                 : plane.IsInside((a + b + c) / 3.0) ? "inside"
                                                                     : "outside";
        panel.Label((a + b + c) / 3.0, text, crosses ? "#c43a31" : "#3f5a38");
    }
    panel.Note("Dashed: the strip of segment 1; blue: the signed distance from its plane.");
}

void DrawSectors(Panel panel, MPolyPlaneSectors& plane)
{
    const double low = plane.GetNegDisplacement();
    for (unsigned short i = 0; i < kCount; ++i) {
        panel.Line(plane.GetPointOnDerivedPolyline(i, 0.6), plane.GetPointOnDerivedPolyline(i, low),
                   kThin);
        const double focal = plane.GetPlane(i).Distance(plane.GetFocalPoint(i));
        if (focal < 0.0 && focal > -2.6) {
            panel.Path({plane.GetPoint(i), plane.GetFocalPoint(i),
                        plane.GetPointOnDescribingPolyline(static_cast<unsigned short>(i + 1))},
                       kDashed, false);
            panel.Dot(plane.GetFocalPoint(i), "#c43a31");
            panel.Label(plane.GetFocalPoint(i) + Point(0.1, -0.26, 0), "F" + std::to_string(i),
                        "#c43a31");
        }
    }
    for (const double displacement : {0.6, 0.3, 0.5 * low})
        panel.Path(Derived(plane, displacement), kBlue, true);
    panel.Path(Derived(plane, low), kRed, true);
    panel.Path(Derived(plane, 0.0), kLine, true);
    // A point, its position, and all points that share it.
    bool found = false;
    bool beyond = false;
    const Point x(1.9, 1.5, 0.0);
    const double position = plane.SeekPositionAlongDescribingPolyline(x, found, beyond);
    const MMLine line = plane.GetLineThroughFocalAtPositionAlongDescribingPolyline(position);
    const Point start = line.GetPointFirst();
    panel.Line(start + line.GetDirection() * 0.9, x + (x - start) * 0.35,
               "stroke=\"#5a7a52\" stroke-width=\"2\"");
    panel.Dot(x, "#3f5a38");
    panel.Dot(start, "#3f5a38");
    panel.Label(x + Point(0.28, 0.12, 0), "X", "#3f5a38");
    panel.Label(start + Point(0.75, -0.42, 0), "position " + Fixed(position, 2), "#3f5a38");
    panel.Note("Grey: sub-dividing planes. Blue: derived polylines. Red: the one at the bound.");
}

void DrawHeights(Panel panel, MPolyPlaneSectors& plane)
{
    const double length = plane.GetLengthOfDescribingPolyline();
    const double shrink = 6.6 / length;
    std::vector<Point> rim;
    for (unsigned short i = 0; i <= kCount; ++i) {
        const double at = i == 0 ? 0.0
                                 : plane.GetCumulativeLengthToEndOfDescribingSegment(
                                       static_cast<unsigned short>(i - 1));
        const double height = kBottom + plane.GetVectorToBottom(at == length ? 0.0 : at).z;
        rim.emplace_back(at * shrink, height, 0.0);
    }
    std::vector<Point> face = rim;
    face.emplace_back(6.6, kBottom, 0.0);
    face.emplace_back(0.0, kBottom, 0.0);
    panel.Path(face, "fill=\"#f3ead6\" stroke=\"#222\" stroke-width=\"2\"", true);
    for (std::size_t i = 0; i < rim.size(); ++i) {
        const Point bottom(rim[i].x, kBottom, 0.0);
        panel.Arrow(bottom, rim[i], i == 2 ? kBlue : kThin);
        panel.Dot(rim[i], "#222");
        panel.Label(rim[i] + Point(0, 0.26, 0), std::to_string(i % kPoints.size()));
    }
    double low = 0.0;
    double high = 0.0;
    plane.GetMinMaxZ(low, high);
    panel.Line({0, 0, 0}, {7.1, 0, 0}, kLine);
    panel.Label({6.6, -0.22, 0}, "zero plane");
    panel.Label({rim[2].x + 0.95, 1.75, 0}, "GetVectorToBottom(2)", "#14507f");
    panel.Label({0.7, kBottom - 0.22, 0}, "bottom height");
    panel.Arrow({7.2, low, 0}, {7.2, high, 0}, kRed);
    panel.Arrow({7.2, high, 0}, {7.2, low, 0}, kRed);
    panel.Label({7.45, (low + high) / 2, 0}, "z range", "#c43a31");
    for (const double level : {1.2, 4.3})
        panel.Line({-0.2, level, 0}, {7.0, level, 0}, kDashed);
    panel.Label({0.85, 4.5, 0}, "top level of a prism", "#666");
    panel.Label({4.6, 1.0, 0}, "bottom level of a prism", "#666");
    panel.Note("Unrolled along the polyline. Arrows: from the bottom up to the points added.");
}

} // namespace

void WriteNotions(const std::string& path)
{
    MPolyPlaneSectors plane = MakeOutline();
    SvgFile file(path, 2 * kPanelWidth + 20.0, 2 * kPanelHeight + 10.0);
    DrawOutline(Panel(file, 0, 0, "Outline, normals, positions"), plane);
    DrawCrossings(Panel(file, 1, 0, "What crosses, and how far"), plane);
    DrawSectors(Panel(file, 0, 1, "Sectors"), plane);
    DrawHeights(Panel(file, 1, 1, "Heights and levels"), plane);
    file.Close();
}

} // namespace bent_cut
