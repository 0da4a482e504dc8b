#include "support/random.h"

#include <norvek/polyplane/poly_plane_exception.h>
#include <norvek/polyplane/poly_plane_prism.h>
#include <norvek/polyplane/poly_plane_sectors.h>
#include <norvek/primitives/line2d.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

namespace
{

using norvek_test::Random;
using Point = MMPoint3d<double>;
using Flat = MMPoint2d<double>;
using Corners = std::vector<Flat>;

// A frame for outlines. The first directions of a test look along axes or tie in coordinates.
struct Base
{
    Point direction, origin, u, v;

    Base(Random& random, int round, double far) : origin(random.Point(far))
    {
        const Point axes[] = {{0, 0, 2}, {0, -1, 0}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}, {0, 1, 1}};
        direction = (round < 6 ? axes[round] : random.Point(1.0)).Normalised();
        u = direction.Cross(Point(direction.y, direction.z, -direction.x + 0.3)).Normalised();
        v = direction.Cross(u);
    }

    [[nodiscard]] Point At(const Flat& p, double height = 0.0) const
    {
        return origin + u * p.x + v * p.y + direction * height;
    }
};

// The corners of a star around the middle with radii from `least` to 1, counter-clockwise.
Corners Star(Random& random, int count, double least)
{
    Corners corners;
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * std::numbers::pi * (i + random.Uniform(0.0, 0.7)) / count;
        corners.push_back(Flat(std::cos(angle), std::sin(angle)) * random.Uniform(least, 1.0));
    }
    return corners;
}

// Adds the corners, at different heights; without a rise equal corners make the very same point.
template <class Plane>
void Fill(Plane& plane, const Base& base, const Corners& corners, double rise = 0.0)
{
    plane.SetZeroPlane(base.direction, base.origin);
    for (const auto& corner : corners)
        plane.AddPoint(base.At(corner, 2.0 + 3.0 * corner.x + rise * plane.GetNumPoints()));
}

unsigned short CountOf(const MPolyPlane& plane)
{
    return static_cast<unsigned short>(plane.GetNumPoints());
}

struct OpenPlane : MPolyPlane
{
    using MPolyPlane::_Sanity;
};

// The rule written down: every edge takes every test, with nothing passed over.
bool IsInsideByEveryEdge(MPolyPlane& plane, Point query)
{
    const Point d = plane.GetDirection();
    const Point a(std::abs(d.x), std::abs(d.y), std::abs(d.z));
    const auto flat = [&](const Point& p) {
        return a.y >= a.x && a.y >= a.z ? Flat(p.x, p.z)
               : a.x >= a.z             ? Flat(p.y, p.z)
                                        : Flat(p.x, p.y);
    };
    MMPlaneEq<double>(plane.GetOrigin(), d).Project(query, query);
    const Flat q = flat(query);
    bool inside = false;
    for (unsigned short i = 0; i < CountOf(plane); ++i) {
        const Flat p = flat(plane.GetPoint(i));
        const Flat c = flat(plane.GetPointOnDescribingPolyline(i + 1));
        if (p == c)
            continue;
        if (q == p || q == c || MMLine2D(p, c).IsPointOnLineSegment(q, 0x1p-52))
            return true;
        if ((p.y > q.y) != (c.y > q.y) && p.x + (c.x - p.x) * (q.y - p.y) / (c.y - p.y) > q.x)
            inside = !inside;
    }
    return inside;
}

// The largest share of a segment that lies within the triangle, seen along the direction and
// clipped at its three edges; negative when nothing is left of any.
double LargestClippedShare(MPolyPlane& plane, const Point (&t)[3])
{
    const Point up = plane.GetDirection();
    const double sign = (t[1] - t[0]).Cross(t[2] - t[0]).Dot(up) < 0 ? -1 : 1;
    double largest = -1;
    for (unsigned short segment = 0; segment < CountOf(plane); ++segment) {
        double from = 0;
        double to = 1;
        for (int i = 0; i < 3; ++i) {
            const Point inward = sign * up.Cross(t[(i + 1) % 3] - t[i]);
            const double atP = inward.Dot(plane.GetPoint(segment) - t[i]);
            const double atQ = inward.Dot(plane.GetPointOnDescribingPolyline(segment + 1) - t[i]);
            from = atP < 0 ? std::max(from, atQ < 0 ? 2 : atP / (atP - atQ)) : from;
            to = atQ < 0 && atP >= 0 ? std::min(to, atP / (atP - atQ)) : to;
        }
        largest = std::max(largest, to - from);
    }
    return largest;
}

