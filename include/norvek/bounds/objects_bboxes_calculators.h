#pragma once

#include <norvek/bounds/bounding_box.h>

/// Boxes of simple objects.
namespace ObjectsBBoxesCalculators
{

/// The integer box around an edge that tapers from radius `r1` at `p1` to radius `r2` at `p2`.
///
/// On each axis it runs from min(p1 - r1, p2 - r2) to max(p1 + r1, p2 + r2), both truncated towards
/// zero (so the box may be up to one unit short on either side) and saturated at the integer
/// limits; NaN counts as 0. The two corners are added to an empty box, so that limits in the wrong
/// order (from negative radii) come out ordered.
[[nodiscard]] NORVEK_MATH_API M3DBoundingBox<std::int32_t>
GetGradientGraphEgdeBBox(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2, double r1,
                         double r2);

} // namespace ObjectsBBoxesCalculators
