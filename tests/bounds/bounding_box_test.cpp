#include "support/random.h"

#include <norvek/bounds/bounding_box.h>
#include <norvek/bounds/objects_bboxes_calculators.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace
{

using IntegerBox = M3DBoundingBox<std::int32_t>;
using IntegerPoint = MMPoint3d<std::int32_t>;
using RealBox = M3DBoundingBox<double>;
using RealPoint = MMPoint3d<double>;
using norvek_test::Random;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::lowest();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

static_assert(!IntegerBox().IsValid() && IntegerBox().GetMaxX() == -kHighest);
static_assert((RealBox() | RealPoint(1.0, 2.0, 3.0)) == RealBox(RealPoint(1.0, 2.0, 3.0)));

IntegerBox RandomBox(Random& random)
{
    const auto coordinate = [&] {
        return random.Integer(-4, 4);
    };
    IntegerBox box;
    for (int axis = 0; axis < 3; ++axis) {
        box.SetMin(axis, coordinate());
        box.SetMax(axis, coordinate());
    }
    return box;
}

// Every set operation and test against the definition, point by point over a small lattice. Boxes
// with inverted axes come up too.
TEST(BoundingBox, AgreesWithTheLatticePointsItHolds)
{
    Random random(301);
    for (int round = 0; round < 300; ++round) {
        const IntegerBox a = RandomBox(random);
        const IntegerBox b = RandomBox(random);
        bool shared = false;
        bool contained = true;
        for (std::int32_t x = -4; x <= 4; ++x)
            for (std::int32_t y = -4; y <= 4; ++y)
                for (std::int32_t z = -4; z <= 4; ++z) {
                    const IntegerPoint p(x, y, z);
                    shared = shared || (a.HasPoint(p) && b.HasPoint(p));
                    contained = contained && (a.HasPoint(p) || !b.HasPoint(p));
                    EXPECT_EQ((a & b).HasPoint(p), a.HasPoint(p) && b.HasPoint(p));
                    EXPECT_TRUE(!a.HasPoint(p) || (a | b).HasPoint(p));
                    EXPECT_EQ(a.HasPointExclusive(p),
                              a.HasPoint(p) && p.x != a.minX && p.y != a.minY && p.z != a.minZ);
                }
        EXPECT_EQ(a.OverlapsBoundingBox(b), shared) << a << b;
        if (a.IsValid() && b.IsValid()) {
            EXPECT_EQ(a.Contains(b), contained) << a << b;
        }
        EXPECT_EQ(a | b, b | a);
        EXPECT_EQ(a | IntegerBox(), a);
    }
}

TEST(BoundingBox, KeepsItsRulesAtTheEdges)
{
    IntegerBox box;
    box.AddPoint(IntegerPoint(kLowest, 0, kHighest));
    EXPECT_EQ(box.GetMinX(), kLowest);
    EXPECT_EQ(box.GetMaxX(), -kHighest); // above the point: meant
    EXPECT_EQ(box.GetDeltaX(), 1U);
    EXPECT_EQ(IntegerBox().GetDelta(1), 4294967294U);
    EXPECT_EQ(box.GetDelta(3), 0U);
    EXPECT_EQ(box.GetMin(-1), 0);
    const IntegerBox before = box;
    box.SetMin(3, 7);
    box.SetMax(-1, 7);
    EXPECT_EQ(box, before);

    EXPECT_EQ(IntegerBox(IntegerPoint(kHighest, -7, 5), IntegerPoint(kHighest, 2, 6)).GetCenter(),
              IntegerPoint(-1, -2, 5)); // the sum wraps, the half truncates
    EXPECT_EQ(RealBox(0.0, 0.0, 0.0, 1.0, 2.0, 4.0).GetCenter(), RealPoint(0.5, 1.0, 2.0));

    // Only the disjoint axis becomes empty.
    const RealBox overlap = RealBox(0, 0, 0, 2, 2, 2) & RealBox(1, 5, 2, 3, 6, 3);
    EXPECT_EQ(overlap, RealBox(1, RealBox::kEmptyMin, 2, 2, RealBox::kEmptyMax, 2));

    RealBox inverted;
    inverted.MakeValid();
    EXPECT_EQ(inverted.minX, -std::numeric_limits<double>::max());
    EXPECT_TRUE(RealBox(0, 0, 0, 1, 1, 1).Contains(RealBox()));
    EXPECT_FALSE(RealBox().Contains(RealBox()));
    EXPECT_FALSE(RealBox(0, 0, 0, 1, kNaN, 1).IsValid());

    RealBox withNaN(RealPoint(1, 1, 1));
    withNaN.AddPoint(RealPoint(kNaN, 2, kNaN));
    EXPECT_EQ(withNaN, RealBox(1, 1, 1, 1, 2, 1));
}

TEST(BoundingBox, PlaneTouchingFromBelowDoesNotIntersect)
{
    const RealBox box(0, 0, 0, 1, 1, 1);
    const RealPoint corner(1, 1, 1);
    EXPECT_FALSE(box.DoesIntersectPlane(corner, RealPoint(1, 1, 1)));
    EXPECT_TRUE(box.DoesIntersectPlane(corner, RealPoint(-1, -1, -1)));
    EXPECT_TRUE(box.DoesIntersectPlane(RealPoint(0.5, 0, 0), RealPoint(5, 0, 0)));
    EXPECT_FALSE(RealBox().DoesIntersectPlane(corner, corner));
    // The difference of the products wraps: 0 - lowest is not above 0, though 0 is above lowest.
    const IntegerBox low(kLowest, 0, 0, 0, 0, 0);
    EXPECT_FALSE(low.DoesIntersectPlane(IntegerPoint(kLowest, 0, 0), IntegerPoint(1, 0, 0)));
}

// An independent verdict: the triangle is cut down by the six faces, in extended precision.
// Returns the largest extent of what is left, or -1 when nothing is.
long double ClippedExtent(const RealBox& box, const RealPoint triangle[3])
{
    using Vertex = std::array<long double, 3>;
    std::vector<Vertex> polygon;
    polygon.reserve(3);
    for (int i = 0; i < 3; ++i)
        polygon.push_back({triangle[i].x, triangle[i].y, triangle[i].z});
    for (int face = 0; face < 6; ++face) {
        const int axis = face / 2;
        const long double sign = face % 2 == 0 ? 1.0L : -1.0L;
        const long double limit = face % 2 == 0 ? box.GetMin(axis) : box.GetMax(axis);
        const auto depth = [&](const Vertex& v) {
            return sign * (v[static_cast<std::size_t>(axis)] - limit);
        };
        std::vector<Vertex> kept;
        kept.reserve(2 * polygon.size());
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            const Vertex& a = polygon[i];
            const Vertex& b = polygon[(i + 1) % polygon.size()];
            if (depth(a) >= 0)
                kept.push_back(a);
            if ((depth(a) >= 0) != (depth(b) >= 0)) {
                const long double t = depth(a) / (depth(a) - depth(b));
                kept.push_back(
                    {a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1]), a[2] + t * (b[2] - a[2])});
            }
        }
        polygon = kept;
    }
    long double extent = -1.0L;
    for (const Vertex& a : polygon)
        for (const Vertex& b : polygon)
            for (std::size_t k = 0; k < 3; ++k)
                extent = std::max(extent, std::abs(a[k] - b[k]));
    return extent;
}

