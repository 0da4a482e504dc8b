#include "support/random.h"

#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_matrix.h>

#include <Eigen/LU>
#include <gtest/gtest.h>

#include <limits>

namespace
{

using Class = MMTransformMatrixClass;
using Point = MMPoint3d<double>;
using Eigen4 = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;

// Shows the cached class; optionally claims to be no identity, or an identity.
class Shown : public MMTransformMatrix
{
public:
    using MMTransformMatrix::operator=;
    int claim = -1;

    [[nodiscard]] Class GetClass() const
    {
        return _class;
    }
    [[nodiscard]] bool IsIdentity() const override
    {
        return claim < 0 ? MMTransformMatrix::IsIdentity() : claim != 0;
    }
};

Shown Load(std::vector<double> rows)
{
    Shown matrix;
    if (rows.size() == 12)
        rows.insert(rows.end(), {0, 0, 0, 1});
    matrix.MakeFromDouble16(rows.data());
    return matrix;
}

Shown RandomMatrix(norvek_test::Random& random)
{
    std::vector<double> rows(16);
    for (double& element : rows)
        element = random.Uniform(-1.0, 1.0);
    return Load(rows);
}

Eigen4 Elements(const MMTransformMatrix& matrix, bool ofInverse = false)
{
    Eigen4 m;
    for (unsigned short i = 0; i < 4; ++i) {
        for (unsigned short j = 0; j < 4; ++j)
            m(i, j) = matrix.GetElement(i, j, ofInverse);
    }
    return m;
}

double InverseError(const MMTransformMatrix& matrix)
{
    return (Elements(matrix) * Elements(matrix, true) - Eigen4::Identity()).cwiseAbs().maxCoeff();
}

TEST(TransformMatrixClass, FollowsTheTableAndItsOrder)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const struct
    {
        std::vector<double> rows;
        Class expected;
        bool homogeneous;
    } cases[] = {
        {{1, 0, 0, 0, 0, 1, -0.0, 0, 0, 0, 1, 0}, Class::Identity, false},
        {{1, 0, 0, nan, 0, 1, 2e-15, 0, 0, 0, 1, 0}, Class::Translation, false},
        {{1 + 2e-15, 0, 0, 0, 0, 1 + 2e-15, 0, 0, 0, 0, 1, 0}, Class::Translation, false},
        {{1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0, 1e-15, 0, 0, 1}, Class::Translation, true},
        {{1 + 3e-15, 0, 0, 0, 0, 1 + 3e-15, 0, 0, 0, 0, 1 + 3e-15, 0}, Class::Scale1D, false},
        {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, Class::Scale1D, false},
        {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0}, Class::Scale3D, false},
        {{nan, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}, Class::Scale3D, false},
        {{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2}, Class::General, true},
        {{0, -1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6}, Class::OrthoNormal, false},
        {{0, 1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6}, Class::OrthoNormal, false},
        {{0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1e-300, 1}, Class::General, true},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 0}, Class::OrthoGonal, false},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 1e-300}, Class::General, false},
        {{0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3 + 1e-15, 0}, Class::General, false},
        {{1, 0, 0, 0, 1e-9, 1, 0, 0, 0, 0, 1, 0}, Class::General, false},
        {{0, -1, 0, 0, nan, 0, 0, 0, 0, 0, 1, 0}, Class::General, false},
    };
    for (const auto& c : cases) {
        const Shown matrix = Load(c.rows);
        EXPECT_EQ(matrix.GetClass(), c.expected) << Elements(matrix);
        EXPECT_EQ(matrix.IsHomogeneous(), c.homogeneous) << Elements(matrix);
    }
    EXPECT_TRUE(Load({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0}).IsOrthoGonal());
    EXPECT_FALSE(Load({2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}).IsOrthoGonal());
}

