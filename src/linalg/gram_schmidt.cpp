#include "linalg/gram_schmidt.h"

#include "linalg/lane_pair.h"

#include <algorithm>
#include <cmath>

namespace Norvek::Math::Core
{

namespace
{

// Columns in a tile. Four pairs of lanes keep four chains of additions under way, as many as one
// addition takes cycles.
constexpr std::size_t kTile = 8;
constexpr std::size_t kPairs = kTile / 2;

// Notation: w the tile, w_ic its value in row i and column c, p_c the projection of column c on q.

// p_c = sum over i of q_i w_ic.
void Project(const double* q, const double* tile, std::size_t rows, double* projections)
{
    LanePair sums[kPairs]{};
    for (std::size_t i = 0; i < rows; ++i, tile += kTile) {
        const LanePair factor = BothLanes(q[i]);
        for (std::size_t c = 0; c < kPairs; ++c)
            sums[c] += factor * LoadPair(tile + 2 * c);
    }
    for (std::size_t c = 0; c < kPairs; ++c)
        StorePair(projections + 2 * c, sums[c]);
}

// w_ic -= q_i p_c.
void Subtract(const double* q, const double* projections, double* tile, std::size_t rows)
{
    LanePair factors[kPairs];
    for (std::size_t c = 0; c < kPairs; ++c)
        factors[c] = LoadPair(projections + 2 * c);
    for (std::size_t i = 0; i < rows; ++i, tile += kTile) {
        const LanePair factor = BothLanes(q[i]);
        for (std::size_t c = 0; c < kPairs; ++c)
            StorePair(tile + 2 * c, LoadPair(tile + 2 * c) - factor * factors[c]);
    }
}

// Subtracts along q and projects on its successor in one pass over the tile: a value is still in
// its register when the next projection wants it, and the tile is read from memory half as often.
void SubtractAndProject(const double* q, const double* next, double* tile, std::size_t rows,
                        double* projections)
{
    LanePair factors[kPairs];
    for (std::size_t c = 0; c < kPairs; ++c)
        factors[c] = LoadPair(projections + 2 * c);
    LanePair sums[kPairs]{};
    for (std::size_t i = 0; i < rows; ++i, tile += kTile) {
        const LanePair factor = BothLanes(q[i]);
        const LanePair nextFactor = BothLanes(next[i]);
        for (std::size_t c = 0; c < kPairs; ++c) {
            const LanePair rest = LoadPair(tile + 2 * c) - factor * factors[c];
            StorePair(tile + 2 * c, rest);
            sums[c] += nextFactor * rest;
        }
    }
    for (std::size_t c = 0; c < kPairs; ++c)
        StorePair(projections + 2 * c, sums[c]);
}

} // namespace

// R of a wide matrix is much larger than the matrix: that there is room for one says nothing about
// the other.
bool GramSchmidt::_Allocate()
{
    constexpr std::size_t limit = std::size_t{1} << 60;
    if (_columns > limit / (_rows + _columns + 1) ||
        !_workspace.Resize(_rows * _columns + _columns * _columns + _rows * kTile + _columns))
        return false;
    _q = _workspace.Values();
    _r = _q + _rows * _columns;
    _tile = _r + _columns * _columns;
    _projected = _tile + _rows * kTile;
    return true;
}

bool GramSchmidt::Factorise(const double* values)
{
    if (!_Allocate())
        return false;
    for (std::size_t first = 0; first < _columns; first += kTile) {
        const std::size_t width = std::min(kTile, _columns - first);
        _LoadTile(values, first, width);
        _TakeEarlier(first, width);
        for (std::size_t lane = 0; lane < width; ++lane) {
            const std::size_t k = first + lane;
            _FinishColumn(first, lane);
            if (lane + 1 == width)
                break;
            // The lanes up to this one go along without effect: their columns are finished.
            Project(QColumn(k), _tile, _rows, _projections);
            _StoreProjections(k, first, lane + 1, width);
            Subtract(QColumn(k), _projections, _tile, _rows);
        }
    }
    return true;
}

// Lanes beyond the last column are filled with zeros, which stay zeros and are never stored.
void GramSchmidt::_LoadTile(const double* values, std::size_t first, std::size_t width)
{
    for (std::size_t i = 0; i < _rows; ++i) {
        double* const row = _tile + i * kTile;
        std::copy_n(values + i * _columns + first, width, row);
        std::fill(row + width, row + kTile, 0.0);
    }
}

// Brings the columns of a tile past all finished q, in ascending order.
void GramSchmidt::_TakeEarlier(std::size_t first, std::size_t width)
{
    if (first == 0)
        return;
    Project(QColumn(0), _tile, _rows, _projections);
    for (std::size_t k = 0; k < first; ++k) {
        _StoreProjections(k, first, 0, width);
        if (k + 1 < first)
            SubtractAndProject(QColumn(k), QColumn(k + 1), _tile, _rows, _projections);
        else
            Subtract(QColumn(k), _projections, _tile, _rows);
    }
}

// Normalises column `lane` of the tile, which has taken all earlier q, to the next q.
void GramSchmidt::_FinishColumn(std::size_t first, std::size_t lane)
{
    const std::size_t k = first + lane;
    double* const q = _q + k * _rows;
    double square = 0.0;
    for (std::size_t i = 0; i < _rows; ++i) {
        q[i] = _tile[i * kTile + lane];
        square += q[i] * q[i];
    }
    // No test for a zero column: its q is not finite, and that is how the caller learns of it.
    const double length = std::sqrt(square);
    _r[k * _columns + k] = length;
    for (std::size_t i = 0; i < _rows; ++i)
        q[i] /= length;
}

// Row k of R, in the columns of the tile from lane `from` on.
void GramSchmidt::_StoreProjections(std::size_t k, std::size_t first, std::size_t from,
                                    std::size_t width)
{
    for (std::size_t c = from; c < width; ++c)
        _r[k * _columns + first + c] = _projections[c];
}

const double* GramSchmidt::ProjectOnQ(const double* b)
{
    std::size_t k = 0;
    // Four sums side by side, each in its own order.
    for (; k + 4 <= _columns; k += 4) {
        double sums[4]{};
        const double* const q = QColumn(k);
        for (std::size_t i = 0; i < _rows; ++i) {
            for (std::size_t c = 0; c < 4; ++c)
                sums[c] += q[c * _rows + i] * b[i];
        }
        std::copy_n(sums, 4, _projected + k);
    }
    for (; k < _columns; ++k) {
        double sum = 0.0;
        for (std::size_t i = 0; i < _rows; ++i)
            sum += QColumn(k)[i] * b[i];
        _projected[k] = sum;
    }
    return _projected;
}

} // namespace Norvek::Math::Core
