#include "determinism/results.h"

#include <norvek/search/kd_tree_point_locator.h>

#include <vector>

namespace norvek_test
{

std::uint64_t HashLocators(Numbers numbers)
{
    Hash hash;
    for (int cloud = 0; cloud < 20; ++cloud) {
        std::vector<MMPoint3d<double>> points(200);
        for (MMPoint3d<double>& point : points)
            point = numbers.Point(cloud % 2 == 0 ? 5.0 : 1e6);
        MKDTreePointLocator locator;
        locator.BuildLocator(points);
        std::vector<MFoundPoint> found;
        for (int i = 0; i < 50; ++i) {
            MClosestPointInfo info;
            info.SetQueryPoint(numbers.Point(8.0));
            hash.Add(locator.FindClosestPoint(info));
            hash.Add(info.GetFoundIndex());
            hash.Add(info.GetDistance());
            hash.Add(locator.FindClosestPoints(info.GetQueryPoint(), 5, found));
            hash.Add(locator.FindPointsWithinRadius(info.GetQueryPoint(), 4.0, found));
            for (const MFoundPoint& point : found)
                hash.Add(point.distance);
        }
    }
    return hash.Value();
}

} // namespace norvek_test
