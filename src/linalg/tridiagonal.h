#pragma once

#include <cstddef>

namespace Norvek::Math::Core
{

/// Householder reduction of a symmetric matrix to tridiagonal form.
///
/// `z` holds n x n values row by row, both halves of the matrix on entry, the orthogonal matrix of
/// the reduction on return; `d` receives the n values of the diagonal, `e` those below it, with
/// e[0] = 0. `room` is for n values. The bits are those of the loops over one half of the matrix.
void ReduceToTridiagonal(double* z, std::size_t n, double* d, double* e, double* room);

/// Implicit QL iteration on the tridiagonal matrix of diagonal `d`, with e[i] at (i + 1, i) and
/// e[n - 1] = 0. The n rows of `rows` take part in every rotation: rows of the transpose of an
/// orthogonal matrix become eigenvectors. `room` is for 2 n values. False when a value took too
/// many iterations.
bool IterateQL(double* d, double* e, double* rows, std::size_t n, double* room);

} // namespace Norvek::Math::Core
