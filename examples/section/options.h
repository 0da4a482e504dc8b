#pragma once

#include <norvek/foundation/point3d.h>
#include <norvek/primitives/plane_equation.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace section
{

/// What the command line asks for, in the coordinates of the surface's file.
struct Options
{
    std::string surface;
    std::vector<MMPlaneEq<double>> planes;
    bool isFitWanted = false;
    /// The height between horizontal sections; 0 for none.
    double levelStep = 0.0;
    /// The two points between which the sections are kept.
    std::optional<std::pair<MMPoint3d<double>, MMPoint3d<double>>> clip;
    std::vector<MMPoint3d<double>> points;
    std::string picture;
    /// The unit of length, for labels only.
    std::string unit;
    bool isHelpWanted = false;
};

/// The text of `--help`.
extern const char* const kHelp;

/// Reads the command line; throws `Failure` for what it does not understand.
Options ReadOptions(int argc, char** argv);

} // namespace section
