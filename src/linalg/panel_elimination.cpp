#include "linalg/panel_elimination.h"

#include "linalg/lane_pair.h"

#include <norvek/foundation/constants.h>

#include <algorithm>
#include <cmath>
#include <vector>

// Notation: A the matrix, L its part below the diagonal (unit diagonal not stored), U the rest;
// step k exchanges rows, divides column k below the diagonal by A(k, k) and subtracts L(i, k) U(k,
// j) from every A(i, j) to the right and below.
//
// The obvious alternative, a reciprocal of the pivot and recursive blocks, changes bits: a quotient
// is not a product with a reciprocal, and blocks that are multiplied first and subtracted as a sum
// round otherwise. Here every element is subtracted from, one step at a time.

namespace Norvek::Math::Core
{

namespace
{

// A pivot at step k is singular up to k times this. The factor is the step, not the order: at step
// 0 only an exact zero is singular.
constexpr double kSingularPerStep = 3.0;

// Matrices up to this many columns are worked column by column, each element in a register: rows as
// short as that would only wait for their own stores.
constexpr std::size_t kByColumns = 6;

// Triangular systems up to this order are solved row by row.
constexpr std::size_t kOneByOne = 16;

// Matrices up to this many columns are one panel: packing would cost more than it saves.
constexpr std::size_t kOnePanel = 72;

// Steps in a panel, and columns of the strip that is updated at a time: 16 kB in the first cache.
constexpr std::size_t kPanel = 32;
constexpr std::size_t kStrip = 64;

// The tile of the update that is kept in registers.
constexpr std::size_t kTileRows = 4;
constexpr std::size_t kTileColumns = 4;

double* RowOf(double* values, std::size_t columns, std::size_t i)
{
    return values + i * columns;
}

// NaN is not singular; it goes on into the factors.
bool IsSingular(double pivot, std::size_t step)
{
    return std::abs(pivot) <= static_cast<double>(step) * kSingularPerStep * kMachineEpsilon;
}

// Brings the row with the largest magnitude in column k, among the rows up to `end`, to row k; a
// tie keeps the upper row. Returns the row that was exchanged with it.
unsigned int Exchange(double* values, std::size_t end, std::size_t columns, std::size_t k)
{
    std::size_t p = k;
    double largest = std::abs(RowOf(values, columns, k)[k]);
    for (std::size_t i = k + 1; i < end; ++i) {
        const double candidate = std::abs(RowOf(values, columns, i)[k]);
        if (largest < candidate) {
            largest = candidate;
            p = i;
        }
    }
    if (p != k) {
        double* const row = RowOf(values, columns, p);
        std::swap_ranges(row, row + columns, RowOf(values, columns, k));
    }
    return static_cast<unsigned int>(p);
}

// Step k in all rows below, in the columns up to `lastColumn`.
void EliminateColumn(double* values, std::size_t rows, std::size_t columns, std::size_t k,
                     std::size_t lastColumn)
{
    const double* const pivotRow = RowOf(values, columns, k);
    const double pivot = pivotRow[k];
    for (std::size_t i = k + 1; i < rows; ++i) {
        double* const row = RowOf(values, columns, i);
        const double factor = row[k] / pivot;
        row[k] = factor;
        for (std::size_t j = k + 1; j < lastColumn; ++j)
            row[j] -= factor * pivotRow[j];
    }
}

// Brings column j up to date with the steps before it, each element taking them in ascending order.
void UpdateColumn(double* values, std::size_t rows, std::size_t columns, std::size_t j)
{
    for (std::size_t i = 1; i < rows; ++i) {
        double* const row = RowOf(values, columns, i);
        const double* upper = values + j;
        const std::size_t steps = std::min(i, j);
        double rest = row[j];
        for (std::size_t k = 0; k < steps; ++k, upper += columns)
            rest -= row[k] * *upper;
        row[j] = rest;
    }
}

// The same where some steps were passed over.
void UpdateColumn(double* values, std::size_t rows, std::size_t columns, std::size_t j,
                  const bool* active)
{
    for (std::size_t i = 1; i < rows; ++i) {
        double* const row = RowOf(values, columns, i);
        for (std::size_t k = 0; k < std::min(i, j); ++k) {
            if (active[k])
                row[j] -= row[k] * values[k * columns + j];
        }
    }
}

// Column by column: a column takes all earlier steps, then its own pivot is chosen. Rows are
// exchanged whole, also in columns that are yet to come, so that their earlier steps find them in
// place.
bool EliminateByColumns(double* values, std::size_t rows, std::size_t columns, unsigned int* pivot)
{
    const std::size_t steps = std::min(rows, columns);
    bool active[kByColumns]{};
    bool regular = true;
    for (std::size_t j = 0; j < columns; ++j) {
        if (regular)
            UpdateColumn(values, rows, columns, j);
        else
            UpdateColumn(values, rows, columns, j, active);
        if (j >= steps)
            continue;
        pivot[j] = Exchange(values, steps, columns, j);
        const double diagonal = values[j * columns + j];
        active[j] = !IsSingular(diagonal, j);
        regular = regular && active[j];
        for (std::size_t i = j + 1; active[j] && i < rows; ++i)
            values[i * columns + j] /= diagonal;
    }
    return regular;
}

// Step by step over all columns: the plain loops themselves.
bool EliminateOnePanel(double* values, std::size_t rows, std::size_t columns, unsigned int* pivot)
{
    const std::size_t steps = std::min(rows, columns);
    bool regular = true;
    for (std::size_t k = 0; k < steps; ++k) {
        pivot[k] = Exchange(values, steps, columns, k);
        if (IsSingular(RowOf(values, columns, k)[k], k))
            regular = false;
        else
            EliminateColumn(values, rows, columns, k, columns);
    }
    return regular;
}

// The same for a matrix of many columns.
class Elimination
{
public:
    Elimination(double* values, std::size_t rows, std::size_t columns, unsigned int* pivot)
        : _values(values),
          _rows(rows),
          _columns(columns),
          _steps(std::min(rows, columns)),
          _pivot(pivot),
          _upper(kPanel * kStrip),
          _lower(kPanel * kTileRows * 2)
    {}

