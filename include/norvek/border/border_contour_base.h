#pragma once

#include <norvek/border/border_iterator.h>
#include <norvek/border/cyclic_memory_pool.h>

#include <boost/shared_ptr.hpp>
#include <boost/smart_ptr/make_shared.hpp>

#include <utility>
#include <vector>

template <class Coord, class Payload, class Contour>
class M3dBorder;

/// A contour: a ring of points in the XY plane, entered at its first point.
///
/// Invariant: following `next` from the first point visits exactly `GetNumPoints()` records and
/// returns to the first; `previous` is the exact inverse; a lone point is linked to itself; every
/// point comes from the contour's pool. The ring is cyclic whether or not the contour is flagged
/// closed: the flag only tells algorithms whether the edge from the last point back to the first
/// counts. An empty contour has a null first point.
///
/// Points keep their addresses while they stay in contours of one pool. Whatever moves points
/// between contours of different pools copies them and gives the old records back. Contours that
/// share a pool are one object to the rules for threads; a copy made with an empty pool pointer is
/// independent.
///
/// `Contour` is the most derived contour class. Points that an operation takes as arguments are
/// points of this ring unless the operation says otherwise; that is not checked.
template <class Coord, class Payload, class Point, class Contour>
class NORVEK_MATH_API M3dBorderContourBase
{
public:
    /// The type of x and y.
    using CoordinateType = Coord;
    /// The type of the payload.
    using PayloadType = Payload;
    /// The record of a point.
    using PointType = Point;
    /// The pool that the points come from.
    using PoolType = MCyclicMemoryPool<Point>;
    /// Shared ownership of a pool.
    using PoolPointer = boost::shared_ptr<PoolType>;
    /// Walks the ring once, see `begin`.
    using iterator = M3dBorderContourIterator<Point, M3dBorderContourBase>;
    /// The same over a const contour.
    using const_iterator = M3dBorderContourConstIterator<Point, M3dBorderContourBase>;

    /// An empty contour on the given pool, or on a new one when the pointer is empty. It is closed
    /// and an outer contour, with order and status 0 and no info.
    explicit M3dBorderContourBase(PoolPointer pool = PoolPointer());

    /// Copies coordinates and payloads in ring order, and the flags, order and status (not the
    /// info), into records of the given pool, or of a new one when the pointer is empty.
    M3dBorderContourBase(const Contour& other, PoolPointer pool);

    /// As above; the copy shares the pool of the contour it is made from.
    M3dBorderContourBase(const M3dBorderContourBase& other);

    /// Gives the points back to the pool, which clears itself after the last one.
    virtual ~M3dBorderContourBase();

    /// Removes every point; flags and info stay.
    virtual void MakeEmpty();

    /// Replaces the points by copies in this contour's pool, and the flags, order and status. The
    /// pool, the info and the place in a border stay. Assigning a contour to itself does nothing.
    M3dBorderContourBase& operator=(const M3dBorderContourBase& other);
    /// As above.
    M3dBorderContourBase& operator=(const Contour& other);

    /// Appends a new point and returns it.
    Point* InsertAtEnd(Coord x, Coord y, const Payload& payload)
    {
        return _InsertAtEnd(_CreateNewPoint(x, y, payload));
    }

    /// Appends a copy of the coordinates and the payload of `point` and returns it.
    Point* InsertAtEnd(const Point& point)
    {
        return _InsertAtEnd(_CreateNewPoint(point));
    }

    /// Appends a record of this contour's pool that stands in no ring, and returns it; null gives
    /// null.
    Point* InsertAtEnd(Point* record)
    {
        return _InsertAtEnd(record);
    }

    /// Moves all points of `other`, in ring order from its first, behind the last point; `other`
    /// ends empty. Returns the first point that came in, null when none did (`other` is empty or
    /// this contour itself). Constant time within one pool, otherwise linear in `other`.
    Point* InsertAtEnd(Contour& other);

    /// Puts a new point in front, as the first point, and returns it.
    Point* InsertAtFront(Coord x, Coord y, const Payload& payload)
    {
        return _InsertAtFront(_CreateNewPoint(x, y, payload));
    }

    /// Puts a copy of `point` in front, as the first point, and returns it.
    Point* InsertAtFront(const Point& point)
    {
        return _InsertAtFront(_CreateNewPoint(point));
    }

    /// Puts a free-standing record of this contour's pool in front and returns it; null gives null.
    Point* InsertAtFront(Point* record)
    {
        return _InsertAtFront(record);
    }

    /// Moves all points of `other`, in ring order from its first, before the first point: the first
    /// point of `other` becomes the first. Otherwise as `InsertAtEnd`.
    Point* InsertAtFront(Contour& other);

