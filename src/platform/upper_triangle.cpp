#include "platform/upper_triangle.h"

#include <cmath>
#include <limits>

namespace Norvek::Math::Core
{

namespace
{

// The backward error of a Householder factorisation is a small multiple of n epsilons a column, and
// that of a matrix that is dependent by construction half an epsilon a value. The factor is not
// larger because everything above it still has digits to give.
constexpr double kRankTolerance = 4.0 * std::numeric_limits<double>::epsilon();

// Inverse iterations after the first solution. Two bring the estimate within a few per cent where
// the smallest singular value stands alone, and where it does not, the first is good already.
constexpr int kIterations = 2;

// The first solution comes from above within a small factor of the smallest singular value. What it
// finds so far above the limit is not looked at again: the iterations would take twice as long as
// solving the system of a narrow band.
constexpr double kClearlyAbove = 0x1p20;

// Solves S' y = e, where S is R with unit columns (S = R / d) and e_j is -1 or 1, whichever makes
// y_j larger: a y that grows leans towards the smallest singular value.
void SolveTransposedGrowing(const UpperTriangle& r, const double* d, double* y)
{
    std::fill_n(y, r.columns, 0.0);
    for (std::size_t j = 0; j < r.columns; ++j) {
        const double* const row = r.Row(j);
        const double sum = y[j];
        y[j] = -(std::copysign(d[j], sum) + sum) / row[0];
        for (std::size_t k = 1; k < r.Length(j); ++k)
            y[j + k] += row[k] * y[j];
    }
}

// Solves S' y = z in place.
void SolveTransposed(const UpperTriangle& r, const double* d, double* z)
{
    for (std::size_t j = 0; j < r.columns; ++j)
        z[j] *= d[j];
    for (std::size_t j = 0; j < r.columns; ++j) {
        const double* const row = r.Row(j);
        z[j] /= row[0];
        for (std::size_t k = 1; k < r.Length(j); ++k)
            z[j + k] -= row[k] * z[j];
    }
}

double Length(const double* values, std::size_t count)
{
    double square = 0.0;
    for (std::size_t i = 0; i < count; ++i)
        square += values[i] * values[i];
    return std::sqrt(square);
}

} // namespace

// Row by row for all of them: each waits for its own last result, not for those of the others.
void SolveUpper(const UpperTriangle& r, double* x, std::size_t count)
{
    for (std::size_t j = r.columns; j-- > 0;) {
        const double* const row = r.Row(j);
        for (std::size_t c = 0; c < count; ++c) {
            double* const values = x + c * r.columns;
            double sum = 0.0;
            for (std::size_t k = 1; k < r.Length(j); ++k)
                sum += row[k] * values[j + k];
            values[j] = (values[j] - sum) / row[0];
        }
    }
}

void ColumnLengths(const UpperTriangle& r, double* lengths)
{
    std::fill_n(lengths, r.columns, 0.0);
    for (std::size_t j = 0; j < r.columns; ++j) {
        const double* const row = r.Row(j);
        for (std::size_t k = 0; k < r.Length(j); ++k)
            lengths[j + k] += row[k] * row[k];
    }
    for (std::size_t j = 0; j < r.columns; ++j)
        lengths[j] = std::sqrt(lengths[j]);
}

// A solution that overflows leaves an infinity or NaN, which no comparison finds above the limit:
// a matrix that does that is as dependent as they come.
bool HasFullRank(const UpperTriangle& r, const double* lengths, double* work)
{
    const std::size_t n = r.columns;
    const double limit = kRankTolerance * static_cast<double>(n);
    // The smallest singular value of a triangle is nowhere above the smallest of its diagonal.
    for (std::size_t j = 0; j < n; ++j) {
        if (!(std::abs(r.Row(j)[0]) > limit * lengths[j]))
            return false;
    }
    double* const y = work;
    SolveTransposedGrowing(r, lengths, y);
    for (int i = 0; i <= kIterations; ++i) {
        if (i > 0)
            SolveTransposed(r, lengths, y);
        const double before = Length(y, n);
        SolveUpper(r, y);
        for (std::size_t j = 0; j < n; ++j)
            y[j] *= lengths[j];
        const double after = Length(y, n);
        if (!(before > limit * after))
            return false;
        if (before > kClearlyAbove * limit * after)
            return true;
        for (std::size_t j = 0; j < n; ++j)
            y[j] /= after;
    }
    return true;
}

} // namespace Norvek::Math::Core
