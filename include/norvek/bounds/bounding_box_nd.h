#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>
#include <norvek/foundation/vector.h>

#include <limits>

/// The side of a box along an axis.
enum class eBoundingBoxLimitType
{
    LowerLimit = 0,
    UpperLimit = 1
};

/// An axis-aligned box over `N` coordinates: the min corner, then the max corner.
///
/// Only `MBoundingBoxND<double, 3>` exists. Nothing is ordered or validated; lengths are signed
/// (max - min), so an inverted axis has a negative one. The empty box has min =
/// 1.7976931348623157e308 and max = -1.7976931348623157e308 on every axis; the union with it
/// leaves the other operand unchanged.
///
/// Axes are numbered from 0 and are not checked (asserted in debug builds).
template <class T, std::size_t N>
class MBoundingBoxND
{
public:
    /// A corner or a point.
    using Vector = MMVector<T, N>;

    /// Coordinates up to this magnitude fit 32-bit integers with room to spare for differences. The
    /// value is the published one; callers scale by it.
    static constexpr double kLongLimit = 619925130.0;

    /// The empty box.
    constexpr MBoundingBoxND()
    {
        SetDefaults();
    }

    /// Takes over both corners of another box.
    constexpr void Copy(const MBoundingBoxND& other)
    {
        *this = other;
    }

    /// Becomes the empty box.
    constexpr void SetDefaults()
    {
        _Fill(std::numeric_limits<T>::max(), -std::numeric_limits<T>::max());
    }

    /// Becomes the empty box; the same as `SetDefaults`.
    constexpr void Clear()
    {
        SetDefaults();
    }

    /// Becomes the box of everything, from -1.7976931348623157e308 to 1.7976931348623157e308.
    constexpr void SetInfite()
    {
        _Fill(-std::numeric_limits<T>::max(), std::numeric_limits<T>::max());
    }

    /// Sets both corners as they are.
    constexpr void Set(const Vector& min, const Vector& max)
    {
        _min = min;
        _max = max;
    }

    /// Sets the corner of the lower limits.
    constexpr void SetCornerMin(const Vector& corner)
    {
        _min = corner;
    }

    /// Sets the corner of the upper limits.
    constexpr void SetCornerMax(const Vector& corner)
    {
        _max = corner;
    }

    /// Sets the lower limit of one axis.
    constexpr void SetMin(short int axis, T value)
    {
        _min[_Index(axis)] = value;
    }

    /// Sets the upper limit of one axis.
    constexpr void SetMax(short int axis, T value)
    {
        _max[_Index(axis)] = value;
    }

    /// The lower limit of one axis.
    [[nodiscard]] constexpr T GetMin(short int axis) const
    {
        return _min[_Index(axis)];
    }

    /// The upper limit of one axis.
    [[nodiscard]] constexpr T GetMax(short int axis) const
    {
        return _max[_Index(axis)];
    }

    /// The corner of the lower limits.
    [[nodiscard]] constexpr const Vector& GetCornerMin() const
    {
        return _min;
    }

    /// The corner of the upper limits.
    [[nodiscard]] constexpr const Vector& GetCornerMax() const
    {
        return _max;
    }

    /// The middle, (min + max) * 0.5 on each axis.
    [[nodiscard]] Vector GetCenter() const;

    /// max - min on each axis.
    [[nodiscard]] Vector GetDiagonal() const;

    /// The Euclidean length of the diagonal.
    [[nodiscard]] double GetDiagonalLength() const;

    /// max - min of one axis, negative when the axis is inverted.
    [[nodiscard]] constexpr T GetLength(short int axis) const
    {
        return GetMax(axis) - GetMin(axis);
    }

    /// The same as `GetLength`.
    [[nodiscard]] constexpr T GetRange(short int axis) const
    {
        return GetLength(axis);
    }

    /// The area of the surface, 2 (dx dy + dy dz + dz dx).
    [[nodiscard]] double GetArea() const;

    /// The axis of the largest length; of equal ones the lowest.
    [[nodiscard]] short int GetMaximumAxis() const;

    /// The axis of the smallest length; of equal ones the lowest.
    [[nodiscard]] short int GetMinimumAxis() const;

    /// The largest length, and -1 when every length is below that (as in an empty box).
    [[nodiscard]] double GetMaximumLength() const;

    /// The number of axes.
    [[nodiscard]] static constexpr int GetDimension()
    {
        return static_cast<int>(N);
    }

    /// The first axis of a loop over the axes.
    [[nodiscard]] static constexpr short int GetBeginAxisForLoop()
    {
        return 0;
    }

    /// One past the last axis of a loop over the axes.
    [[nodiscard]] static constexpr short int GetEndAxisForLoop()
    {
        return static_cast<short int>(N);
    }

    /// Extends the box to hold a point. NaN coordinates take no part.
    constexpr void AddPoint(const Vector& point)
    {
        AddPoint(point.begin());
    }

