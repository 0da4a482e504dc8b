#pragma once

#include "border/plane_graph.h"

#include <cstdint>
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
/// joined there, others along the shortest tree of diagonals of a triangulation of what lies
/// between them: bridges meet edges and each other at places only. An edge on which a place of
/// another ring lies is used in part when no diagonal leads there. Of several corners of the
/// outline at a place the one that faces the ring is taken: when the other rings turn against ring
/// 0, the outline passes through itself only where rings do.
///
/// Rings that the triangulation does not reach, since they have no area or no rim of their own, are
/// left out, all of them when edges cross. Edges of a ring on top of each other and rings without
/// area are not seen. O(n log n), n being the number of points, as long as few nodes share a place.
/// `rings` is finite and in range.
std::vector<Bridge> FindBridges(const RingPoints& rings);

} // namespace Norvek::Math::Core
