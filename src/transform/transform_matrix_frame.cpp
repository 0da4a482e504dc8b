#include "foundation/angles.h"
#include "foundation/safe_length.h"
#include "transform/matrix4.h"

#include <norvek/foundation/constants.h>
#include <norvek/transform/transform_matrix.h>

#include <algorithm>
#include <cmath>

using namespace Norvek::Math::Core;

namespace
{

using Matrix3 = double[3][3];

// A unit vector that rises above the span of others by no more than this lies in it: ten machine
// epsilons. What is left of it then is mostly rounding error.
constexpr double kRankLimit = kTenEpsilons;

// Largest dot product of two unit columns that still passes for a rotation: what two matrices may
// differ by and still be equal, so that rotations that went through single precision pass.
constexpr double kRotationTolerance = kMatrixEqualTolerance;

// Directions whose cross product is not longer than this have no plane: ten machine epsilons, what
// rounding leaves of the cross product of two opposite unit vectors.
constexpr double kPlaneLimit = kTenEpsilons;

// |cos ay| below a hundred machine epsilons is gimbal lock: the elements from which az would follow
// are rounding errors by then.
constexpr double kGimbalLimit = 100.0 * kMachineEpsilon;

void SetRow3(double (&row)[3], double e0, double e1, double e2)
{
    row[0] = e0;
    row[1] = e1;
    row[2] = e2;
}

bool IsFinite(const MMPoint3d<double>& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

// The unit vector of `v` in `unit`; false when v is degenerate: not finite, or not longer than
// `limit`. Scaling the largest coordinate to 1 first keeps the length finite for the largest
// vectors and exact enough for the smallest.
bool GetUnit(MMPoint3d<double>& unit, const MMPoint3d<double>& v, double limit)
{
    if (!IsFinite(v) || !(SafeLength(v) > limit))
        return false;
    unit = SafeDirection(v / std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)}));
    return true;
}

// The part of the unit vector `v` perpendicular to the unit vector `u`, at unit length; false when
// v lies along u.
bool GetUnitPerpendicular(MMPoint3d<double>& unit, const MMPoint3d<double>& v,
                          const MMPoint3d<double>& u)
{
    MMPoint3d<double> rest;
    if (!GetUnit(rest, v - u.Dot(v) * u, kRankLimit))
        return false;
    // Once more: the rest of a vector close to u is not yet perpendicular to it.
    return GetUnit(unit, rest - u.Dot(rest) * u, kRankLimit);
}

// A unit vector perpendicular to `u`, from the coordinate axis that u is farthest from (the first
// of equals).
MMPoint3d<double> AnyPerpendicular(const MMPoint3d<double>& u)
{
    const double x = std::abs(u.x);
    const double y = std::abs(u.y);
    const double z = std::abs(u.z);
    MMPoint3d<double> axis(1.0, 0.0, 0.0);
    if (y < x && y <= z)
        axis = {0.0, 1.0, 0.0};
    else if (z < x)
        axis = {0.0, 0.0, 1.0};
    MMPoint3d<double> unit;
    GetUnitPerpendicular(unit, axis, u);
    return unit;
}

// The axis about which u turns onto v: perpendicular to u, of unit length. Equal or opposite
// directions have no plane; then `normal` and at last any perpendicular serves.
MMPoint3d<double> TurnAxis(const MMPoint3d<double>& u, const MMPoint3d<double>& v,
                           const MMPoint3d<double>& normal)
{
    MMPoint3d<double> axis;
    if (GetUnit(axis, u.Cross(v), kPlaneLimit) && GetUnitPerpendicular(axis, axis, u))
        return axis;
    if (GetUnit(axis, normal, kMachineEpsilon) && GetUnitPerpendicular(axis, axis, u))
        return axis;
    return AnyPerpendicular(u);
}

