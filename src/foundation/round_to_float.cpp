#include "foundation/round_to_float.h"

namespace Norvek::Math::Core
{

#if defined(__clang__)
[[gnu::noinline]]
#else
[[gnu::noipa]]
#endif
double
RoundToFloat(double value)
{
    return static_cast<double>(static_cast<float>(value));
}

} // namespace Norvek::Math::Core
