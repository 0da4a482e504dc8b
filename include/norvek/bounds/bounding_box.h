#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <limits>
#include <type_traits>

/// An axis-aligned box: the lower and the upper limit on each axis, both belonging to the box.
///
/// `T` is `std::int32_t`, `double` or `float`. The six limits are public and may be set in any
/// order; nothing is ordered or validated on the way in. An axis is valid when min <= max (so a NaN
/// limit makes it invalid), and a box when its three axes are; a single point is a valid box.
///
/// The empty box has its lower limits at the top of the number range and its upper limits at the
/// bottom, so that the union with it leaves the other operand unchanged. Union is commutative,
/// associative and idempotent. What looks true but is not: the intersection of disjoint boxes is
/// not the empty box (only the disjoint axes become empty), and `HasPointExclusive` excludes the
/// lower faces only.
///
/// Axis numbers are 0 = x, 1 = y, 2 = z. Integer sums, differences and products wrap modulo 2^32.
template <class T>
struct M3DBoundingBox
{
    static_assert(Norvek::Math::Core::kIsCoordinate<T>,
                  "A box has limits of double, float or std::int32_t; a 64-bit long is none.");

    /// The type of a length along an axis; unsigned for integer boxes, where it never overflows.
    using Extent = std::conditional_t<std::integral<T>, std::uint32_t, T>;

    /// The lower limit of an empty axis: the largest (finite) number.
    static constexpr T kEmptyMin = std::numeric_limits<T>::max();

    /// The upper limit of an empty axis: the negated largest number. For integers this is meant to
    /// be -2147483647, one above the most negative number: a coordinate of -2147483648 that is
    /// added to an empty box sets the lower limit but not the upper one, and callers rely on the
    /// value.
    static constexpr T kEmptyMax = -std::numeric_limits<T>::max();

    /// The lower limit on x.
    T minX = kEmptyMin;

    /// The upper limit on x.
    T maxX = kEmptyMax;

    /// The lower limit on y.
    T minY = kEmptyMin;

    /// The upper limit on y.
    T maxY = kEmptyMax;

    /// The lower limit on z.
    T minZ = kEmptyMin;

    /// The upper limit on z.
    T maxZ = kEmptyMax;

    /// The empty box.
    constexpr M3DBoundingBox() = default;

    /// The box of two corners, copied as they are.
    constexpr M3DBoundingBox(const MMPoint3dIntegerTypes<T>& min,
                             const MMPoint3dIntegerTypes<T>& max)
        : minX(min.x),
          maxX(max.x),
          minY(min.y),
          maxY(max.y),
          minZ(min.z),
          maxZ(max.z)
    {}

    /// The box of one point.
    constexpr explicit M3DBoundingBox(const MMPoint3dIntegerTypes<T>& point)
        : M3DBoundingBox(point, point)
    {}

    /// The box of six limits: the three lower ones, then the three upper ones.
    constexpr M3DBoundingBox(T minXValue, T minYValue, T minZValue, T maxXValue, T maxYValue,
                             T maxZValue)
        : minX(minXValue),
          maxX(maxXValue),
          minY(minYValue),
          maxY(maxYValue),
          minZ(minZValue),
          maxZ(maxZValue)
    {}

    /// Becomes the box of one point.
    constexpr M3DBoundingBox& operator=(const MMPoint3dIntegerTypes<T>& point)
    {
        return *this = M3DBoundingBox(point);
    }

    /// Sets both corners as they are, without ordering.
    constexpr void Set(const MMPoint3dIntegerTypes<T>& min, const MMPoint3dIntegerTypes<T>& max)
    {
        *this = M3DBoundingBox(min, max);
    }

    /// Sets the three lower limits, then the three upper ones, without ordering.
    constexpr void Set(T minXValue, T minYValue, T minZValue, T maxXValue, T maxYValue, T maxZValue)
    {
        *this = M3DBoundingBox(minXValue, minYValue, minZValue, maxXValue, maxYValue, maxZValue);
    }

    /// Sets the lower limit of one axis. Any other axis number than 0, 1, 2 changes nothing.
    constexpr void SetMin(int axis, const T& value)
    {
        if (axis >= 0 && axis <= 2)
            (axis == 0 ? minX : axis == 1 ? minY : minZ) = value;
    }

    /// Sets the upper limit of one axis. Any other axis number than 0, 1, 2 changes nothing.
    constexpr void SetMax(int axis, const T& value)
    {
        if (axis >= 0 && axis <= 2)
            (axis == 0 ? maxX : axis == 1 ? maxY : maxZ) = value;
    }

    /// Becomes the empty box.
    constexpr void Clear()
    {
        *this = M3DBoundingBox();
    }

    /// Swaps the limits of every axis whose lower limit is above the upper one. The empty box thus
    /// becomes the box of (nearly) everything.
    void MakeValid();

