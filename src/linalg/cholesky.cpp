#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <cmath>
#include <utility>

namespace
{

double* RowOf(double* packed, std::size_t i)
{
    return packed + i * (i + 1) / 2;
}

// Column by column, looking left: A(i, k) loses the product of the finished parts of rows i and k,
// summed from the left before it is subtracted.
bool Factorise(double* packed, std::size_t n)
{
    for (std::size_t k = 0; k < n; ++k) {
        const double* const pivotRow = RowOf(packed, k);
        for (std::size_t i = k; k > 0 && i < n; ++i) {
            double* const row = RowOf(packed, i);
            double sum = 0.0;
            for (std::size_t j = 0; j < k; ++j)
                sum += row[j] * pivotRow[j];
            row[k] -= sum;
        }
        // NaN passes.
        if (pivotRow[k] <= 0.0)
            return false;
        const double root = std::sqrt(pivotRow[k]);
        for (std::size_t i = k; i < n; ++i)
            RowOf(packed, i)[k] /= root;
    }
    return true;
}

} // namespace

bool MSymmetricMatrix::FactoriseCholesky()
{
    return Factorise(_storage.Values(), _rows);
}

bool MSymmetricMatrix::FACTORISE_CHOLESKY(MLowerTriangularMatrix& g)
{
    if (!FactoriseCholesky())
        return false;
    g._storage = std::move(_storage);
    g._rows = std::exchange(_rows, 0);
    g._columns = std::exchange(_columns, 0);
    return true;
}
