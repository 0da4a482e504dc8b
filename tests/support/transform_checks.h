#pragma once

#include <norvek/transform/transform_matrix.h>

#include <Eigen/Geometry>

#include <numbers>
#include <vector>

namespace norvek_test
{

using Matrix4 = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;

/// Rows 0 to 2 or all four, loaded over another matrix.
template <class Matrix = MMTransformMatrix>
Matrix Load(std::vector<double> rows, Matrix matrix = Matrix())
{
    if (rows.size() == 12)
        rows.insert(rows.end(), {0, 0, 0, 1});
    matrix.MakeFromDouble16(rows.data());
    return matrix;
}

/// The matrix or its inverse.
inline Matrix4 Elements(const MMTransformMatrix& matrix, bool ofInverse = false)
{
    Matrix4 m;
    for (unsigned short i = 0; i < 16; ++i)
        m(i / 4, i % 4) = matrix.GetElement(i / 4, i % 4, ofInverse);
    return m;
}

/// The 3x3 part.
inline Eigen::Matrix3d Part(const MMTransformMatrix& matrix)
{
    return Elements(matrix).topLeftCorner<3, 3>();
}

/// The largest difference of two elements.
template <class Matrix>
double Difference(const Matrix& a, const Matrix& b)
{
    return (a - b).cwiseAbs().maxCoeff();
}

/// How far matrix times inverse is from the unit matrix.
inline double InverseError(const MMTransformMatrix& matrix)
{
    const Matrix4 product = Elements(matrix) * Elements(matrix, true);
    return Difference<Matrix4>(product, Matrix4::Identity());
}

inline Eigen::Vector3d ToEigen(const MMPoint3d<double>& p)
{
    return {p.x, p.y, p.z};
}

/// About a coordinate axis, counter-clockwise seen from its end.
inline Eigen::Matrix3d Turn(double degrees, int axis)
{
    const double radians = degrees * std::numbers::pi / 180.0;
    return Eigen::AngleAxisd(radians, Eigen::Vector3d::Unit(axis)).toRotationMatrix();
}

inline double Distance(const MMPoint3d<double>& a, const MMPoint3d<double>& b)
{
    return (a - b).Length();
}

} // namespace norvek_test
