#include <norvek/bounds/bounding_box.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_identity.h>
#include <norvek/transform/transform_matrix.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace
{

using Point = MMPoint3d<double>;
using Points = std::vector<Point>;

// Moves positions by (1, 2, 3); fails for x = 13, leaving a trace in `out` when told to.
class Shift : public MMTransformIdentity
{
public:
    bool writeOnFailure = false;

protected:
    bool _Transform(Point& out, const Point& in, bool isDirection) const override
    {
        if (in.x != 13.0)
            out = isDirection ? in : in + Point(1.0, 2.0, 3.0);
        else if (writeOnFailure)
            out = {7.0, 7.0, 7.0};
        return in.x != 13.0;
    }
    bool _InverseTransform(Point& out, const Point& in, bool isDirection) const override
    {
        out = isDirection ? in : in - Point(1.0, 2.0, 3.0);
        return in.x != 13.0;
    }
};

// Every form that converts, over the same point.
template <class T>
void ExpectAllForms(const MMTransform& transform, const MMPoint3d<T>& in, bool isDirection,
                    const MMPoint3d<T>& expected, bool verdict)
{
    T a[4][3] = {{in.x, in.y, in.z}, {}, {}, {in.x, in.y, in.z}};
    EXPECT_EQ(transform.Transform(a[0][0], a[0][1], a[0][2], isDirection), verdict);
    EXPECT_EQ(transform.Transform(a[1], in.x, in.y, in.z, isDirection), verdict);
    EXPECT_EQ(transform.Transform(a[2], a[3], isDirection), verdict);
    EXPECT_EQ(transform.Transform(a[3], isDirection), verdict);
    for (const T(&point)[3] : a)
        EXPECT_EQ(MMPoint3d<T>(point[0], point[1], point[2]), expected);
}

TEST(Transform, ConvertingFormsAgreeAndWriteZerosAfterAFailure)
{
    Shift shift;
    for (const bool isDirection : {false, true}) {
        const float add = isDirection ? 0.0F : 1.0F;
        ExpectAllForms<float>(shift, {4, 5, 6}, isDirection, {4 + add, 5 + 2 * add, 6 + 3 * add},
                              true);
        ExpectAllForms<float>(shift, {13, 1, 1}, isDirection, {}, false);
        ExpectAllForms<double>(shift, {13, 1, 1}, isDirection, {}, false);
    }
    // What a failing transform left in the result is written back.
    double back[3] = {13.0, 1.0, 1.0};
    EXPECT_FALSE(shift.InverseTransform(back, false));
    EXPECT_EQ(back[1], -1.0);
    shift.writeOnFailure = true;
    MMPoint3d<float> narrow(13.0F, 0.0F, 0.0F);
    EXPECT_FALSE(shift.Transform(narrow, false));
    EXPECT_EQ(narrow, MMPoint3d<float>(7.0F, 7.0F, 7.0F));
    // The two forms on points in double forward, so nothing is zeroed.
    shift.writeOnFailure = false;
    Point wide(13.0, 1.0, 2.0);
    Point out(9.0, 9.0, 9.0);
    EXPECT_FALSE(shift.Transform(wide, false) || shift.Transform(out, wide, false));
    EXPECT_EQ(wide, Point(13.0, 1.0, 2.0));
    EXPECT_EQ(out, Point(9.0, 9.0, 9.0));
}

TEST(Transform, VectorsStopOrGoOnAtAFailure)
{
    const Shift shift;
    const Points in = {{1, 1, 1}, {13, 1, 1}, {2, 2, 2}};
    Points out = {{5, 5, 5}, {6, 6, 6}};
    EXPECT_FALSE(shift.Transform(out, in));
    EXPECT_EQ(out, (Points{{2, 3, 4}, {6, 6, 6}, {0, 0, 0}}));
    Points points = in;
    EXPECT_TRUE(shift.Transform(points));
    EXPECT_EQ(points, (Points{{2, 3, 4}, {13, 1, 1}, {3, 4, 5}}));
    EXPECT_TRUE(shift.Transform(points, {}));
    EXPECT_TRUE(points.empty() && shift.Transform(points));
}

TEST(Transform, OperatorThrowsWhenThePointHasNoImage)
{
    const std::unique_ptr<MMTransform> shift = std::make_unique<Shift>();
    EXPECT_EQ((*shift)(MMPoint3d<float>(1, 1, 1), false), MMPoint3d<float>(2, 3, 4));
    try {
        (*shift)(Point(13.0, 0.0, 0.0), true);
        FAIL();
    } catch (const MMTransformException& exception) {
        EXPECT_EQ(exception.GetKind(), MMTransformException::TransformFailed);
    }
}

TEST(Transform, BoxIsThatOfTheTransformedCorners)
{
    MMTransformMatrix turn;
    turn.MakeRotationXYZ(0.0, 0.0, 45.0);
    M3DBoundingBox<float> box;
    box.minX = box.minY = box.minZ = 0.0F;
    box.maxX = box.maxY = box.maxZ = 1.0F;
    EXPECT_TRUE(turn.TransformBoundingBox(box));
    EXPECT_NEAR(box.minX, -0.70711F, 1e-5F);
    EXPECT_NEAR(box.maxX, 0.70711F, 1e-5F);
    EXPECT_NEAR(box.maxY, 1.41421F, 1e-5F);

    // A NaN coordinate takes no part; a failing corner leaves the box alone.
    M3DBoundingBox<float> spoilt = box;
    spoilt.minX = spoilt.maxX = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(MMTransformIdentity().TransformBoundingBox(spoilt));
    EXPECT_EQ(spoilt.maxX, -std::numeric_limits<float>::max());
    EXPECT_EQ(spoilt.maxY, box.maxY);
    box.maxX = 13.0F;
    EXPECT_FALSE(Shift().TransformBoundingBox(box));
    EXPECT_EQ(box.maxX, 13.0F);
}

} // namespace
