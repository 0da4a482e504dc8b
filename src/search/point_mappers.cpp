#include "search/rotation_fit.h"

#include <norvek/search/point_mappers.h>

#include <vector>

using namespace Norvek::Math::Core;

namespace
{

using Point = MMPoint3d<double>;

// The result is set last, since its translation may be read through one of the points.
template <class Pairs>
bool FitMotion(MMOrthoTransform& result, const Pairs& pairs, Undetermined undetermined)
{
    const Centroids centroids = FindCentroids(pairs);
    MMatrix3x3 rotation;
    if (!FitRotation(rotation, pairs, centroids, undetermined))
        return false;
    MMOrthoTransform motion;
    motion.MakeTransformation({}, rotation.GetRow(0), rotation.GetRow(1), rotation.GetRow(2));
    MBasePointMapper::FindTranslation(motion, {centroids.first, centroids.second});
    result = motion;
    return true;
}

} // namespace

MBasePointMapper::~MBasePointMapper() = default;

void MBasePointMapper::FindTranslation(MMOrthoTransform& motion,
                                       const std::pair<Point, Point>& pair)
{
    Point turned;
    motion.Rotate(turned, pair.second);
    motion.SetTranslation(pair.first - turned);
}

MMapper3DPoints::~MMapper3DPoints() = default;

bool MMapper3DPoints::MapPoints(MMOrthoTransform& result, const PairList& pairs)
{
    return pairs.size() >= 3 && FitMotion(result, pairs, Undetermined::Fails);
}

MMapper3DPointsScale::~MMapper3DPointsScale() = default;

// No guard on the division: coincident second points give an infinite or undefined scale. Both
// outputs may be coordinates of the points, so they are written last.
bool MMapper3DPointsScale::MapPoints(double& scale, Point& centre, const PairList& pairs)
{
    if (pairs.size() < 3)
        return false;
    const Centroids centroids = FindCentroids(pairs);
    double first = 0.0;
    double second = 0.0;
    for (const auto& pair : pairs) {
        first += (FirstOf(pair) - centroids.first).Length();
        second += (SecondOf(pair) - centroids.second).Length();
    }
    centre = centroids.second;
    scale = first / second;
    return true;
}

MMapper3dSegments::~MMapper3dSegments() = default;

bool MMapper3dSegments::MapSegments(MMOrthoTransform& result, const SegmentList& pairs)
{
    if (pairs.empty())
        return false;
    std::vector<PointPair> ends;
    ends.reserve(2 * pairs.size());
    for (const auto& [first, second] : pairs) {
        ends.emplace_back(first.first, second.first);
        ends.emplace_back(first.second, second.second);
    }
    return FitMotion(result, ends, Undetermined::TurnsLeast);
}