    /// The lower limit of an axis; 0 for any other axis number than 0, 1, 2.
    [[nodiscard]] constexpr T GetMin(int axis) const
    {
        return axis == 0 ? minX : axis == 1 ? minY : axis == 2 ? minZ : T{0};
    }

    /// The upper limit of an axis; 0 for any other axis number than 0, 1, 2.
    [[nodiscard]] constexpr T GetMax(int axis) const
    {
        return axis == 0 ? maxX : axis == 1 ? maxY : axis == 2 ? maxZ : T{0};
    }

    /// The lower limit on x.
    [[nodiscard]] constexpr T GetMinX() const
    {
        return minX;
    }

    /// The lower limit on y.
    [[nodiscard]] constexpr T GetMinY() const
    {
        return minY;
    }

    /// The lower limit on z.
    [[nodiscard]] constexpr T GetMinZ() const
    {
        return minZ;
    }

    /// The upper limit on x.
    [[nodiscard]] constexpr T GetMaxX() const
    {
        return maxX;
    }

    /// The upper limit on y.
    [[nodiscard]] constexpr T GetMaxY() const
    {
        return maxY;
    }

    /// The upper limit on z.
    [[nodiscard]] constexpr T GetMaxZ() const
    {
        return maxZ;
    }

    /// The corner of the three lower limits.
    [[nodiscard]] constexpr MMPoint3d<T> GetCornerMin() const
    {
        return {minX, minY, minZ};
    }

    /// The corner of the three upper limits.
    [[nodiscard]] constexpr MMPoint3d<T> GetCornerMax() const
    {
        return {maxX, maxY, maxZ};
    }

    /// Writes the corner of the three lower limits.
    constexpr void GetCornerMin(T& x, T& y, T& z) const
    {
        x = minX;
        y = minY;
        z = minZ;
    }

    /// Writes the corner of the three upper limits.
    constexpr void GetCornerMax(T& x, T& y, T& z) const
    {
        x = maxX;
        y = maxY;
        z = maxZ;
    }

    /// One of the eight corners: on each axis the selector 0 takes the lower limit, 1 the upper.
    [[nodiscard]] constexpr MMPoint3d<T> GetCorner(int ix, int iy, int iz) const
    {
        return {ix == 0 ? minX : maxX, iy == 0 ? minY : maxY, iz == 0 ? minZ : maxZ};
    }

    /// The middle of each axis, (min + max) / 2. For integers the sum wraps and the half truncates
    /// towards zero.
    [[nodiscard]] constexpr MMPoint3d<T> GetCenter() const
    {
        return {_Middle(minX, maxX), _Middle(minY, maxY), _Middle(minZ, maxZ)};
    }

    /// |max - min| of an axis, so that an inverted axis has a positive length too; 0 for any other
    /// axis number than 0, 1, 2.
    [[nodiscard]] constexpr Extent GetDelta(int axis) const
    {
        return _Distance(GetMin(axis), GetMax(axis));
    }

    /// |max - min| on x.
    [[nodiscard]] constexpr Extent GetDeltaX() const
    {
        return _Distance(minX, maxX);
    }

    /// |max - min| on y.
    [[nodiscard]] constexpr Extent GetDeltaY() const
    {
        return _Distance(minY, maxY);
    }

    /// |max - min| on z.
    [[nodiscard]] constexpr Extent GetDeltaZ() const
    {
        return _Distance(minZ, maxZ);
    }

    /// Extends the box to hold a point. NaN coordinates take no part.
    constexpr void AddPoint(const MMPoint3dIntegerTypes<T>& point)
    {
        *this |= point;
    }

    /// Extends the box to hold the point of three coordinates in an array.
    constexpr void AddPoint(const T* point)
    {
        *this |= MMPoint3dIntegerTypes<T>(point[0], point[1], point[2]);
    }

    /// Extends the box to hold another box.
    constexpr M3DBoundingBox& operator|=(const M3DBoundingBox& other)
    {
        minX = _Smaller(other.minX, minX);
        maxX = _Larger(other.maxX, maxX);
        minY = _Smaller(other.minY, minY);
        maxY = _Larger(other.maxY, maxY);
        minZ = _Smaller(other.minZ, minZ);
        maxZ = _Larger(other.maxZ, maxZ);
        return *this;
    }

    /// Extends the box to hold a point.
    constexpr M3DBoundingBox& operator|=(const MMPoint3dIntegerTypes<T>& point)
    {
        return *this |= M3DBoundingBox(point);
    }

    /// The smallest box that holds both operands.
    [[nodiscard]] constexpr M3DBoundingBox operator|(const M3DBoundingBox& other) const
    {
        M3DBoundingBox result = *this;
        return result |= other;
    }

    /// The smallest box that holds this box and a point.
    [[nodiscard]] constexpr M3DBoundingBox operator|(const MMPoint3dIntegerTypes<T>& point) const
    {
        M3DBoundingBox result = *this;
        return result |= point;
    }

