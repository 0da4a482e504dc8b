#include "foundation/safe_length.h"
#include "linalg/symmetric_jacobi.h"

#include <norvek/foundation/constants.h>
#include <norvek/linalg/matrix3x3.h>
#include <norvek/primitives/least_squares_plane.h>

#include <algorithm>
#include <cmath>

using Norvek::Math::Core::kMomentDeterminantLimit;
using Norvek::Math::Core::kSqrtMachineEpsilon;

namespace
{

// Through the origin, a second smallest eigenvalue up to this share of the largest leaves only a
// line: a width of a millionth of the length. Sums of a million rounded squares stay below it.
constexpr double kLineShare = 1e-12;

// The index of the eigenvalue of smallest magnitude; a tie keeps the lower one.
int Smallest(const double* values)
{
    const int k = std::abs(values[0]) > std::abs(values[1]) ? 1 : 0;
    return std::abs(values[k]) > std::abs(values[2]) ? 2 : k;
}

MMatrix3x3 SymmetricMatrix(double xx, double yy, double zz, double xy, double xz, double yz)
{
    MMatrix3x3 result;
    result.SetRow(0, {xx, xy, xz});
    result.SetRow(1, {xy, yy, yz});
    result.SetRow(2, {xz, yz, zz});
    return result;
}

} // namespace

void MMLeastSquarePlane::Init()
{
    _count = 0;
    std::fill_n(_sums, 9, 0.0);
    _calculated = false;
    _isLine = true;
}

void MMLeastSquarePlane::_SetNormal(const MMPoint3d<double>& normal)
{
    const MMPoint3d<double> unit = Norvek::Math::Core::SafeDirection(normal);
    _plane[0] = unit.x;
    _plane[1] = unit.y;
    _plane[2] = unit.z;
    _isLine = false;
}

void MMLeastSquarePlane::Calculate()
{
    _calculated = true;
    if (_count <= 2) {
        _isLine = true;
        return;
    }
    const auto n = static_cast<double>(_count);
    const double* const s = _sums;
    const MMatrix3x3 scatter =
        SymmetricMatrix(s[3] - s[0] * s[0] / n, s[4] - s[1] * s[1] / n, s[5] - s[2] * s[2] / n,
                        s[6] - s[0] * s[1] / n, s[7] - s[0] * s[2] / n, s[8] - s[1] * s[2] / n);
    // The verdicts of the solver do not matter: of a close pair of values one is as good as the
    // other, and the normal belongs to the value that stands apart.
    double values[3];
    MMPoint3d<double> vectors[3];
    scatter.GetEigenValues(values);
    scatter.GetEigenVectors(vectors, values);

    double sorted[3]{std::abs(values[0]), std::abs(values[1]), std::abs(values[2])};
    std::sort(sorted, sorted + 3);
    if (sorted[0] < kSqrtMachineEpsilon && sorted[1] < kSqrtMachineEpsilon) {
        _isLine = true;
        return;
    }
    _SetNormal(vectors[Smallest(values)]);
    _plane[3] = -(_plane[0] * (s[0] / n) + _plane[1] * (s[1] / n) + _plane[2] * (s[2] / n));
}

void MMLeastSquarePlane::Calculate(const std::vector<MMPoint3d<double>>& points)
{
    Init();
    _deviationValid = false;
    for (const MMPoint3d<double>& p : points)
        AddPoint(p.x, p.y, p.z);
    Calculate();
}

void MMLeastSquarePlane::CalculateThroughOrigin()
{
    _calculated = true;
    if (_count <= 2) {
        _isLine = true;
        return;
    }
    const double xx = _sums[3];
    const double yy = _sums[4];
    const double zz = _sums[5];
    const double xy = _sums[6];
    const double xz = _sums[7];
    const double yz = _sums[8];
    const MMatrix3x3 moments = SymmetricMatrix(xx, yy, zz, xy, xz, yz);
    const double determinant =
        2.0 * xy * yz * xz + xx * yy * zz - xz * xz * yy - xy * xy * zz - xx * yz * yz;
    if (determinant > kMomentDeterminantLimit) {
        double values[3];
        MMPoint3d<double> vectors[3];
        moments.GetEigenValues(values);
        moments.GetEigenVectors(vectors, values);
        _SetNormal(vectors[Smallest(values)]);
        _plane[3] = 0.0;
        return;
    }
    // Points exactly in a plane through the origin come here, and so does any small object, since
    // the limit is absolute. Only a line is refused, and that by a share, not by a size.
    const auto eigen = Norvek::Math::Core::SolveSymmetric(moments);
    double sorted[3]{std::abs(eigen.values[0]), std::abs(eigen.values[1]),
                     std::abs(eigen.values[2])};
    std::sort(sorted, sorted + 3);
    if (!(sorted[1] > kLineShare * sorted[2])) {
        _isLine = true;
        return;
    }
    _SetNormal(eigen.vectors[static_cast<std::size_t>(Smallest(eigen.values.data()))]);
    _plane[3] = 0.0;
}

void MMLeastSquarePlane::CalculateWeighted(
    const std::vector<std::pair<MMPoint3d<double>, double>>& points)
{
    Init();
    _deviationValid = false;
    _calculated = true;
    _count = static_cast<std::uint32_t>(points.size());
    double total = 0.0;
    MMPoint3d<double> centroid;
    for (const auto& [p, weight] : points) {
        total += weight;
        centroid += weight * p;
    }
    if (points.size() < 3 || total == 0.0)
        return;
    centroid /= total;
    for (const auto& [p, weight] : points) {
        const MMPoint3d<double> q = p - centroid;
        _sums[3] += weight * (q.x * q.x);
        _sums[4] += weight * (q.y * q.y);
        _sums[5] += weight * (q.z * q.z);
        _sums[6] += weight * (q.x * q.y);
        _sums[7] += weight * (q.x * q.z);
        _sums[8] += weight * (q.y * q.z);
    }
    // The first moments about the centroid vanish; these make the average point the centroid.
    const auto n = static_cast<double>(_count);
    _sums[0] = centroid.x * n;
    _sums[1] = centroid.y * n;
    _sums[2] = centroid.z * n;
    CalculateThroughOrigin();
    if (!_isLine) {
        _plane[3] = -(_plane[0] * centroid.x + _plane[1] * centroid.y + _plane[2] * centroid.z);
    }
}

void MMLeastSquarePlane::_InitDeviation()
{
    _deviationValid = false;
    _deviationSum = 0.0;
    _maximumDeviation = 0.0;
}

void MMLeastSquarePlane::_UpdateDeviation(const MMPoint3d<double>& point)
{
    const double distance =
        _plane[0] * point.x + _plane[1] * point.y + _plane[2] * point.z + _plane[3];
    _deviationSum += distance * distance;
    _maximumDeviation = std::max(_maximumDeviation, std::abs(distance));
}

void MMLeastSquarePlane::_UpdateDeviation(unsigned int n)
{
    _deviationSum = std::sqrt(_deviationSum / n);
    _deviationValid = true;
}

MMPlaneEq<double> MMLeastSquarePlane::GetPlane()
{
    if (!_calculated)
        Calculate();
    // Written coefficient by coefficient: the constructor would normalise once more.
    MMPlaneEq<double> plane;
    plane.A() = _plane[0];
    plane.B() = _plane[1];
    plane.C() = _plane[2];
    plane.D() = _plane[3];
    return plane;
}

MMPoint3d<double> MMLeastSquarePlane::GetAveragePoint() const
{
    if (_count == 0)
        return {};
    const auto n = static_cast<double>(_count);
    return {_sums[0] / n, _sums[1] / n, _sums[2] / n};
}