    bool Run();

private:
    double* Row(std::size_t i)
    {
        return RowOf(_values, _columns, i);
    }

    void EliminatePanel(std::size_t begin, std::size_t end);
    void UpdateStrip(std::size_t end, std::size_t first, std::size_t width);
    void PackUpper(std::size_t first, std::size_t width);
    void PackLower(std::size_t i, std::size_t height);
    void UpdateTile(std::size_t i, std::size_t height, std::size_t column, std::size_t width,
                    const double* upper);

    double* _values;
    std::size_t _rows;
    std::size_t _columns;
    std::size_t _steps;
    unsigned int* _pivot;
    bool _regular = true;

    // The steps of the panel that took place; those with a singular pivot are passed over.
    std::size_t _active[kPanel]{};
    std::size_t _activeCount = 0;
    std::vector<double> _upper;
    std::vector<double> _lower;
};

bool Elimination::Run()
{
    for (std::size_t begin = 0; begin < _steps; begin += kPanel) {
        const std::size_t end = std::min(begin + kPanel, _steps);
        EliminatePanel(begin, end);
        for (std::size_t first = end; first < _columns; first += kStrip)
            UpdateStrip(end, first, std::min(kStrip, _columns - first));
    }
    return _regular;
}

// Factorises the columns of one panel. The columns to its right wait, but for the exchange of rows.
void Elimination::EliminatePanel(std::size_t begin, std::size_t end)
{
    _activeCount = 0;
    for (std::size_t k = begin; k < end; ++k) {
        _pivot[k] = Exchange(_values, _steps, _columns, k);
        if (IsSingular(Row(k)[k], k)) {
            _regular = false;
            continue;
        }
        _active[_activeCount++] = k;
        EliminateColumn(_values, _rows, _columns, k, end);
    }
}

// Takes the steps of the panel that ends at `end` to the columns of a strip: first within the rows
// of the panel, then in all rows below it.
void Elimination::UpdateStrip(std::size_t end, std::size_t first, std::size_t width)
{
    for (std::size_t a = 0; a < _activeCount; ++a) {
        const std::size_t k = _active[a];
        const double* const pivotRow = Row(k) + first;
        for (std::size_t i = k + 1; i < end; ++i) {
            double* const row = Row(i) + first;
            const double factor = Row(i)[k];
            for (std::size_t j = 0; j < width; ++j)
                row[j] -= factor * pivotRow[j];
        }
    }
    PackUpper(first, width);
    for (std::size_t i = end; i < _rows; i += kTileRows) {
        const std::size_t height = std::min(kTileRows, _rows - i);
        PackLower(i, height);
        for (std::size_t c = 0; c < width; c += kTileColumns)
            UpdateTile(i, height, first + c, std::min(kTileColumns, width - c),
                       _upper.data() + c * _activeCount);
    }
}

// The rows of U in the strip, tile by tile: four columns of each step side by side.
void Elimination::PackUpper(std::size_t first, std::size_t width)
{
    double* out = _upper.data();
    for (std::size_t c = 0; c < width; c += kTileColumns) {
        const std::size_t count = std::min(kTileColumns, width - c);
        for (std::size_t a = 0; a < _activeCount; ++a, out += kTileColumns) {
            std::copy_n(Row(_active[a]) + first + c, count, out);
            std::fill(out + count, out + kTileColumns, 0.0);
        }
    }
}

// The factors of four rows, each value twice, as the two lanes want it.
void Elimination::PackLower(std::size_t i, std::size_t height)
{
    for (std::size_t r = 0; r < kTileRows; ++r) {
        double* out = _lower.data() + 2 * r;
        for (std::size_t a = 0; a < _activeCount; ++a, out += 2 * kTileRows)
            out[0] = out[1] = r < height ? Row(i + r)[_active[a]] : 0.0;
    }
}

// tile -= lower * upper, step by step in ascending order.
void UpdateRegisters(const double* lower, const double* upper, std::size_t steps, double* tile,
                     std::size_t stride)
{
    LanePair sums[kTileRows][2];
    for (std::size_t r = 0; r < kTileRows; ++r) {
        sums[r][0] = LoadPair(tile + r * stride);
        sums[r][1] = LoadPair(tile + r * stride + 2);
    }
    for (std::size_t a = 0; a < steps; ++a, lower += 2 * kTileRows, upper += kTileColumns) {
        const LanePair left = LoadPair(upper);
        const LanePair right = LoadPair(upper + 2);
        for (std::size_t r = 0; r < kTileRows; ++r) {
            const LanePair factor = LoadPair(lower + 2 * r);
            sums[r][0] -= factor * left;
            sums[r][1] -= factor * right;
        }
    }
    for (std::size_t r = 0; r < kTileRows; ++r) {
        StorePair(tile + r * stride, sums[r][0]);
        StorePair(tile + r * stride + 2, sums[r][1]);
    }
}

// A tile at the lower or right edge is completed in a copy.
void Elimination::UpdateTile(std::size_t i, std::size_t height, std::size_t column,
                             std::size_t width, const double* upper)
{
    if (height == kTileRows && width == kTileColumns) {
        UpdateRegisters(_lower.data(), upper, _activeCount, Row(i) + column, _columns);
        return;
    }
    double tile[kTileRows * kTileColumns]{};
    for (std::size_t r = 0; r < height; ++r)
        std::copy_n(Row(i + r) + column, width, tile + r * kTileColumns);
    UpdateRegisters(_lower.data(), upper, _activeCount, tile, kTileColumns);
    for (std::size_t r = 0; r < height; ++r)
        std::copy_n(tile + r * kTileColumns, width, Row(i + r) + column);
}

} // namespace

bool Eliminate(double* values, std::size_t rows, std::size_t columns, unsigned int* pivot)
{
    for (std::size_t k = columns; k < rows; ++k)
        pivot[k] = static_cast<unsigned int>(k);
    if (columns <= kByColumns)
        return EliminateByColumns(values, rows, columns, pivot);
    if (columns <= kOnePanel)
        return EliminateOnePanel(values, rows, columns, pivot);
    return Elimination(values, rows, columns, pivot).Run();
}

void SubstituteForwards(const double* values, std::size_t n, std::size_t stride, double* b)
{
    std::size_t i = 0;
    // Four rows at a time, so that their chains of subtractions overlap.
    for (; n > kOneByOne && i + 4 <= n; i += 4) {
        const double* const row = values + i * stride;
        double rest[4]{b[i], b[i + 1], b[i + 2], b[i + 3]};
        for (std::size_t k = 0; k < i; ++k) {
            for (std::size_t r = 0; r < 4; ++r)
                rest[r] -= row[r * stride + k] * b[k];
        }
        for (std::size_t r = 0; r < 4; ++r) {
            for (std::size_t k = 0; k < r; ++k)
                rest[r] -= row[r * stride + i + k] * rest[k];
        }
        std::copy_n(rest, 4, b + i);
    }
    // The newest value, which comes last in the next row, stays in a register.
    double newest = i > 0 ? b[i - 1] : 0.0;
    for (; i < n; ++i) {
        const double* const row = values + i * stride;
        double rest = b[i];
        for (std::size_t k = 0; k + 1 < i; ++k)
            rest -= row[k] * b[k];
        if (i > 0)
            rest -= row[i - 1] * newest;
        newest = rest;
        b[i] = rest;
    }
}

} // namespace Norvek::Math::Core
