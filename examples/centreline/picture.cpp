#include "picture.h"

#include "support/svg.h"
#include "support/text.h"

#include <norvek/foundation/point2d.h>

#include <cmath>
#include <iterator>

namespace centreline
{

using example::Fixed;
using example::SvgFile;

namespace
{

constexpr double kMargin = 40.0;
constexpr double kWidth = 940.0;
constexpr double kBasisHeight = 170.0;
constexpr double kHeight = 330.0;
constexpr double kGap = 56.0;
constexpr double kPerMillimetre = 5.6;
constexpr int kSteps = 1200;

constexpr const char* kInk = "#3a4654";
constexpr const char* kRed = "#c8102e";
constexpr const char* kBlue = "#1450a0";
constexpr const char* kGreen = "#1a7f37";
constexpr const char* kAmber = "#9a6700";
constexpr const char* kGrey = "#8fa3b8";
constexpr const char* kBasisColours[] = {kBlue, kRed, kGreen, kAmber, "#6f42c1"};

class Picture
{
public:
    Picture(const Options& options, const Scene& scene)
        : _scene(scene),
          _file(options.picture, 2.0 * kMargin + kWidth,
                2.0 * kMargin + kBasisHeight + 3.0 * (kHeight + kGap)),
          _out(_file.Out())
    {}

    void Write()
    {
        _top = kMargin;
        WriteBasis();
        _top += kBasisHeight + kGap;
        WriteFit();
        _top += kHeight + kGap;
        WriteProjection();
        _top += kHeight + kGap;
        WriteDivision();
        _file.Close();
    }

private:
    // Seen obliquely: depth goes up and to the right.
    MMPoint2d<double> Seen(const Point& p) const
    {
        return {kMargin + 110.0 + _perMillimetre * (p.x + 0.25 * p.z),
                _top + 0.5 * kHeight + 4.0 - _perMillimetre * (0.62 * p.y + 0.55 * p.z)};
    }

    void Heading(const char* title, double height)
    {
        _out << "<rect x=\"" << kMargin << "\" y=\"" << _top << "\" width=\"" << kWidth
             << "\" height=\"" << height << "\" fill=\"#f7f8fa\"/>\n";
        _file.Text(kMargin, _top - 12.0, title, "font-size=\"19\" font-weight=\"bold\"");
    }

    void Key(double right, const char* text, const char* colour)
    {
        _file.Text(kMargin + kWidth - right, _top - 12.0, text,
                   ("text-anchor=\"end\" fill=\"" + std::string(colour) + '"').c_str());
    }

    void Line(const std::vector<MMPoint2d<double>>& points, const char* colour, double width)
    {
        _out << "<polyline fill=\"none\" stroke=\"" << colour << "\" stroke-width=\"" << width
             << "\" points=\"";
        for (const MMPoint2d<double>& p : points)
            _out << Fixed(p.x, 1) << ',' << Fixed(p.y, 1) << ' ';
        _out << "\"/>\n";
    }

    void Dot(const Point& point, double radius, const char* colour)
    {
        const MMPoint2d<double> p = Seen(point);
        _out << "<circle cx=\"" << Fixed(p.x, 1) << "\" cy=\"" << Fixed(p.y, 1) << "\" r=\""
             << radius << "\" fill=\"" << colour << "\"/>\n";
    }

    Point At(double t) const
    {
        Point p;
        _scene.curve.EvaluatePosition(p, t);
        return p;
    }

    void Curve(const char* colour, double width)
    {
        std::vector<MMPoint2d<double>> line;
        for (int i = 0; i <= kSteps; ++i)
            line.push_back(Seen(At(static_cast<double>(i) / kSteps)));
        Line(line, colour, width);
    }

    // Every B-spline of the fit, from the kernel.
    void WriteBasis()
    {
        Heading("The B-splines of the fit, order 4", kBasisHeight);
        const auto order = static_cast<int>(_scene.curve.GetOrder());
        const auto count = static_cast<int>(_scene.curve.GetNumberControlPoints());
        std::vector<double> knots;
        for (std::uint32_t i = 0; i < _scene.curve.GetNumberKnots(); ++i)
            knots.push_back(_scene.curve.GetKnot(i));
        std::vector<std::vector<MMPoint2d<double>>> lines(static_cast<std::size_t>(count));
        std::vector<double> values(static_cast<std::size_t>(order));
        int span = order;
        for (int i = 0; i <= 2 * kSteps; ++i) {
            const double t = i / (2.0 * kSteps);
            while (span < count && t >= knots[static_cast<std::size_t>(span)])
                ++span;
            bc_eval_b_code_sub(t, order, knots.data(), span, values.data(), nullptr, nullptr);
            // The values at t belong to the last B-splines up to the span.
            auto line = lines.begin() + (span - order);
            for (const double value : values) {
                (line++)->push_back({kMargin + 10.0 + (kWidth - 20.0) * t,
                                     _top + kBasisHeight - 8.0 - (kBasisHeight - 18.0) * value});
            }
        }
        for (std::size_t i = 0; i < lines.size(); ++i)
            Line(lines[i], kBasisColours[i % std::size(kBasisColours)], 1.4);
    }

    void WriteFit()
    {
        Heading("A fit through noisy points, and its control polygon", kHeight);
        Key(0.0, "control points", kAmber);
        Key(110.0, "fit", kBlue);
        Key(145.0, "measured", kGrey);
        for (const Point& p : _scene.measured)
            Dot(p, 1.8, kGrey);
        std::vector<MMPoint2d<double>> polygon;
        Points controls;
        for (std::uint32_t i = 0; i < _scene.curve.GetNumberControlPoints(); ++i) {
            const Point4D c = _scene.curve.GetControlPoint(i);
            controls.emplace_back(c.x / c.w, c.y / c.w, c.z / c.w);
            polygon.push_back(Seen(controls.back()));
        }
        Line(polygon, kAmber, 1.0);
        for (const Point& p : controls)
            Dot(p, 3.0, kAmber);
        Curve(kBlue, 2.4);
    }

    void WriteProjection()
    {
        Heading("Points and the nearest points of the curve", kHeight);
        Key(0.0, "nearest points", kRed);
        Key(110.0, "points", kInk);
        // The points lie farther out than the curve.
        _perMillimetre = 0.88 * kPerMillimetre;
        Curve(kBlue, 2.4);
        for (std::size_t i = 0; i < _scene.beside.size(); ++i) {
            const Point foot = At(_scene.feet[i]);
            Line({Seen(_scene.beside[i]), Seen(foot)}, kGrey, 1.2);
            Dot(_scene.beside[i], 3.2, kInk);
            Dot(foot, 3.2, kRed);
        }
        _perMillimetre = kPerMillimetre;
    }

    void WriteDivision()
    {
        Heading("Chords within the tolerance", kHeight);
        Key(0.0, (std::to_string(_scene.corners.size() - 1) + " chords").c_str(), kRed);
        Curve(kBlue, 4.0);
        std::vector<MMPoint2d<double>> chords;
        for (const Point& p : _scene.corners)
            chords.push_back(Seen(p));
        Line(chords, kRed, 1.4);
        for (const Point& p : _scene.corners)
            Dot(p, 3.0, kRed);
    }

    const Scene& _scene;
    SvgFile _file;
    std::ostream& _out;
    double _top = 0.0;
    double _perMillimetre = kPerMillimetre;
};

} // namespace

void WritePicture(const Options& options, const Scene& scene)
{
    Picture(options, scene).Write();
}

} // namespace centreline
