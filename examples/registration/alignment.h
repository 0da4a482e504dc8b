#pragma once

#include "crops.h"

#include <norvek/search/kd_tree_point_locator.h>
#include <norvek/transform/ortho_transform.h>

#include <functional>

namespace registration
{

/// How one cloud fits another.
struct Alignment
{
    /// From the moved cloud to the fixed one.
    MMOrthoTransform motion;
    /// Points with a partner, of so many.
    unsigned int numPairs = 0;
    unsigned int numPoints = 0;
    /// The median distance to the partner.
    double median = 0.0;
    int numIterations = 0;
};

/// Called after every iteration, with the state so far.
using Report = std::function<void(const Alignment&)>;

/// Carries `moved` onto the points of `fixed`: pairs the points that are nearest to
/// each other, finds the best motion for the pairs, and begins again, until the median distance
/// settles. Partners are looked for within a radius, which shrinks with the median; `spacing` is
/// the distance of neighbouring points.
Alignment Align(const MKDTreePointLocator& fixed, const Cloud& moved, double spacing,
                const Report& report);

/// The distances from the moved points, carried by `motion`, to their nearest points of `fixed`.
std::vector<double> ResidualsOf(const MKDTreePointLocator& fixed, const Cloud& moved,
                                const MMOrthoTransform& motion);

/// The angle in degrees that a nearly identical motion turns by.
double AngleOf(const MMOrthoTransform& motion);

} // namespace registration