// Every second outline lies on a coarse grid, with repeated and collinear points, and the queries
// lie on and beside its edges.
TEST(PolyPlane, InsideIsWhatEveryEdgeSaysAndCrossingWhatClippingLeaves)
{
    Random random(81);
    int numInside = 0;
    int counts[3] = {};
    for (int round = 0; round < 1500; ++round) {
        const Base base(random, round % 12, round % 3 == 0 ? 1e5 : 1.0);
        auto corners = Star(random, 1 + round % 40, 0.2);
        for (Flat& corner : corners)
            if (round % 2 == 0)
                corner = {std::round(4 * corner.x), std::round(4 * corner.y)};
        OpenPlane plane;
        Fill(plane, base, {{0, 0}});
        plane.Clear();
        Fill(plane, base, corners);
        bool sane = true;
        for (unsigned short i = 0; i < CountOf(plane); ++i)
            sane = sane && plane.GetPlane(i).On(plane.GetPointOnDescribingPolyline(i + 1), 0x1p-52);
        EXPECT_EQ(plane._Sanity(), sane);
        for (unsigned short i = 0; i < 40; ++i) {
            const Point a = plane.GetPointOnDescribingPolyline(i);
            const Point b = plane.GetPointOnDescribingPolyline(i + 1);
            const Point aside = random.Point(i % 2 == 0 ? 0.0 : i % 4 == 1 ? 1.0 : 3e-8);
            const Point query = a + (b - a) * (random.Integer(0, 4) / 4.0) + aside;
            numInside += plane.IsInside(query) ? 1 : 0;
            EXPECT_EQ(plane.IsInside(query), IsInsideByEveryEdge(plane, query));
        }
        for (int i = 0; i < 100; ++i) {
            const double size = random.Uniform(0.02, 1.5);
            const Point middle = base.At({random.Uniform(-1, 1), random.Uniform(-1, 1)});
            const Point t[] = {middle + random.Point(size), middle + random.Point(size),
                               middle + random.Point(size)};
            const double share = LargestClippedShare(plane, t);
            const bool rejected = plane.TriangleIntersectRejection(t[0], t[1], t[2]);
            const bool crosses = plane.TriangleIntersects(t[0], t[1], t[2]);
            EXPECT_FALSE(rejected && crosses);
            EXPECT_TRUE(crosses == (share > 0) || std::abs(share) < 1e-9);
            ++counts[crosses ? 0 : rejected ? 1 : 2];
        }
    }
    EXPECT_TRUE(numInside > 10000 && counts[0] > 20000 && counts[1] > 20000 && counts[2] < 15000);
}

TEST(PolyPlanePrism, SharesItsInnerPolyPlaneAndKeepsItsLevels)
{
    // Leaks and double deletion are what the address sanitizer looks for here.
    auto* const inner = new MPolyPlane;
    MPolyPlanePrism kept(nullptr);
    kept = *std::make_unique<MPolyPlanePrism>(inner);
    inner->SetBottomHeight(-8);
    kept.SetDirection({0, 0, -4});
    for (const auto& [x, y] : {std::pair{0, 0}, {4, 0}, {0, 4}})
        kept.AddPoint(Point(x, y, 6));
    EXPECT_TRUE(inner->GetNumPoints() == 3 && kept.GetNumPoints() == 3);
    EXPECT_TRUE(kept.IsInside({1, 1, 1e300}));
    // Levels count along the direction, which points down.
    kept.SetTopBottomPlanes({9, 9, 10}, {0, 0, 2});
    for (const double z : {1.5, 2.0, 10.0, 10.5})
        EXPECT_EQ(kept.IsInside({1, 1, z}), z >= 2 && z <= 10);
    double range[2] = {};
    kept.GetMinMaxZ(range[0], range[1]);
    EXPECT_TRUE(range[0] == 6 + 2 && range[1] == 8 + 10);
    kept.SetTopBottomPlanes(-10.0, -2.0);
    EXPECT_FALSE(kept.IsInside({1, 1, 5}) || kept.LineIntersects({1, 1, 0}, {9, 9, 0}) ||
                 kept.TriangleIntersects({1, 1, 0}, {9, 9, 0}, {9, 8, 0}) ||
                 kept.TriangleIntersectRejection({8, 8, 0}, {9, 9, 0}, {9, 8, 0}));
    // What is not forwarded sees the prism's own empty outline.
    kept.SetZeroPlane({1, 0, 0}, {9, 9, 9});
    EXPECT_TRUE(kept.GetDirection() == Point(0, 0, -1) && kept.GetNumSegments() == 0);
    EXPECT_EQ(kept.GetPointOnDescribingPolyline(1), Point());
    EXPECT_EQ(kept.GetNormal(1), Point(-0.5, -0.5, 0).Normalised());
    EXPECT_EQ(kept.GetPolylineSegmentUnitVector(0), Point(1, 0, 0));
    kept.Clear();
    EXPECT_EQ(kept.GetNumPoints(), 0);
}

constexpr double kLargest = std::numeric_limits<double>::max();

