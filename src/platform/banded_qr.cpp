#include "platform/banded_qr.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace Norvek::Math::Core
{

namespace
{

// Windows up to this length are short whatever the number of columns: splines of degree 19 have 20.
constexpr std::size_t kShortWindow = 32;

// Sums run in so many interleaved chains, added up at the end: fixed, so that the bits are the
// same whether or not the compiler puts the chains side by side into registers.
constexpr std::size_t kLanes = 4;

// Rows of a block: few enough that a block of short windows stays in the first-level cache.
constexpr std::size_t kBlockRows = 128;

// The square of a length far below the rounding errors of any column whose length is plain, 2^-200
// or more. Once the rows of a block are used up, every further reflection leaves an epsilon of the
// one before it; followed down to where numbers end, that would divide by zero.
constexpr double kNegligibleSquare = 0x1p-900;

// The rows of matrices up to this width are too short for loops of their own.
constexpr std::size_t kNarrow = 24;

// Room for a column of a block. A little more than it holds: columns at a distance of a power of
// two would compete for the same few places of the cache.
constexpr std::size_t kColumnRoom = kBlockRows + 8;

// Anything but 0.0 and -0.0. By the bits: in a program that lets the processor take subnormal
// numbers for zero, a comparison would contradict the looks at many values below.
bool IsNonzero(double value)
{
    return std::bit_cast<std::uint64_t>(value) << 1 != 0;
}

// Whether one of the values is not zero. Joins their bits without an early end, which makes
// it a matter of memory speed.
bool HasNonzero(const double* begin, const double* end)
{
    std::uint64_t bits = 0;
    for (; begin < end; ++begin)
        bits |= std::bit_cast<std::uint64_t>(*begin);
    return bits << 1 != 0;
}

// The same for `count` pairs of neighbours at a distance of `stride`.
bool HasNonzeroPair(const double* pairs, std::size_t stride, std::size_t count)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < count; ++i, pairs += stride)
        bits |= std::bit_cast<std::uint64_t>(pairs[0]) | std::bit_cast<std::uint64_t>(pairs[1]);
    return bits << 1 != 0;
}

