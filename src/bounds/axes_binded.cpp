#include "foundation/safe_length.h"

#include <norvek/bounds/axes_binded.h>
#include <norvek/transform/transform_matrix.h>

#include <cmath>

using Norvek::Math::Core::SafeDirection;

namespace
{

// 1/sqrt(3), to the digit: a unit vector has at least one coordinate of that size. The quotient
// 1 / sqrt(3.0) is one unit in the last place larger, and (1, 1, 1) normalised lies on it.
constexpr double kDiagonalCosine = 0.5773502691896257;

// A vector perpendicular to `z` within the coordinate plane that leaves out the first coordinate
// below 1/sqrt(3); NaN counts as below for x and not for y.
MMPoint3d<double> Perpendicular(const MMPoint3d<double>& z)
{
    if (!(std::abs(z.x) >= kDiagonalCosine))
        return MMPoint3d<double>(0.0, z.z, -z.y) / std::sqrt(z.y * z.y + z.z * z.z);
    if (std::abs(z.y) < kDiagonalCosine)
        return MMPoint3d<double>(-z.z, 0.0, z.x) / std::sqrt(z.x * z.x + z.z * z.z);
    return MMPoint3d<double>(z.y, -z.x, 0.0) / std::sqrt(z.x * z.x + z.y * z.y);
}

// Replaces the matrix by rows 0 to 2 without an inverse, whatever the rows: the flag is that of a
// zero scale, and setting elements leaves it alone.
void LoadWithoutInverse(MMTransformMatrix& matrix, const double (&rows)[12])
{
    matrix.MakeIdentity();
    matrix.MakeScale1D(0.0);
    for (unsigned short i = 0; i < 12; ++i)
        matrix.SetElement(i / 4, i % 4, rows[i], false);
    matrix.VerifyAndSetClass();
}

} // namespace

// Here, so that the table of virtual functions has one home.
M3DAxesBinded::~M3DAxesBinded() = default;

void M3DAxesBinded::Copy(const M3DAxesBinded& other)
{
    *this = other;
}

void M3DAxesBinded::Initialize()
{
    *this = M3DAxesBinded();
}

// Minus each dot product, and not the dot product with minus the centre: the zeros differ in sign.
MMPoint3d<double> M3DAxesBinded::_CenterTranslation() const
{
    return {-_center.Dot(_xAxis), -_center.Dot(_yAxis), -_center.Dot(_zAxis)};
}

void M3DAxesBinded::_UpdateTranslation()
{
    _translation = _CenterTranslation();
}

void M3DAxesBinded::SetCenter(const MMPoint3d<double>& center)
{
    _center = center;
    _UpdateTranslation();
}

// One axis alone may leave the frame skewed; the caller who sets them one by one sees to it.
void M3DAxesBinded::SetXAxis(const MMPoint3d<double>& axis)
{
    _xAxis = SafeDirection(axis);
    _UpdateTranslation();
}

void M3DAxesBinded::SetYAxis(const MMPoint3d<double>& axis)
{
    _yAxis = SafeDirection(axis);
    _UpdateTranslation();
}

void M3DAxesBinded::SetZAxis(const MMPoint3d<double>& axis)
{
    _zAxis = SafeDirection(axis);
    _UpdateTranslation();
}

// In these three the generator overwrites the axis that is passed on as it was.
void M3DAxesBinded::SetXYAxes(const MMPoint3d<double>& xAxis, const MMPoint3d<double>& yAxis)
{
    SetXYZAxes(xAxis, yAxis, _zAxis);
    GenerateZ();
}

void M3DAxesBinded::SetXZAxes(const MMPoint3d<double>& xAxis, const MMPoint3d<double>& zAxis)
{
    SetXYZAxes(xAxis, _yAxis, zAxis);
    GenerateY();
}

void M3DAxesBinded::SetYZAxes(const MMPoint3d<double>& yAxis, const MMPoint3d<double>& zAxis)
{
    SetXYZAxes(_xAxis, yAxis, zAxis);
    GenerateX();
}

// All directions are computed before one is stored: the arguments may be the axes themselves, in
// another order.
void M3DAxesBinded::SetXYZAxes(const MMPoint3d<double>& xAxis, const MMPoint3d<double>& yAxis,
                               const MMPoint3d<double>& zAxis)
{
    const MMPoint3d<double> x = SafeDirection(xAxis);
    const MMPoint3d<double> y = SafeDirection(yAxis);
    const MMPoint3d<double> z = SafeDirection(zAxis);
    _xAxis = x;
    _yAxis = y;
    _zAxis = z;
    _UpdateTranslation();
}

void M3DAxesBinded::SetNormal(const MMPoint3d<double>& normal)
{
    _zAxis = SafeDirection(normal);
    GenerateXY();
}

void M3DAxesBinded::GenerateX()
{
    _xAxis = SafeDirection(_yAxis.Cross(_zAxis));
    _UpdateTranslation();
}

// X is normalised and not the new Y, unlike in the other two: meant, callers depend on the length.
void M3DAxesBinded::GenerateY()
{
    _yAxis = _zAxis.Cross(_xAxis);
    _xAxis = SafeDirection(_xAxis);
    _UpdateTranslation();
}

void M3DAxesBinded::GenerateZ()
{
    _zAxis = SafeDirection(_xAxis.Cross(_yAxis));
    _UpdateTranslation();
}

void M3DAxesBinded::GenerateXY()
{
    _yAxis = Perpendicular(_zAxis);
    GenerateX();
}

// The translation is left to the axes of before: meant.
void M3DAxesBinded::GenerateXYZ()
{
    _xAxis = {1.0, 0.0, 0.0};
    _yAxis = {0.0, 1.0, 0.0};
    _zAxis = {0.0, 0.0, 1.0};
}

// The rows go in as they are: by way of MMTransformMatrix::Make the translation would be rounded.
// The matrix is made new first, as the inverse of a uniform scale keeps entries of the one before.
//
// R p + t = 0 is solved by the centre, where the translation is that of the centre; that is exact,
// while the inverse has it from a second rounding.
void M3DAxesBinded::GetTransformation(MMTransformMatrix& matrix) const
{
    const double rows[12] = {_xAxis.x, _xAxis.y, _xAxis.z, _translation.x, //
                             _yAxis.x, _yAxis.y, _yAxis.z, _translation.y, //
                             _zAxis.x, _zAxis.y, _zAxis.z, _translation.z};
    matrix.MakeIdentity();
    matrix.MakeFromDouble12(rows);
    if (!matrix.IsInversible() || !std::isfinite(matrix.Determinant())) {
        LoadWithoutInverse(matrix, rows);
        return;
    }
    if (_translation == _CenterTranslation()) {
        matrix.SetElement(0, 3, _center.x, true);
        matrix.SetElement(1, 3, _center.y, true);
        matrix.SetElement(2, 3, _center.z, true);
    }
}

// Inverting is a swap, so that the two matrices of a frame agree to the bit. The columns would be
// the inverse of orthonormal axes only; they serve where there is none.
void M3DAxesBinded::GetTransformationTo(MMTransformMatrix& matrix) const
{
    GetTransformation(matrix);
    if (matrix.Invert())
        return;
    LoadWithoutInverse(matrix, {_xAxis.x, _yAxis.x, _zAxis.x, _center.x, //
                                _xAxis.y, _yAxis.y, _zAxis.y, _center.y, //
                                _xAxis.z, _yAxis.z, _zAxis.z, _center.z});
}

void M2DAxesBinded::Initialize()
{
    *this = M2DAxesBinded();
}
