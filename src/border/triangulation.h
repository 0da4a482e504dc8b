#pragma once

#include "border/plane_graph.h"

#include <array>
#include <cstdint>
#include <vector>

namespace Norvek::Math::Core
{

/// Three points of a `RingPoints`, by index, counter-clockwise.
using IndexTriangle = std::array<std::uint32_t, 3>;

/// Triangulates what lies within an odd number of rings, exactly: the triangles cover that region
/// without overlap, and no corner lies inside an edge of another triangle. Rings may touch
/// themselves and each other at points and along edges; edges that coincide cancel in pairs. Of
/// equal points the first stands for all.
///
/// False when two edges cross: `triangles` is then of no use. O(n log n), n being the number of
/// points. `rings` is finite and in range.
bool Triangulate(const RingPoints& rings, std::vector<IndexTriangle>& triangles);

/// The same for rings that are a graph already, which loses edges to it.
bool Triangulate(PlaneGraph& graph, std::vector<IndexTriangle>& triangles);

} // namespace Norvek::Math::Core
