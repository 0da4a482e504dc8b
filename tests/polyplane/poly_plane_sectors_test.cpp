#include "polyplane/poly_plane_support.h"

#include <norvek/polyplane/poly_plane_exception.h>
#include <norvek/polyplane/poly_plane_sectors.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using norvek_test::Base;
using norvek_test::ExpectNear;
using norvek_test::Fill;
using norvek_test::Point;
using norvek_test::Random;
using norvek_test::Star;

constexpr double kLargest = std::numeric_limits<double>::max();

// Both bounds from the focal points alone.
std::pair<double, double> BoundsByFocalPoints(MPolyPlaneSectors& plane)
{
    std::pair bounds(-kLargest, kLargest);
    for (unsigned short i = 0; i < plane.GetNumSectors(); ++i) {
        try {
            const double s = plane.GetPlane(i).Distance(plane.GetFocalPoint(i));
            (s < 0 ? bounds.first : bounds.second) =
                s < 0 ? std::max(s, bounds.first) : std::min(s, bounds.second);
        } catch (const MPolyPlaneException&) {
        }
    }
    return bounds;
}

TEST(PolyPlaneSectors, BoundsFollowTheNearestFocalPointsAtEveryPoint)
{
    Random random(84);
    for (int round = 0; round < 400; ++round) {
        const Base base(random, round, 3.0);
        const auto corners = Star(random, 4 + round % 20, 0.4);
        MPolyPlaneSectors plane;
        EXPECT_TRUE(plane.GetPosDisplacement() == kLargest &&
                    plane.GetNegDisplacement() == -kLargest);
        for (std::size_t k = 1; k <= corners.size(); ++k) {
            plane.Clear();
            Fill(plane, base, {corners.begin(), corners.begin() + static_cast<int>(k)}, random);
            if (k < 3)
                continue;
            const auto [low, high] = BoundsByFocalPoints(plane);
            EXPECT_NEAR(plane.GetNegDisplacement() / low, 1.0, 1e-7);
            EXPECT_NEAR(plane.GetPosDisplacement() / high, 1.0, 1e-7);
        }
        // A derived corner lies at the displacement from both of its segments, and on its plane.
        const double s = random.Uniform(-0.1, 0.1);
        const auto count = static_cast<unsigned short>(corners.size());
        double sum = 0;
        for (unsigned short i = 0; i < count; ++i) {
            const Point p = plane.GetPointOnDerivedPolyline(i, s);
            const Point q = plane.GetPointOnDerivedPolyline(i + 1, s);
            EXPECT_NEAR(plane.GetPlane(i).Distance(p), s, 1e-12);
            EXPECT_NEAR(plane.GetPlane(i).Distance(q), s, 1e-12);
            EXPECT_NEAR(plane.GetSubDividingPlane(i).Distance(p), 0, 1e-12);
            ExpectNear(plane.GetSegmentVectorOnDerivedPolyline(i, s), q - p, 1e-12);
            const bool runsOn = (q - p).Dot(plane.GetPolylineSegmentUnitVector(i)) > 0;
            sum += runsOn ? (q - p).Length() : 0.0;
            EXPECT_NEAR(plane.GetCumulativeLengthToEndOfDerivedSegment(i, s), sum, 1e-11);
            const double position = plane.GetCumulativeLengthToEndOfDescribingSegment(i) -
                                    plane.GetLengthOfDescribingSegment(i) * random.Uniform(0, 1);
            const MMLine line =
                plane.GetLineThroughFocalAtPositionAlongDescribingPolyline(position);
            const Point focal = plane.GetFocalPoint(i);
            EXPECT_TRUE(line.IsPointOnLine(focal, false, 1e-10 * (1 + focal.LengthSquared())));
            ExpectNear(line.GetPointFirst(),
                       plane.GetPointAtPositionAlongDescribingPolyline(position), 1e-13);
        }
    }
}