// The bounds after every point, from the focal points alone; positions by summing lengths, derived
// corners by their distances from two segments.
TEST(PolyPlaneSectors, BoundsPositionsAndDerivedPolylinesFollowTheSegments)
{
    Random random(84);
    for (int round = 0; round < 400; ++round) {
        const Base base(random, round, 3.0);
        const Corners corners = Star(random, 4 + round % 20, 0.4);
        MPolyPlaneSectors plane;
        Fill(plane, base, corners);
        plane.Clear();
        plane.SetBottomHeight(-2);
        EXPECT_TRUE(plane.GetPosDisplacement() == kLargest);
        for (const Flat& corner : corners) {
            plane.AddPoint(base.At(corner, 3.0 * corner.x));
            if (plane.GetNumPoints() < 3)
                continue;
            double low = -kLargest;
            double high = kLargest;
            for (unsigned short i = 0; i < CountOf(plane); ++i) {
                const double s = plane.GetPlane(i).Distance(plane.GetFocalPoint(i));
                (s < 0 ? low : high) = s < 0 ? std::max(s, low) : std::min(s, high);
            }
            EXPECT_NEAR(plane.GetNegDisplacement() / low, 1.0, 1e-10 * (1.0 / -low - low));
            EXPECT_NEAR(plane.GetPosDisplacement() / high, 1.0, 1e-10 * (1.0 / high + high));
        }
        const double s = random.Uniform(-0.1, 0.1);
        double sum = 0;
        double derivedSum = 0;
        for (unsigned short i = 0; i < CountOf(plane); ++i) {
            const Point start = plane.GetPoint(i);
            const Point along = plane.GetPointOnDescribingPolyline(i + 1) - start;
            const double share = random.Uniform(0.01, 0.99);
            const double position = sum + share * along.Length();
            EXPECT_LE((plane.GetVectorToBottom(i) - plane.GetVectorToBottom(sum)).Length(), 1e-13);
            sum += along.Length();
            EXPECT_NEAR(plane.GetCumulativeLengthToEndOfDescribingSegment(i), sum, 1e-13);
            EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(position), i);
            const Point at = plane.GetPointAtPositionAlongDescribingPolyline(position);
            EXPECT_LE((at - start - along * share).Length(), 1e-13);
            // Heights are linear here, and so is the rim.
            const Point top = base.At({}, 3.0 * base.u.Dot(at - base.origin)) - base.origin;
            EXPECT_LE((plane.GetVectorToBottom(position) - top - 2 * base.direction).Length(),
                      1e-13);
            bool inside = true;
            const Point beside = start + along * (2 * share) + plane.GetNormal(i) * 3;
            EXPECT_NEAR(plane.DistanceToPlaneSegment(beside, i, inside), 3, 1e-13);
            EXPECT_EQ(inside, share < 0.5);

            const Point p = plane.GetPointOnDerivedPolyline(i, s);
            const Point q = plane.GetPointOnDerivedPolyline(i + 1, s);
            EXPECT_NEAR(plane.GetPlane(i).Distance(p), s, 1e-12);
            EXPECT_NEAR(plane.GetPlane(i).Distance(q), s, 1e-12);
            EXPECT_LE((plane.GetSegmentVectorOnDerivedPolyline(i, s) - q + p).Length(), 1e-12);
            derivedSum += std::max(0.0, (q - p).Dot(plane.GetPolylineSegmentUnitVector(i)));
            EXPECT_NEAR(plane.GetCumulativeLengthToEndOfDerivedSegment(i, s), derivedSum, 1e-11);
            const MMLine line =
                plane.GetLineThroughFocalAtPositionAlongDescribingPolyline(position);
            const Point focal = plane.GetFocalPoint(i);
            EXPECT_TRUE(line.IsPointOnLine(focal, false, 1e-10 * (1 + focal.LengthSquared())));
        }
        const Point end = plane.GetPointAtPositionAlongDescribingPolyline(99);
        EXPECT_LE((end - plane.GetPoint(0)).Length(), 1e-13);
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
            corners.insert(round % 2 == 0 ? corners.end() : corners.begin(), corners[0]);
        if (round % 4 < 2)
            std::reverse(corners.begin(), corners.end());
        MPolyPlaneSectors plane;
        Fill(plane, base, corners, round % 5);
        const double low = plane.GetNegDisplacement();
        const double high = plane.GetPosDisplacement();
        const double s = random.Uniform(std::max(0.999 * low, -9.0), std::min(0.999 * high, 9.0));
        const auto sector = static_cast<unsigned short>(random.Integer(0, plane.GetLastSegment()));
        const double length = plane.GetLengthOfDescribingSegment(sector);
        const double position = plane.GetCumulativeLengthToEndOfDescribingSegment(sector) -
                                length * random.Uniform(0.01, 0.99);
        const Point x = isConvex ? plane.GetPointInPolyPlane(position, 7, 0, 0, sector, s)
                                 : base.At({random.Uniform(-2, 2), random.Uniform(-2, 2)}, 7);
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
            // Height and lengths along the displaced plane are taken apart as well.
            const Point aside = plane.GetPolylineSegmentUnitVector(in) * 2;
            const Point y = plane.GetPointInPolyPlane(at, 4, 2, 3, in, seen);
            EXPECT_LE((y - aside - x).Length(), 1e-12 * scale);
            EXPECT_TRUE(plane.GetSubDividingPlane(in).Distance(x) > -1e-12 &&
                        plane.GetSubDividingPlane(in + 1).Distance(x) < 1e-12);
            EXPECT_EQ(beyond, seen > high || seen < low);
        }
        if (round % 50 > 1)
            continue;
        double nearest = kLargest;
        const double step = plane.GetLengthOfDescribingPolyline() / 2000;
        for (int k = 0; k < 2000; ++k) {
            const Point p = plane.GetPointAtPositionAlongDescribingPolyline(step * k);
            nearest = std::min(nearest, (p - x).Cross(base.direction).Length());
        }
        EXPECT_NEAR(std::abs(plane.DistanceToPolyPlane(x)), nearest, step / 2);
        EXPECT_EQ(plane.DistanceToPolyPlane(x) < 0, plane.IsInside(x) == (round % 4 >= 2));
    }
}

