#pragma once

#include "platform/least_squares.h"

#include <vector>

namespace Norvek::Math::Core
{

/// The factors A P = Q R of an m x n matrix that the solution of A x = b needs.
struct PivotedQR
{
    /// R, n x n, row by row; below the diagonal there is no meaning.
    std::vector<double> r;
    /// The first n rows of Q'b, one right-hand side after the other.
    std::vector<double> projected;
    /// Column k of A P is column order[k] of A.
    std::vector<std::size_t> order;
};

/// Householder factorisation with column pivoting: the next column is the longest of what is left.
/// A's column j is multiplied by `factors[j]` beforehand, and b's column c by `rightFactors[c]`,
/// which leave all values finite and far from overflow. Throws `std::bad_alloc`.
[[nodiscard]] PivotedQR FactorisePivoted(const ConstMatrixView& system,
                                         const ConstMatrixView& rightHandSides,
                                         const std::vector<double>& factors,
                                         const std::vector<double>& rightFactors);

} // namespace Norvek::Math::Core
