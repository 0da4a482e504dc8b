#include "border/border_regions.h"
#include "border/ring_geometry.h"

#include <norvek/border/border.h>

#include <algorithm>
#include <cmath>
#include <limits>

template <class Coord, class Payload, class Contour>
M3dBorder<Coord, Payload, Contour>::M3dBorder(const M3dBorder& other) : M3dBorder()
{
    // No derived class is there yet to create contours.
    for (const Contour& contour : other)
        AddContourAtEnd(std::make_unique<Contour>(contour, _GetPool()).release());
}

template <class Coord, class Payload, class Contour>
M3dBorder<Coord, Payload, Contour>::~M3dBorder()
{
    MakeEmpty();
}

// The old contours go first: were they the last users of a pool, its blocks are free for the new
// one.
template <class Coord, class Payload, class Contour>
M3dBorder<Coord, Payload, Contour>&
M3dBorder<Coord, Payload, Contour>::operator=(const M3dBorder& other)
{
    if (this == &other)
        return *this;
    MakeEmpty();
    for (const Contour& contour : other)
        *AddContourAtEnd() = contour;
    return *this;
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::Swap(M3dBorder& other) noexcept
{
    std::swap(_firstContour, other._firstContour);
    std::swap(_lastContour, other._lastContour);
    std::swap(_numContours, other._numContours);
}

template <class Coord, class Payload, class Contour>
Contour* M3dBorder<Coord, Payload, Contour>::AddContourAtEnd()
{
    return AddContourAtEnd(_CreateNewContour());
}

template <class Coord, class Payload, class Contour>
Contour* M3dBorder<Coord, Payload, Contour>::AddContourAtFront()
{
    return AddContourAtFront(_CreateNewContour());
}

template <class Coord, class Payload, class Contour>
Contour* M3dBorder<Coord, Payload, Contour>::AddContourAfter(Contour* after)
{
    return AddContourAfter(_CreateNewContour(), after);
}

template <class Coord, class Payload, class Contour>
Contour* M3dBorder<Coord, Payload, Contour>::AddContourAtEnd(Contour* contour)
{
    return AddContourAfter(contour, _lastContour);
}

// The two ways to link a contour in; all others come down to them. Neither can fail, so that a
// contour once handed over is never without an owner.
template <class Coord, class Payload, class Contour>
Contour* M3dBorder<Coord, Payload, Contour>::AddContourAtFront(Contour* contour)
{
    if (contour == nullptr)
        return nullptr;
    contour->_previousContour = nullptr;
    contour->_nextContour = _firstContour;
    (_firstContour != nullptr ? _firstContour->_previousContour : _lastContour) = contour;
    _firstContour = contour;
    ++_numContours;
    return contour;
}

template <class Coord, class Payload, class Contour>
Contour* M3dBorder<Coord, Payload, Contour>::AddContourAfter(Contour* contour, Contour* after)
{
    Contour* const previous = after != nullptr ? after : _lastContour;
    if (contour == nullptr || previous == nullptr)
        return AddContourAtFront(contour);
    contour->_previousContour = previous;
    contour->_nextContour = previous->_nextContour;
    (previous == _lastContour ? _lastContour : previous->_nextContour->_previousContour) = contour;
    previous->_nextContour = contour;
    ++_numContours;
    return contour;
}

template <class Coord, class Payload, class Contour>
std::unique_ptr<Contour> M3dBorder<Coord, Payload, Contour>::RemoveFirstContour()
{
    return RemoveContour(_firstContour);
}

// The only place where a contour leaves the list.
template <class Coord, class Payload, class Contour>
std::unique_ptr<Contour> M3dBorder<Coord, Payload, Contour>::RemoveContour(Contour* contour)
{
    if (contour == nullptr)
        return nullptr;
    Contour* const previous = std::exchange(contour->_previousContour, nullptr);
    Contour* const next = std::exchange(contour->_nextContour, nullptr);
    (previous != nullptr ? previous->_nextContour : _firstContour) = next;
    (next != nullptr ? next->_previousContour : _lastContour) = previous;
    --_numContours;
    return std::unique_ptr<Contour>(contour);
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::RemoveEmptyContours()
{
    // The successor is read first: the contour may be gone afterwards.
    for (Contour* contour = _firstContour; contour != nullptr;) {
        Contour* const next = contour->GetNextContour();
        if (contour->GetNumPoints() == 0)
            RemoveContour(contour);
        contour = next;
    }
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::MakeEmpty()
{
    while (_firstContour != nullptr)
        RemoveFirstContour();
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::SetIndices()
{
    std::uint32_t counter = 0;
    for (Contour& contour : *this)
        contour.SetIndices(counter);
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::ResetIndices()
{
    for (Contour& contour : *this)
        contour.ResetIndices();
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::RemoveDoublePoints()
{
    for (Contour& contour : *this)
        contour.RemoveDoublePoints();
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::Invert()
{
    for (Contour& contour : *this)
        contour.Invert();
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::AdjustOuterContourParameterToTurningSense()
{
    for (Contour& contour : *this)
        contour.SetIsOuterContour(contour.SurfaceAreaWithSignXY() >= 0.0);
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::AdjustTurningSenseToOuterContourParameter()
{
    for (Contour& contour : *this) {
        if (contour.GetNumPoints() == 0)
            continue;
        const double area = contour.SurfaceAreaWithSignXY();
        // Not mirror images: callers rely on degenerate inner contours being inverted.
        if (contour.GetIsOuterContour() ? area < 0.0 : area >= 0.0)
            contour.Invert();
    }
}

template <class Coord, class Payload, class Contour>
std::uint32_t M3dBorder<Coord, Payload, Contour>::GetNumPoints() const
{
    // Counted wide, so that the sum stays at the limit instead of wrapping.
    std::uint64_t count = 0;
    for (const Contour& contour : *this)
        count += contour.GetNumPoints();
    constexpr std::uint64_t limit = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::min(count, limit));
}

template <class Coord, class Payload, class Contour>
std::uint32_t M3dBorder<Coord, Payload, Contour>::GetNumEdges() const
{
    return GetNumPoints();
}

// One count for all contours, so that the edge of a hole takes back what the outer ring counted.
template <class Coord, class Payload, class Contour>
char M3dBorder<Coord, Payload, Contour>::CalculatePosition(double x, double y) const
{
    std::size_t count = 0;
    for (const Contour& contour : *this) {
        if (Norvek::Math::Core::CountCrossings(contour.GetFirstPoint(), x, y, count))
            return 0;
    }
    return count % 2 == 1 ? 1 : 2;
}

template <class Coord, class Payload, class Contour>
double M3dBorder<Coord, Payload, Contour>::SurfaceAreaWithSignXY() const
{
    double area = 0.0;
    for (const Contour& contour : *this)
        area += contour.SurfaceAreaWithSignXY();
    return area;
}

template <class Coord, class Payload, class Contour>
double M3dBorder<Coord, Payload, Contour>::CircumferenceXY() const
{
    double length = 0.0;
    for (const Contour& contour : *this)
        length += contour.CircumferenceXY();
    return length;
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::CalculateOrderOfContours()
{
    using namespace Norvek::Math::Core;
    SetOrders(*this, FindNesting(CollectRings(*this).rings));
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::DetermineOuterContours()
{
    CalculateOrderOfContours();
    Norvek::Math::Core::SetOuterFlags(*this);
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::MergeToOnlyOuterContours()
{
    using namespace Norvek::Math::Core;
    const auto collected = CollectRings(*this);
    const Nesting nesting = FindNesting(collected.rings);
    SetOrders(*this, nesting);
    SetOuterFlags(*this);
    _PutInOrder(SortedPositions(collected.rings, nesting));
    _JoinHoles(MakeBridgeTest(*this, collected.rings, nesting));
}

// Edges that cross leave the exact way closed: the holes are made part of their outer contours and
// corners cut off those.
template <class Coord, class Payload, class Contour>
bool M3dBorder<Coord, Payload, Contour>::FillWithTriangles(std::int32_t& count,
                                                           std::vector<Payload>& payloads) const
{
    using namespace Norvek::Math::Core;
    const auto collected = CollectRings(*this);
    std::vector<IndexTriangle> triangles;
    const bool isExact = Triangulate(collected.rings, triangles);
    if (isExact) {
        collected.Fill(triangles, payloads);
    } else {
        M3dBorder merged(*this);
        const Nesting nesting =
            FindNestingOfCrossing(collected.rings, CrossingRule::WhenMostPointsDo);
        SetOrders(merged, nesting);
        SetOuterFlags(merged);
        merged._PutInOrder(SortedPositions(collected.rings, nesting));
        merged.AdjustTurningSenseToOuterContourParameter();
        merged._JoinHoles(MakeBridgeTest(merged, collected.rings, nesting));
        const auto outlines = CollectRings(merged);
        triangles = ClipContours(outlines);
        outlines.Fill(triangles, payloads);
    }
    count = static_cast<std::int32_t>(triangles.size());
    return isExact;
}

template <class Coord, class Payload, class Contour>
bool M3dBorder<Coord, Payload, Contour>::IntersectsWithConnection(const PointType* p,
                                                                  const PointType* q) const
{
    using namespace Norvek::Math::Core;
    return p != nullptr && q != nullptr && ConnectionTest(*this, {p, q}).DoesMeet(*p, *q, {});
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::DetermineIntersectionValues(
    bool withOthers, bool withItself, std::vector<std::vector<MIntersectionValue>>& values) const
{
    const auto collected = Norvek::Math::Core::CollectRings(*this);
    std::vector<Norvek::Math::Core::EdgeTree> trees;
    trees.reserve(_numContours);
    for (const Contour& contour : *this)
        trees.emplace_back(collected.rings.Ring(trees.size()), contour.GetIsClosed());
    values = Norvek::Math::Core::FindCrossings(trees, {withOthers, withItself});
    const int exponent = collected.rings.exponent;
    for (auto& list : values)
        for (MIntersectionValue& value : list)
            value.point = {std::ldexp(value.point.x, exponent),
                           std::ldexp(value.point.y, exponent)};
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::_SortContours()
{
    using namespace Norvek::Math::Core;
    const auto collected = CollectRings(*this);
    _PutInOrder(SortedPositions(collected.rings, FindNesting(collected.rings)));
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::_PutInOrder(const std::vector<std::size_t>& positions)
{
    std::vector<std::unique_ptr<Contour>> contours;
    contours.reserve(_numContours);
    while (_firstContour != nullptr)
        contours.push_back(RemoveFirstContour());
    for (const std::size_t position : positions)
        AddContourAtEnd(contours[position].release());
}

template <class Coord, class Payload, class Contour>
void M3dBorder<Coord, Payload, Contour>::_JoinHoles(const BridgeTest& isFree)
{
    using namespace Norvek::Math::Core;
    // The pool seeks freed points among all: none are freed while points are still added.
    std::vector<std::unique_ptr<Contour>> joined;
    joined.reserve(_numContours);
    const auto discard = [&](Contour* hole) {
        joined.push_back(RemoveContour(hole));
    };
    for (Contour* outer = _firstContour; outer != nullptr; outer = outer->GetNextContour()) {
        std::vector<Contour*> holes;
        for (Contour* hole = outer->GetNextContour(); hole != nullptr && !hole->GetIsOuterContour();
             hole = hole->GetNextContour())
            holes.push_back(hole);
        if (holes.empty())
            continue;
        JoinAlongDiagonals(*outer, holes, isFree, discard);
        // From left to right: the left end of each hole that is left mostly sees the outer contour,
        // or a hole that is part of it already. One that does not may see a later one.
        std::stable_sort(holes.begin(), holes.end(), [](Contour* a, Contour* b) {
            return IsLefter(*LeftmostPoint(*a), *LeftmostPoint(*b));
        });
        for (const bool mayCross : {false, true}) {
            std::erase_if(holes, [&](Contour* hole) {
                bool isJoined = _TryToConnectContours(outer, hole);
                if (!isJoined && mayCross) {
                    outer->ConnectWith(outer->GetFirstPoint(), hole);
                    isJoined = true;
                }
                if (isJoined)
                    discard(hole);
                return isJoined;
            });
        }
    }
}

template <class Coord, class Payload, class Contour>
bool M3dBorder<Coord, Payload, Contour>::_TryToConnectContours(Contour* outer, Contour* hole)
{
    if (outer->GetFirstPoint() == nullptr || hole->GetFirstPoint() == nullptr)
        return false;
    using namespace Norvek::Math::Core;
    // Keeps holes that see nothing from taking more than a multiple of the border's points.
    constexpr std::size_t kMostTries = 1000;
    std::vector<PointType*> points;
    points.reserve(hole->GetNumPoints());
    for (PointType& point : *hole)
        points.push_back(&point);
    std::stable_sort(points.begin(), points.end(),
                     [](PointType* a, PointType* b) { return IsLefter(*a, *b); });
    const ConnectionTest test(*this);
    std::size_t numTries = 0;
    for (PointType* const point : points) {
        if (numTries > kMostTries)
            break;
        // A hole that leans against an edge may see no point but along that edge. Open contours
        // have been nested as closed ones, so their closing edges count.
        for (const ConnectionRule rule : {ConnectionRule{true, false}, ConnectionRule{true, true}})
        {
            auto heap = HeapByDistance(*outer, *point, test.Exponent());
            for (; !heap.empty(); heap.pop_back(), ++numTries) {
                std::pop_heap(heap.begin(), heap.end(), std::greater<>());
                PointType* const nearest = heap.back().point;
                if (!test.DoesMeet(*point, *nearest, rule)) {
                    hole->SetFirstPointAt(point);
                    outer->ConnectWith(nearest, hole);
                    return true;
                }
            }
        }
    }
    return false;
}

template <class Coord, class Payload, class Contour>
Contour* M3dBorder<Coord, Payload, Contour>::_CreateNewContour()
{
    return std::make_unique<Contour>(_GetPool()).release();
}

// An empty pointer makes the contour to come create a pool, which all later ones then share.
template <class Coord, class Payload, class Contour>
typename M3dBorder<Coord, Payload, Contour>::PoolPointer
M3dBorder<Coord, Payload, Contour>::_GetPool() const
{
    return _firstContour != nullptr ? _firstContour->GetPool() : PoolPointer();
}

// The four borders of the library.
template class M3dBorder<std::int32_t, void*>;
template class M3dBorder<float, float>;
template class M3dBorder<double, void*>;
template class M3dBorder<double, MStlPoint*>;
