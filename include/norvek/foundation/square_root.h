#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

/// @file
/// The square root, usable in constant expressions.

namespace Norvek::Math::Core
{

/// The correctly rounded square root of a positive finite number, bit by bit in integers: the
/// schoolbook digit recurrence on a 54-bit root, whose last bit decides the rounding (a root of a
/// 53-bit number never lies half-way between two doubles).
constexpr double SquareRootBitByBit(double value)
{
    int exponent = 0;
    for (; value < 1.0; exponent -= 2)
        value *= 4.0;
    for (; value >= 4.0; exponent += 2)
        value *= 0.25;
    // value = mantissa * 2^-52 with 1 <= value < 4, and root = floor(sqrt(value) * 2^53).
    auto bits = static_cast<std::uint64_t>(value * 4503599627370496.0);
    std::uint64_t root = 0;
    std::uint64_t remainder = 0;
    for (int digit = 0; digit < 54; ++digit) {
        remainder = (remainder << 2) | ((bits >> 52) & 3);
        bits = (bits << 2) & ((std::uint64_t{1} << 54) - 1);
        const std::uint64_t trial = (root << 2) | 1;
        root <<= 1;
        if (remainder >= trial) {
            remainder -= trial;
            root |= 1;
        }
    }
    double result = static_cast<double>((root + 1) >> 1) / 4503599627370496.0;
    for (; exponent < 0; exponent += 2)
        result *= 0.5;
    for (; exponent > 0; exponent -= 2)
        result *= 2.0;
    return result;
}

/// `std::sqrt` that also runs in a constant expression, with the same bits.
constexpr double SquareRoot(double value)
{
    if (!std::is_constant_evaluated())
        return std::sqrt(value);
    if (value != value || value == 0.0 || value == std::numeric_limits<double>::infinity())
        return value;
    return value < 0.0 ? std::numeric_limits<double>::quiet_NaN() : SquareRootBitByBit(value);
}

/// The square root in single precision. The root in double precision has more than twice the
/// digits of a float, so that rounding it once more gives the correctly rounded result.
constexpr float SquareRoot(float value)
{
    return static_cast<float>(SquareRoot(static_cast<double>(value)));
}

} // namespace Norvek::Math::Core
