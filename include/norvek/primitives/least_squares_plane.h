#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>
#include <norvek/primitives/plane_equation.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

/// The plane n · p + d = 0 of least squared distances to a stream of points.
///
/// The points are not kept: a count and nine running sums (Σx .. Σyz) are, so that points may be
/// added at any time and the plane computed anew. The normal is the eigenvector of the scatter
/// matrix about the centroid that belongs to the eigenvalue of smallest magnitude.
///
/// The sums are plain sums of the coordinates as they come. The scatter is their difference and
/// loses about twice as many digits as the centroid's distance from the origin has over the size of
/// the object: 1e5 object sizes away from the origin leave six digits. Subtract a point near the
/// object first, as the section example does.
///
/// Coordinates must be finite and below about 1e25 from the centroid: the closed form of the
/// eigenvalues takes their twelfth powers. Beyond, the tests for a line do not refuse the NaN that
/// comes of it: `GetIsLine` is false and the normal means nothing.
///
/// A fresh object is a line (`GetIsLine`) with the plane (0, 0, 0, 0). Where the points define no
/// plane the old plane stays. The sign of the normal is that of the eigenvector: any.
///
/// Deviations are gathered in a pass of their own, after the plane is known:
/// `_InitDeviation()`, `_UpdateDeviation(point)` for each point, `_UpdateDeviation(count)` at last.
class NORVEK_MATH_API MMLeastSquarePlane
{
public:
    /// Zero points.
    MMLeastSquarePlane() = default;

    /// Forgets all points. The plane and the deviations stay.
    void Init();

    /// Adds a point. The count stays at 2^32 - 1 once it is there.
    void AddPoint(double x, double y, double z)
    {
        _count += _count != std::numeric_limits<std::uint32_t>::max() ? 1U : 0U;
        _sums.x += x;
        _sums.y += y;
        _sums.z += z;
        _sums.xx += x * x;
        _sums.yy += y * y;
        _sums.zz += z * z;
        _sums.xy += x * y;
        _sums.xz += x * z;
        _sums.yz += y * z;
        _calculated = false;
    }

    /// Computes the plane of the points added so far. Fewer than three points, or points whose two
    /// smallest eigenvalues are both below 1.49e-8, are a line: that threshold is absolute, in
    /// squared units of length times points.
    void Calculate();

    /// Forgets all points, adds these and computes their plane; the deviations are no longer valid.
    void Calculate(const std::vector<MMPoint3d<double>>& points);

    /// Computes the best plane through the origin, d = 0, from the sums about the origin.
    ///
    /// Also for points that lie exactly in such a plane, and for objects of any size. A line only
    /// when there are fewer than three points or when the second smallest eigenvalue is not above
    /// 2^-40 of the largest, that is, when all points lie on a line through the origin to about one
    /// part in a million.
    void CalculateThroughOrigin();

    /// Forgets all points and computes the plane of weighted points (second member: the weight):
    /// the best plane through the weighted centroid, from the moments about it, each times its
    /// weight.
    ///
    /// The sums are then those of as many unweighted points with the same centroid and the same
    /// scatter, so that the readers and further points go on from there. Fewer than three points, a
    /// total weight of zero, and points on a line (as in `CalculateThroughOrigin`) are a line.
    void CalculateWeighted(const std::vector<std::pair<MMPoint3d<double>, double>>& points);

    /// The plane, computed first when points were added since. Its coefficients are those computed,
    /// not normalised once more.
    [[nodiscard]] MMPlaneEq<double> GetPlane();

    /// The centroid of the points; (0, 0, 0) for no points.
    [[nodiscard]] MMPoint3d<double> GetAveragePoint() const;

    /// True when the points define no plane, as the last computation found; true at first.
    [[nodiscard]] bool GetIsLine() const
    {
        return _isLine;
    }

    /// The number of points added.
    [[nodiscard]] std::uint32_t GetNumPoints() const
    {
        return _count;
    }

    /// The largest distance from the plane over the points of the deviation pass.
    [[nodiscard]] double GetMaxDeviation() const
    {
        return _maxDeviation;
    }

    /// The root of the mean squared distance, once the deviation pass is finished; the sum of the
    /// squared distances while it runs.
    [[nodiscard]] double GetStandardDeviation() const
    {
        return _deviationSum;
    }

    /// True from the end of a deviation pass until the next begins or points are replaced.
    [[nodiscard]] bool GetIsDeviationValid() const
    {
        return _deviationValid;
    }

    /// Begins a deviation pass.
    void _InitDeviation();

    /// Takes one point into the deviations. The plane must have been computed.
    void _UpdateDeviation(const MMPoint3d<double>& point);

    /// Ends a deviation pass over `n` points. With `n` = 0 the standard deviation is not finite.
    void _UpdateDeviation(unsigned int n);

private:
    struct Sums
    {
        double x = 0;
        double y = 0;
        double z = 0;
        double xx = 0;
        double yy = 0;
        double zz = 0;
        double xy = 0;
        double xz = 0;
        double yz = 0;
    };

    void _SetNormal(const MMPoint3d<double>& normal);

    MMPoint3d<double> _normal;
    double _d = 0;
    bool _calculated = false;
    bool _deviationValid = false;
    bool _isLine = true;
    std::uint32_t _count = 0;
    Sums _sums;
    double _deviationSum = 0;
    double _maxDeviation = 0;
};
