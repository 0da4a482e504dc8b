#include <norvek/search/kd_tree_point_locator.h>

#include <algorithm>
#include <cmath>
#include <limits>

// Notation: q the query, p a point, d2 = |q - p|^2 summed as (dx^2 + dy^2) + dz^2, best the d2 to
// beat. The offset of a cell along an axis is how far q lies outside of its sides there.
//
// A cell, or the box of its points, is passed over when its squared offsets, summed in the same
// order as d2, are not below best. Rounding does not matter: subtraction, squares and sums are
// monotone, so that no point in it has a d2 below that sum. The described test, of a ball with a
// rounded radius against the sides, could miss a point by its last digit; otherwise the answers
// are the same.
//
// A query among the points needs few leaves, and the sides tell enough about the others. One far
// from all points would enter most of them: seen from afar, cells are all equally near, and only
// the boxes of what they hold tell them apart. So after a few leaves the search goes on by boxes,
// the nearest first. That leaves the described order, in which the first of equally near points
// wins; a tie is then settled by asking which the order meets first.

namespace
{

using Point = MMPoint3d<double>;

// More than the depth of a tree of 2^32 points. A split beside a long run of equal coordinates may
// take off a single point; among four splits one axis comes twice, and the second time the run
// goes, half of the points with it. A run that is split off whole leaves one axis less to split.
constexpr std::size_t kMostPending = 4 * 32 + 16;

// Leaves after which the search for the nearest goes on by boxes.
constexpr int kPatience = 8;

double Square(double x)
{
    return x * x;
}

double SquaredDistance(const Point& a, const Point& b)
{
    return Square(a.x - b.x) + Square(a.y - b.y) + Square(a.z - b.z);
}

bool IsFinite(const Point& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// How far q lies outside of [low, high].
double Outside(double q, double low, double high)
{
    return std::max(std::max(low - q, q - high), 0.0);
}

double SumOfSquares(const double (&offset)[3])
{
    return Square(offset[0]) + Square(offset[1]) + Square(offset[2]);
}

bool IsNearer(const MFoundPoint& a, const MFoundPoint& b)
{
    return a.distance < b.distance || (a.distance == b.distance && a.index < b.index);
}

// The `count` nearest, in ascending order while they are few, in a heap with the farthest on top
// when they are many. A cell as far as the farthest may still hold a lower index.
class SeveralNearest
{
public:
    static constexpr int kLeavesBySides = kPatience;

    SeveralNearest(std::vector<MFoundPoint>& found, std::size_t count)
        : _found(found),
          _count(count)
    {}

    [[nodiscard]] bool MayHold(double squared) const
    {
        return squared <= _farthest;
    }

    [[nodiscard]] bool MayTie(double squared) const
    {
        return squared <= _farthest;
    }

    void Visit(double squared, std::uint32_t place, const std::uint32_t* indices)
    {
        if (!(squared <= _farthest))
            return;
        const MFoundPoint point{indices[place], squared};
        if (_count <= kFew)
            _Insert(point);
        else
            _Heap(point);
    }

    void VisitTie(double squared, std::uint32_t place, const std::uint32_t* indices)
    {
        Visit(squared, place, indices);
    }

    // Puts them in order, with distances instead of squares.
    void Finish()
    {
        if (_count > kFew)
            std::sort_heap(_found.begin(), _found.end(), IsNearer);
        for (MFoundPoint& point : _found)
            point.distance = std::sqrt(point.distance);
    }

private:
    static constexpr std::size_t kFew = 32;

    void _Insert(const MFoundPoint& point)
    {
        if (_found.size() < _count)
            _found.push_back(point);
        else if (!IsNearer(point, _found.back()))
            return;
        std::size_t i = _found.size() - 1;
        for (; i > 0 && IsNearer(point, _found[i - 1]); --i)
            _found[i] = _found[i - 1];
        _found[i] = point;
        if (_found.size() == _count)
            _farthest = _found.back().distance;
    }

    void _Heap(const MFoundPoint& point)
    {
        if (_found.size() == _count) {
            if (!IsNearer(point, _found.front()))
                return;
            std::pop_heap(_found.begin(), _found.end(), IsNearer);
            _found.pop_back();
        }
        _found.push_back(point);
        std::push_heap(_found.begin(), _found.end(), IsNearer);
        if (_found.size() == _count)
            _farthest = _found.front().distance;
    }

    std::vector<MFoundPoint>& _found;
    std::size_t _count;
    // Squares that overflow are not found.
    double _farthest = std::numeric_limits<double>::max();
};

struct WithinRadius
{
    // To the end: the radius does not shrink, and the sides tell enough.
    static constexpr int kLeavesBySides = std::numeric_limits<int>::max();

    std::vector<MFoundPoint>& found;
    double limit;

    [[nodiscard]] bool MayHold(double squared) const
    {
        return squared <= limit;
    }

    [[nodiscard]] bool MayTie(double squared) const
    {
        return squared <= limit;
    }

    void Visit(double squared, std::uint32_t place, const std::uint32_t* indices) const
    {
        if (squared <= limit)
            found.push_back({indices[place], std::sqrt(squared)});
    }

    void VisitTie(double squared, std::uint32_t place, const std::uint32_t* indices) const
    {
        Visit(squared, place, indices);
    }
};

// The greatest number whose root is at most `radius`: comparing with it is comparing distances, to
// the last bit.
double LargestSquare(double radius)
{
    double limit = std::min(radius * radius, std::numeric_limits<double>::max());
    while (std::sqrt(limit) > radius)
        limit = std::nextafter(limit, 0.0);
    while (limit < std::numeric_limits<double>::max()) {
        const double next = std::nextafter(limit, std::numeric_limits<double>::max());
        if (std::sqrt(next) > radius)
            break;
        limit = next;
    }
    return limit;
}

} // namespace

// One search. The visitor tells whether a cell may hold what it looks for and takes the points;
// the forms for ties count in what is as far as the best.
template <class Visitor>
class MKDTreePointLocator::_Search
{
public:
    _Search(const MKDTreePointLocator& locator, const Point& query, Visitor& visitor)
        : _locator(locator),
          _nodes(locator._nodes.data()),
          _query(query),
          _q{query.x, query.y, query.z},
          _visitor(visitor)
    {}

