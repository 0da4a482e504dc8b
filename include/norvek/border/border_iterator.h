#pragma once

#include <norvek/border/border_point.h>

#include <cstddef>
#include <iterator>
#include <type_traits>

/// @file
/// Iterators over the points of a contour and over the contours of a border. All model the C++20
/// bidirectional iterator, so that `for` loops and the algorithms of `std::ranges` apply.
///
/// An iterator stays valid while its element stays in the container. It asks the container where
/// the first (or last) element is, so that an element may be removed once the iterator has left it,
/// the first one as well:
/// `for (auto it = c.begin(); it != c.end();) { auto* p = &*it; ++it; c.RemovePoint(p); }`.

/// Walks the ring of a contour once, from its first point to its last; the end comes where the ring
/// closes.
///
/// A const `Point` makes the iterator over a const contour. A default iterator belongs to no
/// contour and equals the other default ones. Entering the ring elsewhere while an iterator is
/// under way changes where its walk ends.
template <class Point, class Contour>
class M3dBorderContourIterator
{
    using _Contour = std::conditional_t<std::is_const_v<Point>, const Contour, Contour>;

public:
    /// Both directions, one at a time.
    using iterator_category = std::bidirectional_iterator_tag;

    /// What it walks over.
    using value_type = std::remove_const_t<Point>;

    /// A distance.
    using difference_type = std::ptrdiff_t;

    /// The address of an element.
    using pointer = Point*;

    /// An element.
    using reference = Point&;

    /// An iterator of no contour.
    M3dBorderContourIterator() = default;

    /// The iterator at `point` of `contour`; a null point is the end.
    M3dBorderContourIterator(Point* point, _Contour* contour) : _point(point), _contour(contour)
    {}

    /// The same place, read-only.
    operator M3dBorderContourIterator<const Point, Contour>() const
        requires(!std::is_const_v<Point>)
    {
        return {_point, _contour};
    }

    /// The point; the end has none.
    reference operator*() const
    {
        return *_point;
    }

    /// A member of the point.
    pointer operator->() const
    {
        return _point;
    }

    /// To the next point, from the last one to the end.
    M3dBorderContourIterator& operator++()
    {
        _point = Norvek::Math::Core::NextInRing(_point);
        if (_point == _contour->GetFirstPoint()) [[unlikely]]
            _point = nullptr;
        return *this;
    }

    /// As above; gives the place before the step.
    M3dBorderContourIterator operator++(int)
    {
        const M3dBorderContourIterator before = *this;
        ++*this;
        return before;
    }

    /// To the previous point, from the end to the last one.
    M3dBorderContourIterator& operator--()
    {
        _point = (_point != nullptr ? _point : _contour->GetFirstPoint())->previous;
        return *this;
    }

    /// As above; gives the place before the step.
    M3dBorderContourIterator operator--(int)
    {
        const M3dBorderContourIterator before = *this;
        --*this;
        return before;
    }

    /// Equal at the same point, and at the end.
    friend bool operator==(const M3dBorderContourIterator& a, const M3dBorderContourIterator& b)
    {
        return a._point == b._point;
    }

private:
    Point* _point = nullptr;
    _Contour* _contour = nullptr;
};

/// The iterator over the points of a const contour.
template <class Point, class Contour>
using M3dBorderContourConstIterator = M3dBorderContourIterator<const Point, Contour>;

/// Walks the contours of a border from the first to the last.
///
/// Const `Border` and `Contour` make the iterator over a const border. A default iterator belongs
/// to no border and equals the other default ones.
template <class Border, class Contour>
class BaseM3dBorderIterator
{
    static_assert(std::is_const_v<Border> == std::is_const_v<Contour>);

public:
    /// Both directions, one at a time.
    using iterator_category = std::bidirectional_iterator_tag;

    /// What it walks over.
    using value_type = std::remove_const_t<Contour>;

    /// A distance.
    using difference_type = std::ptrdiff_t;

    /// The address of an element.
    using pointer = Contour*;

    /// An element.
    using reference = Contour&;

    /// An iterator of no border.
    BaseM3dBorderIterator() = default;

    /// The iterator at `contour` of `border`; a null contour is the end.
    BaseM3dBorderIterator(Contour* contour, Border* border) : _contour(contour), _border(border)
    {}

    /// The same place, read-only.
    operator BaseM3dBorderIterator<const Border, const Contour>() const
        requires(!std::is_const_v<Border>)
    {
        return {_contour, _border};
    }

    /// The contour; the end has none.
    reference operator*() const
    {
        return *_contour;
    }

    /// A member of the contour.
    pointer operator->() const
    {
        return _contour;
    }

    /// To the next contour, from the last one to the end.
    BaseM3dBorderIterator& operator++()
    {
        _contour = _contour->GetNextContour();
        return *this;
    }

    /// As above; gives the place before the step.
    BaseM3dBorderIterator operator++(int)
    {
        const BaseM3dBorderIterator before = *this;
        ++*this;
        return before;
    }

    /// To the previous contour, from the end to the last one.
    BaseM3dBorderIterator& operator--()
    {
        _contour = _contour != nullptr ? _contour->GetPreviousContour() : _border->GetLastContour();
        return *this;
    }

    /// As above; gives the place before the step.
    BaseM3dBorderIterator operator--(int)
    {
        const BaseM3dBorderIterator before = *this;
        --*this;
        return before;
    }

    /// Equal at the same contour, and at the end.
    friend bool operator==(const BaseM3dBorderIterator& a, const BaseM3dBorderIterator& b)
    {
        return a._contour == b._contour;
    }

private:
    Contour* _contour = nullptr;
    Border* _border = nullptr;
};
