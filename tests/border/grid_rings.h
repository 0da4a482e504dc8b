#pragma once

#include "border/region_support.h"
#include "support/random.h"

namespace norvek_test
{

/// A ring of a few points on a small grid, where nearly everything touches.
inline Ring GridRing(Random& random, int side)
{
    Ring ring(static_cast<std::size_t>(random.Integer(1, 8)));
    for (PlanePoint& p : ring)
        p = PlanePoint(random.Integer(0, side), random.Integer(0, side));
    return ring;
}

} // namespace norvek_test
