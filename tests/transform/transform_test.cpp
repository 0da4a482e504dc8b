#include "support/probe_transform.h"

#include <norvek/bounds/bounding_box.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_matrix.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace
{

using Probe = norvek_test::ProbeTransform;
using Point = MMPoint3d<double>;
using Points = std::vector<Point>;

// Every form, there and back again.
template <class T>
void ExpectAllForms(bool d, const MMPoint3d<T>& in, const MMPoint3d<T>& image)
{
    const Probe s(7);
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
    ExpectAllForms<float>(false, {4, 5, 6}, {5, 13, 4});
    ExpectAllForms<double>(false, {4, 5, 6}, {5, 13, 4});
    ExpectAllForms<double>(true, {4, 5, 6}, {5, 6, 4});
    const Probe probe(7);
    std::array<double, 3> wide{13.0, 1.0, 1.0};
    EXPECT_FALSE(probe.InverseTransform(wide.data(), false));
    EXPECT_EQ(wide, (std::array{1.0, 13.0, -6.0}));
    EXPECT_FALSE(probe.Transform(wide.data(), 13.0, 1.0, 1.0, false));
    EXPECT_EQ(wide, (std::array<double, 3>{}));
    // The two forms on points in double forward, so nothing is zeroed.
    Point point(13.0, 1.0, 2.0);
    EXPECT_FALSE(probe.Transform(point, false) || probe.Transform(point, point, false));
    EXPECT_EQ(point, Point(13.0, 1.0, 2.0));
    double matrix[16];
    EXPECT_TRUE(probe.MMTransform::ConvertToDouble16(matrix) && matrix[15] == 1.0);
}

TEST(Transform, VectorsStopOrGoOnAtAFailureAndTheOperatorThrows)
{
    Probe probe(7);
    const Points in = {{1, 1, 1}, {13, 1, 1}, {2, 2, 2}};
    Points points = {{5, 5, 5}, {6, 6, 6}};
    EXPECT_FALSE(probe.Transform(points, in));
    EXPECT_EQ(points, (Points{{1, 8, 1}, {6, 6, 6}, {0, 0, 0}}));
    points = in;
    EXPECT_TRUE(probe.Transform(points));
    EXPECT_EQ(points, (Points{{1, 8, 1}, {13, 1, 1}, {2, 9, 2}}));
    EXPECT_EQ(probe(MMPoint3d<float>(1, 1, 1), false), MMPoint3d<float>(1, 8, 1));
    try {
        probe(in[1], true);
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
    box.minX = box.maxX = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(MMTransformIdentity().TransformBoundingBox(box));
    EXPECT_EQ(box.maxX, -std::numeric_limits<float>::max());
    box.maxX = 13.0F;
    EXPECT_FALSE(Probe(7).TransformBoundingBox(box));
    EXPECT_TRUE(box.maxX == 13.0F && box.minZ == 3.0F);
}

} // namespace
