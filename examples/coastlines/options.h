#pragma once

#include <norvek/foundation/point2d.h>

#include <string>
#include <vector>

namespace coastlines
{

/// What the command line asks for.
struct Options
{
    std::string outlines = EXAMPLE_DATA "/countries_110m.txt";
    /// Degrees of longitude and latitude.
    std::vector<MMPoint2d<double>> places;
    std::string picture;
    bool isHelpWanted = false;
};

/// The text of `--help`.
extern const char* const kHelp;

/// Reads the command line; throws `example::Failure` for what it does not understand.
Options ReadOptions(int argc, char** argv);

} // namespace coastlines
