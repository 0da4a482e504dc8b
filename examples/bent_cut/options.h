#pragma once

#include <norvek/foundation/point3d.h>

#include <string>
#include <vector>

namespace bent_cut
{

/// What the command line asks for, in the coordinates of the surface's file.
struct Options
{
    std::string surface;
    /// The outline; without points one that fits the surface.
    std::vector<MMPoint3d<double>> points;
    /// Where the cut runs from the outline, both ways.
    MMPoint3d<double> direction{0.25, 0.1, 1.0};
    std::string picture;
    std::string notions;
    bool isHelpWanted = false;
};

/// The text of `--help`.
extern const char* const kHelp;

/// Reads the command line; throws `example::Failure` for what it does not understand.
Options ReadOptions(int argc, char** argv);

} // namespace bent_cut
