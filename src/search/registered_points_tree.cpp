#include <norvek/search/registered_points_tree.h>

#include <cmath>
#include <stdexcept>

namespace
{

using Costs = MDataArray2D<MRegistrationCostInfo>;
constexpr std::uint32_t kNoIndex = MRegistered3DPointsTree::kNoIndex;

[[noreturn]] void ThrowOutOfRange()
{
    throw std::out_of_range("invalid vector<T> subscript");
}

// Before anything is read: a table of another size would be read outside, or at the wrong pairs.
template <class T>
void CheckSquare(const MDataArray2D<T>& table, std::size_t size)
{
    if (table.GetNumRows() != size || table.GetNumColumns() != size)
        ThrowOutOfRange();
}

// A pair of sets of which one is in the tree; indices `kNoIndex` where there is none.
struct Edge
{
    std::uint32_t inTree = kNoIndex;
    std::uint32_t outside = kNoIndex;
    MRegistrationCostInfo cost;
};

// The order of the costs, completed to a strict weak one: a NaN cost, which is neither less nor
// greater than a number, comes after them. Otherwise the least edge would depend on the order in
// which edges are looked at.
bool IsLess(const MRegistrationCostInfo& a, const MRegistrationCostInfo& b)
{
    if (a.outliers == b.outliers && (std::isnan(a.cost) || std::isnan(b.cost)))
        return !std::isnan(a.cost);
    return a < b;
}

// Ties go to the lower index in the tree, then to the lower one outside.
bool IsBetter(const Edge& a, const Edge& b)
{
    if (IsLess(a.cost, b.cost) || IsLess(b.cost, a.cost))
        return IsLess(a.cost, b.cost);
    return a.inTree != b.inTree ? a.inTree < b.inTree : a.outside < b.outside;
}

/// Hands out the edges of the tree one after the other. For each set outside it keeps the best edge
/// to the tree as it is, so that a step compares n edges and not all of them.
class EdgeSource
{
public:
    explicit EdgeSource(const Costs& costs) : _costs(costs), _best(costs.GetNumRows())
    {
        _outside.reserve(_best.size());
        for (std::uint32_t j = 1; j < _best.size(); ++j)
            _outside.push_back(j);
        _Join(0);
    }

    // The best edge, whose outer end is in the tree from now on; indices `kNoIndex` when no set is
    // left that a finite cost joins.
    Edge Next()
    {
        Edge best;
        std::size_t place = 0;
        for (std::size_t k = 0; k < _outside.size(); ++k) {
            const Edge& edge = _best[_outside[k]];
            if (edge.inTree != kNoIndex && (best.inTree == kNoIndex || IsBetter(edge, best))) {
                best = edge;
                place = k;
            }
        }
        if (best.inTree != kNoIndex) {
            _outside[place] = _outside.back();
            _outside.pop_back();
            _Join(best.outside);
        }
        return best;
    }

private:
    // The new set offers an edge to each one outside.
    void _Join(std::uint32_t i)
    {
        for (const std::uint32_t j : _outside) {
            const Edge edge{i, j, _costs(i, j)};
            if (!edge.cost.GetInfiniteCost() &&
                (_best[j].inTree == kNoIndex || IsBetter(edge, _best[j])))
                _best[j] = edge;
        }
    }

    const Costs& _costs;
    std::vector<Edge> _best;
    std::vector<std::uint32_t> _outside;
};

} // namespace

// Both tables are read at i + n j. (The cost that an edge keeps is the one that it was chosen by.)
// Built aside: running out of memory leaves the old tree.
bool MRegistered3DPointsTree::Build(const MDataArray2D<MRegistrationCostInfo>& costs,
                                    const MDataArray2D<MMTransformMatrix>& pairwise,
                                    const std::vector<MMTransformMatrix>& absolute)
{
    const std::size_t count = absolute.size();
    if (count < 2)
        return false;
    CheckSquare(costs, count);
    CheckSquare(pairwise, count);
    std::vector<Node> nodes(count);
    for (std::size_t i = 0; i < count; ++i)
        nodes[i].worldTransform = absolute[i];
    EdgeSource source(costs);
    for (Edge edge = source.Next(); edge.outside != kNoIndex; edge = source.Next()) {
        nodes[edge.inTree].children.push_back(edge.outside);
        Node& joined = nodes[edge.outside];
        joined.parent = edge.inTree;
        joined.relativeTransform = pairwise(edge.inTree, edge.outside);
        joined.cost = edge.cost;
    }
    _nodes.swap(nodes);
    _root = 0;
    return true;
}

// A parent must be in the tree, so that walking from the root meets every set that has one.
std::uint32_t MRegistered3DPointsTree::AddNode(std::uint32_t parent,
                                               const MMTransformMatrix& relative,
                                               const MRegistrationCostInfo& cost)
{
    const bool isRoot = _nodes.empty() && parent == kNoIndex;
    if (!isRoot && !IsInTree(parent))
        ThrowOutOfRange();
    const auto index = static_cast<std::uint32_t>(_nodes.size());
    Node node;
    node.worldTransform = relative;
    if (!isRoot) {
        node.relativeTransform = relative;
        node.worldTransform.PreMultiply(_nodes[parent].worldTransform);
        node.parent = parent;
        node.cost = cost;
    }
    _nodes.push_back(std::move(node));
    if (isRoot)
        _root = index;
    else
        _nodes[parent].children.push_back(index);
    return index;
}

void MRegistered3DPointsTree::SetRelativeTransform(std::size_t index,
                                                   const MMTransformMatrix& relative)
{
    if (index >= _nodes.size())
        ThrowOutOfRange();
    _nodes[index].relativeTransform = relative;
}

void MRegistered3DPointsTree::SetWorldTransform(std::size_t index, const MMTransformMatrix& world)
{
    if (index >= _nodes.size())
        ThrowOutOfRange();
    _nodes[index].worldTransform = world;
}

// Depth first, with the sets that wait in a vector: a chain of scans is as deep as it is long.
void MRegistered3DPointsTree::UpdateWcsTransforms()
{
    if (_root >= _nodes.size())
        return;
    MMTransformMatrix above = _nodes[_root].worldTransform;
    std::vector<std::uint32_t> waiting{_root};
    while (!waiting.empty()) {
        Node& node = _nodes[waiting.back()];
        waiting.pop_back();
        if (node.parent != kNoIndex)
            above = _nodes[node.parent].worldTransform;
        node.worldTransform = node.relativeTransform;
        node.worldTransform.PreMultiply(above);
        // The last goes in first, so that children are visited in the order of the list.
        waiting.insert(waiting.end(), node.children.rbegin(), node.children.rend());
    }
}

const MRegistered3DPointsTree::Node& MRegistered3DPointsTree::GetNode(std::size_t index) const
{
    if (index >= _nodes.size())
        ThrowOutOfRange();
    return _nodes[index];
}

bool MRegistered3DPointsTree::IsInTree(std::size_t index) const
{
    return GetNode(index).parent != kNoIndex || index == _root;
}
