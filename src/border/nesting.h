#pragma once

#include "border/plane_graph.h"

#include <cstdint>
#include <vector>

namespace Norvek::Math::Core
{

/// Which rings lie in which.
struct Nesting
{
    /// The innermost ring around each ring, `PlaneGraph::kNone` where there is none.
    std::vector<std::uint32_t> parents;
    /// The number of rings around each ring.
    std::vector<std::uint32_t> orders;
};

/// A ring lies in another one when the region within it does, rims that touch or coincide included;
/// of two rings around the same region the earlier is around the later. "Within" is even-odd, as
/// it is for positions. A ring without area lies where its leftmost place does; where regions meet
/// there, in the lower one.
///
/// O(n log n) for rings that do not cross, n being the number of points. Where edges cross, every
/// ring is held against every other one whose box holds it, in time proportional to the product of
/// their points, and rings that cross do not lie in each other. `rings` is finite and in range.
Nesting FindNesting(const RingPoints& rings);

} // namespace Norvek::Math::Core
