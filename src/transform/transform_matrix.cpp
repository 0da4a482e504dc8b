#include "transform/matrix4.h"

#include <norvek/transform/transform_matrix.h>

#include <algorithm>

using namespace Norvek::Math::Core;

MMTransformMatrix::MMTransformMatrix()
{
    MakeIdentity();
}

MMTransformMatrix* MMTransformMatrix::Clone() const
{
    return new MMTransformMatrix(*this);
}

void MMTransformMatrix::Copy(const MMTransformMatrix& other)
{
    MMTransformMatrixData::operator=(other);
}

// The closing step of every maker and loader.
bool MMTransformMatrix::_Close()
{
    VerifyAndSetClass();
    _ComputeInverse();
    return true;
}

// Rows 0 to 2 above (0, 0, 0, 1), then the closing step. The values come in an array of their own,
// so that a maker's arguments may lie in the matrix.
bool MMTransformMatrix::_LoadRows(const double (&rows)[12])
{
    std::copy_n(rows, 12, _matrix[0]);
    SetRow4(_matrix[3], 0.0, 0.0, 0.0, 1.0);
    return _Close();
}

// The source may be the matrix itself, shifted by a row or so: copied before anything is written.
void MMTransformMatrix::MakeFromDouble16(const double* rows)
{
    Matrix4 loaded;
    std::copy_n(rows, 16, loaded[0]);
    CopyMatrix4(_matrix, loaded);
    _Close();
}

void MMTransformMatrix::MakeFromFloat16(const float* rows)
{
    std::copy_n(rows, 16, _matrix[0]);
    _Close();
}

void MMTransformMatrix::MakeFromDouble12(const double* rows)
{
    double loaded[12];
    std::copy_n(rows, 12, loaded);
    _LoadRows(loaded);
}

void MMTransformMatrix::MakeFromFloat12(const float* rows)
{
    double loaded[12];
    std::copy_n(rows, 12, loaded);
    _LoadRows(loaded);
}

// Flags and kind stay: the inverse of each kind is of the same kind.
bool MMTransformMatrix::Invert()
{
    if (!_invertible)
        return false;
    std::swap(_matrix, _inverse);
    return true;
}

void MMTransformMatrix::Transpose()
{
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < i; ++j)
            std::swap(_matrix[i][j], _matrix[j][i]);
    }
    _Close();
}

void MMTransformMatrix::GetTranslation(float* out) const
{
    for (int i = 0; i < 3; ++i)
        out[i] = static_cast<float>(_matrix[i][3]);
}

void MMTransformMatrix::GetTranslation(double* out) const
{
    for (int i = 0; i < 3; ++i)
        out[i] = _matrix[i][3];
}

void MMTransformMatrix::FillIn3x3(float (*matrix)[3], float (*inverse)[3]) const
{
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            matrix[i][j] = static_cast<float>(_matrix[i][j]);
            inverse[i][j] = static_cast<float>(_inverse[i][j]);
        }
    }
}

bool MMTransformMatrix::ConvertToFloat16(float* matrix) const
{
    std::transform(_matrix[0], _matrix[0] + 16, matrix,
                   [](double element) { return static_cast<float>(element); });
    return true;
}

bool MMTransformMatrix::ConvertToDouble16(double* matrix) const
{
    std::copy_n(_matrix[0], 16, matrix);
    return true;
}

bool MMTransformMatrix::Keeps2DOrientation() const
{
    return _matrix[2][2] > 0.0;
}

bool MMTransformMatrix::_Equal(const MMTransformMatrix& other) const
{
    return AreEqualMatrix4(_matrix, other._matrix);
}

// Translation and bottom row play no part: this is the factor by which volumes grow.
double MMTransformMatrix::Determinant() const
{
    const Matrix4& m = _matrix;
    return m[0][0] * m[1][1] * m[2][2] + m[0][1] * m[1][2] * m[2][0] + m[0][2] * m[1][0] * m[2][1] -
           m[0][2] * m[1][1] * m[2][0] - m[0][1] * m[1][0] * m[2][2] - m[0][0] * m[1][2] * m[2][1];
}
