#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"
#include "support/options.h"

#include <algorithm>
#include <cmath>

namespace section
{

using example::Failure;
using example::Numbers;

const char* const kHelp = R"(Usage: section [OPTION]... [SURFACE]

Cuts a surface with planes, joins the pieces into contours and measures them.

SURFACE is a height grid (text: ncols, nrows, cellsize or dx and dy, then the rows
from north to south) or, by the ending .obj, a mesh of points (v) and faces (f).
Without it the program cuts the elevation model that comes with it.

Planes, any number; without one: --levels 20 --fit
  --plane A,B,C,D        the plane A x + B y + C z + D = 0
  --fit                  the least-squares plane of the points
  --levels STEP          horizontal planes at the multiples of STEP

Questions and results
  --clip X,Y,Z,X,Y,Z     keep what lies between the planes through two points that
                         are perpendicular to the line between them
  --point X,Y,Z          tell where the point, moved onto each section's plane, lies
                         relative to its closed contours; any number
  --svg FILE             draw the sections over the shaded surface
  --unit NAME            the unit of length, for the labels of the picture
  --help                 show this text

Contours come out clockwise around material, counter-clockwise around holes, seen
against the plane's normal; a surface must be oriented for that (faces
counter-clockwise from outside). Exit status: 0 done, 1 not done, with one line
that says why.
)";

namespace
{

void TakeOption(Options& options, const std::string& option, const std::string& value)
{
    if (option == "--fit") {
        options.isFitWanted = true;
    } else if (option == "--plane") {
        const std::vector<double> n = Numbers(option, value, 4);
        // In units of the largest component, so that no square overflows or vanishes.
        const double largest = std::max({std::abs(n[0]), std::abs(n[1]), std::abs(n[2])});
        if (largest == 0.0)
            throw Failure("--plane needs a normal that is not zero");
        options.planes.emplace_back(n[0] / largest, n[1] / largest, n[2] / largest, n[3] / largest);
    } else if (option == "--levels") {
        options.levelStep = Numbers(option, value, 1)[0];
        if (!(options.levelStep > 0.0))
            throw Failure("--levels needs a positive step");
    } else if (option == "--clip") {
        const std::vector<double> n = Numbers(option, value, 6);
        options.clip = {{n[0], n[1], n[2]}, {n[3], n[4], n[5]}};
    } else if (option == "--point") {
        const std::vector<double> n = Numbers(option, value, 3);
        options.points.emplace_back(n[0], n[1], n[2]);
    } else if (option == "--unit") {
        options.unit = value;
    } else {
        options.picture = value;
    }
}

} // namespace

Options ReadOptions(int argc, char** argv)
{
    Options options;
    options.isHelpWanted = example::ReadCommandLine(
        argc, argv,
        {.valued = {"--plane", "--levels", "--clip", "--point", "--svg", "--unit"},
         .flags = {"--fit"},
         .take = [&](const auto& option, const auto& value) { TakeOption(options, option, value); },
         .surface = &options.surface});
    if (options.surface.empty()) {
        options.surface = EXAMPLE_DATA "/jacksboro.asc";
        options.unit = "m";
    }
    if (options.planes.empty() && !options.isFitWanted && options.levelStep == 0.0) {
        options.isFitWanted = true;
        options.levelStep = 20.0;
    }
    return options;
}

} // namespace section
