#include <norvek/bounds/bounding_box_nd.h>

#include <gtest/gtest.h>

#include <limits>

namespace
{

using Box = MBoundingBox3DDouble;
using Vector = MMVector<double, 3>;
using Limit = eBoundingBoxLimitType;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Box MakeBox(const Vector& min, const Vector& max)
{
    Box box;
    box.Set(min, max);
    return box;
}

TEST(BoundingBoxND, MeasuresItself)
{
    const Box box = MakeBox({0, 0, 0}, {2, 6, 3});
    EXPECT_TRUE(box.GetArea() == 72.0 && box.GetDiagonalLength() == 7.0);
    EXPECT_TRUE(box.GetMaximumAxis() == 1 && box.GetMinimumAxis() == 0);
    EXPECT_EQ(box.GetCenter(), (Vector{1.0, 3.0, 1.5}));
    const Box cube = MakeBox({5, 5, 5}, {6, 6, 6});
    EXPECT_TRUE(cube.GetMaximumAxis() == 0 && cube.GetMinimumAxis() == 0); // ties
    Box empty;
    EXPECT_EQ(empty.GetMaximumLength(), -1.0);
    empty.SetInfite();
    EXPECT_TRUE(empty.GetHasPoint({1e308, -1e308, 0.0}));
}

TEST(BoundingBoxND, GrowsByPointsAndBoxesAndScales)
{
    Box box;
    box.AddPoint(1.0, 2.0, 3.0);
    box.AddPoint(MMPoint3d<double>(-1.0, kNaN, 4.0));
    box.AddPoint(Vector{0.0, 5.0, 0.0}); // the overload of the base is not hidden
    box.Union(Box());
    EXPECT_EQ(box, MakeBox({-1, 2, 0}, {1, 5, 4}));
    box.Union(MakeBox({0, 1, 2}, {3, 4, 5}));
    EXPECT_EQ(box, MakeBox({-1, 1, 0}, {3, 5, 5}));
    box.Scale(2.0, true);
    EXPECT_EQ(box, MakeBox({-3, -1, -2.5}, {5, 7, 7.5}));
    box.Scale(0.5, false);
    EXPECT_EQ(box, MakeBox({-1.5, -0.5, -1.25}, {2.5, 3.5, 3.75}));
}

TEST(BoundingBoxND, TellsTheFaceThatIsClose)
{
    const Box box = MakeBox({0, 0, 0}, {10, 10, 10});
    short int axis = 7;
    Limit type = Limit::UpperLimit;
    EXPECT_FALSE(box.GetIsCloseToBoundary(axis, type, {5, 9, 1}, 1.0)); // strict
    EXPECT_FALSE(box.GetIsCloseToBoundary(axis, type, {5, 5, 11}, 100.0) || axis != 7);
    // The lower axis wins, though the face on z is closer.
    EXPECT_TRUE(box.GetIsCloseToBoundary(axis, type, {5, 9.5, 0.1}, 1.0));
    EXPECT_TRUE(axis == 1 && type == Limit::UpperLimit);
    EXPECT_TRUE(box.GetIsCloseToBoundary(axis, type, {5, 5, 5}, 6.0));
    EXPECT_TRUE(axis == 0 && type == Limit::LowerLimit);
    EXPECT_TRUE(box.GetIsCloseToSpecificBoundary(2, Limit::UpperLimit, {0, 0, 10.5}, 0.6));
    EXPECT_FALSE(box.GetIsCloseToSpecificBoundary(2, Limit::LowerLimit, {0, 0, 0.5}, 0.5));

    EXPECT_TRUE(box.GetHasPointWithTolerance({kNaN, -0.5, 10.5}, 0.5));
    EXPECT_FALSE(box.GetHasPointWithTolerance({5, 5, 11}, 0.5) ||
                 box.GetHasPointWithTolerance({-1, 5, 5}, 0.5));
    EXPECT_TRUE(box.GetHasPoint({0, 10, 5}) && !box.GetHasPoint({kNaN, 5, 5}));
    EXPECT_TRUE(box.CheckIntersection(MakeBox({10, 10, 10}, {11, 11, 11})));
    EXPECT_TRUE(box.CheckIntersection(MakeBox({-1, -1, -1}, {0, 0, 0})));
    EXPECT_FALSE(box.CheckIntersection(MakeBox({10.1, 0, 0}, {11, 1, 1})) ||
                 box.CheckIntersection(MakeBox({0, 0, -2}, {1, 1, -1})));
}

TEST(BoundingBoxND, FitsIntoTheIntegerRange)
{
    constexpr double limit = Box::kLongLimit;
    const struct
    {
        Box box;
        double initialScale;
        bool result;
        MMPoint3d<double> offset;
        double scale;
    } cases[] = {
        {MakeBox({-limit, 0, 0}, {limit, 1, 1}), 1.0, false, {}, 1.0},
        {MakeBox({1e9, 0, -8}, {1e9 + 10, 1, -3}), 1.0, true, {-1e9 - 5, -1, 6}, 1.0},
        // One oversized limit divides twice; a second one starts from there and divides again.
        {MakeBox({0, 0, 0}, {1e12, 1, 1}), 1.0, true, {}, 1.0 / 1000.0 / 1000.0},
        {MakeBox({-1e9, 0, 0}, {1e9, 1, 1}), 1.0, true, {}, 1.0 / 1000.0 / 1000.0},
        {MakeBox({0, 0, 0}, {1e6, 1, 1}), 1000.0, true, {}, 1.0},
    };
    for (const auto& c : cases) {
        MMPoint3d<double> offset(9, 9, 9);
        double scale = -1.0;
        EXPECT_EQ(c.box.FitInLong(offset, scale, c.initialScale), c.result);
        EXPECT_TRUE(offset == c.offset && scale == c.scale) << offset << scale;
    }
    EXPECT_TRUE(cases[0].box.CheckLongOverflow());
    EXPECT_FALSE(MakeBox({kNaN, 0, 0}, {1, 1, 1}).CheckLongOverflow());
    // An infinite limit ends after a hundred divisions.
    const Box endless = MakeBox({0, 0, 0}, {kInfinity, 1, 1});
    EXPECT_NEAR(endless.CheckLongOverflow(1.0, limit) * 1e300, 1.0, 1e-9);
}

} // namespace
