#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace example
{

/// The largest magnitude of a number that is taken from a file or the command line: the powers that
/// a program takes of it stay finite.
inline constexpr double kLargestNumber = 1e20;

/// Reads exactly `count` numbers with commas between, the value of a command-line option. Throws
/// `Failure` with the name of the option for anything else, and for numbers out of range.
std::vector<double> Numbers(const std::string& option, const std::string& text, std::size_t count);

} // namespace example
