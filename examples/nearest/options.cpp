#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"
#include "support/options.h"

#include <cmath>

namespace nearest
{

using example::Failure;
using example::Numbers;

const char* const kHelp = R"(Usage: nearest [OPTION]...

Scans a made-up hall from two stations, builds a k-d tree over the points and asks
it for the nearest point, the eight nearest and all within a radius. Every answer is
held against a comparison with all points.

  --rays COUNT     rays from each station, 8 to 100000 (default 720)
  --noise SIGMA    standard deviation of the measured distances (default 0.02)
  --query X,Y      where to ask, in metres (default 9.2,4.6)
  --radius R       radius of the last question (default 1.5)
  --svg FILE       draw the scan, the cells of the tree and the answers
  --help           show this text

Exit status: 0 done, 1 not done, with one line that says why.
)";

namespace
{

void TakeOption(Options& options, const std::string& option, const std::string& value)
{
    if (option == "--rays") {
        const double count = Numbers(option, value, 1)[0];
        if (!(count >= 8.0 && count <= 100000.0) || count != std::floor(count))
            throw Failure("--rays takes a whole number from 8 to 100000");
        options.rays = static_cast<int>(count);
    } else if (option == "--query") {
        const std::vector<double> n = Numbers(option, value, 2);
        options.query = {n[0], n[1], 0.0};
    } else if (option == "--svg") {
        options.picture = value;
    } else {
        const double length = Numbers(option, value, 1)[0];
        if (length < 0.0)
            throw Failure(option + " takes a length that is not negative");
        (option == "--noise" ? options.noise : options.radius) = length;
    }
}

} // namespace

Options ReadOptions(int argc, char** argv)
{
    Options options;
    options.isHelpWanted =
        example::ReadCommandLine(argc, argv,
                                 {.valued = {"--rays", "--noise", "--query", "--radius", "--svg"},
                                  .take = [&](const auto& option, const auto& value) {
                                      TakeOption(options, option, value);
                                  }});
    return options;
}

} // namespace nearest
