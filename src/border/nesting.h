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
    /// Whether every two rings lie in each other or apart and no edges cross.
    bool isLaminar = true;
    /// If so, the rings that have edges on top of each other or no area, in ascending order: these
    /// may reach into regions that are not around them.
    std::vector<std::uint32_t> strays;
};

/// A ring lies in another one when the region within it does, rims that touch or coincide included;
/// of two rings around the same region the earlier is around the later. "Within" is even-odd, as
/// it is for positions. A ring without area lies where its leftmost place does; where regions meet
/// there, in the lower one.
///
/// O(n log n), n being the number of points, when every two regions lie in each other or apart.
/// Where edges cross or regions overlap in part, every ring is held against every other one whose
/// box meets it; rings that overlap in part do not lie in each other, and the parent is one of
/// those around the ring that lie deepest. `rings` is finite and in range.
Nesting FindNesting(const RingPoints& rings);

} // namespace Norvek::Math::Core
