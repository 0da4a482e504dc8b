#pragma once

#include <norvek/foundation/point2d.h>

#include <cstdint>

/// One place at which the edge of a contour meets another edge, of another contour or of the same
/// one. Edge i of a contour runs from its point i to the next one, counted from the first point. A
/// parameter tells where on an edge the place lies: 0 at its begin, towards 1 at its end.
///
/// A vertex belongs to the edge that begins there, so that a parameter of 1 occurs at the end of an
/// open contour only and a place at a vertex is named once.
struct MIntersectionValue
{
    /// The edge of the contour whose list this is.
    std::uint32_t edge = 0;
    /// The place on it.
    double parameter = 0.0;
    /// The number of the contour that it meets, from 0 in the order of the border.
    std::uint32_t otherContour = 0;
    /// The edge of that contour.
    std::uint32_t otherEdge = 0;
    /// The place on that.
    double otherParameter = 0.0;
    /// Where it is; a vertex exactly, a crossing to rounding.
    MMPoint2d<double> point;
};
