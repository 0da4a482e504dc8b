#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"
#include "support/options.h"

#include <cmath>

namespace centreline
{

using example::Failure;
using example::Numbers;

const char* const kHelp = R"(Usage: centreline [OPTION]...

Measures noisy points along a winding vessel whose centreline is known, fits a curve
through them, and reports how far the curve is from the truth. Then projects points onto
the curve and divides it into chords.

  --points COUNT     measured points, 20 to 20000 (default 600)
  --noise SIGMA      standard deviation of each coordinate in mm (default 0.6)
  --controls COUNT   control points of the curve, 4 to 1000 (default 36)
  --tolerance MM     how far chords may leave the curve, from 0.0001 on (default 2)
  --svg FILE         draw basis, fit, projection and division
  --help             show this text

Exit status: 0 done, 1 not done, with one line that says why.
)";

namespace
{

int Count(const std::string& option, const std::string& value, int least, int most)
{
    const double count = Numbers(option, value, 1)[0];
    if (!(count >= least && count <= most) || count != std::floor(count))
        throw Failure(option + " takes a whole number from " + std::to_string(least) + " to " +
                      std::to_string(most));
    return static_cast<int>(count);
}

void TakeOption(Options& options, const std::string& option, const std::string& value)
{
    if (option == "--points") {
        options.points = Count(option, value, 20, 20000);
    } else if (option == "--controls") {
        options.controlPoints = Count(option, value, 4, 1000);
    } else if (option == "--svg") {
        options.picture = value;
    } else if (option == "--noise") {
        options.noise = Numbers(option, value, 1)[0];
        if (options.noise < 0.0 || options.noise > 1000.0)
            throw Failure("--noise takes a length from 0 to 1000");
    } else {
        options.tolerance = Numbers(option, value, 1)[0];
        if (options.tolerance < 0.0001)
            throw Failure("--tolerance takes a length from 0.0001 on");
    }
}

} // namespace

Options ReadOptions(int argc, char** argv)
{
    Options options;
    options.isHelpWanted = example::ReadCommandLine(
        argc, argv,
        {.valued = {"--points", "--noise", "--controls", "--tolerance", "--svg"},
         .take = [&](const auto& option, const auto& value) {
             TakeOption(options, option, value);
         }});
    return options;
}

} // namespace centreline
