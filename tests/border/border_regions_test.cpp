#include "border/border_regions.h"
#include "border/grid_rings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <cmath>

namespace
{

using Norvek::Math::Core::CollectRings;
using Norvek::Math::Core::CrossingRule;
using Norvek::Math::Core::FindNesting;
using Norvek::Math::Core::FindNestingOfCrossing;
using Norvek::Math::Core::Orientation;
using norvek_test::BorderOf;
using norvek_test::PlanePoint;
using norvek_test::Random;
using norvek_test::RegionBorder;
using norvek_test::Ring;
using norvek_test::Rings;
using norvek_test::Triangle;

struct Filling
{
    bool isExact;
    std::vector<Triangle> triangles;
    double area = 0.0;
};

Filling Fill(const RegionBorder& border)
{
    Filling filling;
    std::int32_t count = -1;
    std::vector<void*> payloads;
    filling.isExact = border.FillWithTriangles(count, payloads);
    EXPECT_EQ(payloads.size(), 3 * static_cast<std::size_t>(count));
    const auto place = [&](std::size_t i) {
        return *static_cast<const PlanePoint*>(payloads[i]);
    };
    for (std::size_t i = 0; i < payloads.size(); i += 3) {
        const Triangle t{place(i), place(i + 1), place(i + 2)};
        EXPECT_GT(Orientation(t[0], t[1], t[2]), 0);
        filling.triangles.push_back(t);
        const PlanePoint u = t[1] - t[0];
        const PlanePoint v = t[2] - t[0];
        filling.area += 0.5 * (u.x * v.y - u.y * v.x);
    }
    return filling;
}

TEST(BorderRegions, TrianglesAndMergedOutlinesCoverWhatLiesInAnOddNumberOfRings)
{
    Random random(701);
    int numExact = 0;
    for (int round = 0; round < 6000; ++round) {
        Rings rings;
        const int side = random.Integer(2, 7);
        for (int i = random.Integer(1, 4); i > 0; --i)
            rings.push_back(norvek_test::GridRing(random, side));
        if (round % 5 == 0)
            rings.push_back(rings.front());
        const Filling filling = Fill(BorderOf(rings));
        const bool hasCrossing = norvek_test::HasCrossing(rings);
        // Edges that cross may have cancelled against others.
        EXPECT_TRUE(filling.isExact || hasCrossing) << round;
        if (hasCrossing)
            continue;
        ++numExact;
        EXPECT_NEAR(filling.area, norvek_test::SlabArea(rings), 1e-9) << round;
        EXPECT_TRUE(norvek_test::DoFitTogether(filling.triangles)) << round;
        RegionBorder merged = BorderOf(rings);
        // The sweep says the same as all pairs of rings.
        const auto collected = CollectRings(merged);
        EXPECT_EQ(FindNesting(collected.rings).orders,
                  FindNestingOfCrossing(collected.rings, CrossingRule::Never).orders)
            << round;
        merged.DetermineOuterContours();
        merged.AdjustTurningSenseToOuterContourParameter();
        merged.MergeToOnlyOuterContours();
        EXPECT_NEAR(Fill(merged).area, filling.area, 1e-9) << round;
        const Rings outlines = norvek_test::RingsOf(merged);
        EXPECT_FALSE(norvek_test::HasCrossing(outlines)) << round;
        EXPECT_TRUE(norvek_test::PassThroughAtPoints(rings) || norvek_test::HasFoldedRing(rings) ||
                    !norvek_test::PassThroughAtPoints(outlines))
            << round;
    }
    EXPECT_GT(numExact, 1500);
}

// Places in general position keep the area of the rings, and the count that Euler's formula gives.
TEST(BorderRegions, SmoothRingsWithHolesGiveAllTriangles)
{
    Random random(702);
    for (int round = 0; round < 40; ++round) {
        const double scale = std::abs(random.LogUniform(1e-100, 1e100));
        Rings rings;
        const int numHoles = random.Integer(0, 6);
        for (int hole = 0; hole <= numHoles; ++hole) {
            Ring ring;
            const int size = random.Integer(3, 200);
            const double radius = hole == 0 ? 30.0 : 1.5;
            const double x = hole == 0 ? 0.0 : 4.0 * hole - 14.0;
            for (int i = 0; i < size; ++i) {
                const double angle = 6.283185307179586 * i / size;
                const double r = hole == 0 && size < 20 ? 100.0 : radius * random.Uniform(0.7, 1.0);
                ring.emplace_back(scale * (x + r * std::cos(angle)), scale * r * std::sin(angle));
            }
            rings.push_back(ring);
        }
        RegionBorder border = BorderOf(rings);
        border.DetermineOuterContours();
        border.AdjustTurningSenseToOuterContourParameter();
        const Filling filling = Fill(border);
        EXPECT_TRUE(filling.isExact);
        EXPECT_EQ(filling.triangles.size(),
                  border.GetNumPoints() + 2 * static_cast<unsigned>(numHoles) - 2);
        EXPECT_NEAR(filling.area / scale / scale, border.SurfaceAreaWithSignXY() / scale / scale,
                    1e-9);
    }
}

// A hole that pokes through the rim, and what is not finite.
TEST(BorderRegions, CrossingRingsSayThatTheyCross)
{
    Rings poking{{{0, 0}, {9, 0}, {9, 9}, {0, 9}}, {{4, 4}, {5, 4}, {5, 8}, {4.5, 9.01}, {4, 8}}};
    const Filling pierced = Fill(BorderOf(poking));
    EXPECT_FALSE(pierced.isExact);
    EXPECT_NEAR(pierced.area, 81.0 - 4.505, 0.1);
    Rings hostile{{{NAN, 0}, {1, 0}, {0, 1}}, {{0, 0}, {INFINITY, 1}, {2, 2}}, {}, {{1, 1}}};
    EXPECT_TRUE(Fill(BorderOf(hostile)).triangles.empty());
}

// Products of small coordinates vanish beside others, and sides must not contradict each other.
TEST(BorderRegions, CoordinatesOfAllSizesAreSafe)
{
    Rings rings{{{-3e-155, 0},
                 {1e-200, 2e-200},
                 {4e-165, 2e-200},
                 {1e-200, 0},
                 {3e-155, -4e-160},
                 {-4e-100, -4e-162}},
                {{-2e-150, -1e-300}, {0, -1e-160}, {2e-200, 3e-165}, {-2e-155, 3e-200}, {0, 3}}};
    RegionBorder border = BorderOf(rings);
    std::int32_t count = 0;
    std::vector<void*> corners;
    border.GetFirstContour()->FillWithTriangles(count, corners);
    border.FillWithTriangles(count, corners);
    border.MergeToOnlyOuterContours();
    // Each bridge adds two points and takes one contour away.
    EXPECT_EQ(border.GetNumPoints() + 2 * border.GetNumContours(), 15U);
}

// What of a fine pattern of places lies within a ring.
constexpr std::size_t kSamples = 48;
using Sample = std::bitset<kSamples * kSamples>;

Sample SampleOf(const Ring& ring, int side)
{
    Rings rings{ring};
    const RegionBorder border = BorderOf(rings);
    Sample sample;
    for (std::size_t i = 0; i < sample.size(); ++i) {
        const std::size_t column = i / kSamples;
        const std::size_t row = i % kSamples;
        const double x = (static_cast<double>(column) + 0.5137) * side / kSamples - 0.0011;
        const double y = (static_cast<double>(row) + 0.4871) * side / kSamples - 0.0013;
        sample[i] = border.CalculatePosition(x, y) == 1;
    }
    return sample;
}

// Rings that may touch, coincide and pinch themselves; in every other round they may cross
// themselves and overlap in part, through vertices.
TEST(BorderRegions, OrdersCountTheRingsAround)
{
    Random random(703);
    std::size_t deepest = 0;
    for (int round = 0; round < 150; ++round) {
        const int side = random.Integer(3, 6);
        Rings rings;
        std::vector<Sample> samples;
        for (int attempt = 0; attempt < 40; ++attempt) {
            Ring ring = norvek_test::GridRing(random, side);
            if (attempt == 0 && round % 2 == 1) {
                ring = {{0, 0}, {3, 0}, {3, 3}, {0, 3}, {0, 0}, {1, 2}, {2, 1}};
            } else if (attempt % 8 == 7 && !rings.empty()) {
                ring = rings.front();
                std::rotate(ring.begin(), ring.begin() + 1, ring.end());
                std::reverse(ring.begin(), ring.end());
            }
            rings.push_back(ring);
            const Sample sample = SampleOf(ring, side);
            const bool isWanted =
                round % 2 == 1 ||
                std::all_of(samples.begin(), samples.end(), [&](const Sample& other) {
                    const Sample both = other & sample;
                    return both.none() || both == sample || both == other;
                });
            const auto crosses = [&](const Ring& other) {
                return norvek_test::DoCrossEachOther(other, ring);
            };
            const auto others = rings.end() - (round % 2);
            const bool isCrossing = std::any_of(rings.begin(), others, crosses);
            if (isWanted && sample.count() > 2 && !isCrossing)
                samples.push_back(sample);
            else
                rings.pop_back();
        }
        RegionBorder border = BorderOf(rings);
        border.DetermineOuterContours();
        // The sweep alone, not the pairs, decides where it can.
        const auto nesting = FindNesting(CollectRings(border).rings);
        EXPECT_TRUE(nesting.isLaminar || round % 2 == 1);
        std::size_t i = 0;
        for (const auto& contour : border.Contours()) {
            std::size_t order = 0;
            for (std::size_t k = 0; k < samples.size(); ++k) {
                const bool isIn = k != i && (samples[i] & samples[k]) == samples[i];
                order += std::size_t{isIn && (samples[k] != samples[i] || k < i)};
            }
            EXPECT_EQ(contour.GetOrder(), order) << "round " << round << ", contour " << i;
            EXPECT_EQ(contour.GetIsOuterContour(), order % 2 == 0);
            deepest = std::max(deepest, order);
            ++i;
        }
    }
    EXPECT_GT(deepest, 3U);
}

TEST(BorderRegions, MergingKeepsTheRegionInOuterContours)
{
    Random random(704);
    for (int round = 0; round < 60; ++round) {
        // A board of blocks with holes, some with islands, all in random order and turning sense.
        Rings rings;
        const auto addSquare = [&](double x, double y, double half) {
            Ring ring{{x - half, y - half},
                      {x + half, y - half},
                      {x + half, y + half},
                      {x - half, y + half}};
            if (random.Integer(0, 1) == 1)
                std::reverse(ring.begin(), ring.end());
            rings.push_back(ring);
        };
        for (int block = 0; block < 3; ++block) {
            addSquare(20.0 * block, 0.0, 9.0);
            for (int hole = random.Integer(0, 9); hole > 0; --hole) {
                const int row = hole / 5;
                addSquare(20.0 * block + 3.0 * (hole % 5) - 6.0, 4.0 * row, 1.2);
            }
            addSquare(20.0 * block, -6.0, 1.5);
            addSquare(20.0 * block, -6.0, random.Uniform(0.5, 1.5));
        }
        for (std::size_t i = rings.size() - 1; i > 0; --i)
            std::swap(
                rings[i],
                rings[static_cast<std::size_t>(random.Integer(0, static_cast<std::int32_t>(i)))]);
        RegionBorder border = BorderOf(rings);
        border.DetermineOuterContours();
        border.AdjustTurningSenseToOuterContourParameter();
        const double area = border.SurfaceAreaWithSignXY();
        const Filling before = Fill(border);
        border.MergeToOnlyOuterContours();
        EXPECT_EQ(border.GetNumContours(), 6U); // three blocks, three islands
        EXPECT_NEAR(border.SurfaceAreaWithSignXY(), area, 1e-9);
        const Filling after = Fill(border);
        EXPECT_TRUE(before.isExact && after.isExact);
        EXPECT_NEAR(after.area, before.area, 1e-9);
        EXPECT_EQ(after.triangles.size(), before.triangles.size());
        double last = 1e300;
        for (const auto& contour : border.Contours()) {
            EXPECT_TRUE(contour.GetIsOuterContour());
            EXPECT_LE(contour.SurfaceAreaWithSignXY(), last + 60.0); // holes are taken off
            last = contour.SurfaceAreaWithSignXY();
        }
    }
}

// A hole that only sees along the edge that it leans on; a closing edge between hole and rim; a
// hole whose left end is shut in by a contour without area.
TEST(BorderRegions, BridgesDoNotCross)
{
    Rings leaning{{{0, 0}, {0, 10}, {10, 10}, {10, 0}}, {{10, 10}, {0, 5}, {10, 0}}};
    Rings slotted{{{4, 10}, {9, 10}, {9, 0}, {0, 0}, {0, 10}, {3, 10}, {3, 5}, {3, 1}, {4, 1}},
                  {{4.2, 5}, {5, 4.5}, {5, 5.5}}};
    Rings shut{{{0, 0}, {5, 0}, {5, 5}, {0, 5}}, {{2, 4}, {1, 0}}, {{3, 5}, {2, 2}, {4, 0}}};
    for (Rings* const rings : {&leaning, &slotted, &shut}) {
        RegionBorder border = BorderOf(*rings);
        border.GetFirstContour()->SetIsClosed(rings != &slotted);
        border.MergeToOnlyOuterContours();
        EXPECT_EQ(border.GetNumContours(), rings->size() - 1);
        EXPECT_FALSE(norvek_test::HasCrossing(norvek_test::RingsOf(border)));
    }
}

} // namespace
