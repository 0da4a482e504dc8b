#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"
#include "support/options.h"

namespace bent_cut
{

using example::Failure;

const char* const kHelp = R"(Usage: bent_cut [OPTION]... [SURFACE]

Cuts a surface along an outline that is swept in a direction, and splits its
triangles into those inside, those outside and those that the cut crosses.

SURFACE is a height grid (text: ncols, nrows, cellsize or dx and dy, then the rows
from north to south) or, by the ending .obj, a mesh of points (v) and faces (f).
Without it the program takes the elevation model that comes with it.

  --point X,Y,Z       a point of the outline, any number from three on; without
                      them an outline that fits the surface
  --direction X,Y,Z   the direction of the sweep (default 0.25,0.1,1)
  --svg FILE          draw the split surface
  --notions FILE      draw what poly-planes are made of
  --help              show this text

Exit status: 0 done, 1 not done, with one line that says why.
)";

namespace
{

void TakeOption(Options& options, const std::string& option, const std::string& value)
{
    if (option == "--svg" || option == "--notions") {
        (option == "--svg" ? options.picture : options.notions) = value;
        return;
    }
    const std::vector<double> n = example::Numbers(option, value, 3);
    if (option == "--point")
        options.points.emplace_back(n[0], n[1], n[2]);
    else
        options.direction = {n[0], n[1], n[2]};
}

} // namespace

Options ReadOptions(int argc, char** argv)
{
    Options options;
    options.isHelpWanted = example::ReadCommandLine(
        argc, argv,
        {.valued = {"--direction", "--notions", "--point", "--svg"},
         .take = [&](const auto& option, const auto& value) { TakeOption(options, option, value); },
         .surface = &options.surface});
    if (!options.points.empty() && options.points.size() < 3)
        throw Failure("--point: an outline takes three points");
    if (options.direction.Length() == 0.0)
        throw Failure("--direction needs a length");
    if (options.surface.empty())
        options.surface = EXAMPLE_DATA "/jacksboro.asc";
    return options;
}

} // namespace bent_cut
