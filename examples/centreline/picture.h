#pragma once

#include "options.h"
#include "vessel.h"

namespace centreline
{

/// What is drawn.
struct Scene
{
    const M3dCurveNurbs& curve;
    const Points& measured;
    /// Points, and the parameters of their feet on the curve.
    const Points& beside;
    const std::vector<double>& feet;
    /// The corners of the division.
    const Points& corners;
};

/// Draws basis, fit, projection and division, one below the other, into the file of the options.
void WritePicture(const Options& options, const Scene& scene);

} // namespace centreline
