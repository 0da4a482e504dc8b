#include "linalg/gram_schmidt.h"

#include <norvek/linalg/general_matrix.h>

#include <algorithm>

using Norvek::Math::Core::GramSchmidt;

bool MGeneralMatrix::FactoriseQR(MGeneralMatrix& q, MGeneralMatrix& r) const
{
    const unsigned int rows = _rows;
    const unsigned int columns = _columns;
    if (rows == 0 || columns == 0)
        return false;
    GramSchmidt factors(rows, columns);
    // After the factorisation this matrix is not read again: Q or R may be it.
    if (!factors.Factorise(_storage.Values()) || !q.SetDimensions(rows, columns))
        return false;
    for (unsigned int i = 0; i < rows; ++i) {
        for (unsigned int k = 0; k < columns; ++k)
            q._Row(i)[k] = factors.QColumn(k)[i];
    }
    if (!r.SetDimensions(columns, columns))
        return false;
    r.SetToZero();
    for (unsigned int k = 0; k < columns; ++k)
        std::copy_n(factors.RRow(k), columns - k, r._Row(k) + k);
    return true;
}

// The factors stay in the form in which they come, columns of Q and rows of R: only the solution
// leaves.
bool MGeneralMatrix::SolveLeastSquare(double* b, double* x) const
{
    const std::size_t n = _columns;
    if (_rows == 0 || n == 0)
        return false;
    GramSchmidt factors(_rows, n);
    if (!factors.Factorise(_storage.Values()))
        return false;

    // b is read whole before x is written: they may be one array.
    const double* const projected = factors.ProjectOnQ(b);
    for (std::size_t i = n; i-- > 0;) {
        const double* const row = factors.RRow(i);
        double sum = 0.0;
        for (std::size_t j = i + 1; j < n; ++j)
            sum += row[j - i] * x[j];
        x[i] = (projected[i] - sum) / row[0];
    }
    return true;
}