// The turn of the unit vector u onto the unit vector v: the map of the frame (u, a x u, a) to the
// frame (v, b x v, b), where b is the axis a freed of what rounding left of v in it. Both frames
// are orthonormal to the last digits and the first of each is exactly u and v, so that the image of
// u is v also where u x v is mostly rounding error.
//
// Measured over millions of pairs, the columns are orthonormal to 1.9e-15, within the ten machine
// epsilons of a rotation. Two turns by way of a perpendicular (5.8e-15) and Rodrigues' formula
// about the axis a (2.8e-15) bring u onto v as well, but are not always rotations by that measure.
void TurnInPlane(Matrix3& r, const MMPoint3d<double>& u, const MMPoint3d<double>& v,
                 const MMPoint3d<double>& normal)
{
    const MMPoint3d<double> a = TurnAxis(u, v, normal);
    MMPoint3d<double> b = a;
    GetUnitPerpendicular(b, a, v);
    const MMPoint3d<double> m = a.Cross(u);
    const MMPoint3d<double> n = b.Cross(v);
    SetRow3(r[0], v.x * u.x + n.x * m.x + b.x * a.x, v.x * u.y + n.x * m.y + b.x * a.y,
            v.x * u.z + n.x * m.z + b.x * a.z);
    SetRow3(r[1], v.y * u.x + n.y * m.x + b.y * a.x, v.y * u.y + n.y * m.y + b.y * a.y,
            v.y * u.z + n.y * m.z + b.y * a.z);
    SetRow3(r[2], v.z * u.x + n.z * m.x + b.z * a.x, v.z * u.y + n.z * m.y + b.z * a.y,
            v.z * u.z + n.z * m.z + b.z * a.z);
}

// The columns of the 3x3 part at unit length; false when one is zero or not finite.
bool GetUnitColumns(MMPoint3d<double> (&columns)[3], const MMTransformMatrix& matrix)
{
    for (unsigned short i = 0; i < 3; ++i) {
        MMPoint3d<double> column;
        matrix.GetColumn(column, i);
        if (!GetUnit(columns[i], column, 0.0))
            return false;
    }
    return true;
}

// The rotation in the 3x3 part, freed of the scale of its columns.
bool GetRotationPart(Matrix3& r, const MMTransformMatrix& matrix)
{
    MMPoint3d<double> c[3];
    if (!GetUnitColumns(c, matrix))
        return false;
    if (!(std::abs(c[0].Dot(c[1])) < kRotationTolerance &&
          std::abs(c[0].Dot(c[2])) < kRotationTolerance &&
          std::abs(c[1].Dot(c[2])) < kRotationTolerance) ||
        c[0].Cross(c[1]).Dot(c[2]) < 0.0)
        return false;
    SetRow3(r[0], c[0].x, c[1].x, c[2].x);
    SetRow3(r[1], c[0].y, c[1].y, c[2].y);
    SetRow3(r[2], c[0].z, c[1].z, c[2].z);
    return true;
}

// The angles, in degrees, of r = Rz(az) Ry(ay) Rx(ax).
//
// Each angle is measured between two directions, and the turn it describes is undone before the
// next is measured: first the x column against the xy plane (ay) and in it (az); then with az
// undone the y column in the yz plane (ax). Undoing makes ax take up whatever rounding left in az,
// so that the product is right near gimbal lock too, where each of them alone is not. Sine and
// cosine together give an angle to the last digits everywhere; the arc cosine of a dot product
// would lose half of them near 0 and 180 degrees.
void DecomposeXYZ(const Matrix3& r, double& ax, double& ay, double& az)
{
    const double cosAy = std::hypot(r[0][0], r[1][0]);
    const double radiansZ = cosAy < kGimbalLimit ? 0.0 : std::atan2(r[1][0], r[0][0]);
    const double c = std::cos(radiansZ);
    const double s = std::sin(radiansZ);
    const double cosAx = c * r[1][1] - s * r[0][1];
    const double sinAx = s * r[0][2] - c * r[1][2];
    ax = RadiansToDegrees(std::atan2(sinAx, cosAx));
    ay = RadiansToDegrees(std::atan2(-r[2][0], cosAy));
    az = RadiansToDegrees(radiansZ);
}

} // namespace

