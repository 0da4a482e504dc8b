#pragma once

#include "options.h"
#include "support/surface.h"

#include <norvek/polyplane/poly_plane_sectors.h>

#include <array>
#include <vector>

namespace bent_cut
{

/// Where a triangle lies.
enum class Side
{
    Inside,
    Crossed,
    Outside
};

/// How many triangles lie on a side, and their area.
struct Part
{
    int count = 0;
    double area = 0.0;
};

/// A surface, split.
struct Split
{
    /// The side of each triangle.
    std::vector<Side> sides;
    /// In the order of `Side`.
    std::array<Part, 3> parts;
    /// Triangles for which the quick test was enough.
    int numRuledOut = 0;
};

/// The bent cut that the options ask for, in the reduced coordinates of the surface.
MPolyPlaneSectors MakeCut(const example::Surface& surface, const Options& options);

/// Splits the surface.
Split SplitSurface(const example::Surface& surface, MPolyPlaneSectors& cut);

} // namespace bent_cut
