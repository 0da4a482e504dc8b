#pragma once

#include <cstddef>
#include <cstdint>

namespace Norvek::Math::Core
{

/// A dense matrix to read: rows * columns values, row by row without gaps.
struct ConstMatrixView
{
    std::size_t rows = 0;
    std::size_t columns = 0;
    const double* values = nullptr;
};

/// A dense matrix to read and write, laid out the same.
struct MatrixView
{
    std::size_t rows = 0;
    std::size_t columns = 0;
    double* values = nullptr;
};

/// A matrix of runs to read: row i has `width` values, from column `firsts[i]` on, and zeros
/// elsewhere. A run that passes the last column goes on at the first; values that meet in a column
/// add up. The runs stand one after the other without gaps. Every first column is below `columns`.
struct ConstRunsView
{
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::size_t width = 0;
    const double* values = nullptr;
    const std::uint32_t* firsts = nullptr;
};

/// Minimises |A x - b| for every column b of `rightHandSides`; A is `system`, m x n with m >= n.
///
/// True when solved: x stands in the first n rows of `rightHandSides`, column under column, and the
/// rows below are as they were. False, and nothing written, when
///
/// - the shapes cannot be solved: m < n, an empty matrix, a missing array, right-hand sides of
///   another row count;
/// - a value is infinite or not a number, or a solution would be;
/// - A has no full column rank to working precision: with its columns scaled to unit length, the
///   smallest singular value is at most 4 n machine epsilons;
/// - there is no memory.
///
/// Both forms find R of a Householder factorisation, so that accuracy falls with the condition of
/// A, not with its square, and both come to their verdict on the rank by the same estimate from R.
/// Columns are scaled by powers of two where that matters, which loses no bit: no unit of length
/// overflows or vanishes, whatever its size.
///
/// - **Banded.** The nonzero values of every row lie in a run, the first of a row never left of
///   that of a row before it, and runs are short: at most half of the columns, or 32 and not all.
///   Collocation matrices of splines over ascending parameters are such. Recognised by reading A
///   once, solved in O(rows * run^2).
/// - **Dense.** Everything else, with column pivoting: O(m n^2).
///
/// The bits depend neither on the compiler and its optimisation nor on the processor: GCC and
/// Clang, -O0 and -O3, with and without wider vectors give the same. Never throws.
[[nodiscard]] bool SolveDenseLeastSquares(const ConstMatrixView& system,
                                          const MatrixView& rightHandSides) noexcept;

/// The same for a matrix of runs. Where they advance it is solved in O(rows * width^2) and takes no
/// memory for the zeros; otherwise it is handed on as a dense matrix.
[[nodiscard]] bool SolveLeastSquaresOfRuns(const ConstRunsView& system,
                                           const MatrixView& rightHandSides) noexcept;

} // namespace Norvek::Math::Core
