#pragma once

#include <norvek/foundation/export.h>

#include <cassert>

/// Four values, row by row: a00, a01, a10, a11.
///
/// Tolerances are absolute unless an operation says otherwise. Non-finite entries give false or
/// non-finite values. Indices are 0 and 1, asserted only.
class NORVEK_MATH_API MMatrix2x2
{
public:
    /// All four values 0.
    MMatrix2x2() = default;

    /// The matrix of four values, row by row.
    MMatrix2x2(double a00, double a01, double a10, double a11) : _a{{a00, a01}, {a10, a11}}
    {}

    /// The element, for writing.
    double& Element(unsigned int row, unsigned int column)
    {
        assert(row < 2 && column < 2);
        return _a[row][column];
    }

    /// The value of an element.
    [[nodiscard]] double Value(unsigned int row, unsigned int column) const
    {
        assert(row < 2 && column < 2);
        return _a[row][column];
    }

    /// The two eigenvalues, the larger first.
    ///
    /// A determinant below ten machine epsilons counts as 0 and gives (trace, 0), whichever is the
    /// larger. A discriminant below that counts as 0. False, nothing written, for a complex pair.
    bool GetEigenValues(double* const values) const;

    /// A unit eigenvector (two values) for the eigenvalue `value`.
    ///
    /// False, nothing written, when (a00 - value)(a11 - value) - a10 a01 is above ten machine
    /// epsilons times the square of the largest entry. The test has one side: a negative residual
    /// passes. False as well for a diagonal matrix that does not have the value.
    bool GetEigenVector(double* const vector, double value) const;

    /// Replaces the matrix by its inverse. False, unchanged, when the determinant is below a
    /// hundred machine epsilons in magnitude.
    bool Invert();

    /// Solves A x = b by Cramer's rule; `x` may be `b`. False, `x` untouched, only when the
    /// determinant is exactly 0 or NaN.
    bool SolveSquareSet(double* const x, double* const b) const;

private:
    double _a[2][2]{};
};
