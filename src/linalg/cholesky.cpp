#include "linalg/lane_pair.h"

#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <algorithm>
#include <cmath>
#include <utility>

using Norvek::Math::Core::BothLanes;
using Norvek::Math::Core::LanePair;
using Norvek::Math::Core::LoadPair;
using Norvek::Math::Core::MatrixStorage;
using Norvek::Math::Core::StorePair;

// Notation: A = G G', G lower triangular. Element (i, k) of G is A(i, k) less the product of the
// finished parts of rows i and k, divided by the root of the pivot of column k.
//
// The obvious alternative, to subtract finished panels from all that is right of them, changes
// bits: here a product is summed whole, from the left, before it is subtracted once.

namespace
{

// Matrices up to this order are not worth being laid out in strips.
constexpr std::size_t kPlainLoops = 28;

// Rows in a strip, and columns of the tile whose sums are kept in registers.
constexpr std::size_t kTile = 4;

double* RowOf(double* packed, std::size_t i)
{
    return packed + i * (i + 1) / 2;
}

// Column by column, the loops themselves. What they leave behind a pivot that is not positive is
// what callers see of a failure.
bool FactoriseColumns(double* packed, std::size_t n)
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

// A copy of the triangle in strips of four rows, in which the four values of a column lie side by
// side: element (4 s + r, j) at index 8 s (s + 1) + 4 j + r. Rows beyond the last are zero and stay
// without effect on the others.
class StripCholesky
{
public:
    explicit StripCholesky(std::size_t n) : _n(n), _strips((n + kTile - 1) / kTile)
    {}

    // False without memory, or at a pivot that is not positive; `packed` is untouched then.
    bool Factorise(double* packed);

private:
    using Sums = LanePair[kTile][2];

    double* _Strip(std::size_t s)
    {
        return _storage.Values() + 2 * kTile * s * (s + 1);
    }

    void _Load(const double* packed);
    void _Store(double* packed);
    void _DivideTile(std::size_t s, std::size_t column);
    bool _FactoriseDiagonalTile(std::size_t s);

    static void _SumProducts(const double* rows, const double* columns, std::size_t count,
                             Sums& sums);

    std::size_t _n;
    std::size_t _strips;
    MatrixStorage _storage;

    // The divisors of the columns. A pivot divided by its own root, as it stands in G, may differ
    // from the root in the last bit.
    double* _roots = nullptr;
};

bool StripCholesky::Factorise(double* packed)
{
    const std::size_t count = 2 * kTile * _strips * (_strips + 1);
    if (!_storage.Resize(count + kTile * _strips))
        return false;
    _roots = _storage.Values() + count;
    _Load(packed);
    for (std::size_t s = 0; s < _strips; ++s) {
        for (std::size_t column = 0; column < s; ++column)
            _DivideTile(s, column);
        if (!_FactoriseDiagonalTile(s))
            return false;
    }
    _Store(packed);
    return true;
}

void StripCholesky::_Load(const double* packed)
{
    std::fill_n(_storage.Values(), _storage.Count(), 0.0);
    for (std::size_t i = 0; i < _n; ++i) {
        double* const out = _Strip(i / kTile) + i % kTile;
        for (std::size_t j = 0; j <= i; ++j)
            out[kTile * j] = *packed++;
    }
}

void StripCholesky::_Store(double* packed)
{
    for (std::size_t i = 0; i < _n; ++i) {
        const double* const in = _Strip(i / kTile) + i % kTile;
        for (std::size_t j = 0; j <= i; ++j)
            *packed++ = in[kTile * j];
    }
}

// sums(c) = the products of four rows with the row that belongs to column c, over the first
// `count` elements in ascending order.
void StripCholesky::_SumProducts(const double* rows, const double* columns, std::size_t count,
                                 Sums& sums)
{
    LanePair result[kTile][2]{};
    for (std::size_t j = 0; j < count; ++j, rows += kTile, columns += kTile) {
        const LanePair upper = LoadPair(rows);
        const LanePair lower = LoadPair(rows + 2);
        for (std::size_t c = 0; c < kTile; ++c) {
            const LanePair factor = BothLanes(columns[c]);
            result[c][0] += upper * factor;
            result[c][1] += lower * factor;
        }
    }
    for (std::size_t c = 0; c < kTile; ++c) {
        sums[c][0] = result[c][0];
        sums[c][1] = result[c][1];
    }
}

// Finishes the tile of strip s in the four columns of strip `column`, which lies above it. The
// products with columns of the tile itself come last in every sum.
void StripCholesky::_DivideTile(std::size_t s, std::size_t column)
{
    const std::size_t count = kTile * column;
    const double* const pivots = _Strip(column) + kTile * count;
    double* const tile = _Strip(s) + kTile * count;
    Sums sums;
    _SumProducts(_Strip(s), _Strip(column), count, sums);
    for (std::size_t c = 0; c < kTile; ++c) {
        for (std::size_t half = 0; half < 2; ++half) {
            LanePair sum = sums[c][half];
            for (std::size_t e = 0; e < c; ++e)
                sum += LoadPair(tile + kTile * e + 2 * half) * BothLanes(pivots[kTile * e + c]);
            double* const values = tile + kTile * c + 2 * half;
            StorePair(values, (LoadPair(values) - sum) / BothLanes(_roots[count + c]));
        }
    }
}

bool StripCholesky::_FactoriseDiagonalTile(std::size_t s)
{
    const std::size_t count = kTile * s;
    double* const tile = _Strip(s) + kTile * count;
    Sums sums;
    _SumProducts(_Strip(s), _Strip(s), count, sums);
    for (std::size_t c = 0; c < std::min(kTile, _n - count); ++c) {
        double& root = _roots[count + c];
        for (std::size_t r = c; r < kTile; ++r) {
            double sum = sums[c][r / 2][r % 2];
            for (std::size_t e = 0; e < c; ++e)
                sum += tile[kTile * e + r] * tile[kTile * e + c];
            double& value = tile[kTile * c + r];
            value -= sum;
            if (r == c) {
                if (value <= 0.0)
                    return false;
                root = std::sqrt(value);
            }
            value /= root;
        }
    }
    return true;
}

// A failure is worked again by the plain loops, for what they leave behind.
bool FactoriseTriangle(double* packed, std::size_t n)
{
    return (n > kPlainLoops && StripCholesky(n).Factorise(packed)) || FactoriseColumns(packed, n);
}

} // namespace

bool MSymmetricMatrix::FactoriseCholesky()
{
    return FactoriseTriangle(_storage.Values(), _rows);
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
