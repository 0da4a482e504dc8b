#include "border/grid_rings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <tuple>

namespace
{

using Norvek::Math::Core::ExactOrientation;
using Norvek::Math::Core::Orientation;
using norvek_test::BorderOf;
using norvek_test::PlanePoint;
using norvek_test::Random;
using norvek_test::RegionBorder;
using norvek_test::Ring;
using norvek_test::Rings;

// Against 128-bit integers, over the whole range of 32-bit coordinates and nearly in rows.
TEST(Orientation, IsExact)
{
    Random random(711);
    __extension__ using Wide = __int128;
    for (int round = 0; round < 100000; ++round) {
        std::int64_t v[6];
        for (std::int64_t& value : v)
            value = random.Integer(-2147483647 - 1, 2147483647);
        if (round % 2 == 0) {
            for (int axis = 0; axis < 2; ++axis) {
                v[2 + axis] = v[axis] / 2 + random.Integer(-1000, 1000);
                v[4 + axis] = v[axis] + 3 * (v[2 + axis] - v[axis]) + random.Integer(-1, 1);
            }
        }
        const Wide left = static_cast<Wide>(v[0] - v[4]) * (v[3] - v[5]);
        const Wide right = static_cast<Wide>(v[1] - v[5]) * (v[2] - v[4]);
        const int expected = (left > right ? 1 : 0) - (left < right ? 1 : 0);
        const auto point = [&v](int i) {
            return PlanePoint(static_cast<double>(v[i]), static_cast<double>(v[i + 1]));
        };
        EXPECT_EQ(Orientation(point(0), point(2), point(4)), expected);
        EXPECT_EQ(ExactOrientation(point(0), point(2), point(4)), expected);
    }
    // Half an ulp beside the diagonal, where the rounded determinant is 0.
    const PlanePoint above(0.5 - 0x1p-54, 0.5);
    EXPECT_EQ(Orientation({12, 12}, {24, 24}, above), 1);
    EXPECT_EQ(Orientation({12, 12}, {24, 24}, {0.5, 0.5}), 0);
}

using Pass = std::tuple<std::size_t, std::size_t, std::size_t, std::size_t>; // contour, edge, twice

// On small grids the meetings are counted edge by edge: a crossing, or an end of one that lies on
// the other, ends at the far side left to the next edge.
std::multiset<Pass> MeetingsOneByOne(const Rings& rings)
{
    std::multiset<Pass> found;
    const auto holds = [](const PlanePoint& a, const PlanePoint& b, const PlanePoint& p) {
        return Orientation(a, b, p) == 0 && (p - a).Dot(p - b) <= 0.0 && !(p == b);
    };
    for (std::size_t i = 0; i < rings.size(); ++i) {
        for (std::size_t k = 0; k < rings[i].size(); ++k) {
            for (std::size_t j = 0; j < rings.size(); ++j) {
                for (std::size_t m = 0; m < rings[j].size(); ++m) {
                    const PlanePoint a = rings[i][k];
                    const PlanePoint b = rings[i][(k + 1) % rings[i].size()];
                    const PlanePoint c = rings[j][m];
                    const PlanePoint d = rings[j][(m + 1) % rings[j].size()];
                    if (a == b || c == d || (i == j && k == m))
                        continue;
                    if (norvek_test::DoCross(a, b, c, d))
                        found.emplace(i, k, j, m);
                    if (holds(c, d, a))
                        found.emplace(i, k, j, m);
                    if (holds(a, b, c) && !(a == c))
                        found.emplace(i, k, j, m);
                }
            }
        }
    }
    return found;
}

TEST(BorderCrossings, EqualThoseOfAllPairsOfEdges)
{
    Random random(712);
    for (int round = 0; round < 1500; ++round) {
        Rings rings;
        for (int i = random.Integer(1, 3); i > 0; --i)
            rings.push_back(norvek_test::GridRing(random, 6));
        const RegionBorder border = BorderOf(rings);
        std::vector<std::vector<MIntersectionValue>> values(9);
        border.DetermineIntersectionValues(true, true, values);
        ASSERT_EQ(values.size(), rings.size());
        std::multiset<Pass> found;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const MIntersectionValue* previous = nullptr;
            for (const MIntersectionValue& value : values[i]) {
                found.emplace(i, value.edge, value.otherContour, value.otherEdge);
                // The place lies where both parameters say, and the list runs along the ring.
                const auto at = [&](std::size_t ring, std::size_t edge, double t) {
                    const Ring& points = rings[ring];
                    return points[edge] + (points[(edge + 1) % points.size()] - points[edge]) * t;
                };
                EXPECT_LT((at(i, value.edge, value.parameter) - value.point).Length(), 1e-13);
                EXPECT_LT(
                    (at(value.otherContour, value.otherEdge, value.otherParameter) - value.point)
                        .Length(),
                    1e-13);
                EXPECT_TRUE(value.parameter >= 0.0 && value.parameter < 1.0);
                if (previous != nullptr) {
                    EXPECT_LE(std::tie(previous->edge, previous->parameter),
                              std::tie(value.edge, value.parameter));
                }
                previous = &value;
            }
        }
        EXPECT_EQ(found, MeetingsOneByOne(rings)) << round;
        // The two choices share out the whole.
        std::size_t numApart = 0;
        for (const bool withItself : {false, true}) {
            border.DetermineIntersectionValues(!withItself, withItself, values);
            for (const auto& list : values)
                numApart += list.size();
        }
        EXPECT_EQ(numApart, found.size());
    }
}

