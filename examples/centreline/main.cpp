// Fits a curve through noisy points along a winding vessel, and evaluates, projects onto and
// divides it; the true centreline is at hand.

#include "options.h"
#include "picture.h"
#include "support/failure.h"
#include "support/program.h"
#include "support/text.h"
#include "vessel.h"

#include <cmath>
#include <iostream>

namespace centreline
{

using example::Fixed;

namespace
{

// [fit]
M3dCurveNurbs FitCurve(const Points& measured, int controlPoints)
{
    M3dCurveNurbs curve;
    curve.SetOrder(4);
    curve.SetNumberControlPoints(static_cast<std::uint32_t>(controlPoints));
    if (curve.Fit(measured, false) != M3dCurve::kSuccess)
        throw example::Failure("the points do not determine the curve");
    return curve;
}
// [fit]

// The length of the curve: its speed, by Simpson's rule on a thousand intervals.
double LengthOf(const M3dCurveNurbs& curve)
{
    constexpr int kIntervals = 1000;
    double sum = 0.0;
    for (int i = 0; i <= kIntervals; ++i) {
        Point position;
        Point speed;
        curve.EvaluateSpeed(position, speed, static_cast<double>(i) / kIntervals);
        const double weight = i == 0 || i == kIntervals ? 1.0 : i % 2 == 0 ? 2.0 : 4.0;
        sum += weight * speed.Length();
    }
    return sum / (3.0 * kIntervals);
}

void Run(const Options& options)
{
    const Points measured = Measure(options.points, options.noise);
    const M3dCurveNurbs curve = FitCurve(measured, options.controlPoints);
    const Points truth = Measure(4 * options.points, 0.0);
    const Deviation error = DeviationFrom(curve, truth);
    const Deviation residual = DeviationFrom(curve, measured);
    // [project]
    const Points beside = PointsBeside(40);
    std::vector<double> feet;
    curve.PointsToParameters(feet, beside);
    // [project]
    // [divide]
    Points corners;
    curve.Segment(corners, options.tolerance);
    // [divide]
    std::cout << "Points             " << measured.size() << "\nControl points     "
              << curve.GetNumberControlPoints() << "\nLength             "
              << Fixed(LengthOf(curve), 1) << " mm\nFrom the points    " << Fixed(residual.mean, 3)
              << " mm, at most " << Fixed(residual.largest, 3) << " mm\nFrom the truth     "
              << Fixed(error.mean, 3) << " mm, at most " << Fixed(error.largest, 3)
              << " mm\nChords             " << corners.size() - 1 << " within "
              << Fixed(options.tolerance, 4) << " mm\n";
    if (!options.picture.empty())
        WritePicture(options, {curve, measured, beside, feet, corners});
}

} // namespace

} // namespace centreline

int main(int argc, char** argv)
{
    return example::RunProgram("centreline", centreline::kHelp, centreline::ReadOptions,
                               centreline::Run, argc, argv);
}