double Dot(const double* a, const double* b, std::size_t count)
{
    double sums[kLanes]{};
    for (std::size_t i = 0; i < count; i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            sums[lane] += a[i + lane] * b[i + lane];
    }
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

// column += s v, and the product of the new column with `next`, which may be the column itself. In
// one pass: a value is still in its register when the product wants it.
double AddAndDot(double* __restrict column, const double* __restrict v, double s,
                 const double* __restrict next, std::size_t count)
{
    double sums[kLanes]{};
    for (std::size_t i = 0; i < count; i += kLanes) {
        double values[kLanes];
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            values[lane] = column[i + lane] + s * v[i + lane];
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            sums[lane] += values[lane] * next[i + lane];
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            column[i + lane] = values[lane];
    }
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

double AddAndSquare(double* __restrict column, const double* __restrict v, double s,
                    std::size_t count)
{
    double sums[kLanes]{};
    for (std::size_t i = 0; i < count; i += kLanes) {
        double values[kLanes];
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            values[lane] = column[i + lane] + s * v[i + lane];
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            sums[lane] += values[lane] * values[lane];
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            column[i + lane] = values[lane];
    }
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

// Copies one column of some rows of a matrix to where its values lie side by side.
void Gather(const double* from, std::size_t stride, double factor, double* to, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        to[i] = from[i * stride] * factor;
}

// H = I + v v' factor, v = (head, a column).
struct Reflection
{
    double head = 0.0;
    double factor = 0.0;
};

// Reflects a column, whose square is given, into the value r: v = (r - beta, column), with beta =
// -sign(r) |(r, column)| and factor = 1 / (beta (r - beta)). A negligible column is let go: a
// factor of 0 makes the reflection the identity. NaN is not negligible.
Reflection ReflectInto(double& r, double square)
{
    if (square <= kNegligibleSquare)
        return {};
    const double beta = -std::copysign(std::sqrt(r * r + square), r);
    const double head = r - beta;
    r = beta;
    return {head, 1.0 / (beta * head)};
}

} // namespace

// At the beginning of every turn row `begin` is known to be zero left of the window.
bool BandedQR::Factorise(const double* factors, const double* rightFactors)
{
    _first = 0;
    _end = 0;
    _reach = 0;
    _r.clear();
    _runsEnd = 0;
    std::size_t begin = 0;
    while (begin < _system.rows) {
        std::size_t end = begin;
        if (_runs.source != nullptr && begin == _runsEnd)
            _MakeRuns(begin);
        if (!(_runs.source != nullptr ? _TakeRuns(end) : _TakeRows(end)))
            return false;
        if (end > begin)
            _Fold(begin, end, factors, rightFactors);
        else if (!_WidenWindow(begin))
            return false;
        begin = end;
    }
    // Only zeros: no window was ever opened, and there is no R.
    return _reach > 0;
}

// Moves `i` past the rows that fit the window, at most those of one block. False when a row has a
// nonzero value left of the window.
bool BandedQR::_TakeRows(std::size_t& i) const
{
    const std::size_t n = _system.columns;
    const std::size_t limit = std::min(_system.rows, i + kBlockRows);
    // What is right of the window in one row and left of it in the next lies side by side.
    const std::size_t gap = n - _end + _first;
    if (n <= kNarrow && limit < _system.rows && gap >= 2) {
        // From column to column, the last pair over the one before it if their number is odd.
        bool isZero = true;
        for (std::size_t j = 0; isZero && j < gap; j += 2)
            isZero = !HasNonzeroPair(_Row(i) + _end + std::min(j, gap - 2), n, limit - i);
        if (isZero) {
            i = limit;
            return true;
        }
    }
    for (; i < limit; ++i) {
        const double* const row = _Row(i);
        // A row that does not fit mostly shows it here.
        if (_end < n && IsNonzero(row[_end]))
            return true;
        if (HasNonzero(row + _end, row + (i + 1 < _system.rows ? _end + gap : n)))
            return HasNonzero(row + _end, row + n);
    }
    return true;
}

// Makes the runs of a block. They are gone before the next one, still in the first-level cache.
void BandedQR::_MakeRuns(std::size_t begin)
{
    _runsBegin = begin;
    _runsEnd = std::min(_runs.rows, begin + kBlockRows);
    _runValues.resize(kBlockRows * _runs.width);
    _runFirsts.resize(kBlockRows);
    _runs.source->Make(_runsBegin, _runsEnd, _runValues.data(), _runFirsts.data());
}

// The same for a matrix of runs, as far as they are made. False also when a run passes the last
// column.
bool BandedQR::_TakeRuns(std::size_t& i) const
{
    for (; i < _runsEnd; ++i) {
        const std::size_t first = _runFirsts[i - _runsBegin];
        if (first + _runs.width > _end)
            return first >= _first && first + _runs.width <= _runs.columns;
        if (first < _first)
            return false;
    }
    return true;
}

// Widens the window for row i, which has a nonzero value right of it, and lets go of the columns
// that the row no longer needs. False when the window is not short any more.
bool BandedQR::_WidenWindow(std::size_t i)
{
    _OpenWindow(i);
    const std::size_t n = _system.columns;
    const std::size_t length = _end - _first;
    if (length == n || (length > kShortWindow && length > n / 2))
        return false;
    if (length > _reach)
        _Reach(length);
    return true;
}

// Moves the window's ends to those of row i.
void BandedQR::_OpenWindow(std::size_t i)
{
    if (_runs.source != nullptr) {
        _first = _runFirsts[i - _runsBegin];
        _end = _first + _runs.width;
        return;
    }
    const double* const row = _Row(i);
    const std::size_t n = _system.columns;
    while (!IsNonzero(row[_first]))
        ++_first;
    // As far as the values stand side by side, and where the window ends at a gap, past all gaps.
    std::size_t end = std::max(_end, _first + 1);
    while (end < n && IsNonzero(row[end]))
        ++end;
    for (std::size_t last = n; end == _end && last > end; --last) {
        if (IsNonzero(row[last - 1]))
            end = last;
    }
    _end = end;
}

// Makes room for rows of R of this length.
void BandedQR::_Reach(std::size_t reach)
{
    const std::size_t stride = reach + _right.columns;
    std::vector<double> r(_system.columns * stride);
    for (std::size_t j = 0; _reach > 0 && j < _system.columns; ++j) {
        std::copy_n(R().Row(j), _reach, r.data() + j * stride);
        std::copy_n(Projected(j), _right.columns, r.data() + j * stride + reach);
    }
    _r = std::move(r);
    _reach = reach;
    _block.resize(stride * kColumnRoom);
    _products.resize(stride);
}

// Turns rows begin .. end - 1 to zero, against the rows of R that they meet.
void BandedQR::_Fold(std::size_t begin, std::size_t end, const double* factors,
                     const double* rightFactors)
{
    if (_reach == 0)
        return;
    if (end - begin == 1) {
        _FoldRow(begin, factors, rightFactors);
        return;
    }
    const std::size_t paddedRows = _Load(begin, end, factors, rightFactors);
    const std::size_t columns = _end - _first + _right.columns;
    for (std::size_t c = 0; c < columns; ++c)
        _products[c] = Dot(_block.data(), _block.data() + c * kColumnRoom, paddedRows);
    for (std::size_t k = 0; k < _end - _first; ++k)
        _Reflect(k, columns, paddedRows);
}

// Asks for rows `begin`, `begin + step` and so on before `end`, so that memory works while the
// block before them is folded. A few at a time: more would wait for each other.
void BandedQR::_FetchAhead(std::size_t begin, std::size_t end, std::size_t step) const
{
    for (std::size_t i = begin; i < end; i += step)
        __builtin_prefetch(_Row(i) + _first);
}

// Rows of zeros fill the last step of the sums; returns the number of rows with them.
std::size_t BandedQR::_Load(std::size_t begin, std::size_t end, const double* factors,
                            const double* rightFactors)
{
    const std::size_t rows = end - begin;
    const std::size_t paddedRows = (rows + kLanes - 1) / kLanes * kLanes;
    double* to = _block.data();
    if (_runs.source != nullptr) {
        _LoadRuns(begin, end, factors);
        to += (_end - _first) * kColumnRoom;
    }
    const auto load = [&](const double* from, std::size_t stride, double factor) {
        Gather(from, stride, factor, to, rows);
        std::fill(to + rows, to + paddedRows, 0.0);
        to += kColumnRoom;
    };
    for (std::size_t j = _first; _runs.source == nullptr && j < _end; ++j) {
        _FetchAhead(end + (j - _first), std::min(end + rows, _system.rows), _end - _first);
        load(_Row(begin) + j, _system.columns, factors == nullptr ? 1.0 : factors[j]);
    }
    for (std::size_t c = 0; c < _right.columns; ++c)
        load(_right.values + begin * _right.columns + c, _right.columns,
             rightFactors == nullptr ? 1.0 : rightFactors[c]);
    return paddedRows;
}

void BandedQR::_LoadRuns(std::size_t begin, std::size_t end, const double* factors)
{
    const std::size_t paddedRows = (end - begin + kLanes - 1) / kLanes * kLanes;
    for (std::size_t j = 0; j < _end - _first; ++j)
        std::fill_n(_block.data() + j * kColumnRoom, paddedRows, 0.0);
    const double* run = _runValues.data() + (begin - _runsBegin) * _runs.width;
    for (std::size_t i = begin; i < end; ++i, run += _runs.width) {
        const std::size_t first = _runFirsts[i - _runsBegin];
        double* to = _block.data() + (first - _first) * kColumnRoom + (i - begin);
        for (std::size_t r = 0; r < _runs.width; ++r, to += kColumnRoom)
            *to = run[r] * (factors == nullptr ? 1.0 : factors[first + r]);
    }
}

// The same for a block of a single row, which lies side by side: where there are hardly more rows
// than columns, nearly all of them stand alone.
void BandedQR::_FoldRow(std::size_t i, const double* factors, const double* rightFactors)
{
    const std::size_t width = _end - _first;
    double* const x = _block.data();
    // All runs of a window begin where it does, since they are as long as it.
    const double* const from = _runs.source != nullptr
                                   ? _runValues.data() + (i - _runsBegin) * _runs.width
                                   : _Row(i) + _first;
    for (std::size_t r = 0; r < width; ++r)
        x[r] = from[r] * (factors == nullptr ? 1.0 : factors[_first + r]);
    for (std::size_t c = 0; c < _right.columns; ++c)
        x[width + c] = _right.values[i * _right.columns + c] *
                       (rightFactors == nullptr ? 1.0 : rightFactors[c]);
    for (std::size_t k = 0; k < width; ++k) {
        double* const row = _r.data() + (_first + k) * (_reach + _right.columns);
        const double v = x[k];
        const auto [head, factor] = ReflectInto(row[0], v * v);
        const auto apply = [&, head = head, factor = factor](double* inRow, double* column,
                                                             std::size_t columns) {
            for (std::size_t c = 0; c < columns; ++c) {
                const double s = (head * inRow[c] + v * column[c]) * factor;
                inRow[c] += s * head;
                column[c] += s * v;
            }
        };
        apply(row + 1, x + k + 1, width - k - 1);
        apply(row + _reach, x + width, _right.columns);
    }
}

// Reflects column k of the block into the diagonal of R's row.
void BandedQR::_Reflect(std::size_t k, std::size_t columns, std::size_t paddedRows)
{
    const std::size_t width = _end - _first;
    double* const row = _r.data() + (_first + k) * (_reach + _right.columns);
    const double* const v = _block.data() + k * kColumnRoom;
    const auto [head, factor] = ReflectInto(row[0], _products[k]);
    const double* const next = v + kColumnRoom;
    const bool isLast = k + 1 == width;
    for (std::size_t c = k + 1; c < columns; ++c) {
        double& inRow = c < width ? row[c - k] : row[_reach + (c - width)];
        const double s = (head * inRow + _products[c]) * factor;
        inRow += s * head;
        // After the last reflection the block is zero but for the residual, which nobody asks for.
        if (isLast)
            continue;
        double* const column = _block.data() + c * kColumnRoom;
        _products[c] = c == k + 1 ? AddAndSquare(column, v, s, paddedRows)
                                  : AddAndDot(column, v, s, next, paddedRows);
    }
}

} // namespace Norvek::Math::Core
