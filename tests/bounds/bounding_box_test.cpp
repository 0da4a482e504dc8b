#include "support/random.h"

#include <norvek/bounds/bounding_box.h>
#include <norvek/bounds/objects_bboxes_calculators.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

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

IntegerPoint RandomPoint(Random& random, std::int32_t limit)
{
    const std::int32_t x = random.Integer(-limit, limit);
    const std::int32_t y = random.Integer(-limit, limit);
    return {x, y, random.Integer(-limit, limit)};
}

// Every set operation and test against the definition, point by point over a small lattice. Boxes
// with inverted axes come up too. A plane that touches from below does not intersect.
TEST(BoundingBox, AgreesWithTheLatticePointsItHolds)
{
    Random random(301);
    for (int round = 0; round < 500; ++round) {
        const IntegerBox a(RandomPoint(random, 4), RandomPoint(random, 4));
        const IntegerBox b(RandomPoint(random, 4), RandomPoint(random, 4));
        const IntegerPoint origin = RandomPoint(random, 4);
        const IntegerPoint normal = RandomPoint(random, 2);
        bool shared = false;
        bool contained = true;
        bool sides[2]{};
        for (std::int32_t i = 0; i < 9 * 9 * 9; ++i) {
            const IntegerPoint p(i / 81 - 4, i / 9 % 9 - 4, i % 9 - 4);
            const bool inBoth = a.HasPoint(p) && b.HasPoint(p);
            shared = shared || inBoth;
            contained = contained && (a.HasPoint(p) || !b.HasPoint(p));
            EXPECT_EQ((a & b).HasPoint(p), inBoth);
            EXPECT_TRUE(!a.HasPoint(p) || (a | b).HasPoint(p));
            EXPECT_EQ(a.HasPointExclusive(p),
                      a.HasPoint(p) && p.x != a.minX && p.y != a.minY && p.z != a.minZ);
            if (a.HasPoint(p))
                sides[(p - origin).Dot(normal) > 0 ? 1 : 0] = true;
        }
        EXPECT_EQ(a.OverlapsBoundingBox(b), shared) << a << b;
        if (a.IsValid() && b.IsValid()) {
            EXPECT_EQ(a.Contains(b), contained) << a << b;
        }
        EXPECT_EQ(a.DoesIntersectPlane(origin, normal), sides[0] && sides[1]) << a;
        EXPECT_EQ(a | b, b | a);
        EXPECT_EQ(a | IntegerBox(), a);
        IntegerBox ordered = a;
        ordered.MakeValid();
        EXPECT_EQ(ordered, IntegerBox(a.GetCornerMin()) | a.GetCornerMax());
    }
}

TEST(BoundingBox, KeepsItsRulesAtTheEdges)
{
    IntegerBox box;
    box.AddPoint(IntegerPoint(kLowest, 0, kHighest));
    EXPECT_TRUE(box.minX == kLowest && box.maxX == -kHighest); // above the point: meant
    EXPECT_TRUE(box.GetDeltaX() == 1U && box.GetDelta(3) == 0U && box.GetMin(-1) == 0);
    EXPECT_EQ(IntegerBox().GetDelta(1), 4294967294U);
    const IntegerBox before = box;
    box.SetMin(3, 7);
    box.SetMax(-1, 7);
    EXPECT_EQ(box, before);
    EXPECT_EQ(IntegerBox(kHighest, -7, 5, kHighest, 2, 6).GetCenter(),
              IntegerPoint(-1, -2, 5)); // the sum wraps, the half truncates
    // The difference of the products wraps: 0 - lowest is not above 0, though 0 is above lowest.
    const IntegerBox low(kLowest, 0, 0, 0, 0, 0);
    EXPECT_FALSE(low.DoesIntersectPlane(IntegerPoint(kLowest, 0, 0), IntegerPoint(1, 0, 0)));

    // Only the disjoint axis becomes empty.
    EXPECT_EQ(RealBox(0, 0, 0, 2, 2, 2) & RealBox(1, 5, 2, 3, 6, 3),
              RealBox(1, RealBox::kEmptyMin, 2, 2, RealBox::kEmptyMax, 2));
    EXPECT_TRUE(RealBox(0, 0, 0, 1, 1, 1).Contains(RealBox()) && !RealBox().Contains(RealBox()));
    EXPECT_FALSE(RealBox(0, 0, 0, 1, kNaN, 1).IsValid());
    EXPECT_EQ(RealBox(RealPoint(1, 1, 1)) | RealPoint(kNaN, 2, kNaN), RealBox(1, 1, 1, 1, 2, 1));
}

