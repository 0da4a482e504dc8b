#pragma once

#include <norvek/border/border_point.h>
#include <norvek/foundation/point3d.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Norvek::Math::Core
{

/// Ten times the square root of the machine epsilon of `float` (2^-11.5, which was rounded to
/// `float` before the multiplication). No float lies between this and its nearest float, so
/// comparing in either precision gives the same.
inline constexpr double kJoinTolerance = 0.003452669770922512;

/// An end of a contour: x, y and payload of its first or last point.
using ContourEnd = MMPoint3d<float>;

/// The place of a point.
inline ContourEnd EndAt(const M3dBorderPoint<float, float>& point)
{
    return {point.x, point.y, point.payload};
}

/// True when the three coordinates of two ends each differ by less than the tolerance, the
/// differences taken in `float`. An infinite or NaN coordinate meets nothing, not even itself.
bool DoEndsMeet(const ContourEnd& a, const ContourEnd& b);

/// Which end of a contour.
enum class Side : std::uint8_t
{
    Front,
    Back
};

/// The ends of a numbered set of contours, found by place: a hash over cubic cells some tolerances
/// wide.
///
/// A bucket lists its front ends and its back ends by rising number, so that a search stops at the
/// first end that meets, and a crowd of ends in one place is searched as fast as a single one.
class EndGrid
{
public:
    /// No contour; larger than every number.
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// The buckets that hold whatever meets an end, that of its own cell first: reckoned once, used
    /// for several searches.
    struct Probe
    {
        ContourEnd end;
        std::uint32_t count = 0;
        std::array<std::uint32_t, 8> buckets{};
    };

    /// For contours numbered from 0 to `capacity` - 1, all of them absent. Nothing is allocated
    /// later.
    explicit EndGrid(std::size_t capacity);

    /// Enters an absent end of a contour. One that meets nothing, not even itself, is only kept for
    /// `At`.
    void Insert(Side side, std::uint32_t number, const Probe& probe);

    /// Takes an end of a contour out, if it is there.
    void Remove(Side side, std::uint32_t number);

    /// Takes an end of a contour to another place. Within a bucket it keeps its rank, which saves
    /// the walk through a crowd.
    void Move(Side side, std::uint32_t number, const Probe& probe);

    /// Makes `probe` a probe for `end`, in place because probes are large, and sends for the memory
    /// of its first bucket.
    void MakeProbe(const ContourEnd& end, Probe& probe) const;

    /// Sends for the ends that a search with this probe will look at first.
    void Prefetch(const Probe& probe) const;

    /// The end that was entered last for a contour.
    [[nodiscard]] const ContourEnd& At(Side side, std::uint32_t number) const
    {
        return _entries[number][static_cast<std::size_t>(side)].end;
    }

    /// The smallest number, `excluded` left out, of a contour with that end meeting the probe's;
    /// `kNone` without any.
    [[nodiscard]] std::uint32_t FindFirst(Side side, const Probe& probe,
                                          std::uint32_t excluded) const;

private:
    struct List
    {
        std::uint32_t first = kNone;
        std::uint32_t last = kNone;
    };

    struct Entry
    {
        ContourEnd end;
        std::uint32_t bucket = kNone;
        std::uint32_t previous = kNone;
        std::uint32_t next = kNone;
    };

    // One for each side, beside each other in memory.
    using Bucket = std::array<List, 2>;
    using Entries = std::array<Entry, 2>;

    [[nodiscard]] std::uint32_t _BucketOf(std::int64_t x, std::int64_t y, std::int64_t z) const;

    std::vector<Bucket> _buckets;
    std::vector<Entries> _entries;
    int _shift = 0;
};

} // namespace Norvek::Math::Core
