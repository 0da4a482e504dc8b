#pragma once

#include "border/orientation.h"

namespace Norvek::Math::Core
{

/// An upright rectangle.
struct PlaneBox
{
    PlanePoint low;
    PlanePoint high;

    /// The box of an edge.
    static PlaneBox Of(const PlanePoint& p, const PlanePoint& q)
    {
        return {{p.x < q.x ? p.x : q.x, p.y < q.y ? p.y : q.y},
                {p.x < q.x ? q.x : p.x, p.y < q.y ? q.y : p.y}};
    }

    [[nodiscard]] bool Meets(const PlaneBox& other) const
    {
        return low.x <= other.high.x && other.low.x <= high.x && low.y <= other.high.y &&
               other.low.y <= high.y;
    }

    [[nodiscard]] bool Holds(const PlaneBox& other) const
    {
        return low.x <= other.low.x && low.y <= other.low.y && high.x >= other.high.x &&
               high.y >= other.high.y;
    }

    void Add(const PlaneBox& other)
    {
        low = {low.x < other.low.x ? low.x : other.low.x,
               low.y < other.low.y ? low.y : other.low.y};
        high = {high.x > other.high.x ? high.x : other.high.x,
                high.y > other.high.y ? high.y : other.high.y};
    }
};

/// Whether the place lies on the segment from p to q, its ends included. Exact, as all of these.
inline bool LiesOn(const PlanePoint& place, const PlanePoint& p, const PlanePoint& q)
{
    return PlaneBox::Of(p, q).Meets({place, place}) && Orientation(p, q, place) == 0;
}

/// Whether the insides of the segments from p to q and from r to s meet in one place.
inline bool DoCross(const PlanePoint& p, const PlanePoint& q, const PlanePoint& r,
                    const PlanePoint& s)
{
    return Orientation(p, q, r) * Orientation(p, q, s) < 0 &&
           Orientation(r, s, p) * Orientation(r, s, q) < 0;
}

/// Whether the segments from p to q and from r to s have any place in common.
inline bool DoMeet(const PlanePoint& p, const PlanePoint& q, const PlanePoint& r,
                   const PlanePoint& s)
{
    return LiesOn(p, r, s) || LiesOn(q, r, s) || LiesOn(r, p, q) || LiesOn(s, p, q) ||
           DoCross(p, q, r, s);
}

} // namespace Norvek::Math::Core
