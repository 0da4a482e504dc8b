#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/transform_exception.h>

#include <Eigen/LU>
#include <gtest/gtest.h>

#include <limits>
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
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const std::pair<std::vector<double>, Class> cases[] = {
        {{1, 0, 0, 0, 0, 1, -0.0, 0, 0, 0, 1, 0}, Class::Identity},
        {{1, 0, 0, nan, 0, 1, 2e-15, 0, 0, 0, 1, 0}, Class::Translation},
        {{1 + 2e-15, 0, 0, 0, 0, 1 + 2e-15, 0, 0, 0, 0, 1, 0}, Class::Translation},
        {{1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0, 1e-15, 0, 0, 1}, Class::Translation},
        {{1 + 3e-15, 0, 0, 0, 0, 1 + 3e-15, 0, 0, 0, 0, 1 + 3e-15, 0}, Class::Scale1D},
        {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, Class::Scale1D},
        {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0}, Class::Scale3D},
        {{nan, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}, Class::Scale3D},
        {{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2}, Class::General},
        {{0, -1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6}, Class::OrthoNormal},
        {{0, 1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6}, Class::OrthoNormal},
        {{0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1e-300, 1}, Class::General},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 0}, Class::OrthoGonal},
        {{1e-8, 1e-8, 0, 0, 0, 1e-9, 0, 0, 0, 0, 0, 0}, Class::OrthoGonal},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 1e-300}, Class::General},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3 + 1e-15, 0}, Class::General},
        {{1, 0, 0, 0, 1e-9, 1, 0, 0, 0, 0, 1, 0}, Class::General},
        {{0, -1, 0, 0, nan, 0, 0, 0, 0, 0, 1, 0}, Class::General},
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
    for (const auto& rows : std::vector<std::vector<double>>{
             {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
             {1, 0, 0, 4, 0, 1, 0, 5, 0, 0, 1, 6},
             {0, -1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6},
             {0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 0},
             {2, 0, 0, 0, 0, -3, 0, 0, 0, 0, 1e-9, 0},
             {1e-18, 1, 0, 0, 1, 0, 0, 5, 0, 0, 0, 1, 0, 0, -1, 1e-18}})
    {
        const MMTransformMatrix matrix = Load(rows, RandomMatrix(random));
        EXPECT_TRUE(matrix.IsInversible());
        EXPECT_LT(InverseError(matrix), 1e-15) << Elements(matrix);
    }
    for (int i = 0; i < 300; ++i) {
        MMTransformMatrix a = RandomMatrix(random);
        const MMTransformMatrix b = RandomMatrix(random);
        const Matrix4 m = Elements(a);
        EXPECT_TRUE(Elements(a, true).isApprox(m.inverse(), 1e-9));
        const MMTransformMatrix product = a * b;
        EXPECT_TRUE(Elements(product).isApprox(m * Elements(b), 1e-14));
        EXPECT_TRUE(Elements(product, true).isApprox(Elements(b, true) * Elements(a, true), 1e-13));
        MMTransformMatrix other = b;
        EXPECT_EQ(Elements(other.PreMultiply(a), true), Elements(product, true));
        const MMTransformMatrix square = a * a;
        other = a;
        EXPECT_EQ(Elements(other *= other), Elements(square));
        EXPECT_EQ(Elements((other = a).PreMultiply(other)), Elements(square));
        EXPECT_TRUE(a.Invert() && Elements(a, true) == m);
        a.Transpose();
        EXPECT_TRUE(Elements(a, true).isApprox(m.transpose(), 1e-9));
    }
}

// Singular matrices say so and keep the old inverse.
TEST(TransformMatrixInverse, SingularMatricesHaveNone)
{
    MMTransformMatrix matrix = Load({1, 2, 3, 4, 0, 0, 0, 0, 7, 8, 9, 1});
    EXPECT_FALSE(matrix.IsInversible() || matrix.ComputeInverse() || matrix.Invert());
    EXPECT_EQ(Elements(matrix, true), Matrix4::Identity());
    EXPECT_EQ(matrix.GetElement(0, 3, false), 4.0);
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
    EXPECT_EQ(matrix.TransformX(2.0, 4.0, 2.0, false), 4.0);
    std::vector<Point> points = {{2, 4, 2}, {1, 1, 0}, {2, 4, 2}};
    EXPECT_THROW(matrix.Transform(points), MMTransformException);
    EXPECT_EQ(points, (std::vector<Point>{{2, 2, 1}, {1, 1, 0}, {2, 4, 2}}));

    // An affine matrix whose flag was set by hand has w = 0 for every direction, w = 1 otherwise.
    matrix.MakeTranslation({5.0, 0.0, 0.0});
    matrix.SetHomogeneous(true);
    EXPECT_EQ(matrix(Point(1.0, 2.0, 3.0), false), Point(6.0, 2.0, 3.0));
    EXPECT_THROW(matrix.Transform(points[1], true), MMTransformException);
    EXPECT_EQ(points[1], Point(1.0, 1.0, 0.0));
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
    EXPECT_EQ(plain.TransformX(1.0, 2.0, 3.0, false), 6.0);
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
    const double wide[3] = {4.0, 5.0, 6.0};
    const float narrow[3] = {1.0F, 2.0F, 3.0F};
    double out[3];
    MMTransformMatrix matrix;
    matrix.MakeRotationXYZ(10.0, 20.0, 30.0);
    matrix.AddTranslation(wide);
    matrix.AddTranslation(MMPoint3d<float>(1.0F, 0.0F, 0.0F));
    matrix.AddTranslation(narrow);
    matrix.GetTranslation(out);
    EXPECT_EQ(Point(out[0], out[1], out[2]), Point(6.0, 7.0, 9.0));
    matrix.FillInTranslation(wide);
    EXPECT_EQ(matrix(Point(), false), Point(4.0, 5.0, 6.0));
    matrix.ScaleTranslation(0.5);
    EXPECT_EQ(matrix(Point(), false), Point(2.0, 2.5, 3.0));
    EXPECT_LT(InverseError(matrix), 1e-14);

    // Scaling does not reclassify; with a projective bottom row adding is a full product.
    matrix = Load({1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0});
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
    const Point p(matrix.InverseTransformX(1, 2, 3, false),
                  matrix.InverseTransformY(1, 2, 3, false),
                  matrix.InverseTransformZ(1, 2, 3, false));
    const Point image(matrix.TransformX(p.x, p.y, p.z, false),
                      matrix.TransformY(p.x, p.y, p.z, false),
                      matrix.TransformZ(p.x, p.y, p.z, false));
    EXPECT_LT(Distance(image, {1.0, 2.0, 3.0}), 1e-14);
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

    MMTransformMatrix near = matrix;
    near.SetElement(3, 1, 1e-6, false);
    near.SetElement(0, 0, 99.0, true);
    EXPECT_TRUE(near._Equal(matrix));
    near.SetElement(3, 1, 2e-6, false);
    EXPECT_FALSE(near._Equal(matrix));
}

} // namespace
