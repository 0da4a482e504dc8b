#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/transform_exception.h>

#include <Eigen/LU>
#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace
{

using namespace norvek_test;
using Class = MMTransformMatrixClass;
using Point = MMPoint3d<double>;

// Shows the cached kind; optionally claims to be no identity, or an identity.
struct Shown : MMTransformMatrix
{
    using MMTransformMatrix::_class;
    int claim = -1;

    [[nodiscard]] bool IsIdentity() const override
    {
        return claim < 0 ? MMTransformMatrix::IsIdentity() : claim != 0;
    }
};

MMTransformMatrix RandomMatrix(Random& random)
{
    std::vector<double> rows(16);
    for (double& element : rows)
        element = random.Uniform(-1.0, 1.0);
    return Load(rows);
}

TEST(TransformMatrixClass, FollowsTheTableAndItsOrder)
{
    const std::pair<std::vector<double>, Class> cases[] = {
        {{1, 0, 0, 0, 0, 1, -0.0, 0, 0, 0, 1, 0}, Class::Identity},
        {{1, 0, 0, NAN, 0, 1, 2e-15, 0, 0, 0, 1, 0}, Class::Translation},
        {{1 + 2e-15, 0, 0, 0, 0, 1 + 2e-15, 0, 0, 0, 0, 1, 0}, Class::Translation},
        {{1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0, 1e-15, 0, 0, 1}, Class::Translation},
        {{1 + 3e-15, 0, 0, 0, 0, 1 + 3e-15, 0, 0, 0, 0, 1 + 3e-15, 0}, Class::Scale1D},
        {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, Class::Scale1D},
        {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0}, Class::Scale3D},
        {{NAN, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}, Class::Scale3D},
        {{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2}, Class::General},
        {{0, -1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6}, Class::OrthoNormal},
        {{0, 1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6}, Class::OrthoNormal},
        {{0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1e-300, 1}, Class::General},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 0}, Class::OrthoGonal},
        {{1e-8, 1e-8, 0, 0, 0, 1e-9, 0, 0, 0, 0, 0, 0}, Class::OrthoGonal},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 1e-300}, Class::General},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3 + 1e-15, 0}, Class::General},
        {{1, 0, 0, 0, 1e-9, 1, 0, 0, 0, 0, 1, 0}, Class::General},
        {{0, -1, 0, 0, NAN, 0, 0, 0, 0, 0, 1, 0}, Class::General},
    };
    for (const auto& [rows, expected] : cases)
        EXPECT_EQ(Load<Shown>(rows)._class, expected) << Elements(Load(rows));
    EXPECT_TRUE(Load({1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0, 1e-15, 0, 0, 1}).IsHomogeneous());
    const MMTransformMatrix scale = Load({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0});
    EXPECT_TRUE(scale.IsOrthoGonal() && scale.IsScale3D() && !scale.IsOrthoNormal());
    EXPECT_FALSE(Load({2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}).IsOrthoGonal());
}