bool MMTransformMatrix::MakeRotationInPlane(MMPoint3d<double> from, MMPoint3d<double> to,
                                            const MMPoint3d<double>& normal)
{
    if (!GetUnit(from, from, kMachineEpsilon) || !GetUnit(to, to, kMachineEpsilon))
        return false;
    if (from == to)
        return MakeIdentity();
    Matrix3 r;
    TurnInPlane(r, from, to, normal);
    return _LoadRows({r[0][0], r[0][1], r[0][2], 0.0, //
                      r[1][0], r[1][1], r[1][2], 0.0, //
                      r[2][0], r[2][1], r[2][2], 0.0});
}

bool MMTransformMatrix::_MakeNewAxis(const MMPoint3d<double>& axis, const MMPoint3d<double>& origin,
                                     const MMPoint3d<double>& point)
{
    const MMPoint3d<double> translation = origin;
    // Coincident points give no direction: the frame is rigid and at the origin, but not turned.
    if (!MakeRotationInPlane(axis, point - origin, MMPoint3d<double>()))
        MakeIdentity();
    _matrix[0][3] = translation.x;
    _matrix[1][3] = translation.y;
    _matrix[2][3] = translation.z;
    return _Close();
}

bool MMTransformMatrix::MakeNewXAxis(const MMPoint3d<double>& origin,
                                     const MMPoint3d<double>& point)
{
    return _MakeNewAxis({1.0, 0.0, 0.0}, origin, point);
}

bool MMTransformMatrix::MakeNewYAxis(const MMPoint3d<double>& origin,
                                     const MMPoint3d<double>& point)
{
    return _MakeNewAxis({0.0, 1.0, 0.0}, origin, point);
}

bool MMTransformMatrix::MakeNewZAxis(const MMPoint3d<double>& origin,
                                     const MMPoint3d<double>& point)
{
    return _MakeNewAxis({0.0, 0.0, 1.0}, origin, point);
}

bool MMTransformMatrix::MakeOrthoNormal()
{
    MMPoint3d<double> columns[3];
    if (!GetUnitColumns(columns, *this))
        return false;
    const MMPoint3d<double>& x = columns[0];
    MMPoint3d<double> y;
    if (!GetUnitPerpendicular(y, columns[1], x))
        return false;
    MMPoint3d<double> z = x.Cross(y);
    const double height = z.Dot(columns[2]);
    if (!(std::abs(height) > kRankLimit))
        return false;
    if (height < 0.0)
        z = -z;
    SetRow4(_matrix[0], x.x, y.x, z.x, _matrix[0][3]);
    SetRow4(_matrix[1], x.y, y.y, z.y, _matrix[1][3]);
    SetRow4(_matrix[2], x.z, y.z, z.z, _matrix[2][3]);
    return _Close();
}

// M c + t = w c with w from the bottom row; for an affine matrix w is exactly 1.
bool MMTransformMatrix::SetRotationCenter(const MMPoint3d<double>& center)
{
    const MMPoint3d<double> c = center;
    const double w = RowTimesPoint(_matrix[3], c.x, c.y, c.z, false);
    if (w == 0.0)
        return false;
    const double coordinates[3] = {c.x, c.y, c.z};
    for (int i = 0; i < 3; ++i)
        _matrix[i][3] = w * coordinates[i] - RowTimesPoint(_matrix[i], c.x, c.y, c.z, true);
    return _Close();
}

bool MMTransformMatrix::GetRotationXYZ(double& ax, double& ay, double& az) const
{
    Matrix3 r;
    if (!GetRotationPart(r, *this))
        return false;
    DecomposeXYZ(r, ax, ay, az);
    return true;
}

// The transpose of Rx(ax) Ry(ay) Rz(az) is Rz(-az) Ry(-ay) Rx(-ax).
bool MMTransformMatrix::GetRotationZYX(double& ax, double& ay, double& az) const
{
    Matrix3 r;
    if (!GetRotationPart(r, *this))
        return false;
    const Matrix3 transposed = {
        {r[0][0], r[1][0], r[2][0]}, {r[0][1], r[1][1], r[2][1]}, {r[0][2], r[1][2], r[2][2]}};
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    DecomposeXYZ(transposed, x, y, z);
    ax = 0.0 - x;
    ay = 0.0 - y;
    az = 0.0 - z;
    return true;
}
