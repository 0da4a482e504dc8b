#include "support/random.h"

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

// Adds (1, 2, 3) to positions, also backwards; fails for x = 13, leaving a trace in `out` when
// asked to.
class Shift : public MMTransform
{
public:
    bool writeOnFailure = false;

    [[nodiscard]] Shift* Clone() const override
    {
        return new Shift(*this);
    }
    bool ConvertToFloat16(float* matrix) const override
    {
        matrix[0] = 0.1F;
        return false;
    }
    bool Invert() override
    {
        return false;
    }
    [[nodiscard]] bool IsIdentity() const override
    {
        return false;
    }

protected:
    bool _Transform(Point& out, const Point& in, bool isDirection) const override
    {
        if (in.x == 13.0) {
            if (writeOnFailure)
                out = {7.0, 7.0, 7.0};
            return false;
        }
        out = isDirection ? in : in + Point(1.0, 2.0, 3.0);
        return true;
    }
    bool _InverseTransform(Point& out, const Point& in, bool isDirection) const override
    {
        out = isDirection ? in : in - Point(1.0, 2.0, 3.0);
        return in.x != 13.0;
    }
};

// Runs every form of one precision, forward and back, over the same point.
template <class T>
void ExpectAllForms(const MMTransform& transform, bool isDirection, const MMPoint3d<T>& in,
                    const MMPoint3d<T>& expected, bool verdict)
{
    const auto check = [&](T x, T y, T z, bool result) {
        EXPECT_EQ(MMPoint3d<T>(x, y, z), expected);
        EXPECT_EQ(result, verdict);
    };
    T x = in.x;
    T y = in.y;
    T z = in.z;
    const bool done = transform.Transform(x, y, z, isDirection);
    check(x, y, z, done);
    T a[3] = {in.x, in.y, in.z};
    T out[3] = {};
    const bool byValue = transform.Transform(out, in.x, in.y, in.z, isDirection);
    check(out[0], out[1], out[2], byValue);
    const bool fromArray = transform.Transform(out, a, isDirection);
    check(out[0], out[1], out[2], fromArray);
    const bool inPlace = transform.Transform(a, isDirection);
    check(a[0], a[1], a[2], inPlace);
    if (!verdict)
        return;
    MMPoint3d<T> point = in;
    const bool inPoint = transform.Transform(point, isDirection);
    check(point.x, point.y, point.z, inPoint);
}

TEST(Transform, ConvertingFormsAgreeAndWriteZerosAfterAFailure)
{
    Shift shift;
    float x = 1.0F;
    float y = 2.0F;
    float z = 3.0F;
    EXPECT_TRUE(shift.Transform(x, y, z, false));
    EXPECT_EQ(z, 6.0F);
    EXPECT_TRUE(shift.InverseTransform(x, y, z, false));
    EXPECT_TRUE(shift.InverseTransform(x, y, z, true));
    EXPECT_EQ(z, 3.0F);

    for (const bool isDirection : {false, true}) {
        ExpectAllForms<float>(shift, isDirection, {13.0F, 1.0F, 1.0F}, {}, false);
        ExpectAllForms<double>(shift, isDirection, {13.0, 1.0, 1.0}, {}, false);
    }
    MMTransformIdentity identity;
    ExpectAllForms<float>(identity, false, {4.0F, 5.0F, 6.0F}, {4.0F, 5.0F, 6.0F}, true);
    ExpectAllForms<double>(identity, true, {4.0, 5.0, 6.0}, {4.0, 5.0, 6.0}, true);

    // What the transform left in the result is written back, whatever the verdict.
    shift.writeOnFailure = true;
    MMPoint3d<float> narrow(13.0F, 0.0F, 0.0F);
    EXPECT_FALSE(shift.Transform(narrow, false));
    EXPECT_EQ(narrow, MMPoint3d<float>(7.0F, 7.0F, 7.0F));
    double back[3] = {13.0, 1.0, 1.0};
    EXPECT_FALSE(shift.InverseTransform(back, false));
    EXPECT_EQ(back[1], -1.0);
    // The two forms on points in double forward, so nothing is zeroed.
    shift.writeOnFailure = false;
    Point wide(13.0, 1.0, 2.0);
    EXPECT_FALSE(shift.Transform(wide, false));
    EXPECT_EQ(wide, Point(13.0, 1.0, 2.0));
    Point out(9.0, 9.0, 9.0);
    EXPECT_FALSE(shift.Transform(out, wide, false));
    EXPECT_EQ(out, Point(9.0, 9.0, 9.0));
}

