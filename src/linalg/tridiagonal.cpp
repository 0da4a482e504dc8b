#include "linalg/tridiagonal.h"

#include "linalg/lane_pair.h"

#include <algorithm>
#include <cmath>

namespace Norvek::Math::Core
{

namespace
{

// An element beside the diagonal below this counts as zero. It is absolute, not relative to the
// diagonal beside it: callers bring matrices of ordinary size, and compare what comes out.
constexpr double kNegligible = 1e-08;

// Iterations for one eigenvalue. Two or three are usual.
constexpr int kIterations = 100;

// result_j = sum over k < count of u_k z_kj, each from k = 0 upwards, for `Pairs` pairs of columns.
// Four pairs are four chains of additions under way, as many as one addition takes cycles.
template <std::size_t Pairs>
void MultiplyTile(const double* u, const double* z, std::size_t stride, std::size_t count,
                  double* result)
{
    LanePair sums[Pairs]{};
    for (std::size_t k = 0; k < count; ++k, z += stride) {
        const LanePair factor = BothLanes(u[k]);
        for (std::size_t c = 0; c < Pairs; ++c)
            sums[c] += factor * LoadPair(z + 2 * c);
    }
    for (std::size_t c = 0; c < Pairs; ++c)
        StorePair(result + 2 * c, sums[c]);
}

// The same for all columns of the leading count x count block.
void Multiply(const double* u, const double* z, std::size_t stride, std::size_t count,
              double* result)
{
    std::size_t j = 0;
    for (; j + 8 <= count; j += 8)
        MultiplyTile<4>(u, z + j, stride, count, result + j);
    for (; j + 2 <= count; j += 2)
        MultiplyTile<1>(u, z + j, stride, count, result + j);
    if (j == count)
        return;
    double sum = 0.0;
    for (std::size_t k = 0; k < count; ++k)
        sum += u[k] * z[k * stride + j];
    result[j] = sum;
}

// Reflects so that row i has nothing left of (i, i - 1), and returns h = |u|^2 / 2 for the vector u
// of the reflection, which stays in the row, u / h in the column. 0 where nothing is to be done.
//
// Both halves of the leading block are kept up to date, although one would do: then the product
// with u runs along rows, and its terms come in the order in which the two loops over one half
// would add them. The halves agree to the last bit, as sums and products commute.
double Reflect(double* z, std::size_t n, std::size_t i, double* e)
{
    double* const u = z + i * n;
    double scale = 0.0;
    for (std::size_t k = 0; k < i; ++k)
        scale += std::abs(u[k]);
    if (i == 1 || scale == 0.0) {
        e[i] = u[i - 1];
        return 0.0;
    }
    double h = 0.0;
    for (std::size_t k = 0; k < i; ++k) {
        u[k] /= scale;
        h += u[k] * u[k];
    }
    const double last = u[i - 1];
    const double g = last >= 0.0 ? -std::sqrt(h) : std::sqrt(h);
    e[i] = scale * g;
    h -= last * g;
    u[i - 1] = last - g;

    Multiply(u, z, n, i, e);
    double f = 0.0;
    for (std::size_t j = 0; j < i; ++j) {
        z[j * n + i] = u[j] / h;
        e[j] /= h;
        f += e[j] * u[j];
    }
    const double hh = f / (h + h);
    for (std::size_t j = 0; j < i; ++j)
        e[j] -= hh * u[j];
    for (std::size_t j = 0; j < i; ++j) {
        double* const row = z + j * n;
        const double uj = u[j];
        const double ej = e[j];
        for (std::size_t k = 0; k < i; ++k)
            row[k] -= uj * e[k] + ej * u[k];
    }
    return h;
}

// Applies the reflection of row i to the leading block of the product of those before it; `g` is
// room for i values.
void Accumulate(double* z, std::size_t n, std::size_t i, double* g)
{
    Multiply(z + i * n, z, n, i, g);
    for (std::size_t k = 0; k < i; ++k) {
        double* const row = z + k * n;
        const double factor = row[i];
        for (std::size_t j = 0; j < i; ++j)
            row[j] -= g[j] * factor;
    }
}

} // namespace

void ReduceToTridiagonal(double* z, std::size_t n, double* d, double* e, double* room)
{
    for (std::size_t i = n; i-- > 1;)
        d[i] = Reflect(z, n, i, e);
    if (n > 0)
        d[0] = e[0] = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        if (d[i] != 0.0)
            Accumulate(z, n, i, room);
        d[i] = z[i * n + i];
        z[i * n + i] = 1.0;
        for (std::size_t j = 0; j < i; ++j)
            z[j * n + i] = z[i * n + j] = 0.0;
    }
}

