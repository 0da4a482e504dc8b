#include "border/end_grid.h"

#include <bit>
#include <cmath>

namespace Norvek::Math::Core
{

namespace
{

// Wide against the tolerance, so that a search seldom touches more than one cell; narrow against
// the pieces of a drawing, so that a cell seldom holds more than one place.
constexpr double kCellsPerUnit = 1.0 / (16.0 * kJoinTolerance);

// From here on neighbouring floats are further apart than the tolerance (and those just below are
// too): only equal coordinates meet.
constexpr float kCoarseCoordinate = 65536.0F;

// Cell numbers beyond this do not fit an integer; the bits of the number then stand for the cell.
constexpr double kLargestCell = 9e15;

bool IsFinite(const ContourEnd& end)
{
    return std::isfinite(end.x) && std::isfinite(end.y) && std::isfinite(end.z);
}

std::int64_t CellOf(double coordinate)
{
    // Shifted by half a cell: 0, where flat drawings have their payload, lies amid a cell.
    const double scaled = coordinate * kCellsPerUnit + 0.5;
    if (!(std::fabs(scaled) < kLargestCell))
        return std::bit_cast<std::int64_t>(scaled);
    const auto truncated = static_cast<std::int64_t>(scaled);
    return truncated - (static_cast<double>(truncated) > scaled ? 1 : 0);
}

// The cells, at most two of them neighbours, that hold all coordinates which meet the given one.
// Scaling and flooring are monotone, so rounding cannot put such a coordinate outside.
struct CellRange
{
    explicit CellRange(float coordinate)
    {
        const double reach = std::fabs(coordinate) < kCoarseCoordinate ? kJoinTolerance : 0.0;
        own = CellOf(coordinate);
        low = CellOf(static_cast<double>(coordinate) - reach);
        high = CellOf(static_cast<double>(coordinate) + reach);
    }

    std::int64_t own;
    std::int64_t low;
    std::int64_t high;
};

// Starts to bring memory into the cache.
void SendFor([[maybe_unused]] const void* address)
{
#if defined(__GNUC__)
    __builtin_prefetch(address);
#endif
}

bool DoCoordinatesMeet(float a, float b)
{
    return static_cast<double>(std::fabs(a - b)) < kJoinTolerance;
}

} // namespace

bool DoEndsMeet(const ContourEnd& a, const ContourEnd& b)
{
    return DoCoordinatesMeet(a.x, b.x) && DoCoordinatesMeet(a.y, b.y) &&
           DoCoordinatesMeet(a.z, b.z);
}

EndGrid::EndGrid(std::size_t capacity)
    : _buckets(std::bit_ceil(capacity + 2)),
      _entries(capacity),
      _shift(64 - std::countr_zero(_buckets.size()))
{}

void EndGrid::Insert(Side side, std::uint32_t number, const Probe& probe)
{
    const auto which = static_cast<std::size_t>(side);
    Entry& entry = _entries[number][which];
    entry.end = probe.end;
    if (probe.count == 0)
        return;
    entry.bucket = probe.home;
    List& list = _buckets[entry.bucket][which];
    // Numbers arrive in rising order, or below all others of their crowd.
    std::uint32_t before = list.last;
    if (list.first != kNone && number < list.first)
        before = kNone;
    while (before != kNone && before > number)
        before = _entries[before][which].previous;
    std::uint32_t& link = before == kNone ? list.first : _entries[before][which].next;
    entry.previous = before;
    entry.next = link;
    link = number;
    (entry.next == kNone ? list.last : _entries[entry.next][which].previous) = number;
}

void EndGrid::Remove(Side side, std::uint32_t number)
{
    const auto which = static_cast<std::size_t>(side);
    Entry& entry = _entries[number][which];
    if (entry.bucket == kNone)
        return;
    List& list = _buckets[entry.bucket][which];
    (entry.previous == kNone ? list.first : _entries[entry.previous][which].next) = entry.next;
    (entry.next == kNone ? list.last : _entries[entry.next][which].previous) = entry.previous;
    entry.bucket = kNone;
}

EndGrid::Probe EndGrid::MakeProbe(const ContourEnd& end) const
{
    Probe probe;
    probe.end = end;
    if (!IsFinite(end))
        return probe;
    const CellRange xs(end.x);
    const CellRange ys(end.y);
    const CellRange zs(end.z);
    probe.home = _BucketOf(xs.own, ys.own, zs.own);
    SendFor(&_buckets[probe.home]);
    // Each range is its low and its high cell, visited once when they are the same.
    for (std::int64_t x = xs.low;; x = xs.high) {
        for (std::int64_t y = ys.low;; y = ys.high) {
            for (std::int64_t z = zs.low;; z = zs.high) {
                probe.buckets[probe.count++] = _BucketOf(x, y, z);
                if (z == zs.high)
                    break;
            }
            if (y == ys.high)
                break;
        }
        if (x == xs.high)
            break;
    }
    return probe;
}

void EndGrid::Prefetch(const Probe& probe) const
{
    if (probe.count == 0)
        return;
    for (const List& list : _buckets[probe.home]) {
        if (list.first != kNone)
            SendFor(&_entries[list.first]);
    }
}

std::uint32_t EndGrid::FindFirst(Side side, const Probe& probe, std::uint32_t excluded) const
{
    const auto which = static_cast<std::size_t>(side);
    std::uint32_t found = kNone;
    for (std::uint32_t i = 0; i < probe.count; ++i) {
        for (std::uint32_t number = _buckets[probe.buckets[i]][which].first; number < found;) {
            const Entry& entry = _entries[number][which];
            if (number != excluded && DoEndsMeet(probe.end, entry.end))
                found = number;
            number = entry.next;
        }
    }
    return found;
}

// Multiplicative hashing: the top bits of a product with an odd constant depend on all bits below.
std::uint32_t EndGrid::_BucketOf(std::int64_t x, std::int64_t y, std::int64_t z) const
{
    std::uint64_t hash = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15U;
    hash = (hash ^ (hash >> 32) ^ static_cast<std::uint64_t>(y)) * 0xBF58476D1CE4E5B9U;
    hash = (hash ^ (hash >> 32) ^ static_cast<std::uint64_t>(z)) * 0x94D049BB133111EBU;
    return static_cast<std::uint32_t>(hash >> _shift);
}

} // namespace Norvek::Math::Core
