#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"
#include "support/options.h"

#include <algorithm>
#include <cmath>

namespace slices
{

using example::Failure;
using example::Numbers;

const char* const kHelp = R"(Usage: slices [OPTION]...

Takes the orientation code of an image volume, repairs it, finds the matrix from
voxel to world and lays an oblique plane through the volume. The volume is a
made-up head of nested ellipsoids with a ball on its right.

World: x towards R, y towards B, z towards P, in mm from the middle of the volume.

Volume
  --code XYZ          the directions in which its columns, rows and slices run: one
                      letter each of A P, L R and T B (default LBP)
  --size NX,NY,NZ     voxels (default 96,96,64)
  --spacing X,Y,Z     mm between voxel centres (default 2,2,3)

Plane
  --centre X,Y,Z      its middle in the world (default 0,-8,0)
  --normal X,Y,Z      its normal (default -0.2,-0.85,-0.5)
  --turn DEGREES      turn about the normal (default 0)
  --pixels W,H        pixels across and down (default 120,120)
  --pixel MM          mm between pixel centres (default 1.5)

Results
  --svg FILE          draw the volume, the plane in it and the resampled image
  --help              show this text

Exit status: 0 done, 1 not done, with one line that says why.
)";

namespace
{

// Beyond these the made-up volume and the picture no longer are of a size to look at.
constexpr double kMostVoxels = 512.0;
constexpr double kMostPixels = 1000.0;

// A whole number between `least` and `most`.
int Count(const std::string& option, double value, double least, double most)
{
    if (value < least || value > most || value != std::floor(value))
        throw Failure(option + " takes whole numbers from " +
                      std::to_string(static_cast<int>(least)) + " to " +
                      std::to_string(static_cast<int>(most)));
    return static_cast<int>(value);
}

double Length(const std::string& option, double value)
{
    if (!(value >= 1e-3 && value <= 1e3))
        throw Failure(option + " takes lengths from 0.001 to 1000 mm");
    return value;
}

MMPoint3d<double> ToPoint(const std::vector<double>& n)
{
    return {n[0], n[1], n[2]};
}

std::wstring ToCode(const std::string& text)
{
    std::wstring code;
    for (const char c : text)
        code += static_cast<wchar_t>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    return code;
}

void TakeOption(Options& options, const std::string& option, const std::string& value)
{
    if (option == "--code") {
        options.code = ToCode(value);
    } else if (option == "--size") {
        const std::vector<double> n = Numbers(option, value, 3);
        std::transform(n.begin(), n.end(), options.size.begin(),
                       [&](double v) { return Count(option, v, 2.0, kMostVoxels); });
    } else if (option == "--spacing") {
        const std::vector<double> n = Numbers(option, value, 3);
        for (const double v : n)
            Length(option, v);
        options.spacing = ToPoint(n);
    } else if (option == "--centre") {
        options.centre = ToPoint(Numbers(option, value, 3));
    } else if (option == "--normal") {
        options.normal = ToPoint(Numbers(option, value, 3)).Normalised();
        if (!(options.normal.LengthSquared() > 0.5))
            throw Failure("--normal needs a direction that is not zero");
    } else if (option == "--turn") {
        options.turn = Numbers(option, value, 1)[0];
    } else if (option == "--pixels") {
        const std::vector<double> n = Numbers(option, value, 2);
        std::transform(n.begin(), n.end(), options.pixels.begin(),
                       [&](double v) { return Count(option, v, 2.0, kMostPixels); });
    } else if (option == "--pixel") {
        options.pixelSize = Length(option, Numbers(option, value, 1)[0]);
    } else {
        options.picture = value;
    }
}

} // namespace

Options ReadOptions(int argc, char** argv)
{
    Options options;
    options.isHelpWanted =
        example::ReadCommandLine(argc, argv,
                                 {.valued = {"--code", "--size", "--spacing", "--centre",
                                             "--normal", "--turn", "--pixels", "--pixel", "--svg"},
                                  .take = [&](const auto& option, const auto& value) {
                                      TakeOption(options, option, value);
                                  }});
    return options;
}

} // namespace slices
