#include "border/border_support.h"

#include <norvek/border/border_algorithms.h>

#include <cmath>
#include <limits>

namespace
{

using norvek_test::CheckedContours;

using Border = M3dBorder<float, float>;
using Contour = Border::ContourType;

// The second frame turns the axes into one another: exact, and no axis stays in its place. The
// border is transformed there and back.
MFrame<float> Slab(float length, bool isTurned = false)
{
    if (isTurned)
        return {{3, 1, 2}, {0, length, 0}, {0, 0, 5}, {2, 0, 0}};
    return {{0, 0, 0}, {length, 0, 0}, {0, 1, 0}, {0, 0, 1}};
}

using Row = std::vector<float>;

// A contour along the line (x, -x, 2 x) of the frame, on which crossings lie as well.
void Add(Border& border, const Row& xs, bool isClosed, bool isTurned = false)
{
    Contour& contour = *border.AddContourAtEnd();
    for (const float x : xs) {
        if (isTurned)
            contour.InsertAtEnd(3 + 2 * x, 1 + x, 2 - x);
        else
            contour.InsertAtEnd(x, -x, 2 * x);
    }
    contour.SetIsClosed(isClosed);
}

std::vector<Row> Rows(const Border& border, bool isTurned = false)
{
    std::vector<Row> rows;
    for (const auto& places : CheckedContours(border)) {
        rows.emplace_back();
        for (const auto& [px, py, pz] : places) {
            const float x = isTurned ? py - 1 : px;
            EXPECT_EQ(isTurned ? 2 - pz : -py, x);
            EXPECT_EQ(isTurned ? px - 3 : pz, 2 * x);
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
    for (const bool isTurned : {false, true}) {
        for (const Case& c : cases) {
            Border border;
            Add(border, c.before, c.isClosed, isTurned);
            ClipBorderInFrame<float, float, float>(border, Slab(10.0F, isTurned));
            EXPECT_EQ(Rows(border, isTurned), c.after) << ::testing::PrintToString(c.before);
            for (const Contour& contour : border)
                EXPECT_EQ(contour.GetIsClosed(), c.isClosed && c.after[0] == c.before);
        }
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

} // namespace