// Every class against the exact law M M^-1 = 1, over random members.
TEST(TransformMatrixInverse, UndoesEveryClass)
{
    norvek_test::Random random(311);
    for (int i = 0; i < 300; ++i) {
        MMTransformMatrix matrix;
        matrix.MakeRotation(random.Point(1.0), random.Point(1.0), random.Uniform(-7.0, 7.0));
        EXPECT_LT(InverseError(matrix), 1e-14);
        matrix = RandomMatrix(random);
        const Eigen4 inverse = Elements(matrix).inverse();
        EXPECT_TRUE(Elements(matrix, true).isApprox(inverse, 1e-9));
        const Eigen4 before = Elements(matrix);
        EXPECT_TRUE(matrix.Invert());
        EXPECT_EQ(Elements(matrix, true), before);
        matrix.Transpose();
        EXPECT_TRUE(Elements(matrix, true).isApprox(before.transpose(), 1e-9));
    }
    EXPECT_LT(InverseError(Load({0, -3, 0, 0, 3, 0, 0, 0, 0, 0, 3, 0})), 1e-15);
    EXPECT_LT(InverseError(Load({2, 0, 0, 0, 0, -3, 0, 0, 0, 0, 1e-9, 0})), 1e-15);
}

TEST(TransformMatrixInverse, SingularMatricesSaySoAndKeepTheOldInverse)
{
    MMTransformMatrix matrix = Load({1, 2, 3, 4, 0, 0, 0, 0, 7, 8, 9, 1});
    EXPECT_FALSE(matrix.IsInversible() || matrix.ComputeInverse() || matrix.Invert());
    EXPECT_EQ(Elements(matrix, true), Eigen4::Identity());
    EXPECT_EQ(matrix.GetElement(0, 3, false), 4.0);
    Point out(1.0, 2.0, 3.0);
    EXPECT_FALSE(matrix.InverseTransform(out, Point(), false));
    EXPECT_EQ(out, Point(1.0, 2.0, 3.0));
    matrix.MakeScale3D(1.0, -0.0, 2.0);
    EXPECT_FALSE(matrix.IsInversible());
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
    matrix.AddTranslation(Point(1.0, 0.0, 0.0));
    EXPECT_THROW(static_cast<void>(matrix.GetScale()), MMTransformException);
}

TEST(TransformMatrixPoints, HomogeneousCoordinateDividesAndThrows)
{
    MMTransformMatrix matrix = Load({1, 0, 0, 2, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0});
    EXPECT_EQ(matrix(Point(2.0, 4.0, 2.0), false), Point(2.0, 2.0, 1.0));
    EXPECT_EQ(matrix(Point(2.0, 4.0, 2.0), true), Point(1.0, 2.0, 1.0));
    EXPECT_EQ(matrix.TransformX(2.0, 4.0, 2.0, false), 4.0);
    std::vector<Point> points = {{2, 4, 2}, {1, 1, 0}, {2, 4, 2}};
    EXPECT_THROW(matrix.Transform(points), MMTransformException);
    EXPECT_EQ(points, (std::vector<Point>{{2, 2, 1}, {1, 1, 0}, {2, 4, 2}}));

    // An affine matrix whose flag was set by hand has w = 0 for every direction, w = 1 otherwise.
    MMTransformMatrix affine;
    affine.MakeTranslation({5.0, 0.0, 0.0});
    affine.SetHomogeneous(true);
    EXPECT_EQ(affine(Point(1.0, 2.0, 3.0), false), Point(6.0, 2.0, 3.0));
    Point kept(1.0, 2.0, 3.0);
    EXPECT_THROW(affine.Transform(kept, true), MMTransformException);
    EXPECT_EQ(kept, Point(1.0, 2.0, 3.0));
}

// The cached class decides about the identity, and a derived class that answers for itself is
// obeyed, for single points and for vectors alike.
TEST(TransformMatrixPoints, IdentityIsAskedForAndNotRecomputed)
{
    MMTransformMatrix matrix;
    matrix.SetElement(0, 3, 5.0, false);
    std::vector<Point> points = {{1, 2, 3}};
    std::vector<Point> out(4);
    EXPECT_EQ(matrix(points[0], false), points[0]);
    EXPECT_TRUE(matrix.Transform(out, points));
    EXPECT_EQ(out, points);
    EXPECT_EQ(matrix.TransformX(1.0, 2.0, 3.0, false), 6.0);

    Shown shown;
    shown.SetElement(0, 3, 5.0, false);
    shown.claim = 0;
    EXPECT_TRUE(shown.Transform(points) && shown.Transform(out, points));
    EXPECT_EQ(points[0], Point(6.0, 2.0, 3.0));
    EXPECT_EQ(out[0], Point(11.0, 2.0, 3.0));
    shown.VerifyAndSetClass();
    shown.claim = 1;
    EXPECT_TRUE(shown.Transform(out));
    EXPECT_EQ(out[0], Point(11.0, 2.0, 3.0));
}

