#include "determinism/results.h"

#include <norvek/search/kd_tree_point_locator.h>
#include <norvek/search/point_mappers.h>

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

// Sets round and thin, few points and many, and segments.
std::uint64_t HashRegistrations(Numbers numbers)
{
    Hash hash;
    for (std::size_t k = 0; k < 3600; ++k) {
        std::vector<MMPoint3d<double>> points(k == 0 ? 20000 : 6 + k % 9);
        MBasePointMapper::PairList pairs;
        for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
            points[i] = numbers.Point(5.0);
            points[i].x *= k % 2 == 0 ? 1.0 : 200.0;
            points[i + 1] = points[i] + numbers.Point(k % 3 == 0 ? 1.0 : 0.1);
            pairs.emplace_back(&points[i], &points[i + 1]);
        }
        MMOrthoTransform motion;
        hash.Add(MMapper3dSegments::MapSegments(
            motion, {{{points[0], points[1]}, {points[2], points[3]}}}));
        hash.Add(motion.GetElement(0, 1));
        hash.Add(MMapper3DPoints::MapPoints(motion, pairs));
        for (unsigned short i = 0; i < 12; ++i)
            hash.Add(motion.GetElement(i / 4, i % 4));
        double scale = 0.0;
        MMapper3DPointsScale::MapPoints(scale, points[0], pairs);
        hash.Add(scale);
    }
    return hash.Value();
}

} // namespace norvek_test
