#pragma once

#include "support/surface.h"

#include <norvek/foundation/point3d.h>
#include <norvek/transform/ortho_transform.h>

#include <random>
#include <vector>

namespace registration
{

using Cloud = std::vector<MMPoint3d<double>>;

/// A piece of the surface, as it lies there and as a scanner would deliver it.
struct Crop
{
    Cloud truth;
    Cloud points;
    /// From the truth to the points, noise aside.
    MMOrthoTransform motion;
};

/// A rectangle of the surface seen from above, in shares of its width and depth.
struct Window
{
    double left;
    double right;
    double front;
    double back;
};

/// Scans a window of the surface: so many random points on every triangle there, so that no two
/// scans have a point in common. Throws `example::Failure` when there are fewer than 100 points.
Crop CutCrop(const example::Surface& surface, const Window& window, int pointsPerTriangle,
             std::mt19937& engine);

/// Turns the points by `degrees` about `axis` through their middle, shifts them, and adds noise.
void MoveCrop(Crop& crop, double degrees, const MMPoint3d<double>& axis,
              const MMPoint3d<double>& shift, double noise, std::mt19937& engine);

/// The usual distance between neighbouring points: the median over the cloud.
double SpacingOf(const Cloud& cloud);

} // namespace registration
