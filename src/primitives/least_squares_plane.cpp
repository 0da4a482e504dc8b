#include "foundation/safe_length.h"
#include "linalg/lane_pair.h"
#include "linalg/symmetric_jacobi.h"

#include <norvek/foundation/constants.h>
#include <norvek/linalg/matrix3x3.h>
#include <norvek/primitives/least_squares_plane.h>

#include <algorithm>
#include <cmath>

using namespace Norvek::Math::Core;

namespace
{

// Below this share of the largest eigenvalue the second smallest one is rounding: 2^-40, the square
// of a millionth.
constexpr double kNegligibleShare = 0x1p-40;

MMatrix3x3 Symmetric(double xx, double yy, double zz, double xy, double xz, double yz)
{
    MMatrix3x3 matrix;
    matrix.SetRow(0, {xx, xy, xz});
    matrix.SetRow(1, {xy, yy, yz});
    matrix.SetRow(2, {xz, yz, zz});
    return matrix;
}

struct Eigen3
{
    double values[3];
    MMPoint3d<double> vectors[3];
};

// The verdicts of both steps are left aside: the vectors are written in any case, and callers rely
// on a plane coming out.
Eigen3 ClosedFormEigen(const MMatrix3x3& matrix)
{
    Eigen3 eigen{};
    matrix.GetEigenValues(eigen.values);
    matrix.GetEigenVectors(eigen.vectors, eigen.values);
    return eigen;
}

// Ties keep the lower index.
const MMPoint3d<double>& SmallestVector(const Eigen3& eigen)
{
    int k = std::abs(eigen.values[0]) > std::abs(eigen.values[1]) ? 1 : 0;
    if (std::abs(eigen.values[k]) > std::abs(eigen.values[2]))
        k = 2;
    return eigen.vectors[k];
}

} // namespace

void MMLeastSquarePlane::Init()
{
    _count = 0;
    _sums = Sums();
    _calculated = false;
    _isLine = true;
}

void MMLeastSquarePlane::_SetNormal(const MMPoint3d<double>& normal)
{
    _isLine = false;
    _normal = SafeDirection(normal);
}

void MMLeastSquarePlane::Calculate()
{
    _calculated = true;
    if (_count <= 2) {
        _isLine = true;
        return;
    }
    const double n = _count;
    const Sums& s = _sums;
    const Eigen3 eigen = ClosedFormEigen(Symmetric(s.xx - s.x * s.x / n, s.yy - s.y * s.y / n,
                                                   s.zz - s.z * s.z / n, s.xy - s.x * s.y / n,
                                                   s.xz - s.x * s.z / n, s.yz - s.y * s.z / n));
    // The threshold is absolute on the scatter as it is, so that it depends on the unit of length.
    const auto numSmall =
        std::count_if(std::begin(eigen.values), std::end(eigen.values),
                      [](double value) { return std::abs(value) < kSqrtMachineEpsilon; });
    if (numSmall >= 2) {
        _isLine = true;
        return;
    }
    _SetNormal(SmallestVector(eigen));
    _d = -_normal.Dot(GetAveragePoint());
}

// Every sum adds the terms of the points in their order, as adding them one by one does; two sums
// at a time share a processor lane pair.
void MMLeastSquarePlane::Calculate(const std::vector<MMPoint3d<double>>& points)
{
    Init();
    _deviationValid = false;
    LanePair sumXY = BothLanes(0.0);
    LanePair sumXXYY = BothLanes(0.0);
    LanePair sumXZYZ = BothLanes(0.0);
    LanePair sumXYZZ = BothLanes(0.0);
    double sumZ = 0.0;
    for (const MMPoint3d<double>& point : points) {
        const LanePair xy{point.x, point.y};
        const LanePair yz{point.y, point.z};
        const LanePair xz{point.x, point.z};
        sumXY += xy;
        sumXXYY += xy * xy;
        sumXZYZ += xy * BothLanes(point.z);
        sumXYZZ += xz * yz;
        sumZ += point.z;
    }
    _sums = {sumXY[0],   sumXY[1],   sumZ,       sumXXYY[0], sumXXYY[1],
             sumXYZZ[1], sumXYZZ[0], sumXZYZ[0], sumXZYZ[1]};
    _count = static_cast<std::uint32_t>(
        std::min<std::size_t>(points.size(), std::numeric_limits<std::uint32_t>::max()));
    Calculate();
}

