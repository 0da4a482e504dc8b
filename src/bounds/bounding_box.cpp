#include <norvek/bounds/bounding_box.h>

#include <utility>

using Norvek::Math::Core::WrappingAdd;
using Norvek::Math::Core::WrappingMultiply;
using Norvek::Math::Core::WrappingNegate;
using Norvek::Math::Core::WrappingSubtract;

namespace
{

template <class T>
void OrderAxis(T& min, T& max)
{
    if (min > max)
        std::swap(min, max);
}

template <class T>
void IntersectAxis(T& min, T& max, T otherMin, T otherMax)
{
    if (min > otherMax || otherMin > max) {
        min = M3DBoundingBox<T>::kEmptyMin;
        max = M3DBoundingBox<T>::kEmptyMax;
        return;
    }
    min = otherMin > min ? otherMin : min;
    max = otherMax < max ? otherMax : max;
}

template <class T>
constexpr T Magnitude(T value)
{
    return value < T{0} ? WrappingNegate(value) : value;
}

// One separating axis: all three projections beyond the radius on the same side.
template <class T>
bool IsSeparated(const T projections[3], T radius)
{
    const T negative = WrappingNegate(radius);
    return (projections[0] > radius && projections[1] > radius && projections[2] > radius) ||
           (projections[0] < negative && projections[1] < negative && projections[2] < negative);
}

template <class T>
T Smallest(T a, T b, T c)
{
    const T pair = b < a ? b : a;
    return c < pair ? c : pair;
}

template <class T>
T Largest(T a, T b, T c)
{
    const T pair = b > a ? b : a;
    return c > pair ? c : pair;
}

} // namespace

template <class T>
void M3DBoundingBox<T>::MakeValid()
{
    OrderAxis(minX, maxX);
    OrderAxis(minY, maxY);
    OrderAxis(minZ, maxZ);
}

template <class T>
M3DBoundingBox<T>& M3DBoundingBox<T>::operator&=(const M3DBoundingBox& other)
{
    IntersectAxis(minX, maxX, other.minX, other.maxX);
    IntersectAxis(minY, maxY, other.minY, other.maxY);
    IntersectAxis(minZ, maxZ, other.minZ, other.maxZ);
    return *this;
}

template <class T>
bool M3DBoundingBox<T>::DoesIntersectPlane(const MMPoint3d<T>& point,
                                           const MMPoint3dIntegerTypes<T>& normal) const
{
    if (!IsValid())
        return false;
    const T offset = normal.Dot(point);
    bool reference = false;
    for (int corner = 0; corner < 8; ++corner) {
        const Point p = GetCorner(corner & 4, corner & 2, corner & 1);
        // The difference is taken before the comparison: with wrapping integers that is not the
        // same as comparing the two products.
        const bool side = WrappingSubtract(normal.Dot(p), offset) > T{0};
        if (corner == 0)
            reference = side;
        else if (side != reference)
            return true;
    }
    return false;
}

template <class T>
bool M3DBoundingBox<T>::DoesIntersectTriangle(const MMPoint3dIntegerTypes<T> triangle[3]) const
{
    if (!IsValid())
        return false;
    const Point center = GetCenter();
    const Point half(_Half(WrappingSubtract(maxX, minX)), _Half(WrappingSubtract(maxY, minY)),
                     _Half(WrappingSubtract(maxZ, minZ)));
    const Point vertices[3] = {triangle[0] - center, triangle[1] - center, triangle[2] - center};
    // The cheapest test first: each of the three only excludes, so that their order is free.
    return _TestBoundingBoxes(vertices, half) && _TestBoundingBoxNormals(vertices, half) &&
           _TestTriangleNormal(vertices, half);
}

// False when an axis that is perpendicular to an edge of the triangle and to an edge of the box
// separates them.
template <class T>
bool M3DBoundingBox<T>::_TestBoundingBoxNormals(const Point vertices[3], const Point& half)
{
    return _TestNormalVersusEdge(vertices, half, vertices[1] - vertices[0]) &&
           _TestNormalVersusEdge(vertices, half, vertices[2] - vertices[1]) &&
           _TestNormalVersusEdge(vertices, half, vertices[0] - vertices[2]);
}

// The axes edge x (1, 0, 0) = (0, ez, -ey), edge x (0, 1, 0) = (-ez, 0, ex) and
// edge x (0, 0, 1) = (ey, -ex, 0), each with its two terms that are not zero.
template <class T>
bool M3DBoundingBox<T>::_TestNormalVersusEdge(const Point vertices[3], const Point& half,
                                              const Point& edge)
{
    const auto separates = [&](T Point::*first, T a, T Point::*second, T b) {
        T projections[3];
        for (int i = 0; i < 3; ++i)
            projections[i] = WrappingAdd(WrappingMultiply(a, vertices[i].*first),
                                         WrappingMultiply(b, vertices[i].*second));
        const T radius = WrappingAdd(WrappingMultiply(half.*first, Magnitude(a)),
                                     WrappingMultiply(half.*second, Magnitude(b)));
        return IsSeparated(projections, radius);
    };
    return !separates(&Point::y, edge.z, &Point::z, WrappingNegate(edge.y)) &&
           !separates(&Point::x, WrappingNegate(edge.z), &Point::z, edge.x) &&
           !separates(&Point::x, edge.y, &Point::y, WrappingNegate(edge.x));
}

// False when the triangle's own box lies beyond a face of the box.
template <class T>
bool M3DBoundingBox<T>::_TestBoundingBoxes(const Point vertices[3], const Point& half)
{
    for (T Point::*axis : {&Point::x, &Point::y, &Point::z}) {
        const T a = vertices[0].*axis;
        const T b = vertices[1].*axis;
        const T c = vertices[2].*axis;
        if (Smallest(a, b, c) > half.*axis || Largest(a, b, c) < WrappingNegate(half.*axis))
            return false;
    }
    return true;
}

// False when the box lies on one side of the triangle's plane: only the two corners that are
// nearest and farthest along the normal are looked at.
template <class T>
bool M3DBoundingBox<T>::_TestTriangleNormal(const Point vertices[3], const Point& half)
{
    const Point normal = (vertices[1] - vertices[0]).Cross(vertices[2] - vertices[1]);
    const T offset = WrappingNegate(normal.Dot(vertices[0]));
    const auto nearest = [](T component, T extent) {
        return component > T{0} ? WrappingNegate(extent) : extent;
    };
    const Point low(nearest(normal.x, half.x), nearest(normal.y, half.y),
                    nearest(normal.z, half.z));
    if (WrappingAdd(normal.Dot(low), offset) > T{0})
        return false;
    return WrappingAdd(normal.Dot(-low), offset) >= T{0};
}

template struct M3DBoundingBox<std::int32_t>;
template struct M3DBoundingBox<double>;
template struct M3DBoundingBox<float>;
