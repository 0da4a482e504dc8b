#pragma once

#include <norvek/foundation/point3d.h>

#include <string>

namespace nearest
{

/// What the command line asks for; lengths in metres.
struct Options
{
    /// The rays that the scanner sends out from each of its two stations.
    int rays = 720;
    /// The standard deviation of the measured distances.
    double noise = 0.02;
    /// Where the questions are asked.
    MMPoint3d<double> query{9.2, 4.6, 0.0};
    /// The radius of the last question.
    double radius = 1.5;
    std::string picture;
    bool isHelpWanted = false;
};

/// The text of `--help`.
extern const char* const kHelp;

/// Reads the command line; throws `example::Failure` for what it does not understand.
Options ReadOptions(int argc, char** argv);

} // namespace nearest
