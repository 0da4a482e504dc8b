#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point2d.h>
#include <norvek/foundation/point3d.h>
#include <norvek/transform/transform_matrix.h>

/// A curve in a plane of space: t -> (x, y) in a local frame, and a placement of that frame.
///
/// A pair (u, v) stands for the point of space at height v, along local z, over the curve's point
/// of parameter u: the surface that the curve sweeps along its normal. A derived class supplies the
/// curve and `_NearestParameter`; the pairs follow from these.
///
/// Values that are not finite go through the arithmetic. Nothing is kept between calls.
class NORVEK_MATH_API M2dCurveEq
{
public:
    /// Placed by the identity: local and world coordinates are the same.
    M2dCurveEq() = default;

    /// Copies the placement.
    M2dCurveEq(const M2dCurveEq&) = default;

    /// Copies the placement.
    M2dCurveEq& operator=(const M2dCurveEq&) = default;

    virtual ~M2dCurveEq();

    /// Sets the transform from the local frame to world coordinates. It has to be invertible for
    /// `FromXYZtoUV`, and rigid if nearest is to mean nearest in the world.
    void SetPlacement(const MMTransformMatrix& placement)
    {
        _placement = placement;
    }

    /// The transform from the local frame to world coordinates.
    [[nodiscard]] const MMTransformMatrix& GetPlacement() const
    {
        return _placement;
    }

    /// The point of the curve at parameter `t`, in the local plane.
    [[nodiscard]] virtual MMPoint2d<double> Evaluate1d(double t) const = 0;

    /// The implicit function: 0 on the curve, negative on its inner side, positive on the other.
    [[nodiscard]] virtual double Evaluate2d(double x, double y) const = 0;

    /// The direction in which the curve runs at `t`; not normalised.
    [[nodiscard]] virtual MMPoint2d<double> TangentDirection2d(double t) const = 0;

    /// (T.y, -T.x) for the tangent T at `t`, that is T turned by -90 degrees; not normalised.
    [[nodiscard]] virtual MMPoint2d<double> NormalDirection2d(double t) const;

    /// The point of space for the parameter u and the height v over the plane. Throws what the
    /// placement throws: `MMTransformException` when a projective one divides by 0.
    [[nodiscard]] virtual MMPoint3d<double> FromUVtoXYZ(double u, double v) const;

    /// The pair (u, v) of a point of space: u is the parameter of the point of the curve that is
    /// nearest in the local plane, v the local height. Throws what the placement throws.
    [[nodiscard]] virtual MMPoint2d<double> FromXYZtoUV(double x, double y, double z) const;

    /// How long a unit of the parameter is on the curve, on average: 1 here.
    [[nodiscard]] virtual double GetCurveScale() const;

    /// Turns the curve inside out: the implicit function, tangents and normals change their sign.
    virtual void Invert() = 0;

protected:
    /// The parameter of the point of the curve that is nearest to `point` in the local plane.
    [[nodiscard]] virtual double _NearestParameter(const MMPoint2d<double>& point) const = 0;

private:
    MMTransformMatrix _placement;
};

/// An ellipse E(t) = c + a cos t u + b sin t u', with centre c, unit axis u, and u' the axis turned
/// by +90 degrees. t is the parametric angle in radians, not the polar one.
///
/// The orientation sign s, +1 at first, says which side is inside: with +1 that of the centre.
/// Radii are taken as they are: negative ones run through the same ellipse from another start, one
/// of 0 makes a segment, for which `Evaluate2d` divides by 0.
class NORVEK_MATH_API M2dEllipseEq : public M2dCurveEq
{
public:
    /// The unit circle about the origin that starts on the x axis.
    M2dEllipseEq() = default;

    /// Copies everything.
    M2dEllipseEq(const M2dEllipseEq&) = default;

    /// Copies everything.
    M2dEllipseEq& operator=(const M2dEllipseEq&) = default;

    ~M2dEllipseEq() override;

    /// Sets centre, radii (x along the axis, y across it) and the direction of the axis, which is
    /// divided by its length (free of overflow) when that is above 0. Orientation sign and
    /// placement stay.
    void Set(const MMPoint2d<double>& centre, const MMPoint2d<double>& radii,
             const MMPoint2d<double>& axis);

    /// Centre, radii and the axis as it is kept, of unit length.
    void Get(MMPoint2d<double>& centre, MMPoint2d<double>& radii, MMPoint2d<double>& axis) const;

    /// E(t).
    [[nodiscard]] MMPoint2d<double> Evaluate1d(double t) const override;

    /// s ((p / a)^2 + (q / b)^2 - 1), with p and q the coordinates along and across the axis from
    /// the centre: -s there, 0 on the ellipse.
    [[nodiscard]] double Evaluate2d(double x, double y) const override;

