#pragma once

#include <functional>
#include <string>
#include <vector>

namespace example
{

/// What a command line may hold besides `--help`.
struct CommandLine
{
    /// The options that a value follows, and those that stand alone.
    std::vector<std::string> valued = {};
    std::vector<std::string> flags = {};
    /// Takes one option with its value, which is empty for a flag.
    std::function<void(const std::string& option, const std::string& value)> take = {};
    /// Where the one word that is no option goes, the name of a surface; null where none may stand.
    std::string* surface = nullptr;
};

/// Hands the options to `line.take` in the order in which they stand. Returns whether `--help` was
/// among them; throws `Failure` for what `line` does not know and for values that are missing.
bool ReadCommandLine(int argc, char** argv, const CommandLine& line);

} // namespace example
