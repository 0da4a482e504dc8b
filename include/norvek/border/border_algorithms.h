#pragma once

#include <norvek/border/border.h>
#include <norvek/border/frame.h>

#include <concepts>

class MMTransformMatrix;

/// @file
/// Operations on whole borders of `float` coordinates with a `float` payload, in which a point is
/// the point (x, y, payload) in space.

/// Transforms every point in place as a position, contour by contour and along each ring, rounding
/// the three results to `float`.
///
/// The verdict of the transform is not looked at. A homogeneous matrix throws
/// `MMTransformException` at a point whose w is 0; the points before it are then transformed
/// already. Linear.
template <class Coord, class Payload>
    requires(std::same_as<Coord, float>&& std::same_as<Payload, float>)
void TransformBorder(M3dBorder<Coord, Payload>& border, const MMTransformMatrix& matrix);

/// Clips the border to the slab 0 <= x <= L of a frame, where x is measured along the frame's first
/// axis from its origin and L is the length of that axis.
///
/// The points are brought into the frame (unit axes, which are not made orthogonal), clipped and
/// brought back, in single precision. Each maximal run of points inside becomes an open contour,
/// with the crossings of the slab's limits at its ends (the payload interpolated along the edge);
/// an edge right across the slab becomes an open contour of its two crossings. In a closed contour
/// the first run continues the last one, which takes its points; a closed contour that lies wholly
/// inside stays closed.
///
/// The new contours replace the old ones in the order in which they begin. Each has a pool of its
/// own and the flags of a new contour. Points on a limit are inside, and such a point beside an
/// outside one is doubled by the crossing there. Empty contours vanish. NaN counts as inside. A
/// frame that cannot be inverted (an axis of length 0, axes in one plane) leaves the border as it
/// was, and so does running out of memory. Linear.
template <class Coord, class Payload, class FrameCoord>
    requires(
        std::same_as<Coord, float>&& std::same_as<Payload, float>&& std::same_as<FrameCoord, float>)
void ClipBorderInFrame(M3dBorder<Coord, Payload>& border, const MFrame<FrameCoord>& frame);

/// Moves the contours of `source` into `target`, joining open pieces whose ends meet; `source` ends
/// empty. Merging a border with itself changes nothing.
///
/// Two ends meet when x, y and payload each differ by less than 0.00345266977 (ten times the square
/// root of the machine epsilon of `float`; strict). The contours c of `source` are taken in order:
///
/// 1. c joins the end of the first target contour t whose last point meets c's first point, or c's
///    last one (then c is inverted). The point of t stays, that of c goes.
/// 2. c, or t if step 1 joined, joins the front of the first target contour u whose first point
///    meets its last point, or its first one (then it is inverted). The point of u goes. When u
///    turns out to be t itself, with its own ends meeting, t loses its first point and is closed.
/// 3. If neither joined, c becomes the last contour of `target`.
///
/// Merging is incomplete on purpose: closed and empty contours never join, a single piece whose
/// ends meet stays open, and target contours are not compared with one another except in step 2. A
/// target of one point that meets a source of one point therefore ends closed and empty.
///
/// The expected time is linear in the contours, plus the points that are copied between pools and
/// inverted. Many contours that end in one place cost no more.
template <class Coord, class Payload>
    requires(std::same_as<Coord, float>&& std::same_as<Payload, float>)
void MergeBorder(M3dBorder<Coord, Payload>& target, M3dBorder<Coord, Payload>& source);

/// @cond compiled once, in the library
extern template NORVEK_MATH_API void TransformBorder<float, float>(M3dBorder<float, float>&,
                                                                   const MMTransformMatrix&);
extern template NORVEK_MATH_API void
ClipBorderInFrame<float, float, float>(M3dBorder<float, float>&, const MFrame<float>&);
extern template NORVEK_MATH_API void MergeBorder<float, float>(M3dBorder<float, float>&,
                                                               M3dBorder<float, float>&);
/// @endcond
