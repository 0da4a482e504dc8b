#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"

namespace registration
{

using example::Failure;
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

Options ReadOptions(int argc, char** argv)
{
    Options options;
    bool hasSurface = false;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--help") {
            options.isHelpWanted = true;
        } else if (word == "--turn" || word == "--shift" || word == "--noise" || word == "--svg") {
            if (++i == argc || *argv[i] == '\0')
                throw Failure(word + " needs a value; see --help");
            const std::string value = argv[i];
            if (word == "--svg") {
                options.picture = value;
            } else if (word == "--shift") {
                const std::vector<double> n = Numbers(word, value, 3);
                options.shift = {n[0], n[1], n[2]};
            } else {
                (word == "--turn" ? options.turn : options.noise) = Numbers(word, value, 1)[0];
            }
        } else if (word.empty() || word.starts_with("-")) {
            throw Failure("there is no option " + word + "; see --help");
        } else if (hasSurface) {
            throw Failure("one surface at a time: " + options.surface + " or " + word);
        } else {
            options.surface = word;
            hasSurface = true;
        }
    }
    return options;
}

} // namespace registration
