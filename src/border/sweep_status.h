#pragma once

#include <cstdint>
#include <vector>

namespace Norvek::Math::Core
{

/// Numbers in a row, as a balanced tree whose nodes are also linked to their neighbours: what lies
/// where on a sweep line. The order is that of insertion; the caller knows the geometry.
///
/// A treap (R. Seidel, C. R. Aragon, Randomized Search Trees, Algorithmica 16, 1996): every node
/// has a priority, here a hash of its number, and parents have higher ones than their children.
/// Insertion and removal take constant time on average once the place is known, searching
/// O(log n).
class SweepStatus
{
public:
    /// No number.
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// Room for the numbers 0 to `count` - 1, of which none is in the row.
    explicit SweepStatus(std::size_t count) : _nodes(count)
    {}

    /// The neighbour towards the end, `kNone` behind the last; of `kNone` the first of all.
    [[nodiscard]] std::uint32_t Next(std::uint32_t item) const
    {
        return item == kNone ? _first : _nodes[item].next;
    }

    /// The neighbour towards the front, `kNone` before the first; of `kNone` the last of all.
    [[nodiscard]] std::uint32_t Previous(std::uint32_t item) const
    {
        return item == kNone ? _last : _nodes[item].previous;
    }

    /// The first item for which `isBehind` does not hold; `kNone` when it holds for all. It has to
    /// hold for a front part of the row and for nothing else.
    template <class Predicate>
    [[nodiscard]] std::uint32_t FirstWhereNot(const Predicate& isBehind) const
    {
        std::uint32_t found = kNone;
        std::uint32_t node = _root;
        while (node != kNone) {
            if (isBehind(node)) {
                node = _nodes[node].right;
            } else {
                found = node;
                node = _nodes[node].left;
            }
        }
        return found;
    }

    /// Puts `item` behind `place`, in front of all for `kNone`.
    void InsertBehind(std::uint32_t place, std::uint32_t item);

    /// Takes `item` out.
    void Remove(std::uint32_t item);

    /// Puts `item` where `old` is, which goes out.
    void Replace(std::uint32_t old, std::uint32_t item);

private:
    struct Node
    {
        std::uint32_t parent = kNone;
        std::uint32_t left = kNone;
        std::uint32_t right = kNone;
        std::uint32_t next = kNone;
        std::uint32_t previous = kNone;
        std::uint32_t priority = 0;
    };

    // The link that leads to a node from above.
    std::uint32_t& _LinkTo(std::uint32_t item);
    void _Lift(std::uint32_t item);
    void _LinkNeighbours(std::uint32_t previous, std::uint32_t next);

    std::vector<Node> _nodes;
    std::uint32_t _root = kNone;
    std::uint32_t _first = kNone;
    std::uint32_t _last = kNone;
};

} // namespace Norvek::Math::Core