// Every kind against the law M M^-1 = 1, whatever the inverse held before; and another library.
TEST(TransformMatrixInverse, UndoesEveryKindAndProducts)
{
    Random random(311);
    const std::vector<double> kinds[] = {
        {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
        {1, 0, 0, 4, 0, 1, 0, 5, 0, 0, 1, 6},
        {0, -1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6},
        {0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 0},
        {2, 0, 0, 0, 0, -3, 0, 0, 0, 0, 1e-9, 0},
        {1e-18, 1, 0, 0, 1, 0, 0, 5, 0, 0, 0, 1, 0, 0, -1, 1e-18},
    };
    for (std::size_t i = 0; i < 300; ++i) {
        MMTransformMatrix b = RandomMatrix(random);
        MMTransformMatrix a = i < 6 ? Load(kinds[i], b) : RandomMatrix(random);
        const Matrix4 m = Elements(a);
        EXPECT_TRUE(a.IsInversible() && Elements(a, true).isApprox(m.inverse(), 1e-9));
        EXPECT_TRUE(i >= 6 || InverseError(a) < 1e-15) << m;
        const MMTransformMatrix product = a * b;
        EXPECT_TRUE(Elements(product).isApprox(m * Elements(b), 1e-14));
        EXPECT_TRUE(Elements(product, true).isApprox(Elements(b, true) * Elements(a, true), 1e-13));
        EXPECT_EQ(Elements(b.PreMultiply(a), true), Elements(product, true));
        // The operand may be the matrix.
        const Matrix4 square = Elements(a * a);
        MMTransformMatrix other = a;
        EXPECT_EQ(Elements(other *= other), square);
        EXPECT_EQ(Elements((other = a).PreMultiply(other)), square);
        EXPECT_TRUE(a.Invert() && Elements(a, true) == m);
        a.Transpose();
        EXPECT_TRUE(Elements(a, true).isApprox(m.transpose(), 1e-9));
    }
}

// Singular matrices say so and keep the old inverse.
TEST(TransformMatrixInverse, SingularMatricesHaveNone)
{
    MMTransformMatrix matrix = Load({1, 2, 3, 4, 0, 0, 0, 0, 7, 8, 9, 1});
    const Matrix4 before = Elements(matrix);
    EXPECT_FALSE(matrix.IsInversible() || matrix.ComputeInverse() || matrix.Invert());
    EXPECT_TRUE(Elements(matrix) == before && Elements(matrix, true) == Matrix4::Identity());
    Point out(1.0, 2.0, 3.0);
    EXPECT_FALSE(matrix.InverseTransform(out, Point(), false));
    EXPECT_EQ(out, Point(1.0, 2.0, 3.0));
    EXPECT_FALSE(Load({1, 0, 0, 0, 0, -0.0, 0, 0, 0, 0, 2, 0}).IsInversible());
    // A product asks the left operand only.
    const MMTransformMatrix singular = Load({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    matrix = MMTransformMatrix() * singular;
    EXPECT_TRUE(matrix.IsInversible() && !matrix.ComputeInverse());
    EXPECT_FALSE((singular * MMTransformMatrix()).IsInversible());
}

// The stale entries are kept on purpose.
TEST(TransformMatrixInverse, UniformScaleKeepsTheOldTranslationOfTheInverse)
{
    MMTransformMatrix matrix;
    matrix.MakeTranslation({5.0, 6.0, 7.0});
    matrix.MakeScale1D(2.0);
    EXPECT_EQ(matrix.GetScale(), 2.0);
    Point point(2.0, 4.0, 6.0);
    EXPECT_TRUE(matrix.InverseTransform(point, false));
    EXPECT_EQ(point, Point(1.0 - 5.0, 2.0 - 6.0, 3.0 - 7.0));
    matrix.AddTranslation(point);
    EXPECT_THROW(static_cast<void>(matrix.GetScale()), MMTransformException);
}

TEST(TransformMatrixPoints, HomogeneousCoordinateDividesAndThrows)
{
    MMTransformMatrix matrix = Load({1, 0, 0, 2, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0});
    EXPECT_EQ(matrix(Point(2.0, 4.0, 2.0), true), Point(1.0, 2.0, 1.0));
    std::vector<Point> points = {{2, 4, 2}, {1, 1, 0}, {2, 4, 2}};
    EXPECT_THROW(matrix.Transform(points), MMTransformException);
    EXPECT_EQ(points, (std::vector<Point>{{2, 2, 1}, {1, 1, 0}, {2, 4, 2}}));
    // An affine matrix whose flag was set by hand has w = 0 for every direction, w = 1 otherwise.
    matrix.MakeTranslation({5.0, 0.0, 0.0});
    matrix.SetHomogeneous(true);
    EXPECT_EQ(matrix(Point(1.0, 2.0, 3.0), false), Point(6.0, 2.0, 3.0));
    EXPECT_THROW(matrix.Transform(points[1], true), MMTransformException);
}

// The cached kind decides about the identity, and a derived class that answers for itself is
// obeyed, for single points and for vectors alike.
TEST(TransformMatrixPoints, IdentityIsAskedForAndNotRecomputed)
{
    const std::vector<Point> points = {{1, 2, 3}};
    const std::vector<Point> moved = {{6, 2, 3}};
    std::vector<Point> out(4);
    Shown shown;
    shown.SetElement(0, 3, 5.0, false);
    const MMTransformMatrix plain = shown;
    EXPECT_TRUE(plain.Transform(out, points) && out == points);
    EXPECT_TRUE(plain.Transform(out) && out == points);
    shown.claim = 0;
    EXPECT_TRUE(shown.Transform(out, points) && out == moved);
    shown.VerifyAndSetClass();
    shown.claim = 1;
    EXPECT_TRUE(shown.Transform(out) && out == moved);
    shown.claim = -1;
    EXPECT_TRUE(MMTransformMatrix(shown).Transform(out) && out[0].x == 11.0);
}

TEST(TransformMatrixTranslation, AddsFillsInAndScales)
{
    const float narrow[3] = {1.0F, 2.0F, 3.0F};
    double translation[3] = {4.0, 5.0, 6.0};
    MMTransformMatrix matrix;
    matrix.MakeRotationXYZ(10.0, 20.0, 30.0);
    matrix.AddTranslation(translation);
    matrix.AddTranslation(MMPoint3d<float>(1.0F, 0.0F, 0.0F));
    matrix.AddTranslation(narrow);
    matrix.GetTranslation(translation);
    EXPECT_EQ(matrix(Point(), false), Point(6.0, 7.0, 9.0));
    matrix.FillInTranslation(narrow);
    matrix.FillInTranslation(translation);
    EXPECT_EQ(matrix(Point(), false), Point(6.0, 7.0, 9.0));
    matrix.ScaleTranslation(0.5);
    EXPECT_EQ(matrix(Point(), false), Point(3.0, 3.5, 4.5));
    EXPECT_LT(InverseError(matrix), 1e-14);

    // Scaling does not reclassify; with a projective bottom row adding is a full product.
    matrix.MakeTranslation({5.0, 0.0, 0.0});
    matrix.ScaleTranslation(0.0);
    EXPECT_FALSE(matrix.IsIdentity());
    matrix = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 2});
    matrix.AddTranslation(Point(3.0, 0.0, 0.0));
    EXPECT_EQ(Elements(matrix).row(0), Eigen::RowVector4d(1, 0, 3, 6));
}

TEST(TransformMatrixElements, LoadsStoresAndCompares)
{
    const float floats[16] = {2, 1, 0, 4, 0, 2, 1, 5, 1, 0, 2, 6, 0, 0, 0.1F, 1};
    MMTransformMatrix matrix;
    matrix.MakeFromFloat16(floats);
    EXPECT_TRUE(matrix.IsHomogeneous() && matrix.IsInversible());
    float back[16];
    double wide[16];
    EXPECT_TRUE(matrix.ConvertToFloat16(back) && matrix.ConvertToDouble16(wide));
    EXPECT_TRUE(std::equal(back, back + 16, floats) && std::equal(back, back + 16, wide));
    matrix.MakeFromFloat12(floats);
    EXPECT_FALSE(matrix.IsHomogeneous());
    EXPECT_NEAR(matrix.Determinant(), Part(matrix).determinant(), 1e-14);
    const Point image(matrix.TransformX(1, 2, 3, false), matrix.TransformY(1, 2, 3, false),
                      matrix.TransformZ(1, 2, 3, false));
    EXPECT_EQ(image, matrix(Point(1, 2, 3), false));
    EXPECT_NEAR(matrix.InverseTransformX(image.x, image.y, image.z, false), 1.0, 1e-14);
    EXPECT_NEAR(matrix.InverseTransformY(image.x, image.y, image.z, false), 2.0, 1e-14);
    EXPECT_NEAR(matrix.InverseTransformZ(image.x, image.y, image.z, false), 3.0, 1e-14);
    float parts[2][3][3];
    matrix.FillIn3x3(parts[0], parts[1]);
    EXPECT_EQ(parts[0][1][2], 1.0F);
    EXPECT_EQ(parts[1][2][0], static_cast<float>(matrix.GetElement(2, 0, true)));

    // The source may be the matrix's own storage.
    const Matrix4 before = Elements(matrix);
    matrix.MakeFromDouble12(&matrix.AccessElement(1, 0, false));
    EXPECT_EQ(Elements(matrix).topRows<2>(), before.middleRows<2>(1));
    matrix.MakeScale3D({2.0, 3.0, 4.0});
    matrix.MakeScale3D(matrix.AccessElement(1, 1, false), matrix.AccessElement(0, 0, false), 5.0);
    EXPECT_EQ(Elements(matrix).diagonal(), Eigen::Vector4d(3, 2, 5, 1));
}

} // namespace