    /// Makes a new point the successor of `at` and returns it. Behind the last point that is the
    /// new last one. In an empty contour, or with a null `at`, it goes to the end.
    Point* InsertAtPoint(Coord x, Coord y, const Payload& payload, Point* at)
    {
        return _InsertAtPoint(_CreateNewPoint(x, y, payload), at);
    }

    /// Makes a copy of `point` the successor of `at` and returns it.
    Point* InsertAtPoint(const Point& point, Point* at)
    {
        return _InsertAtPoint(_CreateNewPoint(point), at);
    }

    /// Makes a free-standing record of this contour's pool the successor of `at` and returns it;
    /// null gives null.
    Point* InsertAtPoint(Point* record, Point* at)
    {
        return _InsertAtPoint(record, at);
    }

    /// Takes the point out of the ring and gives it back to the pool. When it was the first point,
    /// its successor becomes the first. Null is ignored.
    void RemovePoint(Point* point)
    {
        _RemovePoint(point);
        _DeletePoint(point);
    }

    /// Removes points that repeat the coordinates of their predecessor exactly (payloads are not
    /// compared), so that one of each run stays. The last point is compared with the first one as
    /// well, in open contours too: of a ring that repeats its start at its end the first record
    /// goes and its successor becomes the first. NaN equals nothing.
    void RemoveDoublePoints();

    /// Enters the ring at `point`; nothing moves. Null is ignored.
    void SetFirstPointAt(Point* point)
    {
        if (point != nullptr)
            _firstPoint = point;
    }

    /// Reverses the running direction. A closed contour keeps its first point; an open one starts
    /// at its former last point.
    void Invert();

    /// Joins a hole to its outer ring by a bridge that is walked there and back: behind `at` come
    /// copies of the points of `other` in ring order from its first, then a second copy of that
    /// first point, then one of `at`. Nothing happens for a null argument or an empty `other`; this
    /// contour itself may be `other`.
    void ConnectWith(Point* at, const Contour* other);

    /// Numbers the points in ring order from the first: the first gets `counter`, which ends one
    /// past the last number given (wrapping).
    void SetIndices(std::uint32_t& counter);

    /// Sets all indices to 0.
    void ResetIndices();

    /// Whether the edge from the last point to the first counts. The ring itself does not change.
    void SetIsClosed(bool isClosed)
    {
        _isClosed = isClosed;
    }

    /// Whether this is an outer contour (true) or the rim of a hole. The points do not change.
    void SetIsOuterContour(bool isOuterContour)
    {
        _isOuterContour = isOuterContour;
    }

    /// The nesting depth.
    void SetOrder(unsigned char order)
    {
        _order = order;
    }

    /// A free marker for algorithms.
    void SetStatus(unsigned char status)
    {
        _status = status;
    }

    /// A caller's datum, never dereferenced and never copied along.
    void SetInfo(void* info)
    {
        _info = info;
    }

    /// The point at which the ring is entered, null in an empty contour.
    Point* GetFirstPoint()
    {
        return _firstPoint;
    }

    /// As above.
    const Point* GetFirstPoint() const
    {
        return _firstPoint;
    }

    /// The number of points in the ring.
    [[nodiscard]] std::uint32_t GetNumPoints() const
    {
        return _numPoints;
    }

    /// The number of points, as containers spell it.
    [[nodiscard]] std::size_t size() const
    {
        return _numPoints;
    }

    /// Whether the edge from the last point to the first counts.
    [[nodiscard]] bool GetIsClosed() const
    {
        return _isClosed;
    }

    /// Whether this is an outer contour.
    [[nodiscard]] bool GetIsOuterContour() const
    {
        return _isOuterContour;
    }

    /// The nesting depth, 0 unless it was set.
    [[nodiscard]] unsigned char GetOrder() const
    {
        return _order;
    }

    /// The free marker, 0 unless it was set.
    [[nodiscard]] unsigned char GetStatus() const
    {
        return _status;
    }

    /// The caller's datum, null unless it was set.
    [[nodiscard]] void* GetInfo() const
    {
        return _info;
    }

    /// The next contour of the border, null at the last one and outside borders.
    Contour* GetNextContour()
    {
        return _nextContour;
    }

    /// As above.
    const Contour* GetNextContour() const
    {
        return _nextContour;
    }

    /// The previous contour of the border, null at the first one and outside borders.
    Contour* GetPreviousContour()
    {
        return _previousContour;
    }

    /// As above.
    const Contour* GetPreviousContour() const
    {
        return _previousContour;
    }

    /// The pool that the points come from; never empty.
    const PoolPointer& GetPool() const
    {
        return _pool;
    }

    /// Once around the ring from the first point.
    iterator begin()
    {
        return {_firstPoint, this};
    }

