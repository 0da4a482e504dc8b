#pragma once

#include <cstring>

namespace Norvek::Math::Core
{

/// Two doubles that the processor treats at once. Each lane is plain IEEE arithmetic, so that a
/// computation spread over lanes has the bits of the same computation done one by one.
using LanePair = double __attribute__((vector_size(16)));

/// Reads two neighbouring values, at any alignment.
inline LanePair LoadPair(const double* values)
{
    LanePair pair;
    std::memcpy(&pair, values, sizeof(pair));
    return pair;
}

/// Writes two neighbouring values, at any alignment.
inline void StorePair(double* values, LanePair pair)
{
    std::memcpy(values, &pair, sizeof(pair));
}

/// The same value in both lanes.
inline LanePair BothLanes(double value)
{
    return LanePair{value, value};
}

} // namespace Norvek::Math::Core
