#pragma once

#include <cstddef>

namespace Norvek::Math::Core
{

/// The value that stands at place `rank` (from 0) of the ascending order of `count` finite numbers,
/// the k-th of them `values[k * stride]`. `scratch` has room for `count` numbers.
///
/// A sample brackets the value, one pass without branches on the data gathers the few numbers in
/// between, and std::nth_element finds it among them. `values` and `scratch` do not overlap.
/// R. W. Floyd and R. L. Rivest, Expected time bounds for selection, 1975.
double SelectValue(const double* values, std::size_t stride, std::size_t count, std::size_t rank,
                   double* scratch);

} // namespace Norvek::Math::Core
