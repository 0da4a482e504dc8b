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

// Moves positions by (1, 2, 3) and fails for x = 13; backwards it then leaves a trace in `out`.
class Shift : public MMTransformIdentity
{
protected:
    bool _Transform(Point& out, const Point& in, bool isDirection) const override
    {
        if (in.x != 13.0)
            out = isDirection ? in : in + Point(1.0, 2.0, 3.0);
        return in.x != 13.0;
    }
    bool _InverseTransform(Point& out, const Point& in, bool isDirection) const override
    {
        out = isDirection ? in : in - Point(1.0, 2.0, 3.0);
        return in.x != 13.0;
    }
};

// Every form, there and back again.
template <class T>
void ExpectAllForms(bool d, const MMPoint3d<T>& in, const MMPoint3d<T>& image)
{
    const Shift s;
    MMPoint3d<T> p;
    MMPoint3d<T> q = in;
    T a[4][3] = {{in.x, in.y, in.z}, {}, {}, {in.x, in.y, in.z}};
    EXPECT_TRUE(s.Transform(a[0][0], a[0][1], a[0][2], d) && s.Transform(q, d) &&
                s.Transform(a[1], in.x, in.y, in.z, d) && s.Transform(a[2], a[3], d) &&
                s.Transform(a[3], d) && s.Transform(p, in, d) && p == image && q == image);
    for (const T(&c)[3] : a)
        EXPECT_EQ(MMPoint3d<T>(c[0], c[1], c[2]), image);
    EXPECT_TRUE(s.InverseTransform(a[0][0], a[0][1], a[0][2], d) && s.InverseTransform(q, d) &&
                s.InverseTransform(a[1], p.x, p.y, p.z, d) && s.InverseTransform(a[2], a[3], d) &&
                s.InverseTransform(a[3], d) && s.InverseTransform(p, p, d) && p == in && q == in);
    for (const T(&c)[3] : a)
        EXPECT_EQ(MMPoint3d<T>(c[0], c[1], c[2]), in);
}

TEST(Transform, ConvertingFormsAgreeAndWriteWhateverTheVerdict)
{
    ExpectAllForms<float>(false, {4, 5, 6}, {5, 7, 9});
    ExpectAllForms<double>(false, {4, 5, 6}, {5, 7, 9});
    ExpectAllForms<double>(true, {4, 5, 6}, {4, 5, 6});
    const Shift shift;
    double wide[3] = {13.0, 1.0, 1.0};
    EXPECT_FALSE(shift.InverseTransform(wide, false));
    EXPECT_EQ(Point(wide[0], wide[1], wide[2]), Point(12.0, -1.0, -2.0));
    MMPoint3d<float> narrow(13.0F, 1.0F, 1.0F);
    EXPECT_FALSE(shift.Transform(narrow, false));
    EXPECT_EQ(narrow, MMPoint3d<float>());
    // The two forms on points in double forward, so nothing is zeroed.
    Point in(13.0, 1.0, 2.0);
    Point out(9.0, 9.0, 9.0);
    EXPECT_FALSE(shift.Transform(in, false) || shift.Transform(out, in, false));
    EXPECT_TRUE(in == Point(13.0, 1.0, 2.0) && out == Point(9.0, 9.0, 9.0));
    double matrix[16];
    EXPECT_TRUE(shift.MMTransform::ConvertToDouble16(matrix) && matrix[15] == 1.0);
}

TEST(Transform, VectorsStopOrGoOnAtAFailureAndTheOperatorThrows)
{
    const std::unique_ptr<MMTransform> shift = std::make_unique<Shift>();
    const Points in = {{1, 1, 1}, {13, 1, 1}, {2, 2, 2}};
    Points out = {{5, 5, 5}, {6, 6, 6}};
    EXPECT_FALSE(shift->Transform(out, in));
    EXPECT_EQ(out, (Points{{2, 3, 4}, {6, 6, 6}, {0, 0, 0}}));
    Points points = in;
    EXPECT_TRUE(shift->Transform(points));
    EXPECT_EQ(points, (Points{{2, 3, 4}, {13, 1, 1}, {3, 4, 5}}));
    EXPECT_TRUE(shift->Transform(points, {}) && points.empty() && shift->Transform(points));

    EXPECT_EQ((*shift)(MMPoint3d<float>(1, 1, 1), false), MMPoint3d<float>(2, 3, 4));
    try {
        (*shift)(in[1], true);
        FAIL();
    } catch (const MMTransformException& exception) {
        EXPECT_EQ(exception.GetKind(), MMTransformException::TransformFailed);
    }
}

TEST(Transform, BoxIsThatOfTheTransformedCorners)
{
    MMTransformMatrix turn;
    turn.MakeRotationXYZ(0.0, 0.0, 45.0);
    turn.AddTranslation(Point(0.0, 0.0, 3.0));
    M3DBoundingBox<float> box;
    box.minX = box.minY = box.minZ = 0.0F;
    box.maxX = box.maxY = box.maxZ = 1.0F;
    EXPECT_TRUE(turn.TransformBoundingBox(box) && box.minZ == 3.0F && box.maxZ == 4.0F);
    EXPECT_NEAR(box.minX, -0.70711F, 1e-5F);
    EXPECT_NEAR(box.maxX, 0.70711F, 1e-5F);
    EXPECT_NEAR(box.minY, 0.0F, 1e-5F);
    EXPECT_NEAR(box.maxY, 1.41421F, 1e-5F);

    // A NaN coordinate takes no part; a failing corner leaves the box alone.
    const float maxY = box.maxY;
    box.minX = box.maxX = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(MMTransformIdentity().TransformBoundingBox(box));
    EXPECT_TRUE(box.maxX == -std::numeric_limits<float>::max() && box.maxY == maxY);
    box.maxX = 13.0F;
    EXPECT_FALSE(Shift().TransformBoundingBox(box));
    EXPECT_TRUE(box.maxX == 13.0F && box.maxY == maxY);
}

} // namespace
