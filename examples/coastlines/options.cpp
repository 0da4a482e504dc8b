#include "options.h"

#include "support/failure.h"
#include "support/numbers.h"
#include "support/options.h"

#include <cmath>

namespace coastlines
{

const char* const kHelp = R"(Usage: coastlines [OPTION]... [OUTLINES]

Nests the outlines of countries into land, lakes and islands, measures and
triangulates them, and tells in which country places lie. All on a map with true
areas.

OUTLINES is a text: a line "country NAME", then for every ring a line "ring" and its
points, longitude and latitude in degrees. Without it the program takes the outlines
that come with it.

  --at LON,LAT   tell in which country the place lies; any number (default: a place
                 in each of five countries, and one at sea)
  --svg FILE     draw the map, its triangles and the places
  --help         show this text

Exit status: 0 done, 1 not done, with one line that says why.
)";

namespace
{

void TakeOption(Options& options, const std::string& option, const std::string& value)
{
    if (option == "--svg") {
        options.picture = value;
        return;
    }
    const std::vector<double> n = example::Numbers(option, value, 2);
    if (std::abs(n[0]) > 180.0 || std::abs(n[1]) > 90.0)
        throw example::Failure("--at takes longitudes up to 180 and latitudes up to 90 degrees");
    options.places.emplace_back(n[0], n[1]);
}

} // namespace

Options ReadOptions(int argc, char** argv)
{
    Options options;
    std::string outlines;
    options.isHelpWanted = example::ReadCommandLine(
        argc, argv,
        {.valued = {"--at", "--svg"},
         .take = [&](const auto& option, const auto& value) { TakeOption(options, option, value); },
         .surface = &outlines});
    if (!outlines.empty())
        options.outlines = outlines;
    // Maseru lies in Lesotho, which is a hole in South Africa.
    if (options.places.empty())
        options.places = {{28.2, -29.5},  {22.0, -32.8}, {2.3, 48.8},
                          {-47.9, -15.8}, {138.0, 36.3}, {-30.0, 40.0}};
    return options;
}

} // namespace coastlines
