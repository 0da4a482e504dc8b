#pragma once

#include "border/triangulation.h"

#include <span>

namespace Norvek::Math::Core
{

/// Cuts triangles off one ring, a corner at a time, and appends them, counter-clockwise. Made for
/// rings that cross themselves: there a corner is cut off although others lie in it, the smallest
/// first, so that the areas add up to that of the ring, with its sign taken off, as long as every
/// rest of the ring has a corner that turns its way. `ring` holds indices of `points`.
///
/// Quadratic in the number of points at worst, as when no corner is free; a grid over the corners
/// that turn the other way keeps ordinary rings far from that.
void ClipEars(std::span<const PlanePoint> points, std::span<const std::uint32_t> ring,
              std::vector<IndexTriangle>& triangles);

} // namespace Norvek::Math::Core
