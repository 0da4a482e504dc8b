#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"

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

Options ReadOptions(int argc, char** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--help") {
            options.isHelpWanted = true;
        } else if (word == "--step" || word == "--svg" || word == "--unit") {
            if (++i == argc || *argv[i] == '\0')
                throw Failure(word + " needs a value; see --help");
            if (word == "--step") {
                options.step = example::Numbers(word, argv[i], 1)[0];
                if (!(options.step > 0.0))
                    throw Failure("--step needs a positive length");
            } else {
                (word == "--svg" ? options.picture : options.unit) = argv[i];
            }
        } else if (word.empty() || word.starts_with("-")) {
            throw Failure("there is no option " + word + "; see --help");
        } else if (!options.surface.empty()) {
            throw Failure("one surface at a time: " + options.surface + " or " + word);
        } else {
            options.surface = word;
        }
    }
    if (options.surface.empty()) {
        options.surface = HISTOGRAM_DEFAULT_SURFACE;
        options.unit = "m";
    }
    return options;
}

} // namespace histogram
