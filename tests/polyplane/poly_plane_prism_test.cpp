#include "polyplane/poly_plane_support.h"

#include <norvek/polyplane/poly_plane_prism.h>

#include <gtest/gtest.h>

namespace
{

using norvek_test::Base;
using norvek_test::Fill;
using norvek_test::Point;
using norvek_test::Random;
using norvek_test::Star;

TEST(PolyPlanePrism, CutsTheInsideOffAtItsLevels)
{
    Random random(88);
    int numCut = 0;
    for (int round = 0; round < 300; ++round) {
        const Base base(random, round, 3.0);
        auto* const inner = new MPolyPlane;
        Fill(*inner, base, Star(random, 9, 0.5), random);
        MPolyPlanePrism prism(inner);
        const Point p =
            base.At(random.Uniform(-1, 1), random.Uniform(-1, 1), random.Uniform(-4, 4));
        EXPECT_EQ(prism.IsInside(p), inner->IsInside(p));
        const Point a = base.At(5, 5, random.Uniform(-4, 4));
        const Point b = base.At(-3, 4, random.Uniform(-4, 4));
        prism.SetTopBottomPlanes(a, b);
        const Point d = prism.GetDirection();
        const bool isBetween = (d.Dot(p) - d.Dot(a)) * (d.Dot(p) - d.Dot(b)) <= 0;
        EXPECT_EQ(prism.IsInside(p), inner->IsInside(p) && isBetween);
        EXPECT_TRUE(prism.GetTop() >= prism.GetBottom());
        EXPECT_FALSE(prism.LineIntersects(p, a) || prism.TriangleIntersects(p, a, b) ||
                     prism.TriangleIntersectRejection(p, a, b));
        numCut += inner->IsInside(p) && !isBetween ? 1 : 0;
        prism.SetTopBottomPlanes(1.0, 2.0);
        EXPECT_FALSE(prism.IsInside(p));
        double low[2];
        double high[2];
        inner->GetMinMaxZ(low[0], high[0]);
        prism.GetMinMaxZ(low[1], high[1]);
        EXPECT_EQ(low[1], low[0] + (d.z > 0 ? 2.0 : 1.0) * d.z);
        EXPECT_EQ(high[1], high[0] + (d.z > 0 ? 1.0 : 2.0) * d.z);
    }
    EXPECT_GT(numCut, 20);
}

// Counts its own end.
struct Watched : MPolyPlane
{
    explicit Watched(int& count) : destroyed(count)
    {}
    ~Watched() override
    {
        ++destroyed;
    }
    int& destroyed;
};

TEST(PolyPlanePrism, CopiesShareTheInnerPolyPlaneToTheLast)
{
    int destroyed = 0;
    {
        MPolyPlanePrism kept(nullptr);
        {
            MPolyPlanePrism prism(new Watched(destroyed));
            prism.SetDirection({0, 0, 4});
            MPolyPlanePrism copy(prism);
            kept = copy;
            kept.SetTopBottomPlanes(10.0, 0.0);
            for (const auto& [x, y] : {std::pair{0, 0}, {4, 0}, {0, 4}})
                copy.AddPoint(Point(x, y, 6));
            EXPECT_TRUE(prism.IsInside({1, 1, 10.5}));
        }
        EXPECT_EQ(destroyed, 0);
        EXPECT_EQ(kept.GetNumPoints(), 3);
        EXPECT_TRUE(kept.IsInside({1, 1, 10}));
        EXPECT_FALSE(kept.IsInside({1, 1, 10.5}));
        // What is not forwarded sees the prism's own empty outline.
        unsigned short one = 1;
        bool inside = true;
        kept.SetZeroPlane({1, 0, 0}, {9, 9, 9});
        EXPECT_EQ(kept.GetDirection(), Point(0, 0, 1));
        EXPECT_EQ(kept.GetOrigin(), Point(9, 9, 9));
        EXPECT_EQ(kept.GetNumSegments(), 0);
        EXPECT_EQ(kept.GetLengthOfDescribingPolyline(), 0.0);
        EXPECT_EQ(kept.GetPointOnDescribingPolyline(one), Point());
        EXPECT_EQ(kept.GetVectorToBottom(one), Point());
        EXPECT_EQ(kept.GetNormalAtPositionAlongDescribingPolyline(2.0), Point());
        EXPECT_EQ(kept.DistanceToPlaneSegment({1, 2, 3}, one, inside), 0.0);
        EXPECT_FALSE(inside);
        EXPECT_EQ(kept.GetNormal(one), Point(0.5, 0.5, 0).Normalised());
    }
    EXPECT_EQ(destroyed, 1);
}

} // namespace