// What is found is made again from its position and displacement, also beyond focal points, and
// lies between the planes of its sector.
TEST(PolyPlaneSectors, PlacesNameTheirPoints)
{
    Random random(85);
    int counts[3] = {};
    for (int round = 0; round < 20000; ++round) {
        const Base base(random, round, 3.0);
        auto corners = Star(random, 3 + round % 15, 0.2);
        if (round % 3 == 0)
            corners.insert(corners.begin() + round % 2, corners[0]);
        if (round % 5 == 0)
            std::reverse(corners.begin(), corners.end());
        MPolyPlaneSectors plane;
        Fill(plane, base, corners, random);
        const double height = random.Uniform(-5, 5);
        const Point x = base.At(random.Uniform(-2, 2), random.Uniform(-2, 2), height);
        bool found = false;
        bool beyond = false;
        double s = 0;
        const double position = plane.SeekPositionAlongDescribingPolyline(x, found, beyond, s);
        const auto sector = plane.SeekSector(x, found, beyond);
        ++counts[!found ? 2 : beyond ? 1 : 0];
        if (!found)
            continue;
        const auto length = std::abs(s) + 1.0 / plane.GetLengthOfDescribingSegment(sector);
        ExpectNear(plane.GetPointInPolyPlane(position, height, 0, 0, sector, s), x, 1e-12 * length);
        const double start = plane.GetSubDividingPlane(sector).Distance(x);
        const double end = plane.GetSubDividingPlane(sector + 1).Distance(x);
        EXPECT_TRUE(start >= 0 && end <= 0);
        EXPECT_EQ(beyond, s > plane.GetPosDisplacement() || s < plane.GetNegDisplacement());
    }
    EXPECT_GT(counts[0], 1000);
    EXPECT_GT(counts[1], 1000);
}

// The points of a convex outline, in either sense, at any usable displacement.
TEST(PolyPlaneSectors, PointsOfConvexOutlinesFindTheirPlace)
{
    Random random(86);
    for (int round = 0; round < 20000; ++round) {
        const Base base(random, round, 3.0);
        auto corners = Star(random, 4 + round % 12, 1.0);
        if (round % 3 == 0)
            corners.insert(corners.begin() + round % 2, corners[0]);
        if (round % 2 == 0)
            std::reverse(corners.begin(), corners.end());
        MPolyPlaneSectors plane;
        Fill(plane, base, corners, random);
        const auto sector = static_cast<unsigned short>(random.Integer(0, plane.GetLastSegment()));
        const double length = plane.GetLengthOfDescribingSegment(sector);
        if (length < 1e-3)
            continue;
        const double low = std::max(0.999 * plane.GetNegDisplacement(), -9.0);
        const double high = std::min(0.999 * plane.GetPosDisplacement(), 9.0);
        const double s = random.Uniform(low, high);
        const double position = plane.GetCumulativeLengthToEndOfDescribingSegment(sector) -
                                length * random.Uniform(0.01, 0.99);
        bool found = false;
        bool beyond = true;
        double seen = 0;
        const Point x = plane.GetPointInPolyPlane(position, 7, 0, 0, sector, s);
        EXPECT_EQ(plane.SeekSector(x, found, beyond), sector);
        EXPECT_NEAR(plane.SeekPositionAlongDescribingPolyline(x, found, beyond, seen), position,
                    1e-9);
        EXPECT_NEAR(seen, s, 1e-12);
        EXPECT_TRUE(found && !beyond);
        // A step along the displaced plane is as long on the derived polyline.
        const double step = random.Uniform(-0.2, 0.2);
        const Point y = plane.GetPointInPolyPlane(position, 7, step, -9, sector, s);
        if (plane.SeekSector(y, found, beyond) == sector && found) {
            EXPECT_NEAR(plane.DistanceBetweenPointsAlongDerivedPolyline(x, y, s), std::abs(step),
                        1e-9);
        }
    }
}

