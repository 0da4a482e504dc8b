#pragma once

#include <norvek/foundation/coordinate.h>
#include <norvek/foundation/export.h>

#include <concepts>
#include <cstdint>

/// A mesh vertex of an application; borders only carry pointers to it.
class NORVEK_MATH_API MStlPoint;

namespace Norvek::Math::Core
{

/// True for the four pairs of coordinate and payload types that borders exist for.
template <class Coord, class Payload>
inline constexpr bool
    kIsBorderPair = (std::same_as<Coord, std::int32_t> && std::same_as<Payload, void*>) ||
                    (std::same_as<Coord, float> && std::same_as<Payload, float>) ||
                    (std::same_as<Coord, double> && std::same_as<Payload, void*>) ||
                    (std::same_as<Coord, double> && std::same_as<Payload, MStlPoint*>);

} // namespace Norvek::Math::Core

/// One point of a contour: a plain record of a position in the XY plane, the caller's payload and
/// the links of the ring it stands in.
///
/// A record belongs to a `MCyclicMemoryPool` and is obtained and given back through a contour;
/// callers may write `x`, `y`, `payload` and `index` at any time and must leave the links and the
/// free flag alone. While a record is in a ring, `next->previous` and `previous->next` are the
/// record itself; a lone point is linked to itself.
///
/// The pairs of types are `std::int32_t` with `void*`, `float` with `float`, `double` with `void*`
/// and `double` with `MStlPoint*`. The record is trivially copyable, so that it may live in raw
/// blocks; copying it copies the links too, which is rarely what is wanted: the insertions of a
/// contour that take a point copy coordinates and payload only.
template <class Coord, class Payload>
struct NORVEK_MATH_API M3dBorderPoint
{
    static_assert(Norvek::Math::Core::kIsBorderPair<Coord, Payload>,
                  "Borders exist for std::int32_t with void*, float with float, double with void* "
                  "and double with MStlPoint*; a 64-bit long is no coordinate.");

    /// The type of `x` and `y`.
    using CoordinateType = Coord;
    /// The type of `payload`.
    using PayloadType = Payload;

    /// The X coordinate.
    Coord x{};
    /// The Y coordinate.
    Coord y{};
    /// The caller's datum, copied by value and never dereferenced. In a border of `float` with
    /// `float` it is the third coordinate to transforming, clipping and merging.
    Payload payload{};
    /// The running number: written by `SetIndices`, 0 after `ResetIndices` and in a new point.
    std::uint32_t index = 0;
    /// The next point of the same ring.
    M3dBorderPoint* next = nullptr;
    /// The previous point of the same ring.
    M3dBorderPoint* previous = nullptr;
    /// 0 while the record is in use, 1 once it has been given back to the pool.
    std::uint32_t freeFlag = 0;
};

namespace Norvek::Math::Core
{

/// The next point of the ring.
///
/// Points that were appended one after another lie side by side in their block, so the next point
/// is nearly always the neighbouring record. Saying so lets the processor go on with that address
/// while the link is still on its way from memory; a plain `point->next` makes every step of a walk
/// wait for the one before. The empty assembly keeps the compiler from seeing that both are equal,
/// which would lead it back to the link.
template <class Point>
Point* NextInRing(Point* point)
{
    Point* const next = point->next;
#if defined(__GNUC__)
    Point* neighbour = point + 1;
    if (next == neighbour) [[likely]] {
        asm("" : "+r"(neighbour));
        return neighbour;
    }
#endif
    return next;
}

} // namespace Norvek::Math::Core
