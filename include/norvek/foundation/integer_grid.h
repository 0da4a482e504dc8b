#pragma once

#include <norvek/foundation/export.h>

#include <cstdint>

/// @file
/// The greatest common divisor, and rounding of integers to a grid { offset + k * step }.
///
/// The grid functions assume a phase of 0 <= offset <= step and a step other than 0 (with a step of
/// 0 there is no grid; that is a precondition violation). Results are 32-bit and wrap.

namespace Norvek::Math::Core
{

/// The greatest common divisor of |a| and |b|; `GCD(0, 0)` is 0 and `GCD(n, 0)` is |n|. The result
/// 2^63, which only the most negative argument can give, wraps to that argument.
NORVEK_MATH_API long long GCD(long long a, long long b);

/// The smallest grid member that is not below `value`; a value on the grid is its own answer.
///
/// For a value of 0 or more that is below the phase the answer is `offset`, also when `offset`
/// equals `step` and the grid therefore has the smaller member 0: (0, 5, 5) gives 5.
NORVEK_MATH_API std::int32_t GetFirstMultipleGreaterThan(std::int32_t value, std::int32_t step,
                                                         std::int32_t offset);

/// The largest grid member that is not above `value`; a value on the grid is its own answer.
NORVEK_MATH_API std::int32_t GetFirstMultipleSmallerThan(std::int32_t value, std::int32_t step,
                                                         std::int32_t offset);

} // namespace Norvek::Math::Core
