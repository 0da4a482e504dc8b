#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <concepts>
#include <cstdint>

class MMTransform;

/// The implicit plane a x + b y + c z + d = 0, the form for fitting, clipping and mirroring.
///
/// (a, b, c) is the normal and d the offset: for a unit normal the signed distance of the origin.
/// Only `MMPlaneEq<double>` exists.
///
/// Holds after construction and `Set`: the normal has unit length, or is exactly zero; then the
/// equation is no plane (`IsPlane` false). Does not hold after the coefficients were written
/// directly, until `Normalise`. The normal's length is a plain root: beyond about 1e154 it
/// overflows and leaves no plane, below about 1e-154 it loses digits, and below 1e-162 it counts as
/// zero, so that nothing is divided. Nothing throws by itself; NaN in gives NaN out.
template <class T>
class NORVEK_MATH_API MMPlaneEq
{
    static_assert(std::same_as<T, double>, "A plane equation has double coefficients.");

public:
    /// How two planes lie to each other.
    enum class MPlaneIntersectionType : std::int32_t
    {
        /// Parallel and distinct.
        Parallel = 0,
        /// They meet in a line.
        Line = 1,
        /// The same plane, whichever way it faces.
        Coincident = 2
    };

    /// All four coefficients 0: no plane.
    MMPlaneEq() = default;

    /// The plane through three points, facing to where they run anticlockwise: normal
    /// (p2 - p1) x (p3 - p1). Collinear points give all zeros.
    MMPlaneEq(const MMPoint3d<T>& p1, const MMPoint3d<T>& p2, const MMPoint3d<T>& p3)
    {
        Set(p1, p2, p3);
    }

    /// The plane through a point with a normal of any length; a zero normal gives no plane.
    MMPlaneEq(const MMPoint3d<T>& point, const MMPoint3d<T>& normal)
    {
        Set(point, normal);
    }

    /// The plane a x + b y + c z + d = 0, divided by the length of (a, b, c); with a zero normal d
    /// stays as given.
    MMPlaneEq(T a, T b, T c, T d)
    {
        Set(a, b, c, d);
    }

    /// As the constructor from three points.
    void Set(const MMPoint3d<T>& p1, const MMPoint3d<T>& p2, const MMPoint3d<T>& p3);

    /// As the constructor from a point and a normal.
    void Set(const MMPoint3d<T>& point, const MMPoint3d<T>& normal);

    /// As the constructor from four coefficients.
    void Set(T a, T b, T c, T d);

    /// Divides all four coefficients by the length of the normal, unless that is exactly 0.
    void Normalise();

    /// The same plane facing the other way: negates all four coefficients. Does not normalise.
    void Invert();

    /// Negates a, b and c and keeps d: the plane's mirror image through the origin. That it differs
    /// from `Invert` is meant.
    void InvertNormal();

    /// Moves the plane by a transform. The foot of the origin and the normal are carried along (the
    /// normal as the difference of two transformed positions, not by the inverse transpose, so that
    /// under a shear or an uneven scale the result is not the image of the plane). The new normal
    /// and the new foot are rounded to single precision; then the plane is normalised and its
    /// offset computed.
    ///
    /// Nothing changes when the transform fails or throws. An equation that is no plane gets a NaN
    /// offset.
    void Transform(const MMTransform& transform);

    /// @name Coefficients
    /// Writing through the references is allowed; `Normalise` afterwards.
    /// @{
    /// The coefficient a: x of the normal.
    T& A()
    {
        return _normal.x;
    }

    /// The coefficient b: y of the normal.
    T& B()
    {
        return _normal.y;
    }

    /// The coefficient c: z of the normal.
    T& C()
    {
        return _normal.z;
    }

    /// The coefficient d: the offset.
    T& D()
    {
        return _d;
    }

    /// The coefficient a: x of the normal.
    const T& A() const
    {
        return _normal.x;
    }

    /// The coefficient b: y of the normal.
    const T& B() const
    {
        return _normal.y;
    }

    /// The coefficient c: z of the normal.
    const T& C() const
    {
        return _normal.z;
    }

    /// The coefficient d: the offset.
    const T& D() const
    {
        return _d;
    }
    /// @}

    /// (a, b, c).
    const MMPoint3d<T>& GetNormal() const
    {
        return _normal;
    }

    /// True when a, b or c is not exactly zero.
    [[nodiscard]] bool IsPlane() const;

    /// Exact comparison of all four coefficients: an inverted plane is another plane.
    bool operator==(const MMPlaneEq& other) const;

    /// The negation of `==`.
    bool operator!=(const MMPlaneEq& other) const
    {
        return !(*this == other);
    }

    /// The plane facing the other way, normalised.
    [[nodiscard]] MMPlaneEq Inverted() const;

    /// a x + b y + c z + d: the distance, positive on the side of the normal. Assumes a unit
    /// normal.
    [[nodiscard]] T Distance(const MMPoint3d<T>& point) const
    {
        return Distance(point.x, point.y, point.z);
    }

    /// The same for a point given by its coordinates.
    [[nodiscard]] T Distance(T x, T y, T z) const
    {
        return _normal.x * x + _normal.y * y + _normal.z * z + _d;
    }

    /// True when |Distance| < `tolerance`; false at a tolerance of 0.
    [[nodiscard]] bool On(const MMPoint3d<T>& point, T tolerance) const;

    /// Writes the foot of the perpendicular from `point` and returns t with out = point + t n.
    /// Holds for a normal of any length; a zero normal gives the origin and 0. `out` may be
    /// `point`.
    T Project(MMPoint3d<T>& out, const MMPoint3d<T>& point) const;

    /// Writes the mirror image of `point` and returns the point's signed distance. Assumes a unit
    /// normal. `out` may be `point`.
    T Mirror(MMPoint3d<T>& out, const MMPoint3d<T>& point) const;

    /// Meets the plane with the infinite line origin + t direction; t may be negative and counts in
    /// units of `direction`. False, with t = 0 and `out` the origin of coordinates, when the
    /// direction lies exactly in the plane. `out` may be either argument.
    bool Intersect(double& t, MMPoint3d<T>& out, const MMPoint3d<T>& origin,
                   const MMPoint3d<T>& direction) const;

    /// Meets two planes.
    ///
    /// `outDirection` is always written: n x n' at unit length, or zero. `outPoint` is written for
    /// `Line` only: the point of the line whose z is 0, else y, else x, the first for which the
    /// determinant of the other two coordinates exceeds `tolerance`. The tolerance is compared with
    /// raw determinants, not with an angle, and with the difference of the offsets to tell
    /// `Coincident` from `Parallel`.
    MPlaneIntersectionType IntersectWithPlane(MMPoint3d<T>& outPoint, MMPoint3d<T>& outDirection,
                                              const MMPlaneEq& other, T tolerance) const;

private:
    MMPoint3d<T> _normal;
    T _d = 0;
};

extern template class NORVEK_MATH_API MMPlaneEq<double>;
