#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>
#include <norvek/primitives/plane_equation.h>

#include <cstdint>
#include <utility>
#include <vector>

/// Fits a plane to a stream of points by orthogonal least squares.
///
/// Points are not stored: the object holds their count and nine running sums (first and second
/// moments), so that points may be added one at a time and the plane asked for at any moment. The
/// normal is the eigenvector of the scatter matrix with the smallest magnitude of the eigenvalue.
///
/// Failure is not reported by results: `GetIsLine` tells that the points define no plane, and the
/// plane then keeps its previous coefficients, at first all 0. Points on a line have two
/// negligible eigenvalues; in `Calculate` that test is absolute (1.5e-8 on the scatter, a squared
/// length times a count), so that a small object counts as a line: scale the points up first.
///
/// The sums are taken about the origin. Points far from it, compared with their extent, lose twice
/// the digits of that ratio: move them near the origin first. Coordinates that are not finite give
/// a NaN plane or `GetIsLine`.
class NORVEK_MATH_API MMLeastSquarePlane
{
public:
    /// No points; `GetIsLine` is true.
    MMLeastSquarePlane() = default;

    /// Forgets the points: count and sums 0, `GetIsLine` true. The plane and the deviations stay as
    /// they are.
    void Init();

    /// Adds one point. The plane is computed anew when it is next asked for.
    void AddPoint(double x, double y, double z)
    {
        ++_count;
        _sums[0] += x;
        _sums[1] += y;
        _sums[2] += z;
        _sums[3] += x * x;
        _sums[4] += y * y;
        _sums[5] += z * z;
        _sums[6] += x * y;
        _sums[7] += x * z;
        _sums[8] += y * z;
        _calculated = false;
    }

    /// Computes the plane from the points so far.
    void Calculate();

    /// Forgets the points so far, adds these and computes the plane. The bits are those of
    /// `AddPoint` called in order.
    void Calculate(const std::vector<MMPoint3d<double>>& points);

    /// Computes the best plane through the origin from the points so far; d is 0 then.
    ///
    /// Here `GetIsLine` means that all directions from the origin are one: fewer than three points,
    /// or a second smallest eigenvalue of at most 1e-12 of the largest. A flat or a small set gets
    /// its plane.
    void CalculateThroughOrigin();

    /// Fits the plane to points (first) with weights (second); it passes through their weighted
    /// centroid.
    ///
    /// Replaces the points so far: afterwards `GetNumPoints` is the number of pairs and
    /// `GetAveragePoint` the weighted centroid. The sums then are weighted moments: call `Init`
    /// before further points are added. Fewer than three pairs or a total weight of 0 give
    /// `GetIsLine`. A weight of 0 leaves its point out.
    void CalculateWeighted(const std::vector<std::pair<MMPoint3d<double>, double>>& points);

    /// @name Deviations
    /// A second pass over the points, once the plane is known: `_InitDeviation`, one
    /// `_UpdateDeviation` a point, then `_UpdateDeviation` with their number.
    /// @{
    /// Starts a pass.
    void _InitDeviation();

    /// Takes the distance of one point from the plane into account.
    void _UpdateDeviation(const MMPoint3d<double>& point);

    /// Ends the pass over n points: the sum of squares becomes the root of their mean.
    void _UpdateDeviation(unsigned int n);
    /// @}

    /// The plane, computed first when points were added since. The coefficients are those of the
    /// fit, unit normal and offset; which way the normal points is not defined.
    MMPlaneEq<double> GetPlane();

    /// The mean of the points; the origin when there are none.
    [[nodiscard]] MMPoint3d<double> GetAveragePoint() const;

    /// True when the points do not define a plane: fewer than three, or on a line.
    [[nodiscard]] bool GetIsLine() const
    {
        return _isLine;
    }

    /// The number of points added, modulo 2^32.
    [[nodiscard]] std::uint32_t GetNumPoints() const
    {
        return _count;
    }

    /// The greatest distance of a point from the plane in the deviation pass.
    [[nodiscard]] double GetMaxDeviation() const
    {
        return _maximumDeviation;
    }

    /// The root mean square distance, after the pass has ended; the sum of squares before that.
    [[nodiscard]] double GetStandardDeviation() const
    {
        return _deviationSum;
    }

private:
    void _SetNormal(const MMPoint3d<double>& normal);

    double _plane[4]{};
    bool _calculated = false;
    bool _deviationValid = false;
    bool _isLine = true;
    std::uint32_t _count = 0;
    // x, y, z, xx, yy, zz, xy, xz, yz.
    double _sums[9]{};
    double _deviationSum = 0.0;
    double _maximumDeviation = 0.0;
};
