#pragma once

#include <norvek/border/border_contour_base.h>

#include <utility>

/// The contour of the library's borders: the ring of `M3dBorderContourBase`, whose rules all hold
/// here, and nothing more than its constructors and assignment.
///
/// Moving a contour is copying it: the points of the copy are new records, in the pool of the
/// contour it was made from. To hand points over, insert the whole contour into another one.
template <class Coord, class Payload, class Point = M3dBorderPoint<Coord, Payload>>
class NORVEK_MATH_API M3dBorderContour
    : public M3dBorderContourBase<Coord, Payload, Point, M3dBorderContour<Coord, Payload, Point>>
{
    using _Base = M3dBorderContourBase<Coord, Payload, Point, M3dBorderContour>;

public:
    using typename _Base::PoolPointer;

    /// An empty contour on the given pool, or on a new one.
    explicit M3dBorderContour(PoolPointer pool = PoolPointer()) : _Base(std::move(pool))
    {}

    /// A copy in the given pool, or in a new one.
    M3dBorderContour(const M3dBorderContour& other, PoolPointer pool)
        : _Base(other, std::move(pool))
    {}

    /// A copy that shares the pool of `other`.
    M3dBorderContour(const M3dBorderContour& other) = default;

    /// Gives the points back to the pool.
    ~M3dBorderContour() override = default;

    /// Copies points and flags, as the base does.
    M3dBorderContour& operator=(const M3dBorderContour& other)
    {
        static_cast<_Base&>(*this) = static_cast<const _Base&>(other);
        return *this;
    }
};

// The four contours of the library, compiled once.
extern template class NORVEK_MATH_API
    M3dBorderContourBase<std::int32_t, void*, M3dBorderPoint<std::int32_t, void*>,
                         M3dBorderContour<std::int32_t, void*>>;
extern template class NORVEK_MATH_API M3dBorderContourBase<
    float, float, M3dBorderPoint<float, float>, M3dBorderContour<float, float>>;
extern template class NORVEK_MATH_API M3dBorderContourBase<
    double, void*, M3dBorderPoint<double, void*>, M3dBorderContour<double, void*>>;
extern template class NORVEK_MATH_API M3dBorderContourBase<
    double, MStlPoint*, M3dBorderPoint<double, MStlPoint*>, M3dBorderContour<double, MStlPoint*>>;

extern template class NORVEK_MATH_API M3dBorderContour<std::int32_t, void*>;
extern template class NORVEK_MATH_API M3dBorderContour<float, float>;
extern template class NORVEK_MATH_API M3dBorderContour<double, void*>;
extern template class NORVEK_MATH_API M3dBorderContour<double, MStlPoint*>;
