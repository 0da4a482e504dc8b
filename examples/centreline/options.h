#pragma once

#include <string>

namespace centreline
{

/// What the command line asks for; lengths in millimetres.
struct Options
{
    /// How many points are measured along the vessel.
    int points = 600;
    /// The standard deviation of each of their coordinates.
    double noise = 0.6;
    /// How many control points the curve gets.
    int controlPoints = 36;
    /// How far chords may leave the curve.
    double tolerance = 2.0;
    std::string picture;
    bool isHelpWanted = false;
};

/// The text of `--help`.
extern const char* const kHelp;

/// Reads the command line; throws `example::Failure` for what it does not understand.
Options ReadOptions(int argc, char** argv);

} // namespace centreline
