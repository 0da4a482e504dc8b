#pragma once

#include <norvek/border/border_point.h>
#include <norvek/foundation/point3d.h>

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

/// One end of each of a numbered set of contours, found by place: a hash over cubic cells a few
/// tolerances wide.
///
/// A bucket lists its ends by rising number, so that a search stops at the first end that meets,
/// and a crowd of ends in one place is searched as fast as a single one.
class EndGrid
{
public:
    /// No contour; larger than every number.
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// For contours numbered from 0 to `capacity` - 1, all of them absent. Nothing is allocated
    /// later.
    explicit EndGrid(std::size_t capacity);

    /// Enters the end of an absent contour. An end that meets nothing, not even itself, stays out.
    void Insert(std::uint32_t number, const ContourEnd& end);

    /// Takes the end of a contour out, if it is there.
    void Remove(std::uint32_t number);

    /// The smallest number, `excluded` left out, whose end meets `end`; `kNone` without any.
    [[nodiscard]] std::uint32_t FindFirst(const ContourEnd& end, std::uint32_t excluded) const;

private:
    struct Bucket
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

    [[nodiscard]] std::uint32_t _BucketOf(std::int64_t x, std::int64_t y, std::int64_t z) const;
    [[nodiscard]] std::uint32_t _FindInBucket(std::uint32_t bucket, const ContourEnd& end,
                                              std::uint32_t excluded, std::uint32_t limit) const;

    std::vector<Bucket> _buckets;
    std::vector<Entry> _entries;
    int _shift = 0;
};

} // namespace Norvek::Math::Core
