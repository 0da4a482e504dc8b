#pragma once

#include <norvek/foundation/point3d.h>

#include <string>

namespace registration
{

/// What the command line asks for.
struct Options
{
    std::string surface = EXAMPLE_DATA "/jacksboro.asc";
    /// The motion of the second crop: degrees about a steep axis through its middle, and a shift.
    double turn = 1.5;
    MMPoint3d<double> shift{60.0, -40.0, 90.0};
    /// The standard deviation of the noise on its points.
    double noise = 2.0;
    std::string picture;
    bool isHelpWanted = false;
};

/// The text of `--help`.
extern const char* const kHelp;

/// Reads the command line; throws `example::Failure` for what it does not understand.
Options ReadOptions(int argc, char** argv);

} // namespace registration