    /// s E'(t).
    [[nodiscard]] MMPoint2d<double> TangentDirection2d(double t) const override;

    /// Ramanujan's first approximation of the perimeter over 2 pi,
    /// (3 (a + b) - sqrt((3 a + b) (a + 3 b))) / 2; the radius of a circle. S. Ramanujan, Modular
    /// equations and approximations to pi (1914). NaN for radii whose signs differ.
    [[nodiscard]] double GetCurveScale() const override;

    /// Changes the orientation sign.
    void Invert() override;

protected:
    /// In (-pi, pi]. Where several points are equally near, the positive parameter; at the centre
    /// of a circle 0. NaN when a number that it depends on is not finite.
    ///
    /// A bracketed Newton iteration in the quadrant of the point, where the nearest point is the
    /// only one whose normal passes through it. Exact to rounding: a point of the ellipse gives its
    /// parameter back within about max(a, b) / min(a, b) machine epsilons, coordinates of the size
    /// of the radii supposed.
    [[nodiscard]] double _NearestParameter(const MMPoint2d<double>& point) const override;

    /// Called at the end of `Set`, for what derived classes keep of the ellipse.
    virtual void _Derive();

    /// Coordinates along and across the axis from the centre.
    [[nodiscard]] MMPoint2d<double> _ToAxes(const MMPoint2d<double>& point) const;

    /// E'(t), free of the orientation sign.
    [[nodiscard]] MMPoint2d<double> _Derivative(double t) const;

    /// a and b.
    [[nodiscard]] const MMPoint2d<double>& _Radii() const
    {
        return _radii;
    }

    /// s.
    [[nodiscard]] double _Sign() const
    {
        return _sign;
    }

private:
    MMPoint2d<double> _centre;
    MMPoint2d<double> _radii{1.0, 1.0};
    MMPoint2d<double> _axis{1.0, 0.0};
    double _scale = 1.0;
    double _sign = 1.0;
};

/// The part of an ellipse between two angles, continued by straight lines:
///
///     C(t) = E(t0) + (t - t0) k g     for t < t0
///     C(t) = E(t1) + (t1 - t) k g     for t > t1
///     C(t) = E(t)                     otherwise
///
/// with k the curve scale and g the unit vector along E'(t0). The first line is tangent to the arc,
/// and k units of length belong to a unit of t. **Both lines move by the same vector g**, which is
/// meant: the second one leaves the end along -g. It is tangent where the arc makes half a turn
/// (t1 = t0 + pi: the outline of a trough), and meets the arc at an angle elsewhere.
///
/// Orientation, placement and scale are those of the ellipse. Angles are taken as they are: an arc
/// may make many turns, and with t1 < t0 there is none, only the lines.
class NORVEK_MATH_API MArcEllipseEquation2d : public M2dEllipseEq
{
public:
    /// The unit circle from -pi to pi.
    MArcEllipseEquation2d();

    /// Copies everything.
    MArcEllipseEquation2d(const MArcEllipseEquation2d&) = default;

    /// Copies everything.
    MArcEllipseEquation2d& operator=(const MArcEllipseEquation2d&) = default;

    ~MArcEllipseEquation2d() override;

    /// Sets t0 and t1 in radians. What follows from them, the ends and g, is kept up to date when
    /// the ellipse is set again. g is 0 where E'(t0) is: the lines are points then.
    void SetAngles(double start, double end);

    /// t0 in radians.
    [[nodiscard]] double GetStartAngle() const
    {
        return _start;
    }

    /// t1 in radians.
    [[nodiscard]] double GetEndAngle() const
    {
        return _end;
    }

    /// g.
    [[nodiscard]] const MMPoint2d<double>& GetContinuation() const
    {
        return _continuation;
    }

    /// C(t).
    [[nodiscard]] MMPoint2d<double> Evaluate1d(double t) const override;

    /// The ellipse's value at the point, carried back first along the line by as much as the
    /// nearest point of the curve lies on it: 0 on arc and lines, with the ellipse's sign beside
    /// them.
    [[nodiscard]] double Evaluate2d(double x, double y) const override;

    /// s C'(t): that of the ellipse on the arc, ends included, s k g before and -s k g behind it.
    [[nodiscard]] MMPoint2d<double> TangentDirection2d(double t) const override;

protected:
    /// The parameter of the nearest point of arc and lines, any real number. On the arc the
    /// smallest parameter from t0 on that gives the point; of equally near points the arc's, then
    /// that on the line before it. NaN for a point that is not finite.
    [[nodiscard]] double _NearestParameter(const MMPoint2d<double>& point) const override;

    /// The ends and g.
    void _Derive() override;

private:
    double _start;
    double _end;
    MMPoint2d<double> _continuation;
    MMPoint2d<double> _first;
    MMPoint2d<double> _last;
};
