#include "border/edge_tree.h"

#include <limits>

namespace Norvek::Math::Core
{

EdgeTree::EdgeTree(std::span<const PlanePoint> points, bool isClosed)
    : _points(points),
      _numEdges(static_cast<std::uint32_t>(points.size()))
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    if (!isClosed && _numEdges > 0)
        --_numEdges;
    while (_numLeaves * kLeafSize < _numEdges)
        _numLeaves *= 2;
    // Boxes that meet nothing, for the leaves beyond the last edge.
    _boxes.assign(std::size_t{2} * _numLeaves, {{kInfinity, kInfinity}, {-kInfinity, -kInfinity}});
    for (std::uint32_t edge = 0; edge < _numEdges; ++edge)
        _boxes[_numLeaves + edge / kLeafSize].Add(_EdgeBox(edge));
    for (std::uint32_t node = _numLeaves - 1; node > 0; --node) {
        _boxes[node] = _boxes[2 * node];
        _boxes[node].Add(_boxes[2 * node + 1]);
    }
}

} // namespace Norvek::Math::Core
