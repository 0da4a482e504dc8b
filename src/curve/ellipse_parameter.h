#pragma once

#include <norvek/foundation/point2d.h>

namespace Norvek::Math::Core
{

/// The parameters of the points of (a cos t, b sin t) whose distance from a point is smallest in
/// their neighbourhood.
struct EllipseFeet
{
    /// That of the nearest point, in (-pi, pi]; NaN when there is none.
    double nearest;
    /// That of the other one, across the longer axis; NaN where only one exists.
    double other;
};

/// Both for `point` and the radii (a, b), which may have any sign.
[[nodiscard]] EllipseFeet FindEllipseFeet(const MMPoint2d<double>& point,
                                          const MMPoint2d<double>& radii);

} // namespace Norvek::Math::Core
