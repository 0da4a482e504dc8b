#pragma once

#include <norvek/foundation/point3d.h>

/// A local frame: an origin and three axis vectors, whose directions are the frame's axes and whose
/// lengths are its extents along them, both in the units of the coordinates.
///
/// A plain value. Nothing checks that the axes are orthogonal or not zero; what a degenerate frame
/// gives is said where frames are used. The default is the unit frame at the origin.
template <class T>
struct MFrame
{
    /// The frame's zero point.
    MMPoint3d<T> origin{};
    /// The first axis: in `ClipBorderInFrame` the one across the slab.
    MMPoint3d<T> xAxis{T{1}, T{0}, T{0}};
    /// The second axis.
    MMPoint3d<T> yAxis{T{0}, T{1}, T{0}};
    /// The third axis.
    MMPoint3d<T> zAxis{T{0}, T{0}, T{1}};

    /// Exact comparison of all twelve numbers.
    friend constexpr bool operator==(const MFrame&, const MFrame&) = default;
};