TEST(BorderCrossings, OpenContoursEndAtTheirLastPoint)
{
    Rings rings{{{0, 0}, {4, 0}, {4, 4}, {4, 4}}, {{2, -1}, {2, 9}}, {{4, 4}, {9, 9}}};
    RegionBorder border = BorderOf(rings);
    for (auto& contour : border.Contours())
        contour.SetIsClosed(false);
    std::vector<std::vector<MIntersectionValue>> values;
    border.DetermineIntersectionValues(true, true, values);
    ASSERT_EQ(values[0].size(), 2U); // the closing edge from (4, 4) would meet the upright
    EXPECT_TRUE(values[0][0].point == PlanePoint(2, 0) && values[0][0].parameter == 0.5);
    EXPECT_TRUE(values[0][1].edge == 1 && values[0][1].parameter == 1.0);
    const auto* const first = border.GetFirstContour()->GetFirstPoint();
    EXPECT_TRUE(border.IntersectsWithConnection(first, first->next));
    // From end to end of the upright, through the first ring; and along it.
    const auto* const upright = border.GetFirstContour()->GetNextContour()->GetFirstPoint();
    EXPECT_TRUE(border.IntersectsWithConnection(upright, upright->next));
    EXPECT_TRUE(border.IntersectsWithConnection(first->next->next, upright));
    EXPECT_FALSE(border.IntersectsWithConnection(upright, first->next));
    EXPECT_FALSE(border.IntersectsWithConnection(upright, upright));
}

// The lower edge passes the upright a breath before its end, at any scale.
TEST(BorderCrossings, KeepPlacesAndParametersAtTheirLimits)
{
    for (const double scale : {0x1p-450, 1.0, 0x1p450}) {
        Rings rings{{{0, 0}, {4, 0}, {4, 4}}, {{2, -0x1p60}, {2, 1}, {-4, 3}}};
        for (Ring& ring : rings)
            for (PlanePoint& p : ring)
                p = p * scale;
        std::vector<std::vector<MIntersectionValue>> values;
        BorderOf(rings).DetermineIntersectionValues(true, false, values);
        ASSERT_FALSE(values[0].empty());
        EXPECT_TRUE(values[0][0].otherEdge == 0 && values[0][0].otherParameter < 1.0);
        EXPECT_EQ(values[0][0].point.x, 2 * scale);
    }
}

} // namespace
