#include "border/border_support.h"

#include <norvek/border/border_algorithms.h>
#include <norvek/transform/transform_matrix.h>

#include <cmath>
#include <limits>

namespace
{

using norvek_test::Append;
using norvek_test::CheckedContours;

using Border = M3dBorder<float, float>;
using Contour = Border::ContourType;
using Points = std::vector<norvek_test::Place<Contour>>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

MFrame<float> Slab(float length)
{
    MFrame<float> frame;
    frame.xAxis = {length, 0.0F, 0.0F};
    return frame;
}

Contour& Add(Border& border, const Points& places, bool isClosed)
{
    Contour& contour = *border.AddContourAtEnd();
    Append(contour, places);
    contour.SetIsClosed(isClosed);
    return contour;
}

struct ClipCase
{
    const char* name;
    bool isClosed;
    Points before;
    std::vector<Points> after;
    bool staysClosed;
};

// The slab is 0 <= x <= 10.
const ClipCase kClipCases[] = {
    {"inside", true, {{1, 1, 1}, {5, 1, 1}, {5, 5, 1}}, {{{1, 1, 1}, {5, 1, 1}, {5, 5, 1}}}, true},
    {"inside, open", false, {{1, 1, 1}, {5, 1, 1}}, {{{1, 1, 1}, {5, 1, 1}}}, false},
    {"outside", true, {{-1, 1, 1}, {-5, 1, 1}, {-5, 5, 1}}, {}, false},
    {"over the upper limit, payload interpolated",
     true,
     {{5, 0, 0}, {15, 0, 4}, {15, 4, 4}, {5, 4, 0}},
     {{{10, 4, 2}, {5, 4, 0}, {5, 0, 0}, {10, 0, 2}}},
     false},
    {"first run goes into the last, which keeps its place",
     true,
     {{5, 0, 0}, {15, 0, 0}, {5, 2, 0}, {15, 4, 0}, {5, 6, 0}},
     {{{10, 1, 0}, {5, 2, 0}, {10, 3, 0}}, {{10, 5, 0}, {5, 6, 0}, {5, 0, 0}, {10, 0, 0}}},
     false},
    {"closed pair across gives two passages",
     true,
     {{-10, 0, 0}, {20, 0, 0}},
     {{{0, 0, 0}, {10, 0, 0}}, {{10, 0, 0}, {0, 0, 0}}},
     false},
    {"open pair across", false, {{20, 0, 0}, {-10, 0, 0}}, {{{10, 0, 0}, {0, 0, 0}}}, false},
    {"a point on a limit is doubled",
     false,
     {{5, 0, 0}, {10, 1, 0}, {15, 2, 0}},
     {{{5, 0, 0}, {10, 1, 0}, {10, 1, 0}}},
     false},
    {"only the first inside",
     true,
     {{5, 0, 0}, {15, 0, 0}, {15, 10, 0}},
     {{{10, 5, 0}, {5, 0, 0}, {10, 0, 0}}},
     false},
    {"only the last inside",
     true,
     {{-5, 0, 0}, {-5, 10, 0}, {5, 10, 0}},
     {{{0, 10, 0}, {5, 10, 0}, {0, 5, 0}}},
     false},
    {"empty", true, {}, {}, false},
};

TEST(ClipBorder, FollowsTheRulesOfTheSlab)
{
    for (const ClipCase& c : kClipCases) {
        Border border;
        Add(border, c.before, c.isClosed);
        ClipBorderInFrame<float, float, float>(border, Slab(10.0F));
        EXPECT_EQ(CheckedContours(border), c.after) << c.name;
        for (const Contour& contour : border) {
            EXPECT_EQ(contour.GetIsClosed(), c.staysClosed) << c.name;
            EXPECT_EQ(contour.GetPool()->GetLiveCount(), contour.GetNumPoints());
        }
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
    Add(border, {{-5, 0, 0}, {5, 0, 0}, {50, 0, 0}}, true);
    const auto before = CheckedContours(border);
    MFrame<float> flat = Slab(10.0F);
    flat.zAxis = flat.yAxis;
    for (const MFrame<float>& frame : {flat, Slab(0.0F)}) {
        ClipBorderInFrame<float, float, float>(border, frame);
        EXPECT_EQ(CheckedContours(border), before);
        EXPECT_TRUE(border.GetFirstContour()->GetIsClosed());
    }
    // No hang and no fault; what comes back is made of NaN.
    ClipBorderInFrame<float, float, float>(border, Slab(kNan));
    ClipBorderInFrame<float, float, float>(border, Slab(std::numeric_limits<float>::infinity()));
    CheckedContours(border);
}

TEST(TransformBorder, TakesThePayloadForTheThirdCoordinate)
{
    Border border;
    Add(border, {{1, 2, 3}, {4, 5, 6}}, false);
    Add(border, {{7, 8, 9}}, true);
    MMTransformMatrix matrix;
    matrix.MakeTransformation({10.0, 20.0, 30.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0},
                              {1.0, 0.0, 0.0});
    TransformBorder<float, float>(border, matrix);
    EXPECT_EQ(CheckedContours(border),
              (std::vector<Points>{{{13, 21, 32}, {16, 24, 35}}, {{19, 27, 38}}}));
}

} // namespace