    /// Extends the box to hold the point of `N` coordinates in an array.
    constexpr void AddPoint(const T* point)
    {
        for (std::size_t axis = 0; axis < N; ++axis) {
            _min[axis] = point[axis] < _min[axis] ? point[axis] : _min[axis];
            _max[axis] = point[axis] > _max[axis] ? point[axis] : _max[axis];
        }
    }

    /// Extends the box to hold another box.
    constexpr void Union(const MBoundingBoxND& other)
    {
        for (std::size_t axis = 0; axis < N; ++axis) {
            _min[axis] = other._min[axis] < _min[axis] ? other._min[axis] : _min[axis];
            _max[axis] = other._max[axis] > _max[axis] ? other._max[axis] : _max[axis];
        }
    }

    /// True when the point lies in the closed box.
    [[nodiscard]] bool GetHasPoint(const Vector& point) const;

    /// False when on some axis min > p + tolerance or p - tolerance > max, else true. Stated as a
    /// refusal on purpose: a NaN coordinate is refused by neither test and is accepted.
    [[nodiscard]] bool GetHasPointWithTolerance(const Vector& point, T tolerance) const;

    /// Finds a face to which an inside point is closer than `tolerance` (strictly). Lower axes come
    /// first, and on each axis the lower limit before the upper one. False, with nothing written,
    /// when the point is outside or no face is close.
    bool GetIsCloseToBoundary(short int& axis, eBoundingBoxLimitType& type, const Vector& point,
                              T tolerance) const;

    /// The same test without its findings.
    [[nodiscard]] bool GetIsCloseToBoundary(const Vector& point, T tolerance) const;

    /// True when the coordinate lies within `tolerance` (strictly) of one limit; the point may be
    /// outside.
    [[nodiscard]] bool GetIsCloseToSpecificBoundary(short int axis, eBoundingBoxLimitType type,
                                                    const Vector& point, T tolerance) const;

    /// True when the boxes share a point on every axis; boxes that touch do. Unlike
    /// `M3DBoundingBox::OverlapsBoundingBox` neither box is validated.
    [[nodiscard]] bool CheckIntersection(const MBoundingBoxND& other) const;

    /// Multiplies every limit by `factor`, or, about the centre c, maps each limit x to
    /// (x - c) * factor + c.
    void Scale(const double& factor, const bool& aboutCentre);

    /// True when all limits have a magnitude of at most `kLongLimit`.
    [[nodiscard]] bool CheckLongOverflow() const;

    /// A scale that brings the limits within ±`limit`, starting from `scale`.
    ///
    /// For each limit that is too large once multiplied by `scale`, the scale found so far is
    /// divided by 1000 as often as that product needs (at most 100 times). Every oversized limit
    /// divides again, since each starts from the scale found so far: the result may be much smaller
    /// than necessary, and callers rely on it.
    [[nodiscard]] double CheckLongOverflow(const double& scale, const double& limit) const;

    /// True when all limits are equal; NaN is never equal.
    friend constexpr bool operator==(const MBoundingBoxND&, const MBoundingBoxND&) = default;

    /// Prints `[(min) - (max)]`.
    friend std::ostream& operator<<(std::ostream& stream, const MBoundingBoxND& box)
    {
        return stream << '[' << box._min << " - " << box._max << ']';
    }

private:
    static constexpr std::size_t _Index(short int axis)
    {
        assert(axis >= 0 && axis < GetEndAxisForLoop());
        return static_cast<std::size_t>(axis);
    }

    constexpr void _Fill(T min, T max)
    {
        for (std::size_t axis = 0; axis < N; ++axis) {
            _min[axis] = min;
            _max[axis] = max;
        }
    }

    Vector _min;
    Vector _max;
};

extern template class NORVEK_MATH_API MBoundingBoxND<double, 3>;

/// The box in space: `MBoundingBoxND<T, 3>` with points besides vectors.
template <class T>
class MBoundingBox3D : public MBoundingBoxND<T, 3>
{
public:
    using MBoundingBoxND<T, 3>::AddPoint;

    /// Extends the box to hold the point (x, y, z).
    constexpr void AddPoint(const T& x, const T& y, const T& z)
    {
        const T point[3] = {x, y, z};
        AddPoint(point);
    }

    /// Extends the box to hold a point.
    constexpr void AddPoint(const MMPoint3d<T>& point)
    {
        AddPoint(point.x, point.y, point.z);
    }
};

extern template class NORVEK_MATH_API MBoundingBox3D<double>;

/// The box in space that can be brought into the range of 32-bit integers.
class NORVEK_MATH_API MBoundingBox3DDouble : public MBoundingBox3D<double>
{
public:
    /// Decides how to bring the box into the integer range: by nothing, by a shift, or by a scale.
    ///
    /// @param offset        the shift to add; zero unless a shift alone is enough, and then the
    ///                      negated centre of the box, rounded half away from zero
    /// @param scale         the scale to multiply by; `initialScale` unless a shift is not enough
    /// @param initialScale  the scale that the caller would like
    /// @return false when the box, multiplied by `initialScale`, fits as it is
    bool FitInLong(MMPoint3d<double>& offset, double& scale, const double& initialScale) const;
};