namespace
{

// Turns rows `from` + 1 down to `to` one with the next, for `Pairs` pairs of columns. Rotation i
// takes rows i and i + 1; of the row that the next one shares, the values stay in registers.
template <std::size_t Pairs>
void TurnTile(double* rows, std::size_t n, std::size_t from, std::size_t to,
              const double* rotations)
{
    double* row = rows + (from + 1) * n;
    LanePair lower[Pairs];
    for (std::size_t c = 0; c < Pairs; ++c)
        lower[c] = LoadPair(row + 2 * c);
    for (std::size_t i = from + 1; i-- > to; row -= n) {
        const LanePair sine = BothLanes(rotations[2 * i]);
        const LanePair cosine = BothLanes(rotations[2 * i + 1]);
        for (std::size_t c = 0; c < Pairs; ++c) {
            const LanePair upper = LoadPair(row - n + 2 * c);
            StorePair(row + 2 * c, sine * upper + cosine * lower[c]);
            lower[c] = cosine * upper - sine * lower[c];
        }
    }
    for (std::size_t c = 0; c < Pairs; ++c)
        StorePair(row + 2 * c, lower[c]);
}

// The same for one column.
void TurnColumn(double* column, std::size_t n, std::size_t from, std::size_t to,
                const double* rotations)
{
    double lower = column[(from + 1) * n];
    for (std::size_t i = from + 1; i-- > to;) {
        const double upper = column[i * n];
        const double sine = rotations[2 * i];
        const double cosine = rotations[2 * i + 1];
        column[(i + 1) * n] = sine * upper + cosine * lower;
        lower = cosine * upper - sine * lower;
    }
    column[to * n] = lower;
}

// Rotations `from` down to `to`, of all columns.
void TurnRows(double* rows, std::size_t n, std::size_t from, std::size_t to,
              const double* rotations)
{
    std::size_t k = 0;
    for (; k + 8 <= n; k += 8)
        TurnTile<4>(rows + k, n, from, to, rotations);
    for (; k + 2 <= n; k += 2)
        TurnTile<1>(rows + k, n, from, to, rotations);
    if (k < n)
        TurnColumn(rows + k, n, from, to, rotations);
}

// One implicit QL step on the block from l to m. Writes the sine and the cosine of every rotation
// and returns the number of the last; the rows wait, as nothing here depends on them.
std::size_t Sweep(double* d, double* e, std::size_t l, std::size_t m, double* rotations)
{
    double g = (d[l + 1] - d[l]) / (2.0 * e[l]);
    double r = std::sqrt(g * g + 1.0);
    g = d[m] - d[l] + e[l] / (g + std::copysign(r, g));
    double s = 1.0;
    double c = 1.0;
    double p = 0.0;
    for (std::size_t i = m; i-- > l;) {
        const double f = s * e[i];
        const double b = c * e[i];
        r = std::sqrt(f * f + g * g);
        e[i + 1] = r;
        if (r == 0.0) {
            // The block falls apart here.
            d[i + 1] -= p;
            e[m] = 0.0;
            return i + 1;
        }
        s = f / r;
        c = g / r;
        g = d[i + 1] - p;
        r = (d[i] - g) * s + 2.0 * c * b;
        p = s * r;
        d[i + 1] = g + p;
        g = c * r - b;
        rotations[2 * i] = s;
        rotations[2 * i + 1] = c;
    }
    d[l] -= p;
    e[l] = g;
    e[m] = 0.0;
    return l;
}

} // namespace

bool IterateQL(double* d, double* e, double* rows, std::size_t n, double* room)
{
    for (std::size_t l = 0; l < n; ++l) {
        for (int iteration = 0;; ++iteration) {
            std::size_t m = l;
            while (m + 1 < n && !(std::abs(e[m]) < kNegligible))
                ++m;
            if (m == l)
                break;
            if (iteration == kIterations)
                return false;
            const std::size_t last = Sweep(d, e, l, m, room);
            if (last < m)
                TurnRows(rows, n, m - 1, last, room);
        }
    }
    return true;
}

} // namespace Norvek::Math::Core
