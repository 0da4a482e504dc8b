#pragma once

#include <cstddef>

namespace Norvek::Math::Core
{

/// Doolittle elimination with partial pivoting, in place on rows x columns values that lie row by
/// row; `pivot` receives one row number a row. False when a pivot was singular.
///
/// The bits are those of the three plain loops: every element takes its updates one by one, in
/// ascending order of the step. Only the order between elements differs, so that large matrices
/// are worked in panels that fit the cache.
bool Eliminate(double* values, std::size_t rows, std::size_t columns, unsigned int* pivot);

/// b_i -= sum over k < i of L(i, k) b_k, subtracted one by one in ascending order of k, with L the
/// strict lower triangle of `values` (n rows at a distance of `stride`).
void SubstituteForwards(const double* values, std::size_t n, std::size_t stride, double* b);

} // namespace Norvek::Math::Core
