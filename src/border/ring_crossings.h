#pragma once

#include "border/edge_tree.h"

#include <norvek/border/intersection_value.h>

#include <vector>

namespace Norvek::Math::Core
{

/// Which meetings are wanted.
struct CrossingChoice
{
    bool withOthers;
    bool withItself;
};

/// For each of the rings, where it meets the others and itself, in the order in which its edges and
/// the places on them follow each other. The decisions whether edges meet are exact. About
/// (n + k) log n steps for n edges and k meetings when the rings' edges follow each other closely.
std::vector<std::vector<MIntersectionValue>> FindCrossings(const std::vector<EdgeTree>& rings,
                                                           CrossingChoice choice);

/// What a connection of two places is held against.
struct ConnectionRule
{
    /// The edges that close open contours count.
    bool withClosingEdges = false;
    /// An edge that the connection is part of does not count.
    bool mayRunAlong = false;
};

/// Whether the open segment from p to q has a place in common with the segment from r to s. A place
/// that is an end of both does not count, nor does p or q within the other segment.
bool DoesConnectionMeet(const PlanePoint& p, const PlanePoint& q, const PlanePoint& r,
                        const PlanePoint& s, ConnectionRule rule);

} // namespace Norvek::Math::Core
