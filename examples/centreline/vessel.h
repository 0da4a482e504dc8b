#pragma once

#include <norvek/curve/curve_nurbs.h>

#include <vector>

namespace centreline
{

using Point = MMPoint3d<double>;
using Points = std::vector<Point>;

/// The true centreline of the made-up vessel, in millimetres, for 0 <= t <= 1.
Point TrueCentreline(double t);

/// Points at even parameters along it, each coordinate with noise of the normal distribution.
Points Measure(int count, double noise);

/// How far two curves are apart.
struct Deviation
{
    /// The root of the mean of the squared distances.
    double mean = 0.0;
    /// The largest distance.
    double largest = 0.0;
};

/// Of points from the curve.
Deviation DeviationFrom(const M3dCurveNurbs& curve, const Points& points);

/// Points beside the vessel, each a handful of millimetres off, to be projected.
Points PointsBeside(int count);

} // namespace centreline
