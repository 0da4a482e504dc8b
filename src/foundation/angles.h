#pragma once

#include <norvek/foundation/constants.h>

namespace Norvek::Math::Core
{

/// Degrees to radians: multiplied by pi first, then divided, which fixes the last bit.
constexpr double DegreesToRadians(double degrees)
{
    return degrees * CMathConst::kPi / 180.0;
}

/// Radians to degrees: multiplied by 180 first, then divided.
constexpr double RadiansToDegrees(double radians)
{
    return radians * 180.0 / CMathConst::kPi;
}

} // namespace Norvek::Math::Core