    /// As above.
    const_iterator begin() const
    {
        return {_firstPoint, this};
    }

    /// Behind the last point.
    iterator end()
    {
        return {nullptr, this};
    }

    /// As above.
    const_iterator end() const
    {
        return {nullptr, this};
    }

    /// The point of smallest y, among those the one of smallest x; of several at the same place the
    /// earliest in ring order, but a first point that repeats the end of the ring yields the copy
    /// that comes first when the ring is read through its end. Null in an empty contour.
    Point* LowestLeftmostPoint();
    /// As above.
    const Point* LowestLeftmostPoint() const;

    /// Where (x, y) lies: 0 on a vertex or an edge, 1 inside, 2 outside or in an empty contour. An
    /// even-odd count along the ray towards negative x; the closing edge counts whatever the flag
    /// says. NaN is outside. Linear in the points.
    [[nodiscard]] char CalculatePositionXY(double x, double y) const;

    /// The enclosed area, the closing edge included: with y upwards positive for a clockwise ring,
    /// negative for a counter-clockwise one, 0 for an empty one.
    [[nodiscard]] double SurfaceAreaWithSignXY() const;

    /// The sum of the edge lengths in the XY plane; the closing edge counts for a closed contour
    /// only.
    [[nodiscard]] double CircumferenceXY() const;

    /// Triangulates what lies within this contour, see `M3dBorder::FillWithTriangles`.
    bool FillWithTriangles(std::int32_t& count, std::vector<Payload>& payloads) const;

protected:
    /// A new record of the pool, in no ring.
    Point* _CreateNewPoint(Coord x, Coord y, const Payload& payload)
    {
        Point* const point = _pool->Allocate();
        point->x = x;
        point->y = y;
        point->payload = payload;
        point->index = 0;
        return point;
    }

    /// The same with the coordinates and the payload of `point`.
    Point* _CreateNewPoint(const Point& point)
    {
        return _CreateNewPoint(point.x, point.y, point.payload);
    }

    /// The same at the origin, with a zero payload.
    Point* _CreateNewPoint()
    {
        return _CreateNewPoint(Coord{}, Coord{}, Payload{});
    }

    /// Links `point` in as the last one and returns it; null gives null.
    Point* _InsertAtEnd(Point* point)
    {
        if (point == nullptr)
            return nullptr;
        if (_firstPoint == nullptr) {
            _firstPoint = point;
            point->next = point;
            point->previous = point;
            _numPoints = 1;
        } else {
            _LinkChain(_firstPoint->previous, point, point, 1);
        }
        return point;
    }

    /// Links `point` in as the first one and returns it; null gives null.
    Point* _InsertAtFront(Point* point)
    {
        if (_InsertAtEnd(point) != nullptr)
            _firstPoint = point;
        return point;
    }

    /// Links `point` in as the successor of `at`, at the end when there is none, and returns it;
    /// null gives null.
    Point* _InsertAtPoint(Point* point, Point* at)
    {
        if (point == nullptr || at == nullptr || _firstPoint == nullptr)
            return _InsertAtEnd(point);
        _LinkChain(at, point, point, 1);
        return point;
    }

    /// Takes a point out of the ring, which keeps its own links; null is ignored.
    void _RemovePoint(Point* point)
    {
        if (point == nullptr)
            return;
        if (_numPoints <= 1) {
            _firstPoint = nullptr;
            _numPoints = 0;
            return;
        }
        if (point == _firstPoint)
            _firstPoint = point->next;
        point->previous->next = point->next;
        point->next->previous = point->previous;
        --_numPoints;
    }

    /// Gives a record back to the pool; null and free records are ignored.
    void _DeletePoint(Point* point)
    {
        _pool->Free(point);
    }

private:
    template <class BorderCoord, class BorderPayload, class BorderContour>
    friend class M3dBorder;

    // Links the chain from `first` to `last`, of `count` records of this pool, in behind `at`.
    void _LinkChain(Point* at, Point* first, Point* last, std::uint32_t count)
    {
        Point* const behind = at->next;
        first->previous = at;
        last->next = behind;
        at->next = first;
        behind->previous = last;
        _numPoints += count;
    }

    Point* _Splice(M3dBorderContourBase& other);
    void _AppendCopies(const M3dBorderContourBase& other);
    void _CopyFlags(const M3dBorderContourBase& other);

    Point* _firstPoint = nullptr;
    std::uint32_t _numPoints = 0;
    bool _isClosed = true;
    bool _isOuterContour = true;
    unsigned char _order = 0;
    unsigned char _status = 0;
    void* _info = nullptr;
    Contour* _nextContour = nullptr;
    Contour* _previousContour = nullptr;
    PoolPointer _pool;
};
