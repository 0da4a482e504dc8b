#include "border/border_regions.h"
#include "border/ring_geometry.h"

#include <norvek/border/border_contour.h>

namespace
{

template <class Point>
// Exact, and without the payload: a repeated point is one at the very same place.
bool AreAtSamePlace(const Point& a, const Point& b)
{
    return a.x == b.x && a.y == b.y;
}

} // namespace

template <class Coord, class Payload, class Point, class Contour>
M3dBorderContourBase<Coord, Payload, Point, Contour>::M3dBorderContourBase(PoolPointer pool)
    : _pool(pool ? std::move(pool) : boost::make_shared<PoolType>())
{}

// Delegating, so that the destructor gives the points back when copying runs out of memory.
template <class Coord, class Payload, class Point, class Contour>
M3dBorderContourBase<Coord, Payload, Point, Contour>::M3dBorderContourBase(const Contour& other,
                                                                           PoolPointer pool)
    : M3dBorderContourBase(std::move(pool))
{
    _AppendCopies(other);
    _CopyFlags(other);
}

template <class Coord, class Payload, class Point, class Contour>
M3dBorderContourBase<Coord, Payload, Point, Contour>::M3dBorderContourBase(
    const M3dBorderContourBase& other)
    : M3dBorderContourBase(other._pool)
{
    _AppendCopies(other);
    _CopyFlags(other);
}

template <class Coord, class Payload, class Point, class Contour>
M3dBorderContourBase<Coord, Payload, Point, Contour>::~M3dBorderContourBase()
{
    M3dBorderContourBase::MakeEmpty();
}

template <class Coord, class Payload, class Point, class Contour>
void M3dBorderContourBase<Coord, Payload, Point, Contour>::MakeEmpty()
{
    Point* point = std::exchange(_firstPoint, nullptr);
    std::uint32_t remaining = std::exchange(_numPoints, 0);
    // When no other record of the pool is live, freeing one by one would end in the same clearing.
    if (remaining > 0 && _pool->GetLiveCount() == remaining) {
        _pool->Clear(false);
        return;
    }
    // Counted, because the ring cannot be asked for its end any more once the first point is freed.
    for (; remaining > 0; --remaining) {
        Point* const next = point->next;
        _pool->Free(point);
        point = next;
    }
}

template <class Coord, class Payload, class Point, class Contour>
M3dBorderContourBase<Coord, Payload, Point, Contour>&
M3dBorderContourBase<Coord, Payload, Point, Contour>::operator=(const M3dBorderContourBase& other)
{
    // Emptying first would empty the source as well.
    if (this == &other)
        return *this;
    MakeEmpty();
    _AppendCopies(other);
    _CopyFlags(other);
    return *this;
}

template <class Coord, class Payload, class Point, class Contour>
M3dBorderContourBase<Coord, Payload, Point, Contour>&
M3dBorderContourBase<Coord, Payload, Point, Contour>::operator=(const Contour& other)
{
    return *this = static_cast<const M3dBorderContourBase&>(other);
}

template <class Coord, class Payload, class Point, class Contour>
Point* M3dBorderContourBase<Coord, Payload, Point, Contour>::InsertAtEnd(Contour& other)
{
    return _Splice(other);
}

template <class Coord, class Payload, class Point, class Contour>
Point* M3dBorderContourBase<Coord, Payload, Point, Contour>::InsertAtFront(Contour& other)
{
    Point* const first = _Splice(other);
    if (first != nullptr)
        _firstPoint = first;
    return first;
}

// Compares with the first point as it is now: it changes when the last point meets its double
// there, and a start remembered from before would be a freed record.
template <class Coord, class Payload, class Point, class Contour>
void M3dBorderContourBase<Coord, Payload, Point, Contour>::RemoveDoublePoints()
{
    Point* current = _firstPoint;
    while (_numPoints >= 2) {
        if (AreAtSamePlace(*current, *current->next)) {
            RemovePoint(current->next);
            continue;
        }
        current = current->next;
        if (current == _firstPoint)
            return;
    }
}

// Counted, since the links change under the walk: what was `next` is `previous` after the exchange.
template <class Coord, class Payload, class Point, class Contour>
void M3dBorderContourBase<Coord, Payload, Point, Contour>::Invert()
{
    Point* point = _firstPoint;
    for (std::uint32_t remaining = _numPoints; remaining > 0; --remaining) {
        std::swap(point->next, point->previous);
        point = point->previous;
    }
    if (!_isClosed && _firstPoint != nullptr)
        _firstPoint = _firstPoint->next;
}

// The copies are collected in a contour of their own first: running out of memory leaves this one
// as it was, and the contour itself may be the one to connect with.
template <class Coord, class Payload, class Point, class Contour>
void M3dBorderContourBase<Coord, Payload, Point, Contour>::ConnectWith(Point* at,
                                                                       const Contour* other)
{
    if (at == nullptr || other == nullptr || other->GetFirstPoint() == nullptr)
        return;
    M3dBorderContourBase bridge(*other, _pool);
    bridge.InsertAtEnd(*other->GetFirstPoint());
    bridge.InsertAtEnd(*at);
    Point* const first = std::exchange(bridge._firstPoint, nullptr);
    _LinkChain(at, first, first->previous, std::exchange(bridge._numPoints, 0));
}

