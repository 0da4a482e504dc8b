#include "foundation/round_to_float.h"
#include "transform/matrix4.h"

#include <norvek/transform/ortho_transform.h>
#include <norvek/transform/transform_matrix.h>

using namespace Norvek::Math::Core;

namespace
{

// Two limits of one axis that coincide leave no box to map; the exact comparison is the only test.
bool HasEmptyAxis(double a1, double a2, double a3, double a4, double a5, double a6)
{
    return a1 == a2 || a3 == a4 || a5 == a6;
}

} // namespace

bool MMTransformMatrix::MakeIdentity()
{
    CopyMatrix4(_matrix, kUnitMatrix4);
    CopyMatrix4(_inverse, kUnitMatrix4);
    _homogeneous = false;
    _invertible = true;
    _class = MMTransformMatrixClass::Identity;
    return true;
}

bool MMTransformMatrix::MakeTranslation(const MMPoint3d<double>& translation)
{
    return _LoadRows({1.0, 0.0, 0.0, translation.x, //
                      0.0, 1.0, 0.0, translation.y, //
                      0.0, 0.0, 1.0, translation.z});
}

// Nothing resets the inverse: what _ComputeInverseScale1D does not write stays.
bool MMTransformMatrix::MakeScale1D(double scale)
{
    return MakeScale3D(scale, scale, scale);
}

bool MMTransformMatrix::MakeScale3D(const double& sx, const double& sy, const double& sz)
{
    return _LoadRows({sx, 0.0, 0.0, 0.0, //
                      0.0, sy, 0.0, 0.0, //
                      0.0, 0.0, sz, 0.0});
}

bool MMTransformMatrix::MakeScale3D(const MMPoint3d<double>& scale)
{
    return MakeScale3D(scale.x, scale.y, scale.z);
}

bool MMTransformMatrix::MakeTransformation(const MMPoint3d<double>& origin,
                                           const MMPoint3d<double>& xAxis,
                                           const MMPoint3d<double>& yAxis,
                                           const MMPoint3d<double>& zAxis)
{
    return _LoadRows({xAxis.x, yAxis.x, zAxis.x, origin.x, //
                      xAxis.y, yAxis.y, zAxis.y, origin.y, //
                      xAxis.z, yAxis.z, zAxis.z, origin.z});
}

// The rounding is meant, and so is that the old translation stays. The product gives the new one
// through the old bottom row, and NaN in the rest for a translation beyond the floats, which the
// rows then overwrite. An inverse of kind Scale1D keeps what the product of the inverses left.
bool MMTransformMatrix::Make(const MMOrthoTransform& rigid)
{
    const double* const t = rigid.Translation();
    AddTranslation(RoundToFloat(MMPoint3d<double>(t[0], t[1], t[2])));
    for (unsigned short i = 0; i < 3; ++i) {
        MMPoint3d<double> row;
        rigid.GetRow(row, i);
        SetRow4(_matrix[i], row.x, row.y, row.z, _matrix[i][3]);
    }
    SetRow4(_matrix[3], 0.0, 0.0, 0.0, 1.0);
    return _Close();
}

// x is oriented by (a2 - a1), y and z by (first - second): the difference in sign is meant.
bool MMTransformMatrix::MakeOrthoGraphicProjection(double a1, double a2, double a3, double a4,
                                                   double a5, double a6)
{
    if (HasEmptyAxis(a1, a2, a3, a4, a5, a6))
        return false;
    MMTransformMatrix centre;
    centre.MakeTranslation({-(a1 + a2) / 2.0, -(a3 + a4) / 2.0, -(a5 + a6) / 2.0});
    MakeScale3D(2.0 / (a2 - a1), 2.0 / (a3 - a4), 2.0 / (a5 - a6));
    *this *= centre;
    return true;
}

// n and f are the near and far plane seen from the eye at z = a7.
// The class and the inverse that the product leaves are computed anew at the end: the inverse it
// started from belonged to the matrix before.
bool MMTransformMatrix::MakePerspectiveProjection(double a1, double a2, double a3, double a4,
                                                  double a5, double a6, double a7)
{
    if (HasEmptyAxis(a1, a2, a3, a4, a5, a6))
        return false;
    const double n = a6 - a7;
    const double f = a5 - a7;
    SetRow4(_matrix[0], -2.0 * n / (a2 - a1), 0.0, (a1 + a2) / (a2 - a1), 0.0);
    SetRow4(_matrix[1], 0.0, -2.0 * n / (a3 - a4), (a3 + a4) / (a3 - a4), 0.0);
    SetRow4(_matrix[2], 0.0, 0.0, -(f + n) / (f - n), 2.0 * f * n / (f - n));
    SetRow4(_matrix[3], 0.0, 0.0, -1.0, 0.0);
    MMTransformMatrix eye;
    eye.MakeTranslation({0.0, 0.0, -a7});
    *this *= eye;
    return _Close();
}
