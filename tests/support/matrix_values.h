#pragma once

#include "support/random.h"

#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <Eigen/Core>

#include <vector>

namespace norvek_test
{

using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

inline constexpr double kEpsilon = 2.220446049250313e-16;

/// The largest sum of magnitudes in a column.
inline double OneNorm(const RowMajor& a)
{
    return a.cwiseAbs().colwise().sum().maxCoeff();
}

/// The elements of a matrix of any kind.
inline RowMajor ToEigen(const MMatrix& a)
{
    return RowMajor::NullaryExpr(a.GetNumRows(), a.GetNumColumns(), [&](auto i, auto j) {
        return a(static_cast<unsigned int>(i), static_cast<unsigned int>(j));
    });
}

/// The same row by row, to compare with a list.
inline std::vector<double> RowByRow(const MMatrix& a)
{
    const RowMajor elements = ToEigen(a);
    return {elements.data(), elements.data() + elements.size()};
}

/// Writes all elements into a matrix of their shape.
template <class Matrix>
Matrix Filled(Matrix matrix, const RowMajor& a)
{
    for (unsigned int i = 0; i < a.rows(); ++i) {
        for (unsigned int j = 0; j < a.cols(); ++j)
            matrix(i, j) = a(i, j);
    }
    return matrix;
}

inline MGeneralMatrix General(const RowMajor& a)
{
    const auto rows = static_cast<unsigned int>(a.rows());
    return Filled(MGeneralMatrix(rows, static_cast<unsigned int>(a.cols())), a);
}

/// Keeps what is on and below the diagonal, which is written last.
inline MSymmetricMatrix Packed(const RowMajor& a)
{
    return Filled(MSymmetricMatrix(static_cast<unsigned int>(a.rows())), a);
}

/// Between -1 and 1.
inline RowMajor RandomElements(Random& random, Eigen::Index rows, Eigen::Index columns)
{
    return RowMajor::NullaryExpr(rows, columns, [&] { return random.Uniform(-1.0, 1.0); });
}

/// The sum of products in ascending order, term by term.
template <class A, class B>
double Dot(const A& a, const B& b)
{
    double sum = 0.0;
    for (Eigen::Index k = 0; k < a.size(); ++k)
        sum += a(k) * b(k);
    return sum;
}

/// The product of which every element is such a sum.
template <class A, class B>
RowMajor PlainProduct(const A& a, const B& b)
{
    return RowMajor::NullaryExpr(a.rows(), b.cols(),
                                 [&](auto i, auto j) { return Dot(a.row(i), b.col(j)); });
}

} // namespace norvek_test
