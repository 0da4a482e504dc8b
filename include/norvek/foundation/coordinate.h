#pragma once

#include <cassert>
#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>

/// @file
/// Arithmetic on single coordinates: which types a coordinate may have, integer arithmetic that
/// wraps without undefined behaviour, and conversions that saturate.

namespace Norvek::Math::Core
{

/// True for the coordinate types of the library: `double`, `float` and the 32-bit `std::int32_t`.
template <class T>
inline constexpr bool kIsCoordinate =
    std::same_as<T, double> || std::same_as<T, float> || std::same_as<T, std::int32_t>;

/// The type of a length: that of the coordinates, and `double` for integer coordinates.
template <class T>
using LengthType = std::conditional_t<std::integral<T>, double, T>;

/// a + b. Integers wrap modulo 2^32.
template <class T>
constexpr T WrappingAdd(T a, T b)
{
    if constexpr (std::integral<T>)
        return static_cast<T>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
    else
        return a + b;
}

/// a - b. Integers wrap modulo 2^32.
template <class T>
constexpr T WrappingSubtract(T a, T b)
{
    if constexpr (std::integral<T>)
        return static_cast<T>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
    else
        return a - b;
}

/// a * b. Integers wrap modulo 2^32.
template <class T>
constexpr T WrappingMultiply(T a, T b)
{
    if constexpr (std::integral<T>)
        return static_cast<T>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
    else
        return a * b;
}

/// -a. Integers wrap: the most negative value is its own negative.
template <class T>
constexpr T WrappingNegate(T a)
{
    if constexpr (std::integral<T>)
        return WrappingSubtract(T{0}, a);
    else
        return -a;
}

/// a / b. Integers truncate towards zero, and the most negative value divided by -1 wraps; an
/// integer `b` of 0 is a precondition violation.
template <class T>
constexpr T WrappingDivide(T a, T b)
{
    if constexpr (std::integral<T>) {
        assert(b != 0);
        return b == T{-1} ? WrappingNegate(a) : a / b;
    } else {
        return a / b;
    }
}

/// Converts one coordinate. Widening is exact; `double` to `float` rounds to the nearest (beyond
/// the largest float to infinity); a real number becomes an integer by truncation towards zero,
/// saturating at the integer limits, and NaN becomes 0.
template <class To, class From>
constexpr To CoordinateCast(From value)
{
    if constexpr (std::integral<To> && std::floating_point<From>) {
        constexpr auto lowest = std::numeric_limits<To>::lowest();
        constexpr auto highest = std::numeric_limits<To>::max();
        const auto wide = static_cast<double>(value);
        if (wide != wide)
            return To{0};
        if (wide <= static_cast<double>(lowest))
            return lowest;
        if (wide >= static_cast<double>(highest))
            return highest;
        return static_cast<To>(wide);
    } else {
        return static_cast<To>(value);
    }
}

} // namespace Norvek::Math::Core
