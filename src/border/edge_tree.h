#pragma once

#include "border/segments.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

namespace Norvek::Math::Core
{

/// Boxes over the edges of one ring and, halving the ring again and again, over runs of them. Edges
/// that follow each other lie together, so that nothing need be sorted: building is linear, and two
/// rings that meet in k places are compared in about k log n steps.
class EdgeTree
{
public:
    /// Edge i runs from point i to the next one, the last back to the first. An open ring has no
    /// such last edge. The points have to live as long.
    EdgeTree(std::span<const PlanePoint> points, bool isClosed);

    [[nodiscard]] std::uint32_t NumEdges() const
    {
        return _numEdges;
    }

    /// Whether there is an edge from the last point to the first.
    [[nodiscard]] bool IsClosed() const
    {
        return _numEdges == _points.size();
    }

    /// The ends of an edge.
    [[nodiscard]] const PlanePoint& Begin(std::uint32_t edge) const
    {
        return _points[edge];
    }

    /// As above.
    [[nodiscard]] const PlanePoint& End(std::uint32_t edge) const
    {
        return _points[edge + 1 == _points.size() ? 0 : edge + 1];
    }

    /// The box of all edges; the ring has one.
    [[nodiscard]] const PlaneBox& Bounds() const
    {
        return _boxes[1];
    }

    /// Calls `visit(edge)` for the edges whose boxes meet `box`, in ascending order, until one
    /// returns true. Returns whether one did.
    template <class Visit>
    bool AnyEdge(const PlaneBox& box, const Visit& visit) const
    {
        return _numEdges > 0 && _AnyEdge(1, box, visit);
    }

    /// Calls `visit(edge, other edge)` for pairs whose boxes meet, until one returns true. Returns
    /// whether one did.
    template <class Visit>
    bool AnyPair(const EdgeTree& other, const Visit& visit) const
    {
        return _numEdges > 0 && other._numEdges > 0 && _AnyPair(1, other, 1, visit);
    }

    /// The same over the pairs of this ring's own edges, the first one being the lower.
    template <class Visit>
    bool AnyOwnPair(const Visit& visit) const
    {
        return _numEdges > 0 && _AnyOwnPair(1, visit);
    }

private:
    static constexpr std::uint32_t kLeafSize = 4;

    [[nodiscard]] bool _IsLeaf(std::uint32_t node) const
    {
        return node >= _numLeaves;
    }

    [[nodiscard]] std::uint32_t _FirstEdge(std::uint32_t leaf) const
    {
        return (leaf - _numLeaves) * kLeafSize;
    }

    [[nodiscard]] std::uint32_t _EndEdge(std::uint32_t leaf) const
    {
        const std::uint32_t end = _FirstEdge(leaf) + kLeafSize;
        return end < _numEdges ? end : _numEdges;
    }

    [[nodiscard]] PlaneBox _EdgeBox(std::uint32_t edge) const
    {
        return PlaneBox::Of(Begin(edge), End(edge));
    }

    template <class Visit>
    bool _AnyEdge(std::uint32_t node, const PlaneBox& box, const Visit& visit) const
    {
        if (!_boxes[node].Meets(box))
            return false;
        if (!_IsLeaf(node))
            return _AnyEdge(2 * node, box, visit) || _AnyEdge(2 * node + 1, box, visit);
        for (std::uint32_t edge = _FirstEdge(node); edge < _EndEdge(node); ++edge) {
            if (_EdgeBox(edge).Meets(box) && visit(edge))
                return true;
        }
        return false;
    }

    template <class Visit>
    bool _AnyPair(std::uint32_t node, const EdgeTree& other, std::uint32_t otherNode,
                  const Visit& visit) const
    {
        if (!_boxes[node].Meets(other._boxes[otherNode]))
            return false;
        // The node nearer to the root of its tree is opened; both are about as large then.
        if (!_IsLeaf(node) && (other._IsLeaf(otherNode) || node <= otherNode)) {
            return _AnyPair(2 * node, other, otherNode, visit) ||
                   _AnyPair(2 * node + 1, other, otherNode, visit);
        }
        if (!other._IsLeaf(otherNode)) {
            return _AnyPair(node, other, 2 * otherNode, visit) ||
                   _AnyPair(node, other, 2 * otherNode + 1, visit);
        }
        for (std::uint32_t edge = _FirstEdge(node); edge < _EndEdge(node); ++edge) {
            const PlaneBox box = _EdgeBox(edge);
            for (std::uint32_t otherEdge = other._FirstEdge(otherNode);
                 otherEdge < other._EndEdge(otherNode); ++otherEdge)
            {
                if (box.Meets(other._EdgeBox(otherEdge)) && visit(edge, otherEdge))
                    return true;
            }
        }
        return false;
    }

    template <class Visit>
    bool _AnyOwnPair(std::uint32_t node, const Visit& visit) const
    {
        if (!_IsLeaf(node)) {
            return _AnyOwnPair(2 * node, visit) || _AnyOwnPair(2 * node + 1, visit) ||
                   _AnyPair(2 * node, *this, 2 * node + 1, visit);
        }
        for (std::uint32_t edge = _FirstEdge(node); edge < _EndEdge(node); ++edge) {
            for (std::uint32_t later = edge + 1; later < _EndEdge(node); ++later) {
                if (_EdgeBox(edge).Meets(_EdgeBox(later)) && visit(edge, later))
                    return true;
            }
        }
        return false;
    }

    std::span<const PlanePoint> _points;
    std::uint32_t _numEdges;
    // A power of 2. The nodes are numbered as in a heap: 1 is the root, 2 i and 2 i + 1 are below
    // i.
    std::uint32_t _numLeaves = 1;
    std::vector<PlaneBox> _boxes;
};

/// Calls `visit(i, j)`, i < j, for the pairs of rings whose boxes meet, in no particular order.
/// Rings that are spread along x are compared with their neighbours only.
template <class Visit>
void ForEachMeetingPair(const std::vector<EdgeTree>& rings, const Visit& visit)
{
    std::vector<std::uint32_t> byLeft(rings.size());
    std::iota(byLeft.begin(), byLeft.end(), 0U);
    const auto left = [&](std::uint32_t ring) {
        return rings[ring].Bounds().low.x;
    };
    std::sort(byLeft.begin(), byLeft.end(),
              [&](std::uint32_t a, std::uint32_t b) { return left(a) < left(b); });
    for (auto i = byLeft.begin(); i != byLeft.end(); ++i) {
        const PlaneBox& box = rings[*i].Bounds();
        for (auto j = i + 1; j != byLeft.end() && left(*j) <= box.high.x; ++j) {
            if (box.Meets(rings[*j].Bounds()))
                visit(std::min(*i, *j), std::max(*i, *j));
        }
    }
}

} // namespace Norvek::Math::Core