    // Down to the leaf on the side of the query, then through what was left aside, the last first.
    void Run()
    {
        Cell cell{};
        for (int axis = 0; axis < 3; ++axis)
            cell.offset[axis] =
                Outside(_q[axis], _locator._boxes[0].lower[axis], _locator._boxes[0].upper[axis]);
        cell.squared = SumOfSquares(cell.offset);
        _cells[_count++] = cell;
        for (int leaves = 0; leaves < Visitor::kLeavesBySides; ++leaves) {
            do {
                if (_count == 0)
                    return;
                cell = _cells[--_count];
            } while (!_visitor.MayHold(cell.squared));
            const _Node& leaf = _Descend(cell);
            if (leaves == 0 && _IsFarFrom(static_cast<std::uint32_t>(&leaf - _nodes)))
                leaves = Visitor::kLeavesBySides - 1;
            const std::uint32_t last = leaf.firstOrRight + leaf.countOrAxis;
            for (std::uint32_t i = leaf.firstOrRight; i < last; ++i)
                _visitor.Visit(SquaredDistance(_query, _locator._points[i]), i,
                               _locator._indices.data());
        }
        _RunByBoxes();
    }

private:
    // A cell that was left aside.
    struct Cell
    {
        double offset[3];
        double squared;
        std::uint32_t node;
    };

    struct Boxed
    {
        double squared;
        std::uint32_t node;
    };

    const _Node& _Descend(Cell& cell)
    {
        const _Node* node = _nodes + cell.node;
        while (!node->IsLeaf()) {
            const std::uint32_t axis = node->countOrAxis;
            const double beyond = _q[axis] - node->split;
            const auto left = static_cast<std::uint32_t>(node - _nodes) + 1;
            const std::uint32_t right = node->firstOrRight;
            Cell& far = _cells[_count];
            far = cell;
            far.offset[axis] = std::abs(beyond);
            far.squared = SumOfSquares(far.offset);
            far.node = beyond < 0.0 ? right : left;
            _count += _visitor.MayHold(far.squared) ? 1U : 0U;
            node = _nodes + (beyond < 0.0 ? left : right);
        }
        return *node;
    }

    [[nodiscard]] double _ToBox(std::uint32_t node) const
    {
        const _Box& box = _locator._boxes[node];
        return Square(Outside(_q[0], box.lower[0], box.upper[0])) +
               Square(Outside(_q[1], box.lower[1], box.upper[1])) +
               Square(Outside(_q[2], box.lower[2], box.upper[2]));
    }

    // Farther than the box is large.
    [[nodiscard]] bool _IsFarFrom(std::uint32_t node) const
    {
        const _Box& box = _locator._boxes[node];
        return _ToBox(node) > SquaredDistance({box.lower[0], box.lower[1], box.lower[2]},
                                              {box.upper[0], box.upper[1], box.upper[2]});
    }

    // The rest, by the distances of boxes, the nearest first.
    void _RunByBoxes()
    {
        Boxed boxed[2 * kMostPending];
        std::size_t count = 0;
        for (std::size_t i = 0; i < _count; ++i) {
            const std::uint32_t node = _cells[i].node;
            if (_visitor.MayTie(_cells[i].squared))
                boxed[count++] = {_ToBox(node), node};
        }
        std::sort(boxed, boxed + count,
                  [](const Boxed& a, const Boxed& b) { return a.squared > b.squared; });
        while (count > 0) {
            Boxed near = boxed[--count];
            while (_visitor.MayTie(near.squared)) {
                const _Node& node = _nodes[near.node];
                if (node.IsLeaf()) {
                    const std::uint32_t last = node.firstOrRight + node.countOrAxis;
                    for (std::uint32_t i = node.firstOrRight; i < last; ++i)
                        _visitor.VisitTie(SquaredDistance(_query, _locator._points[i]), i,
                                          _locator._indices.data());
                    break;
                }
                const std::uint32_t left = near.node + 1;
                near = {_ToBox(left), left};
                Boxed far{_ToBox(node.firstOrRight), node.firstOrRight};
                if (far.squared < near.squared)
                    std::swap(near, far);
                boxed[count] = far;
                count += _visitor.MayTie(far.squared) ? 1U : 0U;
            }
        }
    }

