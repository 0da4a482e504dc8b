#include <norvek/foundation/constants.h>
#include <norvek/linalg/lower_triangular_matrix.h>

#include <cmath>

using Norvek::Math::Core::kMachineEpsilon;

namespace
{

// G y = b. That the first diagonal element is not tested, nor the last on the way back, is meant.
bool SubstituteForwards(const double* g, std::size_t n, double* b)
{
    // The newest value, which comes last in the next row, stays in a register.
    double newest = b[0] / g[0];
    b[0] = newest;
    const double* row = g + 1;
    for (std::size_t i = 1; i < n; row += ++i) {
        if (std::abs(row[i]) < kMachineEpsilon)
            return false;
        double sum = 0.0;
        for (std::size_t j = 0; j + 1 < i; ++j)
            sum += row[j] * b[j];
        sum += row[i - 1] * newest;
        newest = (b[i] - sum) / row[i];
        b[i] = newest;
    }
    return true;
}

// G' x = y, down the columns of G.
bool SubstituteBackwards(const double* g, std::size_t n, double* b)
{
    const double* diagonal = g + n * (n + 1) / 2 - 1;
    // The newest value, with which every column begins its sum, stays in a register.
    double newest = b[n - 1] / *diagonal;
    b[n - 1] = newest;
    for (std::size_t i = n - 1; i-- > 0;) {
        diagonal -= i + 2;
        if (std::abs(*diagonal) < kMachineEpsilon)
            return false;
        const double* value = diagonal + i + 1;
        double sum = 0.0 + *value * newest;
        for (std::size_t j = i + 2; j < n; ++j) {
            value += j;
            sum += *value * b[j];
        }
        newest = (b[i] - sum) / *diagonal;
        b[i] = newest;
    }
    return true;
}

} // namespace

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
    return SubstituteForwards(_storage.Values(), n, b) &&
           SubstituteBackwards(_storage.Values(), n, b);
}
