#pragma once

#include "border/nesting.h"

namespace Norvek::Math::Core
{

/// Whether a ring that crosses another one may lie in it.
enum class CrossingRule
{
    Never,
    WhenMostPointsDo
};

/// The nesting of rings that may cross, pair by pair; see `FindNesting`.
Nesting FindNestingOfCrossing(const RingPoints& rings, CrossingRule rule);

} // namespace Norvek::Math::Core