TEST(BoundingBox, TriangleTestAgreesWithClipping)
{
    Random random(302);
    int hits = 0;
    for (int round = 0; round < 20000; ++round) {
        const RealBox box(-1, -2, -0.5, 1, 2, 0.5);
        RealPoint triangle[3];
        for (RealPoint& vertex : triangle)
            vertex = random.Point(3.0);
        const long double extent = ClippedExtent(box, triangle);
        if (extent >= 0.0L && extent < 1e-9L)
            continue; // too close to touching for a verdict
        hits += extent > 0.0L ? 1 : 0;
        EXPECT_EQ(box.DoesIntersectTriangle(triangle), extent > 0.0L) << round;
    }
    EXPECT_GT(hits, 3000);
}

// With even limits the integer halves are exact, so that the integer test must say what the real
// one says, touching included.
TEST(BoundingBox, IntegerTriangleTestAgreesWithTheRealOne)
{
    Random random(303);
    for (int round = 0; round < 20000; ++round) {
        const IntegerBox box(-4, -2, -6, 4, 2, 6);
        IntegerPoint triangle[3];
        RealPoint realTriangle[3];
        for (int i = 0; i < 3; ++i) {
            triangle[i] = {random.Integer(-10, 10), random.Integer(-10, 10),
                           random.Integer(-10, 10)};
            realTriangle[i] = RealPoint(triangle[i]);
        }
        EXPECT_EQ(box.DoesIntersectTriangle(triangle),
                  RealBox(-4, -2, -6, 4, 2, 6).DoesIntersectTriangle(realTriangle));
    }
}

TEST(TaperedEdgeBox, TruncatesAndSaturates)
{
    using ObjectsBBoxesCalculators::GetGradientGraphEgdeBBox;
    EXPECT_EQ(GetGradientGraphEgdeBBox({0, 0, 0}, {10, 0, 0}, 1.5, 0.5),
              IntegerBox(-1, -1, -1, 10, 1, 1));
    EXPECT_EQ(GetGradientGraphEgdeBBox({0, 0, 0}, {1e300, kNaN, 0}, 2.0, 2.0).maxX, kHighest);
    EXPECT_EQ(GetGradientGraphEgdeBBox({5, 5, 5}, {5, 5, 5}, -2.0, -2.0),
              IntegerBox(3, 3, 3, 7, 7, 7));
}

} // namespace
