#include "transform/matrix4.h"

#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_matrix.h>

#include <algorithm>
#include <cmath>

using namespace Norvek::Math::Core;

bool MMTransformMatrix::ComputeInverse()
{
    return _ComputeInverse();
}

// Each step is virtual, so that a derived class can replace the inverse of one kind.
bool MMTransformMatrix::_ComputeInverse()
{
    switch (_class) {
    case MMTransformMatrixClass::Identity:
        _invertible = _ComputeInverseIdentity();
        break;
    case MMTransformMatrixClass::Translation:
        _invertible = _ComputeInverseTranslation();
        break;
    case MMTransformMatrixClass::OrthoNormal:
        _invertible = _ComputeInverseOrthoNormal();
        break;
    case MMTransformMatrixClass::OrthoGonal:
        _invertible = _ComputeInverseOrthoGonal();
        break;
    case MMTransformMatrixClass::Scale1D:
        _invertible = _ComputeInverseScale1D();
        break;
    case MMTransformMatrixClass::Scale3D:
        _invertible = _ComputeInverseScale3D();
        break;
    case MMTransformMatrixClass::General:
        _invertible = _ComputeInverseGeneral();
        break;
    }
    return _invertible;
}

bool MMTransformMatrix::_ComputeInverseIdentity()
{
    CopyMatrix4(_inverse, kUnitMatrix4);
    return true;
}

bool MMTransformMatrix::_ComputeInverseTranslation()
{
    CopyMatrix4(_inverse, kUnitMatrix4);
    for (int i = 0; i < 3; ++i)
        _inverse[i][3] = -_matrix[i][3];
    return true;
}

// The transpose, and -Rt t: each component is minus the dot product of a column with the
// translation.
bool MMTransformMatrix::_ComputeInverseOrthoNormal()
{
    const Matrix4& m = _matrix;
    for (int i = 0; i < 3; ++i)
        SetRow4(_inverse[i], m[0][i], m[1][i], m[2][i], -DotColumns(m, i, 3));
    SetRow4(_inverse[3], 0.0, 0.0, 0.0, 1.0);
    return true;
}

// The translation is not divided by the squared length: it is zero for this kind.
bool MMTransformMatrix::_ComputeInverseOrthoGonal()
{
    const Matrix4& m = _matrix;
    const double squared = DotColumns(m, 0, 0);
    if (squared == 0.0)
        return false;
    for (int i = 0; i < 3; ++i) {
        SetRow4(_inverse[i], m[0][i] / squared, m[1][i] / squared, m[2][i] / squared,
                -DotColumns(m, i, 3));
    }
    SetRow4(_inverse[3], 0.0, 0.0, 0.0, 1.0);
    return true;
}

// The translation column and the first three elements of the bottom row keep what the inverse held
// before. That is meant, also after a translation, when they are stale.
bool MMTransformMatrix::_ComputeInverseScale1D()
{
    if (_matrix[0][0] == 0.0)
        return false;
    const double reciprocal = 1.0 / _matrix[0][0];
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            _inverse[i][j] = i == j ? reciprocal : 0.0;
    }
    _inverse[3][3] = 1.0;
    return true;
}

// Element (3, 3), which is 1 for this kind, is tested with the others and set to exactly 1.
bool MMTransformMatrix::_ComputeInverseScale3D()
{
    for (int i = 0; i < 4; ++i) {
        if (_matrix[i][i] == 0.0)
            return false;
    }
    CopyMatrix4(_inverse, kUnitMatrix4);
    for (int i = 0; i < 3; ++i)
        _inverse[i][i] = 1.0 / _matrix[i][i];
    return true;
}

// Gauss-Jordan elimination on the matrix and the unit matrix side by side. Only an exactly zero
// pivot fails; no tolerance could suit both millimetres and metres. The result is copied at the
// very end, so that a failure leaves the old inverse.
bool MMTransformMatrix::_ComputeInverseGeneral()
{
    double work[4][8];
    for (int i = 0; i < 4; ++i) {
        std::copy_n(_matrix[i], 4, work[i]);
        std::copy_n(kUnitMatrix4[i], 4, work[i] + 4);
    }
    try {
        for (int column = 0; column < 4; ++column) {
            _InvertSwapRows(work, _InvertPivot(work, column), column);
            _InvertDivideRowToOne(work, column);
            for (int row = 0; row < 4; ++row) {
                if (row != column)
                    _InvertSubtractRowFromRow(work, row, column);
            }
        }
    } catch (const MMTransformException&) {
        return false;
    }
    for (int i = 0; i < 4; ++i)
        std::copy_n(work[i] + 4, 4, _inverse[i]);
    return true;
}

// A later row replaces the candidate only when strictly larger: ties keep the order of the rows.
int MMTransformMatrix::_InvertPivot(const double (&work)[4][8], int column)
{
    int pivot = column;
    for (int row = column + 1; row < 4; ++row) {
        if (std::abs(work[row][column]) > std::abs(work[pivot][column]))
            pivot = row;
    }
    return pivot;
}

void MMTransformMatrix::_InvertSwapRows(double (&work)[4][8], int a, int b)
{
    if (a != b)
        std::swap(work[a], work[b]);
}

void MMTransformMatrix::_InvertDivideRowToOne(double (&work)[4][8], int row)
{
    const double pivot = work[row][row];
    if (pivot == 0.0)
        throw MMTransformException(MMTransformException::SingularMatrix);
    work[row][row] = 1.0;
    for (int column = row + 1; column < 8; ++column)
        work[row][column] /= pivot;
}

void MMTransformMatrix::_InvertSubtractRowFromRow(double (&work)[4][8], int row, int pivotRow)
{
    const double factor = work[row][pivotRow];
    work[row][pivotRow] = 0.0;
    for (int column = pivotRow + 1; column < 8; ++column)
        work[row][column] -= factor * work[pivotRow][column];
}
