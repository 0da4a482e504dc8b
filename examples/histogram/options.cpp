#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"
#include "support/options.h"

namespace histogram
{

using example::Failure;

const char* const kHelp = R"(Usage: histogram [OPTION]... [SURFACE]

Counts the heights of a surface in intervals and finds the most frequent one.

SURFACE is a height grid (text: ncols, nrows, cellsize or dx and dy, then the rows
from north to south) or, by the ending .obj, a mesh of points (v) and faces (f).
Without it the program takes the elevation model that comes with it.

  --step LENGTH   the length of an interval; without it a round one that makes
                  about forty
  --svg FILE      draw the shares of the intervals and of what lies below
  --unit NAME     the unit of length, for the labels
  --help          show this text

Exit status: 0 done, 1 not done, with one line that says why.
)";

namespace
{

void TakeOption(Options& options, const std::string& option, const std::string& value)
{
    if (option == "--step") {
        options.step = example::Numbers(option, value, 1)[0];
        if (!(options.step > 0.0))
            throw Failure("--step needs a positive length");
    } else {
        (option == "--svg" ? options.picture : options.unit) = value;
    }
}

} // namespace

Options ReadOptions(int argc, char** argv)
{
    Options options;
    options.isHelpWanted = example::ReadCommandLine(
        argc, argv,
        {.valued = {"--step", "--svg", "--unit"},
         .take = [&](const auto& option, const auto& value) { TakeOption(options, option, value); },
         .surface = &options.surface});
    if (options.surface.empty()) {
        options.surface = EXAMPLE_DATA "/jacksboro.asc";
        options.unit = "m";
    }
    return options;
}

} // namespace histogram
