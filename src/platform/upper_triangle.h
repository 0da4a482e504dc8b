#pragma once

#include <algorithm>
#include <cstddef>

namespace Norvek::Math::Core
{

/// An upper triangular matrix R whose row j is zero right of column j + reach - 1, packed: row j
/// begins at `values + j * stride` with its diagonal. A full triangle has a reach of `columns`.
struct UpperTriangle
{
    std::size_t columns = 0;
    std::size_t reach = 0;
    std::size_t stride = 0;
    const double* values = nullptr;

    /// Row `j` from its diagonal on.
    [[nodiscard]] const double* Row(std::size_t j) const
    {
        return values + j * stride;
    }

    /// How many values row `j` has inside the matrix.
    [[nodiscard]] std::size_t Length(std::size_t j) const
    {
        return std::min(reach, columns - j);
    }
};

/// Solves R x = y in place for `count` right-hand sides, one after the other in `x`, which holds
/// them on entry. A zero on the diagonal gives infinities or NaN.
void SolveUpper(const UpperTriangle& r, double* x, std::size_t count = 1);

/// The lengths of the columns of R, which are those of the matrix that was factorised into it.
void ColumnLengths(const UpperTriangle& r, double* lengths);

/// Whether the columns of R, scaled to unit length, are independent to working precision: the
/// smallest singular value is above 4 n machine epsilons. It is estimated from above, within a
/// small factor, by inverse iteration on R'R, which costs a few solutions with R.
///
/// `lengths` are those of `ColumnLengths`; `work` has room for one number a column. A zero or NaN
/// among the lengths gives false.
bool HasFullRank(const UpperTriangle& r, const double* lengths, double* work);

} // namespace Norvek::Math::Core
