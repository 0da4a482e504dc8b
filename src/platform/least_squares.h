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

/// Makes the rows of a matrix of runs when they are wanted.
class RunSource
{
public:
    virtual ~RunSource() = default;

    /// Writes the runs of rows `begin` to `end - 1`, one after the other without gaps, and the
    /// column at which each begins. Rows may be asked for again and are the same then.
    virtual void Make(std::size_t begin, std::size_t end, double* values,
                      std::uint32_t* firsts) const = 0;
};

/// A matrix of runs: a row has `width` values, from its first column on, and zeros elsewhere. A run
/// that passes the last column goes on at the first; values that meet in a column add up. Every
/// first column is below `columns`.
struct RunsView
{
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::size_t width = 0;
    const RunSource* source = nullptr;
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

/// The same for a matrix of runs, with the solution in an array of its own, of `columns` rows.
/// Where the runs advance it is solved in O(rows * width^2), and only some rows exist at any time:
/// the memory does not grow with their number. Otherwise it is handed on as a dense matrix.
[[nodiscard]] bool SolveLeastSquaresOfRuns(const RunsView& system,
                                           const ConstMatrixView& rightHandSides,
                                           double* solution) noexcept;

} // namespace Norvek::Math::Core
