#include "polyplane/poly_plane_support.h"

#include <norvek/polyplane/poly_plane_exception.h>
#include <norvek/polyplane/poly_plane_sectors.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace norvek_test;

constexpr double kLargest = std::numeric_limits<double>::max();

// The bounds after every point, from the focal points alone; derived corners by their distances
// from two segments.
TEST(PolyPlaneSectors, BoundsFollowTheNearestFocalPointsAtEveryPoint)
{
    Random random(84);
    for (int round = 0; round < 400; ++round) {
        const Base base(random, round, 3.0);
        const Corners corners = Star(random, 4 + round % 20, 0.4);
        MPolyPlaneSectors plane;
        const auto count = static_cast<unsigned short>(corners.size());
        for (unsigned short k = 3; k <= count; ++k) {
            plane.Clear();
            EXPECT_TRUE(plane.GetPosDisplacement() == kLargest);
            Fill(plane, base, {corners.begin(), corners.begin() + k});
            double low = -kLargest;
            double high = kLargest;
            for (unsigned short i = 0; i < k; ++i) {
                const double s = plane.GetPlane(i).Distance(plane.GetFocalPoint(i));
                (s < 0 ? low : high) = s < 0 ? std::max(s, low) : std::min(s, high);
            }
            EXPECT_NEAR(plane.GetNegDisplacement() / low, 1.0, 1e-10 * (1.0 / -low - low));
            EXPECT_NEAR(plane.GetPosDisplacement() / high, 1.0, 1e-10 * (1.0 / high + high));
        }
        const double s = random.Uniform(-0.1, 0.1);
        double sum = 0;
        for (unsigned short i = 0; i < count; ++i) {
            const Point p = plane.GetPointOnDerivedPolyline(i, s);
            const Point q = plane.GetPointOnDerivedPolyline(i + 1, s);
            EXPECT_NEAR(plane.GetPlane(i).Distance(p), s, 1e-12);
            EXPECT_NEAR(plane.GetPlane(i).Distance(q), s, 1e-12);
            ExpectNear(plane.GetSegmentVectorOnDerivedPolyline(i, s), q - p, 1e-12);
            sum += std::max(0.0, (q - p).Dot(plane.GetPolylineSegmentUnitVector(i)));
            EXPECT_NEAR(plane.GetCumulativeLengthToEndOfDerivedSegment(i, s), sum, 1e-11);
            const MMLine line = plane.GetLineThroughFocalAtPositionAlongDescribingPolyline(
                plane.GetCumulativeLengthToEndOfDescribingSegment(i) -
                plane.GetLengthOfDescribingSegment(i) * random.Uniform(0, 1));
            const Point focal = plane.GetFocalPoint(i);
            EXPECT_TRUE(line.IsPointOnLine(focal, false, 1e-10 * (1 + focal.LengthSquared())));
        }
    }
}

