#pragma once

#include "border/plane_graph.h"

#include <optional>
#include <vector>

namespace Norvek::Math::Core
{

/// Compares the areas of rings, each computed when it is first asked for, with twice the digits of
/// a double: rings that coincide along edges may differ by little.
class RingAreas
{
public:
    /// The rings have to live as long.
    explicit RingAreas(const RingPoints& rings) : _rings(rings), _areas(rings.NumRings())
    {}

    /// Whether ring `a` has the larger area without sign; of equal areas the earlier ring counts as
    /// larger.
    bool IsLarger(std::uint32_t a, std::uint32_t b);

private:
    // An unevaluated sum of two numbers.
    struct LongNumber
    {
        double high = 0.0;
        double low = 0.0;
    };

    const LongNumber& _Area(std::uint32_t ring);

    const RingPoints& _rings;
    std::vector<std::optional<LongNumber>> _areas;
};

} // namespace Norvek::Math::Core