    /// Intersects axis by axis. An axis on which the boxes are disjoint becomes empty; the others
    /// keep their overlap. Intervals that touch give a single value. Validity is not looked at.
    M3DBoundingBox& operator&=(const M3DBoundingBox& other);

    /// The axis-by-axis intersection, as `&=`.
    [[nodiscard]] M3DBoundingBox operator&(const M3DBoundingBox& other) const
    {
        M3DBoundingBox result = *this;
        return result &= other;
    }

    /// True when all six limits are equal; NaN is never equal.
    friend constexpr bool operator==(const M3DBoundingBox&, const M3DBoundingBox&) = default;

    /// True when min <= max on every axis.
    [[nodiscard]] constexpr bool IsValid() const
    {
        return minX <= maxX && minY <= maxY && minZ <= maxZ;
    }

    /// True when the point lies in the closed box.
    [[nodiscard]] constexpr bool HasPoint(const MMPoint3dIntegerTypes<T>& p) const
    {
        return minX <= p.x && p.x <= maxX && minY <= p.y && p.y <= maxY && minZ <= p.z &&
               p.z <= maxZ;
    }

    /// True when min < p <= max on every axis. Half open on purpose: the lower limit is excluded
    /// and the upper one included, so that boxes which share a face never both claim a point on it.
    [[nodiscard]] constexpr bool HasPointExclusive(const MMPoint3dIntegerTypes<T>& p) const
    {
        return minX < p.x && p.x <= maxX && minY < p.y && p.y <= maxY && minZ < p.z && p.z <= maxZ;
    }

    /// True when this box is valid and the limits of `other` lie within its limits. The other box
    /// is not validated: an empty box is contained in every valid one.
    [[nodiscard]] constexpr bool Contains(const M3DBoundingBox& other) const
    {
        return IsValid() && minX <= other.minX && other.maxX <= maxX && minY <= other.minY &&
               other.maxY <= maxY && minZ <= other.minZ && other.maxZ <= maxZ;
    }

    /// True when both boxes are valid and share at least a point; boxes that only touch do.
    [[nodiscard]] constexpr bool OverlapsBoundingBox(const M3DBoundingBox& other) const
    {
        return IsValid() && other.IsValid() && minX <= other.maxX && other.minX <= maxX &&
               minY <= other.maxY && other.minY <= maxY && minZ <= other.maxZ && other.minZ <= maxZ;
    }

    /// True when the plane through `point` with the given normal (of any length) has corners of the
    /// box on both sides; false for an invalid box. A corner on the plane counts as the side away
    /// from the normal, so a box that touches the plane from that side only does not intersect.
    /// Integer boxes compute in wrapping 32-bit arithmetic.
    [[nodiscard]] bool DoesIntersectPlane(const MMPoint3d<T>& point,
                                          const MMPoint3dIntegerTypes<T>& normal) const;

    /// True when the triangle and the closed box share a point; false for an invalid box.
    ///
    /// Method: the separating axes of a box and a triangle (nine edge pairs, three faces of the
    /// box, the plane of the triangle; T. Akenine-Moller, "Fast 3D triangle-box overlap testing",
    /// 2001). Computed in `T`: integer boxes halve centre and extents by integer division and wrap,
    /// so distances up to about 2^9 between box and triangle are safe there.
    [[nodiscard]] bool DoesIntersectTriangle(const MMPoint3dIntegerTypes<T> triangle[3]) const;

    /// Prints `[(min) - (max)]`.
    friend std::ostream& operator<<(std::ostream& stream, const M3DBoundingBox& box)
    {
        return stream << '[' << box.GetCornerMin() << " - " << box.GetCornerMax() << ']';
    }

private:
    using Point = MMPoint3d<T>;

    static bool _TestBoundingBoxNormals(const Point vertices[3], const Point& half);
    static bool _TestNormalVersusEdge(const Point vertices[3], const Point& half,
                                      const Point& edge);
    static bool _TestBoundingBoxes(const Point vertices[3], const Point& half);
    static bool _TestTriangleNormal(const Point vertices[3], const Point& half);

    static constexpr T _Smaller(T candidate, T current)
    {
        return candidate < current ? candidate : current;
    }

    static constexpr T _Larger(T candidate, T current)
    {
        return candidate > current ? candidate : current;
    }

    static constexpr T _Half(T value)
    {
        if constexpr (std::integral<T>)
            return value / 2;
        else
            return value * T(0.5);
    }

    static constexpr T _Middle(T min, T max)
    {
        return _Half(Norvek::Math::Core::WrappingAdd(min, max));
    }

    static constexpr Extent _Distance(T a, T b)
    {
        const T low = b < a ? b : a;
        const T high = b < a ? a : b;
        return static_cast<Extent>(high) - static_cast<Extent>(low);
    }
};

extern template struct NORVEK_MATH_API M3DBoundingBox<std::int32_t>;
extern template struct NORVEK_MATH_API M3DBoundingBox<double>;
extern template struct NORVEK_MATH_API M3DBoundingBox<float>;
