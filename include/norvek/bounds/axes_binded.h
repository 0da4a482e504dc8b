#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point2d.h>
#include <norvek/foundation/point3d.h>

class MMTransformMatrix;

/// A local frame in space: a centre and three axes, and the translation that carries world points
/// into the frame.
///
/// Invariant: translation = (-(c . X), -(c . Y), -(c . Z)), so that the world point p has the local
/// coordinates (X . p + tx, Y . p + ty, Z . p + tz). Every change keeps it up to date, except
/// `GenerateXYZ`, which leaves the translation of the axes before; copies carry that along.
///
/// Axes are normalised as they are set, without overflow of the squares; one whose length is not
/// above 0 (zero or NaN) is stored as passed, and one with a length beyond the doubles becomes
/// zero. That the axes are orthogonal is neither asked nor made: only the generators give that,
/// from axes that are.
///
/// Laws: with orthonormal axes the centre has local coordinates 0 and lengths are kept, to
/// rounding; `GetTransformationTo` undoes `GetTransformation`. Not laws: the frame is right-handed
/// (the setters take any axes); `GenerateY` gives a unit axis.
///
/// Arguments may be axes or the centre of this very frame. NaN and infinity are carried through.
class NORVEK_MATH_API M3DAxesBinded
{
public:
    /// The world frame, as `Initialize` makes it.
    M3DAxesBinded() = default;

    /// Copies centre, axes and translation, each as it is.
    M3DAxesBinded(const M3DAxesBinded&) = default;

    /// Copies centre, axes and translation, each as it is.
    M3DAxesBinded& operator=(const M3DAxesBinded&) = default;

    virtual ~M3DAxesBinded();

    /// Takes over centre, axes and translation, each as it is.
    void Copy(const M3DAxesBinded& other);

    /// The world frame: centre and translation 0, the unit axes.
    void Initialize();

    /// @name Changes
    /// @{

    /// Moves the centre; the axes stay.
    void SetCenter(const MMPoint3d<double>& center);

    /// Sets the X axis, normalised; the others stay.
    void SetXAxis(const MMPoint3d<double>& axis);

    /// Sets the Y axis, normalised; the others stay.
    void SetYAxis(const MMPoint3d<double>& axis);

    /// Sets the Z axis, normalised; the others stay.
    void SetZAxis(const MMPoint3d<double>& axis);

    /// Sets two axes, normalised, and generates the third: `GenerateZ`.
    void SetXYAxes(const MMPoint3d<double>& xAxis, const MMPoint3d<double>& yAxis);

    /// Sets two axes, normalised, and generates the third: `GenerateY`, which does not give it unit
    /// length unless the two are perpendicular.
    void SetXZAxes(const MMPoint3d<double>& xAxis, const MMPoint3d<double>& zAxis);

    /// Sets two axes, normalised, and generates the third: `GenerateX`.
    void SetYZAxes(const MMPoint3d<double>& yAxis, const MMPoint3d<double>& zAxis);

    /// Sets all three axes, normalised.
    void SetXYZAxes(const MMPoint3d<double>& xAxis, const MMPoint3d<double>& yAxis,
                    const MMPoint3d<double>& zAxis);

    /// Sets Z, normalised, and generates the others: `GenerateXY`.
    ///
    /// The turn about the normal jumps where the choice of Y changes. A zero normal has no
    /// perpendicular: X and Y become NaN.
    void SetNormal(const MMPoint3d<double>& normal);

    /// X = Y x Z, normalised.
    void GenerateX();

    /// Y = Z x X, and then X is normalised, not Y. Callers depend on it: Y has the length
    /// |Z| |X| sin(angle between them), with the X of before.
    void GenerateY();

    /// Z = X x Y, normalised.
    void GenerateZ();

    /// Y perpendicular to Z within a coordinate plane, then X = Y x Z, normalised. Z must be a unit
    /// vector (x, y, z) and stays. With |x| below 1/sqrt(3) Y lies in the yz plane, along
    /// (0, z, -y); else with |y| below it in the xz plane, along (-z, 0, x); else in the xy plane,
    /// along (y, -x, 0). Squares are added plainly: a Z far from unit length can overflow.
    void GenerateXY();

    /// The unit axes. The translation stays as it was, so that local coordinates are no longer
    /// relative to the centre until another change computes it anew.
    void GenerateXYZ();
    /// @}

