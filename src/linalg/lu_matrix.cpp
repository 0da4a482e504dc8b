#include "linalg/panel_elimination.h"

#include <norvek/foundation/constants.h>
#include <norvek/linalg/lu_matrix.h>

#include <cmath>
#include <utility>

using Norvek::Math::Core::kMachineEpsilon;

// The storage moves, it is not copied. A matrix factorised into itself keeps it.
bool MGeneralMatrix::FactoriseLU(MLUMatrix& lu)
{
    lu._pivot.resize(_rows);
    const bool regular =
        Norvek::Math::Core::Eliminate(_storage.Values(), _rows, _columns, lu._pivot.data());
    if (&lu != this) {
        lu._storage = std::move(_storage);
        lu._rows = std::exchange(_rows, 0);
        lu._columns = std::exchange(_columns, 0);
    }
    return regular;
}

void MGeneralMatrix::RetrieveMemory(MLUMatrix& lu)
{
    lu._pivot = {};
    if (&lu == this)
        return;
    _storage = std::move(lu._storage);
    _rows = std::exchange(lu._rows, 0);
    _columns = std::exchange(lu._columns, 0);
}

bool MLUMatrix::SolveLUxy(double* const b) const
{
    const std::size_t n = _rows;
    if (n == 0)
        return true;
    // The factors of a matrix with more rows than columns hold no triangle of that order.
    if (_columns < n)
        return false;
    const std::size_t stride = _columns;
    const double* const lu = _storage.Values();

    // Pivots outlive a change of dimensions; those that no longer fit are passed over.
    for (std::size_t i = 0; i + 1 < n && i < _pivot.size(); ++i) {
        if (_pivot[i] < n)
            std::swap(b[i], b[_pivot[i]]);
    }
    Norvek::Math::Core::SubstituteForwards(lu, n, stride, b);

    // The newest value stays in a register: every row begins its sum with it.
    double newest = 0.0;
    for (std::size_t i = n; i-- > 0;) {
        const double* const row = lu + i * stride;
        if (std::abs(row[i]) < kMachineEpsilon)
            return false;
        double sum = 0.0;
        if (i + 1 < n)
            sum += row[i + 1] * newest;
        for (std::size_t j = i + 2; j < n; ++j)
            sum += row[j] * b[j];
        newest = (b[i] - sum) / row[i];
        b[i] = newest;
    }
    return true;
}