void MMLeastSquarePlane::CalculateThroughOrigin()
{
    _calculated = true;
    if (_count <= 2) {
        _isLine = true;
        return;
    }
    const Sums& s = _sums;
    const MMatrix3x3 moments = Symmetric(s.xx, s.yy, s.zz, s.xy, s.xz, s.yz);
    const double determinant = 2.0 * s.xy * s.yz * s.xz + s.xx * s.yy * s.zz - s.xz * s.xz * s.yy -
                               s.xy * s.xy * s.zz - s.xx * s.yz * s.yz;
    if (determinant > kMomentDeterminantLimit) {
        _SetNormal(SmallestVector(ClosedFormEigen(moments)));
        _d = 0.0;
        return;
    }
    // Points exactly in a plane and any small object end here, where the closed form has few digits
    // left; the rotations have all of them. The values descend.
    const SymmetricEigen eigen = SolveSymmetric(moments);
    _isLine = !(eigen.values[1] > kNegligibleShare * eigen.values[0]);
    if (!_isLine) {
        _SetNormal(eigen.vectors[2]);
        _d = 0.0;
    }
}

void MMLeastSquarePlane::CalculateWeighted(
    const std::vector<std::pair<MMPoint3d<double>, double>>& points)
{
    Init();
    _deviationValid = false;
    _calculated = true;
    double total = 0.0;
    MMPoint3d<double> centroid;
    for (const auto& [point, weight] : points) {
        total += weight;
        centroid += weight * point;
    }
    if (total == 0.0)
        return;
    centroid /= total;
    Sums moments;
    for (const auto& [point, weight] : points) {
        const MMPoint3d<double> p = point - centroid;
        moments.xx += weight * p.x * p.x;
        moments.yy += weight * p.y * p.y;
        moments.zz += weight * p.z * p.z;
        moments.xy += weight * p.x * p.y;
        moments.xz += weight * p.x * p.z;
        moments.yz += weight * p.y * p.z;
    }
    _count = static_cast<std::uint32_t>(
        std::min<std::size_t>(points.size(), std::numeric_limits<std::uint32_t>::max()));
    _sums = moments;
    CalculateThroughOrigin();
    if (!_isLine)
        _d = -_normal.Dot(centroid);

    const double n = _count;
    const double share = n / total;
    const MMPoint3d<double>& c = centroid;
    _sums = {n * c.x,
             n * c.y,
             n * c.z,
             moments.xx * share + n * c.x * c.x,
             moments.yy * share + n * c.y * c.y,
             moments.zz * share + n * c.z * c.z,
             moments.xy * share + n * c.x * c.y,
             moments.xz * share + n * c.x * c.z,
             moments.yz * share + n * c.y * c.z};
}

MMPlaneEq<double> MMLeastSquarePlane::GetPlane()
{
    if (!_calculated)
        Calculate();
    // Written one by one: the constructor would normalise the unit normal once more.
    MMPlaneEq<double> plane;
    plane.A() = _normal.x;
    plane.B() = _normal.y;
    plane.C() = _normal.z;
    plane.D() = _d;
    return plane;
}

MMPoint3d<double> MMLeastSquarePlane::GetAveragePoint() const
{
    if (_count == 0)
        return {};
    return MMPoint3d<double>(_sums.x, _sums.y, _sums.z) / static_cast<double>(_count);
}

void MMLeastSquarePlane::_InitDeviation()
{
    _deviationValid = false;
    _deviationSum = 0.0;
    _maxDeviation = 0.0;
}

void MMLeastSquarePlane::_UpdateDeviation(const MMPoint3d<double>& point)
{
    const double distance = _normal.Dot(point) + _d;
    _deviationSum += distance * distance;
    _maxDeviation = std::max(_maxDeviation, std::abs(distance));
}

void MMLeastSquarePlane::_UpdateDeviation(unsigned int n)
{
    _deviationSum = std::sqrt(_deviationSum / n);
    _deviationValid = true;
}