    const MKDTreePointLocator& _locator;
    const _Node* _nodes;
    const Point& _query;
    double _q[3];
    Visitor& _visitor;
    Cell _cells[kMostPending];
    std::size_t _count = 0;
};

// The nearest point, the first of equals in the described order.
struct MKDTreePointLocator::_Nearest
{
    static constexpr int kLeavesBySides = kPatience;

    const MKDTreePointLocator& locator;
    const double (&query)[3];
    double best;
    std::uint32_t place = 0;
    bool isFound = false;

    [[nodiscard]] bool MayHold(double squared) const
    {
        return squared < best;
    }

    [[nodiscard]] bool MayTie(double squared) const
    {
        return squared <= best;
    }

    void Visit(double squared, std::uint32_t at, const std::uint32_t*)
    {
        if (squared < best) {
            best = squared;
            place = at;
            isFound = true;
        }
    }

    void VisitTie(double squared, std::uint32_t at, const std::uint32_t* indices)
    {
        if (squared == best && isFound && locator._ComesFirst(query, at, place))
            place = at;
        Visit(squared, at, indices);
    }
};

// Whether the point at `place` is met before the one at `other` on the way that goes to the side of
// the query first. On a split that is the right one: meant, and callers depend on which point wins.
bool MKDTreePointLocator::_ComesFirst(const double (&query)[3], std::uint32_t place,
                                      std::uint32_t other) const
{
    const auto coordinate = [this](std::uint32_t at, std::uint32_t axis) {
        const Point& p = _points[at];
        return axis == 0 ? p.x : axis == 1 ? p.y : p.z;
    };
    std::uint32_t node = 0;
    while (!_nodes[node].IsLeaf()) {
        const std::uint32_t axis = _nodes[node].countOrAxis;
        const std::uint32_t right = _nodes[node].firstOrRight;
        const double lowestRight = _boxes[right].lower[axis];
        const bool isRight = coordinate(place, axis) >= lowestRight;
        if (isRight != (coordinate(other, axis) >= lowestRight))
            return isRight == !(_nodes[node].split > query[axis]);
        node = isRight ? right : node + 1;
    }
    return place < other;
}

void MKDTreePointLocator::SetDefaults()
{
    *this = MKDTreePointLocator();
}

std::size_t MKDTreePointLocator::GetMemory() const
{
    return _nodes.capacity() * sizeof(_Node) + _points.capacity() * sizeof(Point) +
           _indices.capacity() * sizeof(std::uint32_t) + _boxes.capacity() * sizeof(_Box);
}

bool MKDTreePointLocator::FindClosestPoint(MClosestPointInfo& info) const
{
    info.SetDistance(MClosestPointInfo::kInfiniteDistance);
    return FindClosestPointWithinRadius(info);
}

// The closest point is written last: it may be the query point itself.
bool MKDTreePointLocator::FindClosestPointWithinRadius(MClosestPointInfo& info) const
{
    info.SetFoundIndex(MClosestPointInfo::kNoIndex);
    const Point query = info.GetQueryPoint();
    const double radius = info.GetDistance();
    if (_nodes.empty() || !IsFinite(query) || !(radius > 0.0))
        return false;
    const double q[3] = {query.x, query.y, query.z};
    const bool isEverywhere = radius == MClosestPointInfo::kInfiniteDistance;
    _Nearest nearest{*this, q, isEverywhere ? radius : radius * radius};
    _Search(*this, query, nearest).Run();
    if (!nearest.isFound)
        return false;
    info.SetDistance(std::sqrt(nearest.best));
    info.SetFoundIndex(static_cast<std::int32_t>(_indices[nearest.place]));
    info.SetClosestPoint(_points[nearest.place]);
    return true;
}

bool MKDTreePointLocator::FindClosestPoints(const MMPoint3d<double>& query, std::uint32_t count,
                                            std::vector<MFoundPoint>& found) const
{
    found.clear();
    if (_nodes.empty() || !IsFinite(query) || count == 0)
        return false;
    SeveralNearest several(found, count);
    _Search(*this, query, several).Run();
    several.Finish();
    return !found.empty();
}

bool MKDTreePointLocator::FindPointsWithinRadius(const MMPoint3d<double>& query, double radius,
                                                 std::vector<MFoundPoint>& found) const
{
    found.clear();
    if (_nodes.empty() || !IsFinite(query) || !(radius >= 0.0))
        return false;
    WithinRadius within{found, LargestSquare(radius)};
    _Search(*this, query, within).Run();
    return !found.empty();
}