// An independent verdict by halving the triangle at the edge across from its newest corner, which
// is c: 2 where a corner lies in the box, 0 where every piece lies beyond a face, 1 for neither.
int Meets(const RealBox& box, const RealPoint& a, const RealPoint& b, const RealPoint& c, int depth)
{
    if (box.HasPoint(a) || box.HasPoint(b) || box.HasPoint(c))
        return 2;
    if (!box.OverlapsBoundingBox(RealBox(a) | b | c))
        return 0;
    if (depth == 0)
        return 1;
    const RealPoint middle = (a + b) * 0.5;
    const int first = Meets(box, c, a, middle, depth - 1);
    return first == 2 ? 2 : std::max(first, Meets(box, b, c, middle, depth - 1));
}

TEST(BoundingBox, TriangleTestAgreesWithHalving)
{
    Random random(302);
    const RealBox box(-1, -2, -0.5, 1, 2, 0.5);
    int counts[3]{};
    for (int round = 0; round < 10000; ++round) {
        const RealPoint triangle[3] = {random.Point(3.0), random.Point(3.0), random.Point(3.0)};
        const int verdict = Meets(box, triangle[0], triangle[1], triangle[2], 16);
        ++counts[verdict];
        if (verdict != 1) {
            EXPECT_EQ(box.DoesIntersectTriangle(triangle), verdict == 2) << round;
        }
    }
    EXPECT_TRUE(counts[0] > 3000 && counts[1] < 500 && counts[2] > 3000);
    for (const RealPoint& touched : {RealPoint(1, 0, 0), RealPoint(0, -2, 0.5), box.GetCornerMax()})
    {
        const RealPoint triangle[3] = {touched, 3.0 * touched,
                                       touched + RealPoint(0, touched.z, 0)};
        EXPECT_TRUE(box.DoesIntersectTriangle(triangle)) << touched;
    }
}

// With even limits the integer halves are exact, so that the integer test must say what the real
// one says, touching included.
TEST(BoundingBox, IntegerTriangleTestAgreesWithTheRealOne)
{
    Random random(303);
    for (int round = 0; round < 20000; ++round) {
        const IntegerPoint triangle[3] = {RandomPoint(random, 10), RandomPoint(random, 10),
                                          RandomPoint(random, 10)};
        const RealPoint real[3] = {RealPoint(triangle[0]), RealPoint(triangle[1]),
                                   RealPoint(triangle[2])};
        EXPECT_EQ(IntegerBox(-4, -2, -6, 4, 2, 6).DoesIntersectTriangle(triangle),
                  RealBox(-4, -2, -6, 4, 2, 6).DoesIntersectTriangle(real));
    }
}

TEST(TaperedEdgeBox, TruncatesAndSaturates)
{
    using ObjectsBBoxesCalculators::GetGradientGraphEgdeBBox;
    const IntegerBox box(0, -21, 298, 10, -6, 305);
    EXPECT_EQ(GetGradientGraphEgdeBBox({1, -20, 300}, {10, -7, 305}, 1.5, 0.5), box);
    EXPECT_EQ(GetGradientGraphEgdeBBox({10, -7, 305}, {1, -20, 300}, 0.5, 1.5), box);
    EXPECT_EQ(GetGradientGraphEgdeBBox({0, 0, 0}, {1e300, kNaN, 0}, 2.0, 2.0).maxX, kHighest);
    EXPECT_EQ(GetGradientGraphEgdeBBox({5, 5, 5}, {5, 5, 5}, -2.0, -2.0),
              IntegerBox(3, 3, 3, 7, 7, 7));
}

} // namespace