template <class Coord, class Payload, class Point, class Contour>
void M3dBorderContourBase<Coord, Payload, Point, Contour>::SetIndices(std::uint32_t& counter)
{
    for (Point& point : *this)
        point.index = counter++;
}

template <class Coord, class Payload, class Point, class Contour>
void M3dBorderContourBase<Coord, Payload, Point, Contour>::ResetIndices()
{
    for (Point& point : *this)
        point.index = 0;
}

template <class Coord, class Payload, class Point, class Contour>
const Point* M3dBorderContourBase<Coord, Payload, Point, Contour>::LowestLeftmostPoint() const
{
    const Point* lowest = _firstPoint;
    for (const Point& point : *this) {
        if (point.y < lowest->y || (point.y == lowest->y && point.x < lowest->x))
            lowest = &point;
    }
    if (lowest == nullptr || lowest != _firstPoint)
        return lowest;
    // Back over the doubles of the first point at the end of the ring. If all points are doubles
    // the walk ends at the first point again, and its successor is the earliest of them.
    while (lowest->previous != _firstPoint && AreAtSamePlace(*lowest->previous, *_firstPoint))
        lowest = lowest->previous;
    return lowest;
}

template <class Coord, class Payload, class Point, class Contour>
Point* M3dBorderContourBase<Coord, Payload, Point, Contour>::LowestLeftmostPoint()
{
    return const_cast<Point*>(std::as_const(*this).LowestLeftmostPoint());
}

template <class Coord, class Payload, class Point, class Contour>
char M3dBorderContourBase<Coord, Payload, Point, Contour>::CalculatePositionXY(double x,
                                                                               double y) const
{
    std::size_t count = 0;
    if (Norvek::Math::Core::CountCrossings(_firstPoint, x, y, count))
        return 0;
    return count % 2 == 1 ? 1 : 2;
}

template <class Coord, class Payload, class Point, class Contour>
double M3dBorderContourBase<Coord, Payload, Point, Contour>::SurfaceAreaWithSignXY() const
{
    return Norvek::Math::Core::SignedArea(_firstPoint);
}

template <class Coord, class Payload, class Point, class Contour>
double M3dBorderContourBase<Coord, Payload, Point, Contour>::CircumferenceXY() const
{
    return Norvek::Math::Core::RingLength(_firstPoint, _isClosed);
}

// Moves the points of `other` behind the last point and gives the first of them, null for none.
template <class Coord, class Payload, class Point, class Contour>
Point* M3dBorderContourBase<Coord, Payload, Point, Contour>::_Splice(M3dBorderContourBase& other)
{
    if (this == &other || other._firstPoint == nullptr)
        return nullptr;
    // A record must go back to the pool it came from, so it cannot change pools. All copies are
    // made before anything is given back: running out of memory changes neither contour.
    if (_pool != other._pool) {
        M3dBorderContourBase copies(_pool);
        copies._AppendCopies(other);
        other.MakeEmpty();
        return _Splice(copies);
    }
    Point* const first = std::exchange(other._firstPoint, nullptr);
    const std::uint32_t count = std::exchange(other._numPoints, 0);
    if (_firstPoint == nullptr) {
        _firstPoint = first;
        _numPoints = count;
    } else {
        _LinkChain(_firstPoint->previous, first, first->previous, count);
    }
    return first;
}

template <class Coord, class Payload, class Point, class Contour>
void M3dBorderContourBase<Coord, Payload, Point, Contour>::_AppendCopies(
    const M3dBorderContourBase& other)
{
    for (const Point& point : other)
        InsertAtEnd(point);
}

template <class Coord, class Payload, class Point, class Contour>
void M3dBorderContourBase<Coord, Payload, Point, Contour>::_CopyFlags(
    const M3dBorderContourBase& other)
{
    _isClosed = other._isClosed;
    _isOuterContour = other._isOuterContour;
    _order = other._order;
    _status = other._status;
}

template <class Coord, class Payload, class Point, class Contour>
bool M3dBorderContourBase<Coord, Payload, Point, Contour>::FillWithTriangles(
    std::int32_t& count, std::vector<Payload>& payloads) const
{
    Norvek::Math::Core::CollectedRings<Point> collected;
    collected.Add(*this);
    collected.rings.BringIntoRange();
    std::vector<Norvek::Math::Core::IndexTriangle> triangles;
    const bool isExact = Norvek::Math::Core::Triangulate(collected.rings, triangles);
    if (!isExact)
        triangles = Norvek::Math::Core::ClipContours(collected);
    collected.Fill(triangles, payloads);
    count = static_cast<std::int32_t>(triangles.size());
    return isExact;
}

template class M3dBorderContourBase<std::int32_t, void*, M3dBorderPoint<std::int32_t, void*>,
                                    M3dBorderContour<std::int32_t, void*>>;
template class M3dBorderContourBase<float, float, M3dBorderPoint<float, float>,
                                    M3dBorderContour<float, float>>;
template class M3dBorderContourBase<double, void*, M3dBorderPoint<double, void*>,
                                    M3dBorderContour<double, void*>>;
template class M3dBorderContourBase<double, MStlPoint*, M3dBorderPoint<double, MStlPoint*>,
                                    M3dBorderContour<double, MStlPoint*>>;

template class M3dBorderContour<std::int32_t, void*>;
template class M3dBorderContour<float, float>;
template class M3dBorderContour<double, void*>;
template class M3dBorderContour<double, MStlPoint*>;
