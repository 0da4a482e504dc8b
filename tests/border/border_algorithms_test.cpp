#include "border/border_support.h"

#include <norvek/border/border_algorithms.h>
#include <norvek/transform/transform_matrix.h>

#include <cmath>
#include <limits>

namespace
{

using norvek_test::CheckedContours;

using Border = M3dBorder<float, float>;
using Contour = Border::ContourType;
using Points = std::vector<norvek_test::Place<Contour>>;

MFrame<float> Slab(float length)
{
    MFrame<float> frame;
    frame.xAxis = {length, 0.0F, 0.0F};
    return frame;
}

using Row = std::vector<float>;

// A contour along the line (x, -x, 2 x), on which crossings lie as well.
Contour& Add(Border& border, const Row& xs, bool isClosed)
{
    Contour& contour = *border.AddContourAtEnd();
    for (const float x : xs)
        contour.InsertAtEnd(x, -x, 2.0F * x);
    contour.SetIsClosed(isClosed);
    return contour;
}

std::vector<Row> Rows(const Border& border)
{
    std::vector<Row> rows;
    for (const auto& places : CheckedContours(border)) {
        rows.emplace_back();
        for (const auto& [x, y, z] : places) {
            EXPECT_TRUE(y == -x && z == 2.0F * x);
            rows.back().push_back(x);
        }
    }
    return rows;
}

TEST(ClipBorder, FollowsTheRulesOfTheSlab)
{
    struct Case
    {
        bool isClosed;
        Row before;
        std::vector<Row> after;
    };
    // The slab is 0 <= x <= 10.
    const Case cases[] = {
        {true, {1, 5, 3}, {{1, 5, 3}}},
        {false, {1, 5}, {{1, 5}}},
        {true, {-1, -5, -2}, {}},
        {true, {}, {}},
        {true, {5, 15, 12, 4}, {{10, 4, 5, 10}}},
        // The first run goes into the last, which keeps its place.
        {true, {5, 15, 6, 15, 7}, {{10, 6, 10}, {10, 7, 5, 10}}},
        {true, {5, 15, 12}, {{10, 5, 10}}},
        {true, {-5, -9, 3}, {{0, 3, 0}}},
        // Across the slab, there and back.
        {true, {-10, 20}, {{0, 10}, {10, 0}}},
        {false, {20, -10}, {{10, 0}}},
        // A point on a limit beside an outside one is doubled.
        {false, {5, 10, 15, 0, -1}, {{5, 10, 10}, {10, 0, 0}}},
    };
    for (const Case& c : cases) {
        Border border;
        Add(border, c.before, c.isClosed);
        ClipBorderInFrame<float, float, float>(border, Slab(10.0F));
        EXPECT_EQ(Rows(border), c.after) << ::testing::PrintToString(c.before);
        for (const Contour& contour : border)
            EXPECT_EQ(contour.GetIsClosed(), c.isClosed && c.after[0] == c.before);
    }
}

// The length inside a slab of any direction, by clipping each edge by itself.
TEST(ClipBorder, KeepsTheLengthThatLiesInside)
{
    norvek_test::Random random(731);
    for (int scene = 0; scene < 300; ++scene) {
        const double angle = random.Uniform(0.0, 6.3);
        const MMPoint3d<double> axis(std::cos(angle), std::sin(angle), 0.0);
        const MMPoint3d<double> origin = random.Point(3.0);
        const double length = random.Uniform(1.0, 8.0);
        MFrame<float> frame;
        frame.origin = MMPoint3d<float>(origin);
        frame.xAxis = MMPoint3d<float>(axis * length);
        frame.yAxis = MMPoint3d<float>(MMPoint3d<double>(-axis.y, axis.x, 0.0) * 7.0);
        Border border;
        double expected = 0.0;
        const bool isClosed = random.Integer(0, 1) == 1;
        Contour& contour = Add(border, {}, isClosed);
        for (int i = random.Integer(1, 12); i > 0; --i) {
            const MMPoint3d<float> p(random.Point(10.0));
            contour.InsertAtEnd(p.x, p.y, p.z);
        }
        for (const auto& p : contour) {
            if (!isClosed && p.next == contour.GetFirstPoint())
                continue;
            const MMPoint3d<double> a(p.x, p.y, p.payload);
            const MMPoint3d<double> edge =
                MMPoint3d<double>(p.next->x, p.next->y, p.next->payload) - a;
            const double at = (a - origin).Dot(axis);
            const double rise = edge.Dot(axis);
            const double enter = std::min(-at / rise, (length - at) / rise);
            const double leave = std::max(-at / rise, (length - at) / rise);
            const double inside = std::min(leave, 1.0) - std::max(enter, 0.0);
            if (inside > 0.0)
                expected += inside * std::hypot(edge.x, edge.y);
        }
        ClipBorderInFrame<float, float, float>(border, frame);
        CheckedContours(border);
        EXPECT_NEAR(border.CircumferenceXY(), expected, 1e-4);
    }
}

TEST(ClipBorder, LeavesTheBorderWhereTheFrameHasNoInverse)
{
    Border border;
    Add(border, {-5, 5, 50}, true);
    MFrame<float> flat = Slab(10.0F);
    flat.zAxis = flat.yAxis;
    for (const MFrame<float>& frame : {flat, Slab(0.0F)}) {
        ClipBorderInFrame<float, float, float>(border, frame);
        EXPECT_EQ(Rows(border), (std::vector<Row>{{-5, 5, 50}}));
    }
    for (const float length : {std::numeric_limits<float>::infinity(), std::nanf("")})
        ClipBorderInFrame<float, float, float>(border, Slab(length));
    CheckedContours(border);
}

TEST(TransformBorder, TakesThePayloadForTheThirdCoordinate)
{
    Border border;
    border.AddContourAtEnd()->InsertAtEnd(1.0F, 2.0F, 3.0F);
    border.AddContourAtEnd()->InsertAtEnd(7.0F, 8.0F, 9.0F);
    MMTransformMatrix matrix;
    matrix.MakeTransformation({10.0, 20.0, 30.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0},
                              {1.0, 0.0, 0.0});
    TransformBorder<float, float>(border, matrix);
    EXPECT_EQ(CheckedContours(border), (std::vector<Points>{{{13, 21, 32}}, {{19, 27, 38}}}));
}

} // namespace
