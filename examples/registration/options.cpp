#include "options.h"

#include "support/numbers.h"
#include "support/options.h"

namespace registration
{

using example::Numbers;

const char* const kHelp = R"(Usage: registration [OPTION]... [SURFACE]

Cuts two overlapping crops from a surface, moves one of them by a known motion and
noise, and finds the way back by nearest points. Then joins five crops, each moved
by a motion of its own, into one map.

SURFACE is a height grid (text: ncols, nrows, cellsize or dx and dy, then the rows
from north to south) or, by the ending .obj, a mesh of points (v) and faces (f).
Without it the program takes the elevation model that comes with it.

  --turn DEGREES   turn the second crop about a steep axis (default 1.5)
  --shift X,Y,Z    and shift it (default 60,-40,90)
  --noise SIGMA    add noise of this standard deviation (default 2)
  --svg FILE       draw the crops before and after
  --help           show this text

Exit status: 0 done, 1 not done, with one line that says why.
)";

namespace
{

void TakeOption(Options& options, const std::string& option, const std::string& value)
{
    if (option == "--svg") {
        options.picture = value;
    } else if (option == "--shift") {
        const std::vector<double> n = Numbers(option, value, 3);
        options.shift = {n[0], n[1], n[2]};
    } else {
        (option == "--turn" ? options.turn : options.noise) = Numbers(option, value, 1)[0];
    }
}

} // namespace

Options ReadOptions(int argc, char** argv)
{
    Options options;
    options.isHelpWanted = example::ReadCommandLine(
        argc, argv,
        {.valued = {"--turn", "--shift", "--noise", "--svg"},
         .take = [&](const auto& option, const auto& value) { TakeOption(options, option, value); },
         .surface = &options.surface});
    return options;
}

} // namespace registration