    /// @name Reading
    /// @{

    /// The centre, in world coordinates.
    [[nodiscard]] const MMPoint3d<double>& Center() const
    {
        return _center;
    }

    /// The X axis, in world coordinates.
    [[nodiscard]] const MMPoint3d<double>& X_Axis() const
    {
        return _xAxis;
    }

    /// The Y axis, in world coordinates.
    [[nodiscard]] const MMPoint3d<double>& Y_Axis() const
    {
        return _yAxis;
    }

    /// The Z axis, in world coordinates.
    [[nodiscard]] const MMPoint3d<double>& Z_Axis() const
    {
        return _zAxis;
    }

    /// What is added to the dot products with the axes, in local coordinates.
    [[nodiscard]] const MMPoint3d<double>& Translation() const
    {
        return _translation;
    }
    /// @}

    /// @name Computing
    /// @{

    /// out = (X . in, Y . in, Z . in): turns a direction into the frame, without translation. `out`
    /// may be `in`.
    void TransformPoint(MMPoint3d<double>& out, const MMPoint3d<double>& in) const
    {
        out = {_xAxis.Dot(in), _yAxis.Dot(in), _zAxis.Dot(in)};
    }

    /// Replaces the world coordinates of `point` by its local ones.
    void _TransformPointToLocalSystem(MMPoint3d<double>& point) const
    {
        _TransformPointToLocalSystem(point, point);
    }

    /// Writes the local coordinates of the world point `in` to `out`, which may be `in`.
    void _TransformPointToLocalSystem(MMPoint3d<double>& out, const MMPoint3d<double>& in) const
    {
        out = {_xAxis.Dot(in) + _translation.x, _yAxis.Dot(in) + _translation.y,
               _zAxis.Dot(in) + _translation.z};
    }

    /// The map from world to local coordinates, with the bits of `_TransformPointToLocalSystem`
    /// (but where the frame is the world's the point itself comes back: zeros keep their sign, and
    /// an infinite coordinate does not turn the others to NaN). What the matrix held is replaced.
    ///
    /// Nothing is rounded to single precision, and the translation of the inverse is the centre
    /// itself; after `GenerateXYZ`, when the centre plays no part, it is minus the translation.
    /// `IsInversible` is false for axes that are linearly dependent, by the tests of
    /// `MMTransformMatrix::ComputeInverse`, or not finite.
    void GetTransformation(MMTransformMatrix& matrix) const;

    /// The map from local to world coordinates, with axes of any length and angle: matrix and
    /// inverse of `GetTransformation` exchanged.
    ///
    /// Where there is no inverse, local (a, b, c) goes to centre + a X + b Y + c Z and
    /// `IsInversible` is false. That still is the world point for every point that has these
    /// coordinates, if those axes that are not zero are orthonormal.
    void GetTransformationTo(MMTransformMatrix& matrix) const;
    /// @}

private:
    [[nodiscard]] MMPoint3d<double> _CenterTranslation() const;
    void _UpdateTranslation();

    MMPoint3d<double> _center;
    MMPoint3d<double> _xAxis{1.0, 0.0, 0.0};
    MMPoint3d<double> _yAxis{0.0, 1.0, 0.0};
    MMPoint3d<double> _zAxis{0.0, 0.0, 1.0};
    MMPoint3d<double> _translation;
};

/// A local frame in the plane: an origin and two axes.
class NORVEK_MATH_API M2DAxesBinded
{
public:
    /// The frame of the plane itself, as `Initialize` makes it.
    M2DAxesBinded() = default;

    /// Origin (0, 0), axes (1, 0) and (0, 1).
    void Initialize();

    /// The origin, in the coordinates of the plane.
    [[nodiscard]] const MMPoint2d<double>& Origin() const
    {
        return _origin;
    }

    /// The first axis.
    [[nodiscard]] const MMPoint2d<double>& X_Axis() const
    {
        return _xAxis;
    }

    /// The second axis.
    [[nodiscard]] const MMPoint2d<double>& Y_Axis() const
    {
        return _yAxis;
    }

private:
    MMPoint2d<double> _origin;
    MMPoint2d<double> _xAxis{1.0, 0.0};
    MMPoint2d<double> _yAxis{0.0, 1.0};
};
