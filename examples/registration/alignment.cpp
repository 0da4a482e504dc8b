#include "alignment.h"

#include <norvek/foundation/constants.h>
#include <norvek/search/closest_point_list.h>
#include <norvek/search/point_mappers.h>

#include <algorithm>
#include <cmath>

namespace registration
{

namespace
{

using Point = MMPoint3d<double>;

constexpr int kMostIterations = 100;
// Settled: the median changes by less than this share, three times running.
constexpr double kSettled = 5e-4;
constexpr int kQuietIterations = 3;

// The radius for partners: at first in units of the spacing, then of the median, and never below
// half a spacing.
constexpr double kFirstReach = 4.0;
constexpr double kReach = 3.0;

// Whether the partner, seen from the moved cloud, has the point `index` as its nearest.
bool IsNearestTo(const Point& partner, std::size_t index, const MKDTreePointLocator& own,
                 const MMOrthoTransform& motion)
{
    Point back;
    motion.InverseTransform(back, partner);
    MClosestPointInfo info;
    info.SetQueryPoint(back);
    return own.FindClosestPoint(info) && info.GetFoundIndex() == static_cast<std::int32_t>(index);
}

} // namespace

Alignment Align(const MKDTreePointLocator& fixed, const Cloud& moved, double spacing,
                const Report& report)
{
    Alignment alignment;
    alignment.numPoints = static_cast<unsigned int>(moved.size());
    Cloud originals = moved;
    MKDTreePointLocator own;
    own.BuildLocator(moved);
    double radius = kFirstReach * spacing;
    int quiet = 0;
    while (alignment.numIterations < kMostIterations && quiet < kQuietIterations) {
        // [iteration]
        MClosestPointInfoList partners;
        Cloud targets;
        std::vector<std::size_t> sources;
        for (std::size_t i = 0; i < moved.size(); ++i) {
            Point place;
            alignment.motion.Transform(place, moved[i]);
            MClosestPointInfo info;
            info.SetQueryPoint(place);
            info.SetDistance(radius);
            // Beyond the rim of the fixed cloud many points share a partner: only the one that is
            // nearest to it keeps it.
            if (fixed.FindClosestPointWithinRadius(info) &&
                IsNearestTo(info.GetClosestPoint(), i, own, alignment.motion))
            {
                partners.push_back(info);
                targets.push_back(info.GetClosestPoint());
                sources.push_back(i);
            }
        }
        MMapper3DPoints::PairList pairs;
        for (std::size_t i = 0; i < targets.size(); ++i)
            pairs.emplace_back(&targets[i], &originals[sources[i]]);
        if (!MMapper3DPoints::MapPoints(alignment.motion, pairs))
            break;
        const double median = partners.GetResiduMedian();
        // [iteration]
        ++alignment.numIterations;
        alignment.numPairs = static_cast<unsigned int>(pairs.size());
        quiet = std::abs(median - alignment.median) < kSettled * median ? quiet + 1 : 0;
        alignment.median = median;
        radius = std::clamp(kReach * median, 0.5 * spacing, radius);
        report(alignment);
    }
    return alignment;
}

std::vector<double> ResidualsOf(const MKDTreePointLocator& fixed, const Cloud& moved,
                                const MMOrthoTransform& motion)
{
    std::vector<double> residuals;
    for (const Point& point : moved) {
        Point place;
        motion.Transform(place, point);
        MClosestPointInfo info;
        info.SetQueryPoint(place);
        if (fixed.FindClosestPoint(info))
            residuals.push_back(info.GetDistance());
    }
    return residuals;
}

// From the skew part of the rotation, whose length is twice the sine.
double AngleOf(const MMOrthoTransform& motion)
{
    const Point skew(motion.GetElement(2, 1) - motion.GetElement(1, 2),
                     motion.GetElement(0, 2) - motion.GetElement(2, 0),
                     motion.GetElement(1, 0) - motion.GetElement(0, 1));
    return std::asin(std::min(skew.Length() / 2.0, 1.0)) * 180.0 / CMathConst::kPi;
}

} // namespace registration
