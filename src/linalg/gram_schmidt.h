#pragma once

#include <norvek/linalg/matrix_storage.h>

#include <cstddef>

namespace Norvek::Math::Core
{

/// Modified Gram-Schmidt on the columns of an m x n matrix, from the left.
///
/// Notation: a_j column j of the matrix, q_k column k of Q, r_kj element (k, j) of R.
///
///     for k = 0 .. n-1:  r_kk = |a_k|,  q_k = a_k / r_kk,
///                        r_kj = q_k . a_j  and  a_j -= q_k r_kj   for all j > k.
///
/// What happens to one column depends on the q to its left alone, not on its neighbours. So the
/// columns are worked through in tiles of a few: a tile takes all earlier q in order, its columns
/// side by side in the lanes of the processor, before its own columns become the next q. Sums
/// over i run in ascending order throughout.
class GramSchmidt
{
public:
    GramSchmidt(std::size_t rows, std::size_t columns) : _rows(rows), _columns(columns)
    {}

    /// Factorises `rows` x `columns` values that lie row by row. False when there is no memory for
    /// the factors.
    bool Factorise(const double* values);

    /// Column k of Q: `rows` values side by side.
    [[nodiscard]] const double* QColumn(std::size_t k) const
    {
        return _q + k * _rows;
    }

    /// Row k of R from its diagonal on: r_kk, r_k,k+1 and so on, columns - k values.
    [[nodiscard]] const double* RRow(std::size_t k) const
    {
        return _r + k * _columns + k;
    }

    /// The n values of Q' b, valid until the next call.
    const double* ProjectOnQ(const double* b);

private:
    bool _Allocate();
    void _LoadTile(const double* values, std::size_t first, std::size_t width);
    void _TakeEarlier(std::size_t first, std::size_t width);
    void _FinishColumn(std::size_t first, std::size_t lane);
    void _StoreProjections(std::size_t k, std::size_t first, std::size_t from, std::size_t width);

    std::size_t _rows;
    std::size_t _columns;
    MatrixStorage _workspace;
    double* _q = nullptr;
    double* _r = nullptr;
    double* _tile = nullptr;
    double* _projected = nullptr;
    double _projections[8]{};
};

} // namespace Norvek::Math::Core
