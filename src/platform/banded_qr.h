#pragma once

#include "platform/least_squares.h"
#include "platform/upper_triangle.h"

#include <cstdint>
#include <vector>

namespace Norvek::Math::Core
{

/// Householder factorisation of a banded matrix A, m x n, together with its right-hand sides b.
///
/// Rows are taken from the top in blocks. A block has a window of columns that holds all nonzero
/// values of its rows, and windows advance: neither end moves left. R reaches no further than the
/// windows, so that a block meets only the rows of R that have the numbers of its columns: one
/// reflection for each of these, over R's row and the rows of the block, turns the block to zero.
/// Q is never formed; the reflections are applied to b on the way. See Lawson and Hanson, Solving
/// Least Squares Problems, chapter 27.
///
/// Whether A is banded at all turns out on the way, so that it is read only once.
class BandedQR
{
public:
    /// Both matrices stay where they are and are read in `Factorise` alone.
    BandedQR(const ConstMatrixView& system, const ConstMatrixView& rightHandSides)
        : _system(system),
          _right(rightHandSides)
    {}

    /// For a matrix of runs, which tell where the nonzero values are. They are made block by block.
    BandedQR(const RunsView& system, const ConstMatrixView& rightHandSides)
        : _system{system.rows, system.columns, nullptr},
          _runs(system),
          _right(rightHandSides)
    {}

    /// Factorises A with column j multiplied by `factors[j]`, and b with column c multiplied by
    /// `rightFactors[c]`; without factors as they are.
    ///
    /// False when A is not banded: a row has a nonzero value left of the window of a row above it,
    /// or a window is longer than half of the columns and longer than 32, or has them all. NaN and
    /// infinities are nonzero, -0.0 is not. Throws `std::bad_alloc`.
    [[nodiscard]] bool Factorise(const double* factors = nullptr,
                                 const double* rightFactors = nullptr);

    /// R, valid until the next factorisation. Values of A that are not finite, or overflow on the
    /// way, leave some of it not finite.
    [[nodiscard]] UpperTriangle R() const
    {
        return {_system.columns, _reach, _reach + _right.columns, _r.data()};
    }

    /// Row `j` of Q'b: one value for each right-hand side.
    [[nodiscard]] const double* Projected(std::size_t j) const
    {
        return _r.data() + j * (_reach + _right.columns) + _reach;
    }

private:
    [[nodiscard]] const double* _Row(std::size_t i) const
    {
        return _system.values + i * _system.columns;
    }

    [[nodiscard]] bool _TakeRows(std::size_t& i) const;
    void _MakeRuns(std::size_t begin);
    [[nodiscard]] bool _TakeRuns(std::size_t& i) const;
    void _OpenWindow(std::size_t i);
    [[nodiscard]] bool _WidenWindow(std::size_t i);
    void _Reach(std::size_t reach);
    void _Fold(std::size_t begin, std::size_t end, const double* factors,
               const double* rightFactors);
    std::size_t _Load(std::size_t begin, std::size_t end, const double* factors,
                      const double* rightFactors);
    void _LoadRuns(std::size_t begin, std::size_t end, const double* factors);
    void _FoldRow(std::size_t i, const double* factors, const double* rightFactors);
    void _FetchAhead(std::size_t begin, std::size_t end, std::size_t step) const;
    void _Reflect(std::size_t k, std::size_t columns, std::size_t paddedRows);

    // A as a dense matrix; without values when it is one of runs.
    ConstMatrixView _system;
    RunsView _runs;
    ConstMatrixView _right;
    // The runs of rows _runsBegin .. _runsEnd - 1.
    std::size_t _runsBegin = 0;
    std::size_t _runsEnd = 0;
    std::vector<double> _runValues;
    std::vector<std::uint32_t> _runFirsts;
    // The window: columns _first .. _end - 1.
    std::size_t _first = 0;
    std::size_t _end = 0;
    // Row j of R from its diagonal on, _reach values, and behind it row j of Q'b.
    std::size_t _reach = 0;
    std::vector<double> _r;
    // The block, column beside column: those of the window, then the right-hand sides.
    std::vector<double> _block;
    // For each column of the block its product with the one that is reflected.
    std::vector<double> _products;
};

} // namespace Norvek::Math::Core
