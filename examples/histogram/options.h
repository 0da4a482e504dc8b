#pragma once

#include <string>

namespace histogram
{

/// What the command line asks for.
struct Options
{
    std::string surface;
    /// The length of an interval; 0 for a round one that makes about forty.
    double step = 0.0;
    std::string picture;
    /// The unit of length, for labels only.
    std::string unit;
    bool isHelpWanted = false;
};

/// The text of `--help`.
extern const char* const kHelp;

/// Reads the command line; throws `example::Failure` for what it does not understand.
Options ReadOptions(int argc, char** argv);

} // namespace histogram
