#pragma once

#include <string>

namespace example
{

/// A number with a fixed count of decimals.
std::string Fixed(double value, int digits);

/// A number with up to six decimals and no trailing zeros.
std::string ShortNumber(double value);

} // namespace example
