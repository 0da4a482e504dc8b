#include <norvek/foundation/constants.h>
#include <norvek/linalg/lower_triangular_matrix.h>

#include <cmath>

using Norvek::Math::Core::kMachineEpsilon;

MLowerTriangularMatrix& MLowerTriangularMatrix::operator=(const MLowerTriangularMatrix& other)
{
    _storage = other._storage;
    MMatrix::operator=(other);
    return *this;
}

bool MLowerTriangularMatrix::SetDimensions(unsigned int rows, unsigned int columns)
{
    const std::size_t count = _Index(rows, 0);
    // The old storage serves for an equal product of dimensions, but 2 x 8 holds fewer values than
    // 4 x 4.
    const bool sameProduct = std::size_t{rows} * columns == std::size_t{_rows} * _columns;
    const bool hasRoom = _storage.Values() != nullptr && _storage.Count() >= count;
    if (!(sameProduct && hasRoom) && !_storage.Resize(count))
        return false;
    return MMatrix::SetDimensions(rows, columns);
}

void MLowerTriangularMatrix::CleanUp()
{
    _storage.Release();
}

bool MLowerTriangularMatrix::SOLVE_G_TG_X_B(double* const b) const
{
    const std::size_t n = _columns;
    if (n == 0)
        return true;
    if (_storage.Count() < _Index(n, 0))
        return false;
    const double* const g = _storage.Values();

    // G y = b. That the first diagonal element is not tested here, nor the last on the way back, is
    // meant.
    b[0] /= g[0];
    for (std::size_t i = 1; i < n; ++i) {
        const double* const row = g + _Index(i, 0);
        if (std::abs(row[i]) < kMachineEpsilon)
            return false;
        double sum = 0.0;
        for (std::size_t j = 0; j < i; ++j)
            sum += row[j] * b[j];
        b[i] = (b[i] - sum) / row[i];
    }

    // G' x = y, down the columns of G.
    b[n - 1] /= g[_Index(n - 1, n - 1)];
    for (std::size_t i = n - 1; i-- > 0;) {
        const double diagonal = g[_Index(i, i)];
        if (std::abs(diagonal) < kMachineEpsilon)
            return false;
        double sum = 0.0;
        for (std::size_t j = i + 1; j < n; ++j)
            sum += g[_Index(j, i)] * b[j];
        b[i] = (b[i] - sum) / diagonal;
    }
    return true;
}
