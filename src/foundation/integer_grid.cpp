#include <norvek/foundation/coordinate.h>
#include <norvek/foundation/integer_grid.h>

#include <cassert>
#include <utility>

namespace Norvek::Math::Core
{

namespace
{

std::uint64_t Magnitude(long long value)
{
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? 0 - bits : bits;
}

// The phase of the grid mirrored at 0.
std::int32_t MirroredPhase(std::int32_t step, std::int32_t offset)
{
    const std::int32_t difference = WrappingSubtract(step, offset);
    return step == -1 ? 0 : difference % step;
}

// 2^31 is not a 32-bit number, so the grid around the mirrored most negative value is computed in
// 64 bits and wrapped at the end.
constexpr std::int64_t kMirroredLowest = std::int64_t{1} << 31;

std::int32_t Wrapped(std::int64_t value)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

} // namespace

long long GCD(long long a, long long b)
{
    std::uint64_t larger = Magnitude(a);
    std::uint64_t smaller = Magnitude(b);
    if (larger < smaller)
        std::swap(larger, smaller);
    while (smaller != 0)
        larger = std::exchange(smaller, larger % smaller);
    return static_cast<long long>(larger);
}

std::int32_t GetFirstMultipleGreaterThan(std::int32_t value, std::int32_t step, std::int32_t offset)
{
    assert(step != 0);
    if (value >= 0) {
        if (value < offset)
            return offset;
        const std::int32_t distance = WrappingSubtract(value, offset);
        std::int32_t count = WrappingDivide(distance, step);
        if (WrappingMultiply(count, step) != distance)
            count = WrappingAdd(count, 1);
        return WrappingAdd(WrappingMultiply(count, step), offset);
    }
    const std::int32_t phase = MirroredPhase(step, offset);
    const std::int32_t mirrored = WrappingNegate(value);
    if (mirrored < 0)
        return Wrapped(-((kMirroredLowest - phase) / step * step + phase));
    if (mirrored < phase)
        return WrappingSubtract(step, phase);
    const std::int32_t count = WrappingDivide(WrappingSubtract(mirrored, phase), step);
    return WrappingNegate(WrappingAdd(WrappingMultiply(count, step), phase));
}

std::int32_t GetFirstMultipleSmallerThan(std::int32_t value, std::int32_t step, std::int32_t offset)
{
    assert(step != 0);
    if (value >= 0) {
        if (value < offset)
            return WrappingSubtract(offset, step);
        const std::int32_t count = WrappingDivide(WrappingSubtract(value, offset), step);
        return WrappingAdd(WrappingMultiply(count, step), offset);
    }
    const std::int32_t phase = MirroredPhase(step, offset);
    const std::int32_t mirrored = WrappingNegate(value);
    if (mirrored < 0) {
        const std::int64_t distance = kMirroredLowest - phase;
        const std::int64_t count = distance / step + (distance % step != 0 ? 1 : 0);
        return Wrapped(-(count * step + phase));
    }
    return WrappingNegate(GetFirstMultipleGreaterThan(mirrored, step, phase));
}

} // namespace Norvek::Math::Core
