#include "support/random.h"

#include <norvek/bounds/bounding_box_nd.h>

#include <gtest/gtest.h>

#include <limits>

namespace
{

using Vector = MMVector<double, 3>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

MBoundingBox3DDouble MakeBox(double minX, double minY, double minZ, double maxX, double maxY,
                             double maxZ)
{
    MBoundingBox3DDouble box;
    box.Set({minX, minY, minZ}, {maxX, maxY, maxZ});
    return box;
}

TEST(BoundingBoxND, MeasuresItself)
{
    const auto box = MakeBox(0, 0, 0, 2, 3, 6);
    EXPECT_EQ(box.GetArea(), 72.0);
    EXPECT_EQ(box.GetDiagonalLength(), 7.0);
    EXPECT_EQ(box.GetMaximumAxis(), 2);
    EXPECT_EQ(box.GetMinimumAxis(), 0);
    EXPECT_EQ(box.GetCenter(), (Vector{1.0, 1.5, 3.0}));
    EXPECT_EQ(MakeBox(0, 0, 0, 1, 1, 1).GetMaximumAxis(), 0);
    EXPECT_EQ(MakeBox(0, 0, 0, 1, 1, 1).GetMinimumAxis(), 0);
    EXPECT_EQ(MakeBox(2, 0, 0, 1, 5, 5).GetLength(0), -1.0);
    MBoundingBox3DDouble empty;
    EXPECT_EQ(empty.GetMaximumLength(), -1.0);
    empty.SetInfite();
    EXPECT_TRUE(empty.GetHasPoint({1e308, -1e308, 0.0}));
}

TEST(BoundingBoxND, GrowsByPointsAndBoxes)
{
    MBoundingBox3DDouble box;
    box.AddPoint(1.0, 2.0, 3.0);
    box.AddPoint(MMPoint3d<double>(-1.0, kNaN, 4.0));
    box.AddPoint(Vector{0.0, 5.0, 0.0}); // the overload of the base is not hidden
    EXPECT_EQ(box.GetCornerMin(), (Vector{-1.0, 2.0, 0.0}));
    EXPECT_EQ(box.GetCornerMax(), (Vector{1.0, 5.0, 4.0}));
    const MBoundingBox3DDouble before = box;
    box.Union(MBoundingBox3DDouble());
    EXPECT_EQ(box, before);
}

TEST(BoundingBoxND, TellsTheFaceThatIsClose)
{
    const auto box = MakeBox(0, 0, 0, 10, 10, 10);
    short int axis = 7;
    auto type = eBoundingBoxLimitType::UpperLimit;
    EXPECT_FALSE(box.GetIsCloseToBoundary(axis, type, {5, 5, 1}, 1.0)); // strict
    EXPECT_FALSE(box.GetIsCloseToBoundary(axis, type, {5, 5, 11}, 100.0));
    EXPECT_EQ(axis, 7);
    EXPECT_TRUE(box.GetIsCloseToBoundary(axis, type, {5, 9.5, 0.1}, 1.0));
    EXPECT_EQ(axis, 1); // the lower axis wins, though the face on z is closer
    EXPECT_EQ(type, eBoundingBoxLimitType::UpperLimit);
    EXPECT_TRUE(box.GetIsCloseToBoundary(axis, type, {5, 5, 5}, 6.0));
    EXPECT_EQ(axis, 0);
    EXPECT_EQ(type, eBoundingBoxLimitType::LowerLimit);
    EXPECT_TRUE(
        box.GetIsCloseToSpecificBoundary(2, eBoundingBoxLimitType::UpperLimit, {0, 0, 10.5}, 0.6));
    EXPECT_TRUE(box.GetHasPointWithTolerance({kNaN, 5, 10.5}, 0.5));
    EXPECT_FALSE(box.GetHasPoint({kNaN, 5, 5}));
    EXPECT_TRUE(box.CheckIntersection(MakeBox(10, 10, 10, 11, 11, 11)));
    EXPECT_FALSE(box.CheckIntersection(MakeBox(10.1, 0, 0, 11, 1, 1)));
}

TEST(BoundingBoxND, ScalesAboutTheOriginAndTheCentre)
{
    auto box = MakeBox(1, 2, 3, 3, 4, 5);
    box.Scale(2.0, true);
    EXPECT_EQ(box, MakeBox(0, 1, 2, 4, 5, 6));
    box.Scale(0.5, false);
    EXPECT_EQ(box, MakeBox(0, 0.5, 1, 2, 2.5, 3));
}

TEST(BoundingBoxND, FitsIntoTheIntegerRange)
{
    struct Case
    {
        MBoundingBox3DDouble box;
        double initialScale;
        bool result;
        MMPoint3d<double> offset;
        double scale;
    };
    const double limit = MBoundingBox3DDouble::kLongLimit;
    const Case cases[] = {
        {MakeBox(-limit, 0, 0, limit, 1, 1), 1.0, false, {}, 1.0},
        {MakeBox(1e9, 0, 0, 1e9 + 10, 1, 3), 1.0, true, {-1e9 - 5, -1, -2}, 1.0},
        // One oversized limit divides twice; a second one starts from there and divides again.
        {MakeBox(0, 0, 0, 1e12, 1, 1), 1.0, true, {}, 1.0 / 1000.0 / 1000.0},
        {MakeBox(-1e9, 0, 0, 1e9, 1, 1), 1.0, true, {}, 1.0 / 1000.0 / 1000.0},
        {MakeBox(0, 0, 0, 1e6, 1, 1), 1000.0, true, {}, 1.0},
    };
    for (const Case& c : cases) {
        MMPoint3d<double> offset(9, 9, 9);
        double scale = -1.0;
        EXPECT_EQ(c.box.FitInLong(offset, scale, c.initialScale), c.result);
        EXPECT_EQ(offset, c.offset);
        EXPECT_EQ(scale, c.scale);
    }
    EXPECT_TRUE(cases[0].box.CheckLongOverflow());
    EXPECT_FALSE(MakeBox(kNaN, 0, 0, 1, 1, 1).CheckLongOverflow());
    // An infinite limit ends after a hundred divisions.
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_NEAR(MakeBox(0, 0, 0, infinity, 1, 1).CheckLongOverflow(1.0, limit) * 1e300, 1.0, 1e-9);
}

} // namespace
