#pragma once

#include <norvek/linalg/general_matrix.h>

/// The two factors that `MGeneralMatrix::FactoriseLU` makes, in one matrix: the strict lower
/// triangle is L (its unit diagonal is not stored), the diagonal and the upper triangle are U.
///
/// Beside them lie the pivots, one a row: the row that was exchanged with row k at step k.
class NORVEK_MATH_API MLUMatrix : public MGeneralMatrix
{
public:
    /// 0 x 0, without storage and pivots.
    MLUMatrix() = default;

    /// Solves A x = b for the factorised square A: `b` (as many values as rows) holds the right
    /// side on entry and x on return.
    ///
    /// False when the magnitude of a diagonal element of U is below the machine epsilon; `b` is
    /// partly overwritten then. False as well, `b` untouched, when the matrix has more rows than
    /// columns. Order 0 is true at once. Cost: 2 n^2.
    bool SolveLUxy(double* const b) const;

private:
    friend class MGeneralMatrix;

    std::vector<unsigned int> _pivot;
};
