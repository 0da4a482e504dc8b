#include "search/median_value.h"

#include <norvek/search/kd_tree_point_locator.h>

#include <cassert>
#include <cmath>
#include <limits>
#include <utility>

namespace
{

// A point on its way to its leaf. Four numbers, so that the coordinates of one axis lie a fixed
// stride apart and a record moves in two registers.
struct Record
{
    double coordinate[3];
    std::uint64_t index;
};

static_assert(sizeof(Record) == 4 * sizeof(double));

constexpr std::size_t kStride = sizeof(Record) / sizeof(double);

void MakeBox(const Record* records, std::size_t count, double (&lower)[3], double (&upper)[3])
{
    for (int axis = 0; axis < 3; ++axis) {
        double low = records[0].coordinate[axis];
        double high = low;
        for (std::size_t i = 1; i < count; ++i) {
            const double value = records[i].coordinate[axis];
            low = value < low ? value : low;
            high = value > high ? value : high;
        }
        lower[axis] = low;
        upper[axis] = high;
    }
}

// The axis of the largest extent, the lower one of equals.
std::uint32_t WidestAxis(const double (&lower)[3], const double (&upper)[3])
{
    std::uint32_t widest = 0;
    for (std::uint32_t axis = 1; axis < 3; ++axis) {
        if (upper[axis] - lower[axis] > upper[widest] - lower[widest])
            widest = axis;
    }
    return widest;
}

// (low + high) / 2; halved first where the sum would overflow.
double Mean(double low, double high)
{
    const double sum = low + high;
    return std::isfinite(sum) ? sum * 0.5 : low * 0.5 + high * 0.5;
}

// Moves the records with a coordinate below `value` (or at most that) to the front of `to`, the
// others behind them, both in their order, and returns how many are in front. The place is chosen
// without a branch: near the median every other one would be guessed wrong.
template <class IsLeft>
std::size_t PartBy(const Record* from, Record* to, std::size_t count, std::uint32_t axis,
                   IsLeft isLeft)
{
    std::size_t leftCount = 0;
    for (std::size_t i = 0; i < count; ++i)
        leftCount += isLeft(from[i].coordinate[axis]) ? 1U : 0U;
    std::size_t left = 0;
    std::size_t right = leftCount;
    for (std::size_t i = 0; i < count; ++i) {
        const bool goesLeft = isLeft(from[i].coordinate[axis]);
        to[goesLeft ? left : right] = from[i];
        left += goesLeft ? 1U : 0U;
        right += goesLeft ? 0U : 1U;
    }
    return leftCount;
}

} // namespace

// Builds the tree of a locator.
//
// The described tree sorts every node along its axis and cuts the order at the middle, moved down
// to the lower end of the run of numbers equal to the middle one, or up to its upper end where that
// run begins the order. (Of a lower and an upper end the lower always wins, by a comparison of
// unsigned differences that is meant.) So of the order only the middle number is needed: what is
// below it goes left. Selecting and parting take linear time, where sorting takes n log n, and
// keep the order of the indices, so that the leaves list theirs ascending.
class MKDTreePointLocator::_Builder
{
public:
    _Builder(MKDTreePointLocator& locator, const std::vector<MMPoint3d<double>>& points)
        : _locator(locator)
    {
        _records.reserve(points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const MMPoint3d<double>& p = points[i];
            if (std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z))
                _records.push_back({{p.x, p.y, p.z}, i});
        }
        _other.resize(_records.size());
        _scratch.resize(_records.size());
        _locator._points.reserve(_records.size());
        _locator._indices.reserve(_records.size());
    }

    void Build()
    {
        if (_records.empty())
            return;
        _BuildNode(_records.data(), _other.data(), _records.size());
        _locator._nodes.shrink_to_fit();
        _locator._boxes.shrink_to_fit();
    }

private:
    void _AddLeaf(const Record* records, std::size_t count)
    {
        _locator._nodes.push_back({std::numeric_limits<double>::quiet_NaN(),
                                   static_cast<std::uint32_t>(_locator._points.size()),
                                   static_cast<std::uint32_t>(count)});
        for (std::size_t i = 0; i < count; ++i) {
            const double(&p)[3] = records[i].coordinate;
            _locator._points.emplace_back(p[0], p[1], p[2]);
            _locator._indices.push_back(static_cast<std::uint32_t>(records[i].index));
        }
    }

    // The records go over to the same places of `other`, and from there back again a level below.
    void _BuildNode(Record* records, Record* other, std::size_t count)
    {
        const std::size_t place = _locator._nodes.size();
        _Box box;
        MakeBox(records, count, box.lower, box.upper);
        _locator._boxes.push_back(box);
        const std::uint32_t axis = WidestAxis(box.lower, box.upper);
        const double lowest = box.lower[axis];
        if (count <= _locator._bucketSize || box.upper[axis] == lowest) {
            _AddLeaf(records, count);
            return;
        }
        _locator._nodes.emplace_back();
        const double middle = Norvek::Math::Core::SelectValue(
            &records[0].coordinate[axis], kStride, count, (count + 1) / 2, _scratch.data());
        const std::size_t leftCount =
            middle == lowest
                ? PartBy(records, other, count, axis, [middle](double c) { return c <= middle; })
                : PartBy(records, other, count, axis, [middle](double c) { return c < middle; });
        _BuildNode(other, records, leftCount);
        const std::size_t right = _locator._nodes.size();
        _BuildNode(other + leftCount, records + leftCount, count - leftCount);
        const auto& boxes = _locator._boxes;
        _locator._nodes[place] = {Mean(boxes[place + 1].upper[axis], boxes[right].lower[axis]),
                                  static_cast<std::uint32_t>(right), axis};
    }

    MKDTreePointLocator& _locator;
    std::vector<Record> _records;
    std::vector<Record> _other;
    std::vector<double> _scratch;
};

// Built beside the old one, so that running out of memory leaves a whole tree behind.
void MKDTreePointLocator::BuildLocator(const std::vector<MMPoint3d<double>>& points)
{
    assert(points.size() <= 0xFFFFFFFFU);
    MKDTreePointLocator built;
    built._bucketSize = _bucketSize;
    built._numPoints = static_cast<std::uint32_t>(points.size());
    _Builder(built, points).Build();
    *this = std::move(built);
}