TEST(PolyPlaneSectors, DistanceIsThatOfTheNearestPointOfTheOutline)
{
    Random random(87);
    for (int round = 0; round < 300; ++round) {
        const Base base(random, round, 3.0);
        const auto corners = Star(random, 3 + round % 15, 0.2);
        MPolyPlaneSectors plane;
        Fill(plane, base, corners, random);
        const double length = plane.GetLengthOfDescribingPolyline();
        for (int i = 0; i < 10; ++i) {
            const double a = random.Uniform(-1.5, 1.5);
            const double b = random.Uniform(-1.5, 1.5);
            const Point x = base.At(a, b, 4);
            double nearest = kLargest;
            for (double k = 0; k < 2000; ++k)
                nearest = std::min(
                    nearest, (plane.GetPointAtPositionAlongDescribingPolyline(length * k / 2000) -
                              base.At(a, b))
                                 .Length());
            const double distance = plane.DistanceToPolyPlane(x);
            EXPECT_NEAR(std::abs(distance), nearest, length / 4000);
            EXPECT_EQ(distance < 0, plane.IsInside(x));
        }
    }
}

// Repeated points, straight runs, there and back, and nothing at all.
TEST(PolyPlaneSectors, DegenerateOutlinesAnswer)
{
    MPolyPlaneSectors plane;
    bool found = true;
    bool beyond = true;
    double s = 1;
    plane.SetZeroPlane({0, 0, 1}, {});
    for (int count = 0; count < 3; ++count) {
        EXPECT_EQ(plane.SeekSector({1, 1, 1}, found, beyond), 0);
        EXPECT_FALSE(found || beyond);
        EXPECT_THROW((void)plane.GetFocalPoint(0), MPolyPlaneException);
        EXPECT_EQ(plane.DistanceBetweenPointsAlongDerivedPolyline({}, {}, 1), -1);
        plane.AddPoint({0, 0, 0});
    }
    // Two places: each side belongs to one segment, and the outline has no left side.
    plane.AddPoint({4, 0, 0});
    EXPECT_TRUE(plane.GetNegDisplacement() == 0 && plane.GetPosDisplacement() == kLargest);
    EXPECT_EQ(plane.SeekPositionAlongDescribingPolyline({1, -7, 0}, found, beyond, s), 1);
    EXPECT_TRUE(found && s == 7);
    EXPECT_EQ(plane.SeekPositionAlongDescribingPolyline({1, 7, 0}, found, beyond, s), 7);
    EXPECT_TRUE(found && s == 7);
    plane.SeekSector({5, 1, 0}, found, beyond);
    EXPECT_FALSE(found);
    // A square with a point in the middle of each side, twice.
    plane.Clear();
    for (const auto& [x, y] :
         {std::pair{0, 0}, {2, 0}, {4, 0}, {4, 2}, {4, 4}, {2, 4}, {0, 4}, {0, 2}})
        for (int i = 0; i < 2; ++i)
            plane.AddPoint(Point(x, y, 0));
    EXPECT_EQ(plane.GetNegDisplacement(), -2);
    EXPECT_EQ(plane.GetSubDividingPlane(2), MMPlaneEq<double>(1, 0, 0, -2));
    EXPECT_THROW((void)plane.GetFocalPoint(2), MPolyPlaneException);
    ExpectNear(plane.GetFocalPoint(1), {2, -2, 0}, 9);
    EXPECT_EQ(plane.SeekPositionAlongDescribingPolyline({3, 1, 0}, found, beyond, s), 4);
    EXPECT_EQ(s, -1);
    EXPECT_NEAR(plane.GetCumulativeLengthToEndOfDerivedSegment(15, 1), 24, 1e-13);
    // From the last side to the first, the short way round.
    EXPECT_NEAR(plane.DistanceBetweenPointsAlongDerivedPolyline({0, 1, 0}, {1, 0, 0}, 1), 3, 1e-13);
    EXPECT_EQ(plane.GetParameter(), 5.0);
    plane.AddPoint({NAN, 0, 0});
    plane.AddPoint({1, 2, 0});
    EXPECT_THROW((void)plane.GetFocalPoint(16), MPolyPlaneException);
}

} // namespace