// Nothing, repeated points, there and back, straight runs, and more points than indices reach.
TEST(PolyPlaneSectors, DegenerateOutlinesAnswer)
{
    MPolyPlaneSectors plane;
    bool found = true;
    bool beyond = true;
    double s = 1;
    const auto seek = [&](double x, double y) {
        return plane.SeekPositionAlongDescribingPolyline({x, y, 1}, found, beyond, s);
    };
    plane.SetZeroPlane({0, 0, 2}, {});
    for (int count = 0; count < 3; ++count) {
        EXPECT_TRUE(seek(1, 1) == 0 && !found && !beyond && plane.GetNormal(0) == Point());
        EXPECT_EQ(plane.GetNumSectors(), count < 2 ? 0 : 2);
        EXPECT_THROW((void)plane.GetFocalPoint(0), MPolyPlaneException);
        plane.AddPoint({0, 0, 0});
    }
    // Two places: each side belongs to one segment, and the outline has no left side.
    plane.AddPoint({4, 0, 0});
    EXPECT_TRUE(plane.GetNegDisplacement() == 0 && plane.GetPosDisplacement() == kLargest);
    EXPECT_TRUE(seek(1, -7) == 1 && s == 7);
    EXPECT_TRUE(seek(1, 7) == 7 && s == 7);
    EXPECT_TRUE(seek(5, 7) == 0 && !found);
    // A square with a point in the middle of each side, all twice.
    plane.Clear();
    for (const auto& [x, y] :
         {std::pair{0, 0}, {2, 0}, {4, 0}, {4, 2}, {4, 4}, {2, 4}, {0, 4}, {0, 2}})
        for (int i = 0; i < 2; ++i)
            plane.AddPoint(Point(x, y, 0));
    EXPECT_EQ(plane.GetNegDisplacement(), -2);
    EXPECT_EQ(plane.GetSubDividingPlane(18), MMPlaneEq<double>(1, 0, 0, -2));
    EXPECT_THROW((void)plane.GetFocalPoint(2), MPolyPlaneException);
    EXPECT_TRUE(seek(3, 1) == 4 && s == -1);
    EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(2), 3);
    // From the last side to the first, the short way round.
    EXPECT_NEAR(plane.DistanceBetweenPointsAlongDerivedPolyline({0, 1, 0}, {1, 0, 0}, 1), 3, 1e-13);
    EXPECT_FALSE(plane.LineIntersects({3, 3, 0}, {3, 4, 7}));
    // A later zero plane moves nothing.
    plane.SetZeroPlane({1, 0, 0}, {9, 9, 9});
    EXPECT_EQ(plane.GetPlane(5), MMPlaneEq<double>({4, 0, 0}, {1, 0, 0}));
    plane.AddPoint({NAN, 0, 0});
    EXPECT_THROW((void)plane.GetFocalPoint(16), MPolyPlaneException);
    plane.Clear();
    for (int i = 0; i < 65537; ++i)
        plane.AddPoint({9, 0, 0});
    for (const auto& [y, z] : {std::pair{1, 0}, {0, 1}})
        plane.AddPoint(Point(9, y, z));
    EXPECT_TRUE(plane.IsInside({0, 0.3, 0.3}) && plane.LineIntersects({0, 0, 0.1}, {0, 2, 1}));
    EXPECT_EQ(plane.GetSegmentAtPositionAlongDescribingPolyline(2), 65535);
}

} // namespace