// Any point that is found is made again from its place; a place on a convex outline, in either
// sense, is found again from its point.
TEST(PolyPlaneSectors, PlacesAndPointsLeadToEachOther)
{
    Random random(85);
    for (int round = 0; round < 30000; ++round) {
        const Base base(random, round, 3.0);
        const bool isConvex = round % 2 == 0;
        Corners corners = Star(random, 4 + round % 13, isConvex ? 1.0 : 0.2);
        if (round % 3 == 0)
            corners.insert(corners.begin() + round % 5 % 2, corners[0]);
        if (round % 4 < 2)
            std::reverse(corners.begin(), corners.end());
        MPolyPlaneSectors plane;
        Fill(plane, base, corners);
        const double low = plane.GetNegDisplacement();
        const double high = plane.GetPosDisplacement();
        const double s = random.Uniform(std::max(0.999 * low, -9.0), std::min(0.999 * high, 9.0));
        const auto sector = static_cast<unsigned short>(random.Integer(0, plane.GetLastSegment()));
        const double length = plane.GetLengthOfDescribingSegment(sector);
        const double position = plane.GetCumulativeLengthToEndOfDescribingSegment(sector) -
                                length * random.Uniform(0.01, 0.99);
        Point x = base.At({random.Uniform(-2, 2), random.Uniform(-2, 2)}, 7);
        if (isConvex)
            x = plane.GetPointInPolyPlane(position, 7, 0, 0, sector, s);
        bool found = false;
        bool beyond = false;
        double seen = 0;
        const double at = plane.SeekPositionAlongDescribingPolyline(x, found, beyond, seen);
        const unsigned short in = plane.SeekSector(x, found, beyond);
        if (isConvex && length > 1e-3) {
            EXPECT_TRUE(found && !beyond && in == sector) << "round " << round;
            EXPECT_NEAR(at, position, 1e-9);
            EXPECT_NEAR(seen, s, 1e-12);
        } else if (found) {
            const double scale = std::abs(seen) + 1.0 / plane.GetLengthOfDescribingSegment(in);
            ExpectNear(plane.GetPointInPolyPlane(at, 7, 0, 0, in, seen), x, 1e-12 * scale);
            EXPECT_TRUE(plane.GetSubDividingPlane(in).Distance(x) > -1e-12 &&
                        plane.GetSubDividingPlane(in + 1).Distance(x) < 1e-12);
            EXPECT_EQ(beyond, seen > high || seen < low);
        }
        if (round % 50 > 1)
            continue;
        double nearest = kLargest;
        const double whole = plane.GetLengthOfDescribingPolyline();
        MMPlaneEq<double>(base.origin, base.direction).Project(x, x);
        for (int k = 0; k < 2000; ++k)
            nearest = std::min(
                nearest,
                (plane.GetPointAtPositionAlongDescribingPolyline(whole * k / 2000) - x).Length());
        EXPECT_NEAR(std::abs(plane.DistanceToPolyPlane(x)), nearest, whole / 4000);
        EXPECT_EQ(plane.DistanceToPolyPlane(x) < 0, plane.IsInside(x) == (round % 4 >= 2));
    }
}

// Nothing, repeated points, there and back, and straight runs.
TEST(PolyPlaneSectors, DegenerateOutlinesAnswer)
{
    MPolyPlaneSectors plane;
    bool found = true;
    bool beyond = true;
    double s = 1;
    const auto seek = [&](double x, double y) {
        return plane.SeekPositionAlongDescribingPolyline({x, y, 1}, found, beyond, s);
    };
    plane.SetZeroPlane({0, 0, 1}, {});
    for (int count = 0; count < 3; ++count) {
        EXPECT_TRUE(seek(1, 1) == 0 && !found && !beyond);
        EXPECT_THROW((void)plane.GetFocalPoint(0), MPolyPlaneException);
        plane.AddPoint({0, 0, 0});
    }
    // Two places: each side belongs to one segment, and the outline has no left side.
    plane.AddPoint({4, 0, 0});
    EXPECT_TRUE(plane.GetNegDisplacement() == 0 && plane.GetPosDisplacement() == kLargest);
    EXPECT_TRUE(seek(1, -7) == 1 && s == 7);
    EXPECT_TRUE(seek(1, 7) == 7 && s == 7);
    // A square with a point in the middle of each side, all twice.
    plane.Clear();
    for (const auto& [x, y] :
         {std::pair{0, 0}, {2, 0}, {4, 0}, {4, 2}, {4, 4}, {2, 4}, {0, 4}, {0, 2}})
        for (int i = 0; i < 2; ++i)
            plane.AddPoint(Point(x, y, 0));
    EXPECT_EQ(plane.GetNegDisplacement(), -2);
    EXPECT_EQ(plane.GetSubDividingPlane(2), MMPlaneEq<double>(1, 0, 0, -2));
    EXPECT_THROW((void)plane.GetFocalPoint(2), MPolyPlaneException);
    EXPECT_TRUE(seek(3, 1) == 4 && s == -1);
    // From the last side to the first, the short way round.
    EXPECT_NEAR(plane.DistanceBetweenPointsAlongDerivedPolyline({0, 1, 0}, {1, 0, 0}, 1), 3, 1e-13);
    plane.AddPoint({NAN, 0, 0});
    EXPECT_THROW((void)plane.GetFocalPoint(16), MPolyPlaneException);
}

} // namespace
