#pragma once

#include <norvek/curve/nurbs.h>
#include <norvek/foundation/point3d.h>

namespace Norvek::Math::Core
{

/// The parameter between `from` and `to` of the point of the curve that is nearest to `point`;
/// false when there is none, or the curve cannot be taken apart. On equal distances the one that
/// is found first, an end of the range before others.
[[nodiscard]] bool FindNearestOnCurve(const NURBSCurv& curve, double from, double to,
                                      const MMPoint3d<double>& point, double& t);

} // namespace Norvek::Math::Core
