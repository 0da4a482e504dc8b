#include "picture.h"

#include "support/svg.h"
#include "support/text.h"

#include <norvek/bounds/bounding_box.h>
#include <norvek/foundation/point2d.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace slices
{

using example::Colour;
using example::Fixed;
using example::Hex;
using example::ShortNumber;
using example::SvgFile;

namespace
{

using Point = MMPoint3d<double>;

// The sheet, in SVG units: the volume on the left, the image and the table on the right.
constexpr double kMargin = 36.0;
constexpr double kTop = 84.0;
constexpr double kViewWidth = 540.0;
constexpr double kViewHeight = 500.0;
constexpr double kImageLeft = kMargin + kViewWidth + 50.0;
constexpr double kImageWidth = 430.0;
constexpr double kImageHeight = 345.0;
constexpr double kWidth = kImageLeft + kImageWidth + kMargin;
constexpr double kHeight = kTop + kViewHeight + kMargin;

// Grey values are drawn in steps, so that the pixels of a row join into few rectangles.
constexpr int kGreyStep = 5;

constexpr const char* kAxisColours[]{"#c8102e", "#1a7f37", "#1450a0"};
// Half the height of a capital letter, which brings a text to the middle of its line.
constexpr double kHalfLetter = 4.5;

std::string Place(const Point& p)
{
    return Fixed(p.x, 1) + ' ' + Fixed(p.y, 1);
}

// The corner of the volume whose index has a bit for every axis that is at its upper end.
Point VoxelCorner(const Volume& volume, unsigned int index)
{
    return {(index & 1U) != 0 ? volume.size[0] - 1.0 : 0.0,
            (index & 2U) != 0 ? volume.size[1] - 1.0 : 0.0,
            (index & 4U) != 0 ? volume.size[2] - 1.0 : 0.0};
}

class Picture
{
public:
    Picture(const Options& options, const Volume& volume, const Slice& slice)
        : _file(options.picture, kWidth, kHeight),
          _out(_file.Out()),
          _options(options),
          _volume(volume),
          _slice(slice),
          _worldToSheet(WorldToSheet())
    {}

    void Write()
    {
        WriteDefinitions();
        WriteTitles();
        WriteVolume();
        WriteImage();
        WriteTable();
        _file.Close();
    }

private:
    // From the front, right and above; R to the right, B down, P away. Everything fits the view.
    [[nodiscard]] MMTransformMatrix WorldToSheet() const
    {
        MMTransformMatrix view;
        view.MakeRotationZYX(24.0, 32.0, 0.0);
        M3DBoundingBox<double> seen;
        const auto add = [&](Point world) {
            view.Transform(world, false);
            seen.AddPoint(world);
        };
        for (unsigned int i = 0; i < 8; ++i)
            add(World(VoxelCorner(_volume, i)));
        for (const Slice::Corner& corner : _slice.corners)
            add(corner.world);
        const double scale = std::min((kViewWidth - 60.0) / seen.GetDeltaX(),
                                      (kViewHeight - 60.0) / seen.GetDeltaY());
        MMTransformMatrix place;
        place.MakeScale3D(scale, scale, scale);
        place.AddTranslation(
            Point(kMargin + kViewWidth / 2.0 - scale * (seen.minX + seen.maxX) / 2.0,
                  kTop + kViewHeight / 2.0 - scale * (seen.minY + seen.maxY) / 2.0, 0.0));
        return place * view;
    }

    [[nodiscard]] Point World(Point voxel) const
    {
        _volume.voxelToWorld.Transform(voxel, false);
        return voxel;
    }

    [[nodiscard]] Point OnSheet(Point world) const
    {
        _worldToSheet.Transform(world, false);
        return world;
    }

    // The image as rectangles of one unit a pixel, to be placed twice, and an arrow head a colour.
    void WriteDefinitions()
    {
        std::map<int, std::string> runs;
        const auto width = static_cast<std::size_t>(_options.pixels[0]);
        for (std::size_t i = 0; i < _slice.values.size();) {
            const int grey = Grey(i);
            const std::size_t first = i;
            do
                ++i;
            while (i % width != 0 && Grey(i) == grey);
            if (grey < 0)
                continue;
            const std::string length = std::to_string(i - first);
            std::string& run = runs[grey];
            run.append("M").append(std::to_string(first % width)).append(" ");
            run.append(std::to_string(first / width)).append("h").append(length);
            run.append("v1h-").append(length).append("z");
        }
        _out << "<defs><g id=\"image\" transform=\"translate(-0.5 -0.5)\" "
             << "shape-rendering=\"crispEdges\">\n";
        for (const auto& [grey, path] : runs)
            _out << "<path fill=\"" << Hex({grey, grey, grey}) << "\" d=\"" << path << "\"/>\n";
        _out << "</g>\n";
        for (int axis = 0; axis < 3; ++axis)
            _out << "<marker id=\"head" << axis << "\" viewBox=\"0 -4 9 8\" refX=\"7\" "
                 << "markerWidth=\"6\" markerHeight=\"6\" orient=\"auto\"><path d=\"M0 -4L9 0L0 "
                    "4z\" "
                 << "fill=\"" << kAxisColours[axis] << "\"/></marker>\n";
        _out << "</defs>\n";
    }

    [[nodiscard]] int Grey(std::size_t pixel) const
    {
        const int value = _slice.values[pixel];
        return value < 0 ? -1 : value / kGreyStep * kGreyStep;
    }

    void WriteTitles()
    {
        const std::string stored(_volume.storedCode.begin(), _volume.storedCode.end());
        const std::string code(_volume.code.begin(), _volume.code.end());
        _file.Text(kMargin, kMargin + 10.0,
                   stored == code ? "Volume " + code : "Volume " + stored + ", read as " + code,
                   "font-size=\"19\" font-weight=\"bold\"");
        const auto& size = _options.size;
        _file.Text(kMargin, kMargin + 30.0,
                   std::to_string(size[0]) + " × " + std::to_string(size[1]) + " × " +
                       std::to_string(size[2]) + " voxels of " + ShortNumber(_options.spacing.x) +
                       " × " + ShortNumber(_options.spacing.y) + " × " +
                       ShortNumber(_options.spacing.z) + " mm",
                   "fill=\"#666\"");
        _file.Text(kImageLeft, kMargin + 10.0, "The plane, resampled",
                   "font-size=\"19\" font-weight=\"bold\"");
        _file.Text(kImageLeft, kMargin + 30.0,
                   std::to_string(_options.pixels[0]) + " × " + std::to_string(_options.pixels[1]) +
                       " pixels of " + ShortNumber(_options.pixelSize) + " mm",
                   "fill=\"#666\"");
    }

    // The edges that meet in the farthest corner lie behind the plane, the others before it.
    void WriteVolume()
    {
        unsigned int farthest = 0;
        for (unsigned int i = 1; i < 8; ++i) {
            if (Corner(i).z > Corner(farthest).z)
                farthest = i;
        }
        for (const unsigned int axis : {1U, 2U, 4U}) {
            const unsigned int other = axis == 4U ? 1U : axis * 2U;
            _out << "<path fill=\"#f1f4f7\" d=\"M" << Place(Corner(farthest)) << 'L'
                 << Place(Corner(farthest ^ axis)) << 'L' << Place(Corner(farthest ^ axis ^ other))
                 << 'L' << Place(Corner(farthest ^ other)) << "z\"/>\n";
        }
        WriteEdges(farthest, true);
        WritePlane();
        WriteEdges(farthest, false);
        WriteAxes();
        WriteWorldAxes();
    }

    [[nodiscard]] Point Corner(unsigned int index) const
    {
        return OnSheet(World(VoxelCorner(_volume, index)));
    }

    void WriteEdges(unsigned int farthest, bool areHidden)
    {
        _out << "<path fill=\"none\" stroke=\"#7a8794\" stroke-width=\"1.2\""
             << (areHidden ? " stroke-dasharray=\"4 4\"" : "") << " d=\"";
        for (unsigned int i = 0; i < 8; ++i) {
            for (const unsigned int axis : {1U, 2U, 4U}) {
                const bool isHidden = i == farthest || (i | axis) == farthest;
                if ((i & axis) == 0 && isHidden == areHidden)
                    _out << 'M' << Place(Corner(i)) << 'L' << Place(Corner(i | axis));
            }
        }
        _out << "\"/>\n";
    }

    // Without perspective, pixels go to the sheet by an affine map of the plane.
    void WritePlane()
    {
        const auto pixel = [&](double column, double row) {
            Point place(column, row, 0.0);
            _slice.pixelToWorld.Transform(place, false);
            return OnSheet(place);
        };
        const Point first = pixel(0.0, 0.0);
        const Point right = pixel(1.0, 0.0) - first;
        const Point down = pixel(0.0, 1.0) - first;
        _out << "<use href=\"#image\" transform=\"matrix(" << Fixed(right.x, 6) << ' '
             << Fixed(right.y, 6) << ' ' << Fixed(down.x, 6) << ' ' << Fixed(down.y, 6) << ' '
             << Place(first) << ")\"/>\n<path fill=\"none\" stroke=\"#d9821e\" "
             << "stroke-width=\"1.6\" d=\"";
        std::array<Point, 4> corners;
        for (std::size_t i = 0; i < 4; ++i) {
            corners[i] = OnSheet(_slice.corners[i].world);
            _out << (i == 0 ? 'M' : 'L') << Place(corners[i]);
        }
        _out << "z\"/>\n";
        WriteNumbers(corners);
    }

    void WriteNumbers(const std::array<Point, 4>& corners)
    {
        for (std::size_t i = 0; i < 4; ++i) {
            _out << "<circle cx=\"" << Fixed(corners[i].x, 1) << "\" cy=\""
                 << Fixed(corners[i].y, 1)
                 << "\" r=\"10\" fill=\"#d9821e\" stroke=\"#fff\" stroke-width=\"1.5\"/>\n";
            _file.Text(corners[i].x, corners[i].y + kHalfLetter, std::to_string(i + 1),
                       "text-anchor=\"middle\" font-size=\"12\" font-weight=\"bold\" "
                       "fill=\"#fff\"");
        }
    }

    void WriteArrow(const Point& from, const Point& to, int axis, const std::string& label)
    {
        _out << "<path fill=\"none\" stroke=\"" << kAxisColours[axis] << "\" stroke-width=\"2.4\" "
             << "marker-end=\"url(#head" << axis << ")\" d=\"M" << Place(from) << 'L' << Place(to)
             << "\"/>\n";
        const Point beyond = to + (to - from).Normalised() * 20.0;
        const std::string style = std::string("text-anchor=\"middle\" font-weight=\"bold\" ") +
                                  "stroke=\"#fff\" stroke-width=\"4\" paint-order=\"stroke\" " +
                                  "fill=\"" + kAxisColours[axis] + '"';
        _file.Text(beyond.x, beyond.y + kHalfLetter, label, style.c_str());
    }

    // From the first voxel along a fifth of each side, with the letter of the direction.
    void WriteAxes()
    {
        const Point first = Corner(0);
        constexpr const char* names[]{"x ", "y ", "z "};
        for (int axis = 0; axis < 3; ++axis) {
            Point end = Corner(1U << axis) - first;
            end.z = 0.0;
            const char letter = static_cast<char>(_volume.code[static_cast<std::size_t>(axis)]);
            WriteArrow(first, first + end / 5.0, axis, std::string(names[axis]) + "→ " + letter);
        }
        _out << "<circle cx=\"" << Fixed(first.x, 1) << "\" cy=\"" << Fixed(first.y, 1)
             << "\" r=\"4\" fill=\"#222\"/>\n";
    }

    // The directions of the world, in the lower left.
    void WriteWorldAxes()
    {
        const Point foot(kMargin + 26.0, kTop + kViewHeight - 30.0, 0.0);
        constexpr const char* names[]{"R", "B", "P"};
        const Point units[]{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
        for (int axis = 0; axis < 3; ++axis) {
            Point end = OnSheet(units[axis]) - OnSheet({0.0, 0.0, 0.0});
            end.z = 0.0;
            const double unit = (OnSheet(units[0]) - OnSheet({0.0, 0.0, 0.0})).Length();
            WriteArrow(foot, foot + end * (34.0 / unit), axis, names[axis]);
        }
    }

    void WriteImage()
    {
        const double scale =
            std::min(kImageWidth / _options.pixels[0], kImageHeight / _options.pixels[1]);
        const double right = kImageLeft + scale * _options.pixels[0];
        const double bottom = kTop + scale * _options.pixels[1];
        _out << "<rect x=\"" << kImageLeft << "\" y=\"" << kTop << "\" width=\""
             << Fixed(right - kImageLeft, 1) << "\" height=\"" << Fixed(bottom - kTop, 1)
             << "\" fill=\"#f6ead9\" stroke=\"#d9821e\" stroke-width=\"1.6\"/>\n"
             << "<use href=\"#image\" transform=\"translate(" << Fixed(kImageLeft + scale / 2.0, 2)
             << ' ' << Fixed(kTop + scale / 2.0, 2) << ") scale(" << Fixed(scale, 5) << ")\"/>\n";
        WriteNumbers({Point(kImageLeft, kTop, 0.0), Point(right, kTop, 0.0),
                      Point(right, bottom, 0.0), Point(kImageLeft, bottom, 0.0)});
        // A round length of about a quarter of the width.
        const double wanted = _options.pixels[0] * _options.pixelSize / 4.0;
        const double power = std::pow(10.0, std::floor(std::log10(wanted)));
        const double length = power * (wanted >= 5 * power ? 5 : wanted >= 2 * power ? 2 : 1);
        const double width = length / _options.pixelSize * scale;
        _out << "<path stroke=\"#222\" stroke-width=\"2\" fill=\"none\" d=\"M"
             << Fixed(right - 24.0 - width, 1) << ' ' << Fixed(bottom + 12.0, 1) << "v8h"
             << Fixed(width, 1) << "v-8\"/>\n";
        _file.Text(right - 24.0 - width / 2.0, bottom + 34.0, ShortNumber(length) + " mm",
                   "text-anchor=\"middle\" font-size=\"12\"");
    }

    void WriteTable()
    {
        double y = kTop + kImageHeight + 64.0;
        const auto row = [&](const std::string& first, const std::string& second,
                             const std::string& third, const char* style) {
            _file.Text(kImageLeft, y, first, style);
            _file.Text(kImageLeft + 60.0, y, second, style);
            _file.Text(kImageLeft + 265.0, y, third, style);
            y += 21.0;
        };
        const auto triple = [](const Point& p) {
            return Fixed(p.x, 1) + ", " + Fixed(p.y, 1) + ", " + Fixed(p.z, 1);
        };
        row("corner", "world R, B, P (mm)", "voxel x, y, z", "font-size=\"12\" fill=\"#666\"");
        for (std::size_t i = 0; i < 4; ++i) {
            const Slice::Corner& corner = _slice.corners[i];
            row(std::to_string(i + 1), triple(corner.world), triple(corner.voxel),
                corner.isInVolume ? "" : "fill=\"#888\"");
        }
        if (_slice.insideCount < _slice.values.size())
            _file.Text(kImageLeft, y, "Grey and without an image: outside the volume.",
                       "font-size=\"12\" fill=\"#888\"");
    }

    SvgFile _file;
    std::ostream& _out;
    const Options& _options;
    const Volume& _volume;
    const Slice& _slice;
    MMTransformMatrix _worldToSheet;
};

} // namespace

void WritePicture(const Options& options, const Volume& volume, const Slice& slice)
{
    Picture(options, volume, slice).Write();
}

} // namespace slices
