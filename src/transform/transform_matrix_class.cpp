#include "transform/matrix4.h"

#include <norvek/foundation/constants.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_matrix.h>

#include <cmath>

using namespace Norvek::Math::Core;

namespace
{

// Exact: a bottom row that is off by rounding makes the matrix homogeneous, and its points divided.
bool HasAffineBottomRow(const Matrix4& m)
{
    return m[3][0] == 0.0 && m[3][1] == 0.0 && m[3][2] == 0.0 && m[3][3] == 1.0;
}

// All off-diagonal elements exactly 0 and element (3, 3) exactly 1.
bool IsDiagonal(const Matrix4& m)
{
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            if (i != j && m[i][j] != 0.0)
                return false;
        }
    }
    return m[3][3] == 1.0;
}

// The bottom row is held to the tolerance only, while the homogeneous flag tests it exactly: a
// matrix can be a homogeneous translation, and its inverse is then that of the translation.
bool IsTranslationMatrix(const Matrix4& m)
{
    for (int i = 0; i < 4; ++i) {
        const int columns = i < 3 ? 3 : 4;
        for (int j = 0; j < columns; ++j) {
            if (!(std::abs(m[i][j] - kUnitMatrix4[i][j]) < kTenEpsilons))
                return false;
        }
    }
    return true;
}

bool HasOrthogonalColumns(const Matrix4& m, double tolerance)
{
    return std::abs(DotColumns(m, 0, 1)) < tolerance && std::abs(DotColumns(m, 0, 2)) < tolerance &&
           std::abs(DotColumns(m, 1, 2)) < tolerance;
}

// Squared lengths are compared with 1, which doubles the relative error of the lengths. The sign of
// the determinant is not looked at: the transpose inverts a mirrored rotation as well.
bool IsRotationMatrix(const Matrix4& m)
{
    for (int i = 0; i < 3; ++i) {
        if (!(std::abs(DotColumns(m, i, i) - 1.0) < kTenEpsilons))
            return false;
    }
    return HasOrthogonalColumns(m, kTenEpsilons);
}

// The tolerance is absolute: a rotation scaled by much more than 1 rarely passes and is General,
// and columns shorter than its root always pass.
bool IsScaledRotationMatrix(const Matrix4& m)
{
    const double squared = DotColumns(m, 0, 0);
    return m[0][3] == 0.0 && m[1][3] == 0.0 && m[2][3] == 0.0 &&
           std::abs(DotColumns(m, 1, 1) - squared) < kMachineEpsilon &&
           std::abs(DotColumns(m, 2, 2) - squared) < kMachineEpsilon &&
           HasOrthogonalColumns(m, kMachineEpsilon);
}

// The order decides where kinds overlap: diag(1, 1, -1) is Scale3D although it is orthonormal too,
// and a scale of 1 + epsilon is a Translation.
MMTransformMatrixClass Classify(const Matrix4& m, bool affine)
{
    const bool diagonal = IsDiagonal(m);
    if (diagonal && m[0][0] == 1.0 && m[1][1] == 1.0 && m[2][2] == 1.0)
        return MMTransformMatrixClass::Identity;
    if (IsTranslationMatrix(m))
        return MMTransformMatrixClass::Translation;
    if (diagonal && m[1][1] == m[0][0] && m[2][2] == m[0][0])
        return MMTransformMatrixClass::Scale1D;
    if (diagonal)
        return MMTransformMatrixClass::Scale3D;
    if (affine && IsRotationMatrix(m))
        return MMTransformMatrixClass::OrthoNormal;
    if (affine && IsScaledRotationMatrix(m))
        return MMTransformMatrixClass::OrthoGonal;
    return MMTransformMatrixClass::General;
}

} // namespace

void MMTransformMatrix::VerifyAndSetClass()
{
    const bool affine = HasAffineBottomRow(_matrix);
    _homogeneous = !affine;
    _class = Classify(_matrix, affine);
}

bool MMTransformMatrix::IsIdentity() const
{
    return _class == MMTransformMatrixClass::Identity;
}

bool MMTransformMatrix::IsTranslation() const
{
    return _class == MMTransformMatrixClass::Translation ||
           _class == MMTransformMatrixClass::Identity;
}

bool MMTransformMatrix::IsScale1D() const
{
    return _class == MMTransformMatrixClass::Scale1D || _class == MMTransformMatrixClass::Identity;
}

bool MMTransformMatrix::IsScale3D() const
{
    return _class == MMTransformMatrixClass::Scale3D || IsScale1D();
}

bool MMTransformMatrix::IsOrthoNormal() const
{
    return _class == MMTransformMatrixClass::OrthoNormal || IsTranslation();
}

// Scale3D is missing, and so are its mirrors with orthogonal columns: meant.
bool MMTransformMatrix::IsOrthoGonal() const
{
    return _class == MMTransformMatrixClass::OrthoGonal ||
           _class == MMTransformMatrixClass::Scale1D || IsOrthoNormal();
}

// By the cached kind, not by the elements: a matrix whose elements were set by hand answers as
// before.
double MMTransformMatrix::GetScale() const
{
    if (!IsScale1D())
        throw MMTransformException(MMTransformException::NotScale1D);
    return _matrix[0][0];
}
