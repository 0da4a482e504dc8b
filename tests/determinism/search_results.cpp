#include "determinism/results.h"

#include <norvek/search/kd_tree_point_locator.h>
#include <norvek/search/point_mappers.h>

#include <vector>

namespace norvek_test
{

void HashLocators(Hash& hash, Numbers& numbers, int round)
{
    MKDTreePointLocator locator;
    locator.BuildLocator(
        numbers.Fill(std::vector<MMPoint3d<double>>(200), round % 2 == 0 ? 5.0 : 1e6));
    std::vector<MFoundPoint> found;
    for (int i = 0; i < 50; ++i) {
        MClosestPointInfo info;
        info.SetQueryPoint(numbers.Point(8.0));
        hash << locator.FindClosestPoint(info) << info.GetFoundIndex() << info.GetDistance();
        hash << locator.FindClosestPoints(info.GetQueryPoint(), 5, found);
        for (const MFoundPoint& point : found)
            hash << point.distance;
        hash << locator.FindPointsWithinRadius(info.GetQueryPoint(), 4.0, found);
        for (const MFoundPoint& point : found)
            hash << point.distance;
    }
}

// Sets round and thin, few points and many, and segments.
void HashRegistrations(Hash& hash, Numbers& numbers, int round)
{
    std::vector<MMPoint3d<double>> points(round == 0 ? 20000
                                                     : 6 + static_cast<std::size_t>(round) % 9);
    MBasePointMapper::PairList pairs;
    for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
        points[i] = numbers.Point(5.0);
        points[i].x *= round % 2 == 0 ? 1.0 : 200.0;
        points[i + 1] = points[i] + numbers.Point(round % 3 == 0 ? 1.0 : 0.1);
        pairs.emplace_back(&points[i], &points[i + 1]);
    }
    MMOrthoTransform motion;
    hash << MMapper3dSegments::MapSegments(motion,
                                           {{{points[0], points[1]}, {points[2], points[3]}}})
         << motion.GetElement(0, 1) << MMapper3DPoints::MapPoints(motion, pairs) << motion;
    double scale = 0.0;
    hash << MMapper3DPointsScale::MapPoints(scale, points[0], pairs) << scale;
}

} // namespace norvek_test
