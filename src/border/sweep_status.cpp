#include "border/sweep_status.h"

namespace Norvek::Math::Core
{

namespace
{

// Scatters the numbers, so that runs of them do not make a list of the tree (the finaliser of
// MurmurHash3).
std::uint32_t PriorityOf(std::uint32_t item)
{
    item = (item ^ (item >> 16)) * 0x85EBCA6BU;
    item = (item ^ (item >> 13)) * 0xC2B2AE35U;
    return item ^ (item >> 16);
}

} // namespace

std::uint32_t& SweepStatus::_LinkTo(std::uint32_t item)
{
    const std::uint32_t parent = _nodes[item].parent;
    if (parent == kNone)
        return _root;
    return _nodes[parent].left == item ? _nodes[parent].left : _nodes[parent].right;
}

// A rotation: the node takes the place of its parent.
void SweepStatus::_Lift(std::uint32_t item)
{
    const std::uint32_t parent = _nodes[item].parent;
    _LinkTo(parent) = item;
    _nodes[item].parent = _nodes[parent].parent;
    _nodes[parent].parent = item;
    const bool isLeft = _nodes[parent].left == item;
    std::uint32_t& inner = isLeft ? _nodes[item].right : _nodes[item].left;
    (isLeft ? _nodes[parent].left : _nodes[parent].right) = inner;
    if (inner != kNone)
        _nodes[inner].parent = parent;
    inner = parent;
}

void SweepStatus::_LinkNeighbours(std::uint32_t previous, std::uint32_t next)
{
    (previous == kNone ? _first : _nodes[previous].next) = next;
    (next == kNone ? _last : _nodes[next].previous) = previous;
}

void SweepStatus::InsertBehind(std::uint32_t place, std::uint32_t item)
{
    const std::uint32_t next = Next(place);
    Node& node = _nodes[item];
    node = Node();
    node.priority = PriorityOf(item);
    _LinkNeighbours(place, item);
    _LinkNeighbours(item, next);
    // One of the two neighbours has no child on this side: the lower one in the tree.
    if (place != kNone && _nodes[place].right == kNone) {
        _nodes[place].right = item;
        node.parent = place;
    } else if (next != kNone) {
        _nodes[next].left = item;
        node.parent = next;
    } else {
        _root = item;
    }
    while (node.parent != kNone && _nodes[node.parent].priority < node.priority)
        _Lift(item);
}

void SweepStatus::Remove(std::uint32_t item)
{
    Node& node = _nodes[item];
    while (node.left != kNone && node.right != kNone)
        _Lift(_nodes[node.left].priority > _nodes[node.right].priority ? node.left : node.right);
    const std::uint32_t child = node.left != kNone ? node.left : node.right;
    _LinkTo(item) = child;
    if (child != kNone)
        _nodes[child].parent = node.parent;
    _LinkNeighbours(node.previous, node.next);
}

void SweepStatus::Replace(std::uint32_t old, std::uint32_t item)
{
    _LinkTo(old) = item;
    _nodes[item] = _nodes[old];
    const Node& node = _nodes[item];
    if (node.left != kNone)
        _nodes[node.left].parent = item;
    if (node.right != kNone)
        _nodes[node.right].parent = item;
    _LinkNeighbours(node.previous, item);
    _LinkNeighbours(item, node.next);
}

} // namespace Norvek::Math::Core
