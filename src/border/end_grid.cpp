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

// How far apart, in cells, coordinates that meet may lie: the tolerance, and room for rounding up
// to 65,536. From there on neighbouring floats are further apart, and only equal coordinates meet.
constexpr double kReach = 1.0 / 16.0 + 1e-6;

// Cell numbers beyond this do not fit an integer; the bits of the number then stand for the cell.
constexpr double kLargestCell = 9e15;

bool IsFinite(const ContourEnd& end)
{
    return std::isfinite(end.x) && std::isfinite(end.y) && std::isfinite(end.z);
}

// The cell of a coordinate, and the neighbouring cell in which coordinates that meet it may lie as
// well; the same cell again where none is within reach.
struct Cells
{
    explicit Cells(float coordinate)
    {
        // Shifted by half a cell: 0, where flat drawings have their payload, lies amid a cell.
        const double scaled = static_cast<double>(coordinate) * kCellsPerUnit + 0.5;
        if (!(std::fabs(scaled) < kLargestCell)) {
            own = other = std::bit_cast<std::int64_t>(scaled);
            return;
        }
        const auto truncated = static_cast<std::int64_t>(scaled);
        own = truncated - (static_cast<double>(truncated) > scaled ? 1 : 0);
        const double place = scaled - static_cast<double>(own);
        other = own + (place > 1.0 - kReach ? 1 : 0) - (place < kReach ? 1 : 0);
    }

    std::int64_t own;
    std::int64_t other;
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
    entry.bucket = probe.buckets[0];
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

void EndGrid::Move(Side side, std::uint32_t number, const Probe& probe)
{
    Entry& entry = _entries[number][static_cast<std::size_t>(side)];
    if (probe.count > 0 && entry.bucket == probe.buckets[0]) {
        entry.end = probe.end;
        return;
    }
    Remove(side, number);
    Insert(side, number, probe);
}

void EndGrid::MakeProbe(const ContourEnd& end, Probe& probe) const
{
    probe.end = end;
    probe.count = 0;
    if (!IsFinite(end))
        return;
    const Cells x(end.x);
    const Cells y(end.y);
    const Cells z(end.z);
    probe.buckets[0] = _BucketOf(x.own, y.own, z.own);
    probe.count = 1;
    SendFor(&_buckets[probe.buckets[0]]);
    const unsigned split =
        (x.other != x.own ? 1U : 0U) | (y.other != y.own ? 2U : 0U) | (z.other != z.own ? 4U : 0U);
    // All ways to take the other cell in some of the directions that have one.
    for (unsigned way = split; way != 0; way = (way - 1) & split)
        probe.buckets[probe.count++] =
            _BucketOf((way & 1) != 0 ? x.other : x.own, (way & 2) != 0 ? y.other : y.own,
                      (way & 4) != 0 ? z.other : z.own);
}

// Without a branch, which would be taken at random: an empty bucket sends for some entry.
void EndGrid::Prefetch(const Probe& probe) const
{
    for (const List& list : _buckets[probe.buckets[0]])
        SendFor(&_entries[list.first == kNone ? 0 : list.first]);
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
