#pragma once

#include <norvek/border/border_contour.h>

#include <boost/range/iterator_range.hpp>

#include <memory>

/// A border: a planar outline or cross-section made of contours, outer ones and holes.
///
/// Invariant: the contours form a linear list from the first to the last, `GetNumContours()` of
/// them. Contours that the border creates share one pool: that of its first contour, or a new one
/// in an empty border. The border owns its contours; a contour handed in must come from `new` and
/// stand in no border. Arguments named as contours of this border are not checked.
///
/// An empty border has no contours, points or edges, no area, and every point lies outside it.
template <class Coord, class Payload, class Contour = M3dBorderContour<Coord, Payload>>
class NORVEK_MATH_API M3dBorder
{
public:
    /// The type of x and y.
    using CoordinateType = Coord;
    /// The type of the payload.
    using PayloadType = Payload;
    /// The class of the contours.
    using ContourType = Contour;
    /// The record of a point.
    using PointType = typename Contour::PointType;
    /// Shared ownership of a pool of points.
    using PoolPointer = typename Contour::PoolPointer;
    /// Walks the contours from the first to the last.
    using iterator = BaseM3dBorderIterator<M3dBorder, Contour>;
    /// The same over a const border.
    using const_iterator = BaseM3dBorderIterator<const M3dBorder, const Contour>;

    /// An empty border.
    M3dBorder() = default;

    /// Copies all contours, in order, into a pool of its own: points, flags, order and status, not
    /// the info. The contours are of the class `Contour`.
    M3dBorder(const M3dBorder& other);

    /// Destroys the contours.
    virtual ~M3dBorder();

    /// Replaces the contours by copies, as copying does, but created by `_CreateNewContour()`.
    /// Assigning a border to itself does nothing.
    M3dBorder& operator=(const M3dBorder& other);

    /// Exchanges the contours; they keep their addresses and pools.
    void Swap(M3dBorder& other) noexcept;

    /// Creates an empty contour on the border's pool, puts it at the end and returns it.
    Contour* AddContourAtEnd();

    /// The same in front.
    Contour* AddContourAtFront();

    /// The same behind `after`, a contour of this border; at the end when `after` is null.
    Contour* AddContourAfter(Contour* after);

    /// Puts a given contour at the end and returns it; the border owns it from then on. Null gives
    /// null. The contour keeps its pool.
    Contour* AddContourAtEnd(Contour* contour);

    /// The same in front.
    Contour* AddContourAtFront(Contour* contour);

    /// The same behind `after`, a contour of this border; at the end when `after` is null.
    Contour* AddContourAfter(Contour* contour, Contour* after);

    /// Takes the first contour out of the border and hands it over; it is destroyed unless the
    /// caller keeps the result. Null from an empty border.
    std::unique_ptr<Contour> RemoveFirstContour();

    /// Takes a contour of this border out and hands it over; it is destroyed unless the caller
    /// keeps the result. Null gives null.
    std::unique_ptr<Contour> RemoveContour(Contour* contour);

    /// Destroys the contours that have no points.
    void RemoveEmptyContours();

    /// Destroys all contours.
    void MakeEmpty();

    /// Numbers all points 0, 1, 2, ... in contour order, then ring order.
    void SetIndices();

    /// Sets all indices to 0.
    void ResetIndices();

    /// Removes repeated points from every contour, see there.
    void RemoveDoublePoints();

    /// Reverses every contour.
    void Invert();

    /// Sets every contour's outer flag to whether its signed area is 0 or more.
    void AdjustOuterContourParameterToTurningSense();

    /// Inverts the non-empty contours whose turning sense contradicts their outer flag: an outer
    /// one of negative area, an inner one of an area of 0 or more. The asymmetry at 0 is meant: a
    /// degenerate inner contour is inverted, a degenerate outer one is not.
    void AdjustTurningSenseToOuterContourParameter();

    /// The contours from the first to the last.
    boost::iterator_range<iterator> Contours()
    {
        return {begin(), end()};
    }

    /// As above.
    boost::iterator_range<const_iterator> Contours() const
    {
        return {begin(), end()};
    }

    /// The first contour, or the end.
    iterator begin()
    {
        return {_firstContour, this};
    }

    /// As above.
    const_iterator begin() const
    {
        return {_firstContour, this};
    }

    /// Behind the last contour.
    iterator end()
    {
        return {nullptr, this};
    }

    /// As above.
    const_iterator end() const
    {
        return {nullptr, this};
    }

    /// The first contour, null in an empty border.
    Contour* GetFirstContour()
    {
        return _firstContour;
    }

    /// As above.
    const Contour* GetFirstContour() const
    {
        return _firstContour;
    }

    /// The last contour, null in an empty border.
    Contour* GetLastContour()
    {
        return _lastContour;
    }

    /// As above.
    const Contour* GetLastContour() const
    {
        return _lastContour;
    }

    /// The number of contours, empty ones included.
    [[nodiscard]] std::uint32_t GetNumContours() const
    {
        return _numContours;
    }

    /// The sum of the contours' numbers of points, at most the largest 32-bit number. Linear in the
    /// contours.
    [[nodiscard]] std::uint32_t GetNumPoints() const;

    /// The same number: an open contour counts its closing edge too.
    [[nodiscard]] std::uint32_t GetNumEdges() const;

    /// Where (x, y) lies relative to all contours together: 0 on a vertex or an edge of any, 1
    /// inside, 2 outside. A point in a hole lies inside two contours and is outside.
    [[nodiscard]] char CalculatePosition(double x, double y) const;

    /// The sum of the contours' signed areas.
    [[nodiscard]] double SurfaceAreaWithSignXY() const;

    /// The sum of the contours' circumferences.
    [[nodiscard]] double CircumferenceXY() const;

protected:
    /// A new empty contour that shares the border's pool; the caller owns it. A derived border may
    /// create contours of a derived class here.
    virtual Contour* _CreateNewContour();

    /// The pool for a new contour: that of the first contour, empty in an empty border.
    [[nodiscard]] PoolPointer _GetPool() const;

private:
    Contour* _firstContour = nullptr;
    Contour* _lastContour = nullptr;
    std::uint32_t _numContours = 0;
};

extern template class NORVEK_MATH_API M3dBorder<std::int32_t, void*>;
extern template class NORVEK_MATH_API M3dBorder<float, float>;
extern template class NORVEK_MATH_API M3dBorder<double, void*>;
extern template class NORVEK_MATH_API M3dBorder<double, MStlPoint*>;
