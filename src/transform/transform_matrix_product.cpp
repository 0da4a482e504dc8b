#include "transform/matrix4.h"

#include <norvek/transform/transform_matrix.h>

using namespace Norvek::Math::Core;

// The invertible flag is left alone in both products: it stays what this matrix had, even when the
// other operand is singular. Callers rely on it; who needs certainty calls ComputeInverse.

MMTransformMatrix& MMTransformMatrix::operator*=(const MMTransformMatrix& other)
{
    Matrix4 product;
    Matrix4 inverse;
    MultiplyMatrix4(product, _matrix, other._matrix);
    MultiplyMatrix4(inverse, other._inverse, _inverse);
    CopyMatrix4(_matrix, product);
    CopyMatrix4(_inverse, inverse);
    VerifyAndSetClass();
    return *this;
}

MMTransformMatrix& MMTransformMatrix::PreMultiply(const MMTransformMatrix& other)
{
    Matrix4 product;
    Matrix4 inverse;
    MultiplyMatrix4(product, other._matrix, _matrix);
    MultiplyMatrix4(inverse, _inverse, other._inverse);
    CopyMatrix4(_matrix, product);
    CopyMatrix4(_inverse, inverse);
    VerifyAndSetClass();
    return *this;
}

// The product in place, without copying an operand first.
MMTransformMatrix::MMTransformMatrix(const MMTransformMatrix& a, const MMTransformMatrix& b)
{
    MultiplyMatrix4(_matrix, a._matrix, b._matrix);
    MultiplyMatrix4(_inverse, b._inverse, a._inverse);
    _invertible = a._invertible;
    VerifyAndSetClass();
}

MMTransformMatrix operator*(const MMTransformMatrix& a, const MMTransformMatrix& b)
{
    return MMTransformMatrix(a, b);
}

// A full product, not an addition to the column: with a projective bottom row they differ.
void MMTransformMatrix::AddTranslation(const MMPoint3d<double>& translation)
{
    MMTransformMatrix matrix;
    matrix.MakeTranslation(translation);
    PreMultiply(matrix);
}

void MMTransformMatrix::AddTranslation(const MMPoint3d<float>& translation)
{
    AddTranslation(MMPoint3d<double>(translation));
}

void MMTransformMatrix::AddTranslation(const double* translation)
{
    AddTranslation(MMPoint3d<double>(translation[0], translation[1], translation[2]));
}

void MMTransformMatrix::AddTranslation(const float* translation)
{
    AddTranslation(MMPoint3d<double>(translation[0], translation[1], translation[2]));
}

// With both columns zero the product of the inverses gives exactly the inverse of the new matrix.
void MMTransformMatrix::FillInTranslation(const MMPoint3d<double>& translation)
{
    const MMPoint3d<double> wanted = translation;
    for (int i = 0; i < 3; ++i) {
        _matrix[i][3] = 0.0;
        _inverse[i][3] = 0.0;
    }
    AddTranslation(wanted);
}

void MMTransformMatrix::FillInTranslation(const MMPoint3d<float>& translation)
{
    FillInTranslation(MMPoint3d<double>(translation));
}

void MMTransformMatrix::FillInTranslation(const double* translation)
{
    FillInTranslation(MMPoint3d<double>(translation[0], translation[1], translation[2]));
}

void MMTransformMatrix::FillInTranslation(const float* translation)
{
    FillInTranslation(MMPoint3d<double>(translation[0], translation[1], translation[2]));
}

// Scaling by 0 leaves a matrix that could be of a simpler kind; it keeps its kind all the same.
void MMTransformMatrix::ScaleTranslation(double factor)
{
    for (int i = 0; i < 3; ++i) {
        _matrix[i][3] *= factor;
        _inverse[i][3] *= factor;
    }
}
