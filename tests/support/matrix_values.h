#pragma once

#include <norvek/linalg/symmetric_matrix.h>

#include <vector>

namespace norvek_test
{

/// The elements of a matrix of any kind, row by row.
inline std::vector<double> RowByRow(const MMatrix& a)
{
    std::vector<double> values;
    for (unsigned int i = 0; i < a.GetNumRows(); ++i) {
        for (unsigned int j = 0; j < a.GetNumColumns(); ++j)
            values.push_back(a(i, j));
    }
    return values;
}

/// The symmetric matrix of n x n values given row by row, of which those above the diagonal are
/// not looked at.
inline MSymmetricMatrix Packed(const std::vector<double>& values, unsigned int n)
{
    MSymmetricMatrix s(n);
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j <= i; ++j)
            s(i, j) = values[std::size_t{i} * n + j];
    }
    return s;
}

} // namespace norvek_test