TEST(TransformMatrixProduct, MultipliesMatricesAndInverses)
{
    norvek_test::Random random(312);
    for (int i = 0; i < 200; ++i) {
        MMTransformMatrix a = RandomMatrix(random);
        const MMTransformMatrix b = RandomMatrix(random);
        const MMTransformMatrix product = a * b;
        EXPECT_TRUE(Elements(product).isApprox(Elements(a) * Elements(b), 1e-14));
        EXPECT_TRUE(Elements(product, true).isApprox(Elements(b, true) * Elements(a, true), 1e-13));
        MMTransformMatrix other = b;
        EXPECT_EQ(Elements(other.PreMultiply(a), true), Elements(product, true));
        other = a;
        EXPECT_EQ(Elements(other *= b), Elements(product));
        const Eigen4 square = Elements(a) * Elements(a);
        other = a;
        EXPECT_TRUE(Elements(other *= other).isApprox(square, 1e-13));
        EXPECT_EQ(Elements(a.PreMultiply(a)), Elements(other));
    }
}

TEST(TransformMatrixProduct, KeepsTheInvertibleFlagOfTheLeftOperand)
{
    MMTransformMatrix unit;
    MMTransformMatrix singular;
    singular.MakeScale1D(0.0);
    MMTransformMatrix product = unit * singular;
    EXPECT_TRUE(product.IsInversible());
    EXPECT_FALSE(product.ComputeInverse());
    EXPECT_FALSE((singular * unit).IsInversible());
}

TEST(TransformMatrixTranslation, AddsFillsInAndScales)
{
    const double wide[3] = {4.0, 5.0, 6.0};
    MMTransformMatrix matrix;
    matrix.MakeRotationXYZ(10.0, 20.0, 30.0);
    matrix.AddTranslation(wide);
    matrix.AddTranslation(MMPoint3d<float>(1.0F, 0.0F, 0.0F));
    matrix.FillInTranslation(wide);
    EXPECT_EQ(matrix(Point(), false), Point(4.0, 5.0, 6.0));
    matrix.ScaleTranslation(0.5);
    EXPECT_LT(InverseError(matrix), 1e-14);

    // Scaling does not reclassify; with a projective bottom row adding is a full product.
    matrix = Load({1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0});
    matrix.ScaleTranslation(0.0);
    EXPECT_FALSE(matrix.IsIdentity());
    MMTransformMatrix projective = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 2});
    projective.AddTranslation(Point(3.0, 0.0, 0.0));
    EXPECT_EQ(projective.GetElement(0, 2, false), 3.0);
    EXPECT_EQ(projective.GetElement(0, 3, false), 6.0);
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
    EXPECT_NEAR(matrix.Determinant(), Elements(matrix).determinant(), 1e-14);
    float parts[2][3][3];
    matrix.FillIn3x3(parts[0], parts[1]);
    EXPECT_EQ(parts[0][1][2], 1.0F);
    EXPECT_EQ(parts[1][2][0], static_cast<float>(matrix.GetElement(2, 0, true)));

    // The source may be the matrix's own storage.
    const Eigen4 before = Elements(matrix);
    matrix.MakeFromDouble12(&matrix.AccessElement(1, 0, false));
    EXPECT_EQ(Elements(matrix).topRows<2>(), before.middleRows<2>(1));
    MMTransformMatrix scale = Load({2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0});
    scale.MakeScale3D(scale.AccessElement(1, 1, false), scale.AccessElement(0, 0, false), 5.0);
    EXPECT_EQ(scale.GetElement(1, 1, false), 2.0);

    MMTransformMatrix near = scale;
    near.SetElement(3, 1, 1e-6, false);
    near.SetElement(0, 0, 99.0, true);
    EXPECT_TRUE(near._Equal(scale));
    near.SetElement(3, 1, 2e-6, false);
    EXPECT_FALSE(near._Equal(scale));
}

} // namespace
