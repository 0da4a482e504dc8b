#pragma once

#include <norvek/foundation/point3d.h>

#include <array>
#include <cstddef>

namespace Norvek::Math::Core
{

/// A centre and a squared radius.
struct Ball
{
    MMPoint3d<double> center;
    double squaredRadius = -1.0;
};

/// The points on the surface of a smallest enclosing ball, four at most.
struct BallSupport
{
    std::array<MMPoint3d<double>, 5> points;
    std::size_t count = 0;
};

/// The centre, relative to `a`, of the smallest ball through the origin and the given points
/// relative to it: the circle through three points, the sphere through four. False when they lie
/// on a line or in a plane, to 2^-40 of their extent.
bool CircleCenter(MMPoint3d<double>& center, const MMPoint3d<double>& b,
                  const MMPoint3d<double>& c);

/// Adds a point to the support and keeps those that the smallest ball around all of them needs.
Ball AddToSupport(BallSupport& support, const MMPoint3d<double>& point);

} // namespace Norvek::Math::Core
