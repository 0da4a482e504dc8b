#pragma once

#include <norvek/foundation/point3d.h>

namespace Norvek::Math::Core
{

/// Rounds to single precision and back.
///
/// The body lies in a translation unit of its own: GCC 12 at -O2 and above can drop the pair of
/// conversions when it vectorises a row of them, and callers depend on the rounding.
double RoundToFloat(double value);

/// Rounds all three coordinates.
inline MMPoint3d<double> RoundToFloat(const MMPoint3d<double>& point)
{
    return {RoundToFloat(point.x), RoundToFloat(point.y), RoundToFloat(point.z)};
}

} // namespace Norvek::Math::Core