TEST(Transform, VectorsStopOrGoOnAtAFailure)
{
    const Shift shift;
    const std::vector<Point> in = {{1, 1, 1}, {13, 1, 1}, {2, 2, 2}};
    std::vector<Point> out = {{5, 5, 5}, {6, 6, 6}};
    EXPECT_FALSE(shift.Transform(out, in));
    EXPECT_EQ(out, (std::vector<Point>{{2, 3, 4}, {6, 6, 6}, {0, 0, 0}}));
    std::vector<Point> points = in;
    EXPECT_TRUE(shift.Transform(points));
    EXPECT_EQ(points, (std::vector<Point>{{2, 3, 4}, {13, 1, 1}, {3, 4, 5}}));
    std::vector<Point> none;
    EXPECT_TRUE(shift.Transform(none));
    EXPECT_TRUE(shift.Transform(points, none));
    EXPECT_TRUE(points.empty());
}

TEST(Transform, OperatorThrowsWhenThePointHasNoImage)
{
    Shift shift;
    EXPECT_EQ(shift(MMPoint3d<float>(1.0F, 1.0F, 1.0F), false), MMPoint3d<float>(2.0F, 3.0F, 4.0F));
    try {
        shift(Point(13.0, 0.0, 0.0), true);
        FAIL();
    } catch (const MMTransformException& exception) {
        EXPECT_EQ(exception.GetKind(), MMTransformException::TransformFailed);
        EXPECT_NE(std::string(exception.what()), "");
    }
    double matrix[16];
    EXPECT_FALSE(shift.ConvertToDouble16(matrix));
    EXPECT_EQ(matrix[0], static_cast<double>(0.1F));
    EXPECT_EQ(matrix[15], 0.0);
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
    EXPECT_EQ(box.maxZ, 1.0F);

    // A NaN coordinate takes no part; a failing corner leaves the box alone.
    constexpr float highest = std::numeric_limits<float>::max();
    M3DBoundingBox<float> spoilt = box;
    spoilt.minX = spoilt.maxX = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(MMTransformIdentity().TransformBoundingBox(spoilt));
    EXPECT_EQ(spoilt.minX, highest);
    EXPECT_EQ(spoilt.maxX, -highest);
    EXPECT_EQ(spoilt.maxY, box.maxY);
    box.maxX = 13.0F;
    const float before = box.minX;
    EXPECT_FALSE(Shift().TransformBoundingBox(box));
    EXPECT_EQ(box.minX, before);
}

TEST(Transform, ClonesKeepTheirKindThroughTheBase)
{
    MMTransformMatrix matrix;
    matrix.MakeTranslation({1.0, 0.0, 0.0});
    const MMTransform* const transforms[] = {&matrix};
    const std::unique_ptr<MMTransform> clone(transforms[0]->Clone());
    EXPECT_EQ((*clone)(Point(1.0, 1.0, 1.0), false), Point(2.0, 1.0, 1.0));
    EXPECT_FALSE(clone->IsIdentity());
    MMTransformIdentity identity;
    const std::unique_ptr<MMTransform> same(identity.Clone());
    EXPECT_TRUE(same->Invert() && same->IsIdentity());
    double unit[16];
    EXPECT_TRUE(same->ConvertToDouble16(unit));
    EXPECT_EQ(unit[10] + unit[11], 1.0);
}

} // namespace
