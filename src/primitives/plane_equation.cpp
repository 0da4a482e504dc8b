#include "foundation/round_to_float.h"

#include <norvek/primitives/plane_equation.h>
#include <norvek/transform/transform.h>

#include <cmath>

using Norvek::Math::Core::RoundToFloat;

namespace
{

// Solves p1 x + q1 y + d1 = 0, p2 x + q2 y + d2 = 0 by Cramer's rule, given the determinant
// p1 q2 - q1 p2.
void SolvePair(double& x, double& y, double p1, double q1, double d1, double p2, double q2,
               double d2, double determinant)
{
    x = (q1 * d2 - d1 * q2) / determinant;
    y = (d1 * p2 - p1 * d2) / determinant;
}

} // namespace

template <class T>
void MMPlaneEq<T>::Set(const MMPoint3d<T>& p1, const MMPoint3d<T>& p2, const MMPoint3d<T>& p3)
{
    Set(p1, (p2 - p1).Cross(p3 - p1));
}

template <class T>
void MMPlaneEq<T>::Set(const MMPoint3d<T>& point, const MMPoint3d<T>& normal)
{
    _d = -point.Dot(normal);
    _normal = normal;
    Normalise();
}

template <class T>
void MMPlaneEq<T>::Set(T a, T b, T c, T d)
{
    _normal = {a, b, c};
    _d = d;
    Normalise();
}

template <class T>
void MMPlaneEq<T>::Normalise()
{
    const T length = _normal.Length();
    if (length == 0)
        return;
    _normal /= length;
    _d /= length;
}

// Changes signs only; a normal that is not of unit length stays so.
template <class T>
void MMPlaneEq<T>::Invert()
{
    _normal = -_normal;
    _d = -_d;
}

// Keeping the offset mirrors the plane through the origin: meant, unlike Invert.
template <class T>
void MMPlaneEq<T>::InvertNormal()
{
    _normal = -_normal;
}

template <class T>
MMPlaneEq<T> MMPlaneEq<T>::Inverted() const
{
    return MMPlaneEq(-_normal.x, -_normal.y, -_normal.z, -_d);
}

// The normal travels as the difference of two positions. Foot and normal are rounded to single
// precision, the normal after the subtraction; callers compare planes from this very rounding.
template <class T>
void MMPlaneEq<T>::Transform(const MMTransform& transform)
{
    MMPoint3d<T> foot = (-_d / _normal.LengthSquared()) * _normal;
    MMPoint3d<T> normal = _normal;
    MMPoint3d<T> origin;
    if (!transform.Transform(foot, false) || !transform.Transform(normal, false) ||
        !transform.Transform(origin, false))
        return;
    _normal = RoundToFloat(normal - origin);
    _normal.Normalise();
    _d = -_normal.Dot(RoundToFloat(foot));
}

template <class T>
bool MMPlaneEq<T>::IsPlane() const
{
    return _normal.x != 0 || _normal.y != 0 || _normal.z != 0;
}

template <class T>
bool MMPlaneEq<T>::operator==(const MMPlaneEq& other) const
{
    return _d == other._d && _normal == other._normal;
}

template <class T>
bool MMPlaneEq<T>::On(const MMPoint3d<T>& point, T tolerance) const
{
    return std::abs(Distance(point)) < tolerance;
}

// Divides by the squared length, so that coefficients written directly do no harm here.
template <class T>
T MMPlaneEq<T>::Project(MMPoint3d<T>& out, const MMPoint3d<T>& point) const
{
    const T squared = _normal.LengthSquared();
    if (squared == 0) {
        out = MMPoint3d<T>();
        return 0;
    }
    const T t = -Distance(point) / squared;
    out = point + t * _normal;
    return t;
}

template <class T>
T MMPlaneEq<T>::Mirror(MMPoint3d<T>& out, const MMPoint3d<T>& point) const
{
    const T distance = Distance(point);
    out = point - 2 * distance * _normal;
    return distance;
}

template <class T>
bool MMPlaneEq<T>::Intersect(double& t, MMPoint3d<T>& out, const MMPoint3d<T>& origin,
                             const MMPoint3d<T>& direction) const
{
    const T denominator = _normal.Dot(direction);
    if (denominator == 0) {
        t = 0;
        out = MMPoint3d<T>();
        return false;
    }
    const T along = -Distance(origin) / denominator;
    out = origin + along * direction;
    t = along;
    return true;
}

template <class T>
typename MMPlaneEq<T>::MPlaneIntersectionType
MMPlaneEq<T>::IntersectWithPlane(MMPoint3d<T>& outPoint, MMPoint3d<T>& outDirection,
                                 const MMPlaneEq& other, T tolerance) const
{
    const MMPoint3d<T>& n1 = _normal;
    const MMPoint3d<T>& n2 = other._normal;
    outDirection = n1.Cross(n2).Normalised();

    // The determinants are compared as they are, without regard to angle or size, in the order z,
    // y, x.
    const T zeroZ = n1.x * n2.y - n1.y * n2.x;
    const T zeroY = n1.z * n2.x - n1.x * n2.z;
    const T zeroX = n1.z * n2.y - n1.y * n2.z;
    MMPoint3d<T> point;
    if (std::abs(zeroZ) > tolerance)
        SolvePair(point.x, point.y, n1.x, n1.y, _d, n2.x, n2.y, other._d, zeroZ);
    else if (std::abs(zeroY) > tolerance)
        SolvePair(point.z, point.x, n1.z, n1.x, _d, n2.z, n2.x, other._d, zeroY);
    else if (std::abs(zeroX) > tolerance)
        SolvePair(point.z, point.y, n1.z, n1.y, _d, n2.z, n2.y, other._d, zeroX);
    else {
        const T dot = n1.Dot(n2);
        const bool same = (dot > 0 && std::abs(_d - other._d) < tolerance) ||
                          (dot < 0 && std::abs(_d + other._d) < tolerance);
        return same ? MPlaneIntersectionType::Coincident : MPlaneIntersectionType::Parallel;
    }
    outPoint = point;
    return MPlaneIntersectionType::Line;
}

template class MMPlaneEq<double>;
