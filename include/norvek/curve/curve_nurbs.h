#pragma once

#include <norvek/curve/curve3d.h>
#include <norvek/curve/nurbs.h>

#include <cstdint>
#include <vector>

/// A curve that is a `NURBSCurv` with arrays of its own.
///
/// A fit makes a B-spline of weights 1 over the parameters 0 to 1 by `spd_create_curve`. A curve
/// of any other kind is made by hand: `SetOrder`, `SetNumberControlPoints`, `InitNURBSCurv`, then
/// knots and control points through `AccessKnots` and `AccessControlPoints`. Knot n - 1 has to lie
/// before knot n for n control points: the curve has no point at its end otherwise, and a division
/// up to there fails.
///
/// **Arrays and numbers.** `SetOrder` and `SetNumberControlPoints` say what the next fit is to use
/// and do not touch the arrays. While the numbers differ from those of the arrays, and before there
/// are arrays, the curve has no points: evaluation leaves its outputs alone, and what is built on
/// it fails. Setting the old numbers brings the curve back.
///
/// Copies own their arrays. Nothing is read beyond the arrays, whatever is set and written; knots
/// that descend give a curve without meaning.
class NORVEK_MATH_API M3dCurveNurbs : public M3dCurve
{
public:
    /// No arrays, order 3, an open curve over 0 to 1.
    M3dCurveNurbs() = default;

    /// Copies everything, arrays included.
    M3dCurveNurbs(const M3dCurveNurbs& other);

    /// Copies everything, arrays included.
    M3dCurveNurbs& operator=(const M3dCurveNurbs& other);

    ~M3dCurveNurbs() override;

    /// The point at `t` by `nurbs_curv_eval`: outside 0 to 1 the end polynomials of a fit go on, on
    /// a closed loop, too. Success **always**, which is meant; `position` is as it was when the
    /// curve has no point there.
    error EvaluatePosition(MMPoint3d<double>& position, double t) const override;

    /// The point and the first derivative, in the same way.
    error EvaluateSpeed(MMPoint3d<double>& position, MMPoint3d<double>& speed,
                        double t) const override;

    /// The point and the first and second derivatives, in the same way.
    error EvaluateAcceleration(MMPoint3d<double>& position, MMPoint3d<double>& speed,
                               MMPoint3d<double>& acceleration, double t) const override;

    /// The order that was set, or used by the last fit; 3 at first.
    [[nodiscard]] std::uint32_t GetOrder() const
    {
        return static_cast<std::uint32_t>(_curve.order);
    }

    /// Sets the order of fits to come. One outside 2 to 20 is repaired to 4 by the fit.
    void SetOrder(std::uint32_t order);

    /// The number that was set, or used by the last fit; 0 at first.
    [[nodiscard]] std::uint32_t GetNumberControlPoints() const
    {
        return static_cast<std::uint32_t>(_curve.numControlPoints);
    }

    /// Sets the number of control points of fits to come. Without it the first fit takes the number
    /// of its points, **and later fits keep that**, repaired where it is beyond their points.
    void SetNumberControlPoints(std::uint32_t count);

    /// Order and number of control points together.
    [[nodiscard]] std::uint32_t GetNumberKnots() const
    {
        return GetOrder() + GetNumberControlPoints();
    }

    /// Knot i, 0 beyond the array.
    [[nodiscard]] double GetKnot(std::uint32_t i) const;

    /// Control point i, all zeros beyond the array.
    [[nodiscard]] Point4D GetControlPoint(std::uint32_t i) const;

    /// The array of knots, to be read and written; null without one. Valid until the next fit,
    /// `InitNURBSCurv` or assignment.
    [[nodiscard]] double* AccessKnots()
    {
        return _curve.knots;
    }

    /// The array of control points, under the same rules.
    [[nodiscard]] Point4D* AccessControlPoints()
    {
        return _curve.controlPoints;
    }

    /// Makes arrays of zeros for the order and the number that are set. False, and unchanged, when
    /// the order is below 1 or above the number, or the number above 2^24.
    bool InitNURBSCurv();

    /// Walks i from 0 while t > knot i and i is below the number of control points. True when
    /// knot i > t then: **strict on both sides**, so that a knot itself is before nothing. False,
    /// with i = 0, when there are no arrays that fit the numbers.
    bool BeforeKnot(std::uint32_t& i, double t) const;

protected:
    /// The distinct knots strictly within the range, and its ends.
    error _SegmentMinimal(std::vector<double>& parameters) const override;

    /// Fits with uniform parameters (0 per cent), closed when the flag is set, and a work size of
    /// 2^21: at most 209715 points. Arrays follow the order and the number that are used after
    /// repairs, and these stay set; minimum and maximum stay, too. `kFailure` exactly when
    /// `NURBS_ERROR_HANDLING` tells of an error. The old arrays are gone then, and the curve is
    /// what the fit has left: without points, or at the origin after a least-squares failure.
    error _Fit(const std::vector<MMPoint3d<double>>& points) override;

    /// The globally nearest parameter, for orders up to 500: no branch is missed, weights within
    /// some three powers of ten of each other supposed.
    ///
    /// Every knot span is a polynomial over the Bernstein basis, and so is the squared distance.
    /// Its coefficients bound it from below: pieces that cannot come nearer than the best point
    /// found so far are left out, pieces on which the coefficients are convex have one minimum,
    /// found by Newton's method, and others are halved. Distances that differ by less than some
    /// dozen epsilons of the curve's extent about the point count as equal.
    ///
    /// About ten microseconds for a curve of 150 spans. Where spans are as short as 1e-11, which
    /// the kernel does not evaluate, only their ends count.
    bool _FindNearest(double& t, const MMPoint3d<double>& point) const override;

    /// An upper bound, up to order 500: the largest distance of a Bernstein control point of the
    /// curve between both parameters from the chord. Never below the deviation, weights above 0
    /// supposed, and less than twice as large on short intervals.
    [[nodiscard]] double _ChordDeviation(double from, double to) const override;

private:
    void _Copy(const M3dCurveNurbs& other);
    void _DeleteNURBSCurv();
    void _Allocate(int order, int count);
    void _InitNURBSCurv(std::int32_t numPoints);
    [[nodiscard]] bool _HasCurve() const;

    std::uint32_t _defaultOrder = 3;
    NURBSCurv _curve{.order = 3};
    bool _ownsArrays = false;
    bool _isCountSet = false;
    bool _isOrderSet = false;
    // What the record's pointers point to.
    std::vector<double> _knots;
    std::vector<Point4D> _controlPoints;
};
