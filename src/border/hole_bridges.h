#pragma once

#include "border/plane_graph.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Norvek::Math::Core
{

/// A step by which an outline takes in a ring: behind its node `to` it goes over to the node `from`
/// of the ring, round the ring, over a copy of `from` back to a copy of `to`, and on.
///
/// Nodes are numbered: the points of the rings come first, then the copies of `from` and `to` of
/// each step in turn.
struct Bridge
{
    std::uint32_t ring;
    std::uint32_t from;
    std::uint32_t to;
};

/// The steps that make one outline of all rings, ring 0 to begin with. Rings that share a place are
/// joined there; otherwise the left end of a ring is joined to the last place before it in the same
/// gap of a sweep, which nothing hides from it (see `Triangulate`). No bridge meets an edge or
/// another bridge but at places, or along the edge on which a left end lies when that sees no other
/// place. Of several corners of the outline at a place the one that faces the ring is taken:
/// when the other rings turn against ring 0, the outline passes through itself only where rings do.
///
/// Nothing when edges cross. O(n log n), n being the number of points, as long as few nodes share a
/// place. `rings` is finite and in range, and no ring is empty.
std::optional<std::vector<Bridge>> FindBridges(const RingPoints& rings);

} // namespace Norvek::Math::Core
