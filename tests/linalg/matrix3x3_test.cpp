#include "support/random.h"

#include <norvek/linalg/matrix2x2.h>
#include <norvek/linalg/matrix3x3.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace
{

using norvek_test::Random;
using Point = MMPoint3d<double>;

MMatrix3x3 Matrix(const Eigen::Matrix3d& source)
{
    MMatrix3x3 result;
    for (unsigned int i = 0; i < 3; ++i) {
        for (unsigned int j = 0; j < 3; ++j)
            result.Element(i, j) = source(i, j);
    }
    return result;
}

MMatrix3x3 Diagonal(double x, double y, double z)
{
    return Matrix(Eigen::Vector3d(x, y, z).asDiagonal());
}

Eigen::Matrix3d ToEigen(const MMatrix3x3& source)
{
    Eigen::Matrix3d result;
    for (unsigned int i = 0; i < 3; ++i) {
        for (unsigned int j = 0; j < 3; ++j)
            result(i, j) = source.Value(i, j);
    }
    return result;
}

Eigen::Matrix3d RandomRotation(Random& random)
{
    const Point p = random.Point(1.0);
    return Eigen::AngleAxisd(random.Uniform(-3.1, 3.1), Eigen::Vector3d(p.x, p.y, p.z).normalized())
        .toRotationMatrix();
}

TEST(Matrix3x3, ArithmeticAgreesWithAnIndependentLibrary)
{
    Random random(401);
    for (int i = 0; i < 200; ++i) {
        const Eigen::Matrix3d a =
            Eigen::Matrix3d::NullaryExpr([&] { return random.Uniform(-1, 1); });
        const Eigen::Matrix3d b =
            Eigen::Matrix3d::NullaryExpr([&] { return random.Uniform(-1, 1); });
        MMatrix3x3 m = Matrix(a);
        EXPECT_LT((ToEigen(m * Matrix(b)) - a * b).norm(), 1e-15 * 5);
        EXPECT_NEAR(m.Determinant(), a.determinant(), 1e-15 * 5);
        EXPECT_LT((ToEigen(m.Inverse()) * a - Eigen::Matrix3d::Identity()).norm(),
                  1e-14 / std::abs(a.determinant()));
        Eigen::Vector3d x(0.3, -0.4, 0.5);
        const Eigen::Vector3d expected = a.fullPivLu().solve(x);
        EXPECT_TRUE(m.Solve(x.data()));
        EXPECT_LT((x - expected).norm(),
                  1e-14 * (1.0 + expected.norm()) / std::abs(a.determinant()));
        m.TransposeSquare(m);
        EXPECT_LT((ToEigen(m) - a * a.transpose()).norm(), 1e-14);
        m = Matrix(a);
        m.InvTransposeSquare(m);
        EXPECT_LT((ToEigen(m) - a.transpose() * a).norm(), 1e-14);
        m.PreMultiply(m);
    }
    double b[3]{1.0, 2.0, 3.0};
    EXPECT_FALSE(Diagonal(1.0, 0.0, 1.0).Solve(b));
    EXPECT_EQ(b[2], 3.0);
    EXPECT_EQ(Diagonal(-5.0, -1.0, -2.0).GetMaxEntry(), 0.0);
}

TEST(Matrix3x3, EigenPairsSatisfyTheirEquation)
{
    Random random(402);
    for (int i = 0; i < 2000; ++i) {
        const Eigen::Vector3d values(random.Uniform(0.1, 1.0), random.Uniform(2.0, 3.0),
                                     random.Uniform(5.0, 9.0));
        const Eigen::Matrix3d turn = RandomRotation(random);
        const Eigen::Matrix3d a = turn * values.asDiagonal() * turn.transpose();
        double found[3];
        Point vectors[3];
        EXPECT_TRUE(Matrix(a).GetEigenValues(found));
        Matrix(a).GetEigenVectors(vectors, found);
        for (int k = 0; k < 3; ++k) {
            const Eigen::Vector3d v(vectors[k].x, vectors[k].y, vectors[k].z);
            EXPECT_LT((a * v - found[k] * v).norm(), 1e-12);
            EXPECT_NEAR(v.norm(), 1.0, 1e-15);
        }
    }
    double values[3];
    EXPECT_TRUE(Diagonal(1.0, 2.0, 3.0).GetEigenValues(values));
    // A quarter turn about z has a complex pair.
    MMatrix3x3 turn;
    turn.SetRow(0, {0.0, -1.0, 0.0});
    turn.SetRow(1, {1.0, 0.0, 0.0});
    turn.SetRow(2, {0.0, 0.0, 1.0});
    EXPECT_FALSE(turn.GetEigenValues(values));
}

TEST(Matrix3x3, DoubleValuesInEveryOrderGetOrthogonalVectors)
{
    for (const auto& v : {std::array{5.0, 5.0, 1.0}, {5.0, 1.0, 5.0}, {1.0, 5.0, 5.0}}) {
        for (const auto& d : {std::array{5.0, 5.0, 1.0}, {5.0, 1.0, 5.0}, {1.0, 5.0, 5.0}}) {
            double values[3]{v[0], v[1], v[2]};
            Point vectors[3];
            EXPECT_TRUE(Diagonal(d[0], d[1], d[2]).GetEigenVectors(vectors, values));
            EXPECT_EQ(std::abs(vectors[0].Cross(vectors[1]).Dot(vectors[2])), 1.0);
        }
    }
    double ones[3]{1.0, 1.0, 1.0};
    Point axes[3];
    EXPECT_TRUE(Diagonal(1.0, 1.0, 1.0).GetEigenVectors(axes, ones));
    EXPECT_EQ(axes[1], Point(0.0, 1.0, 0.0));
}

TEST(Matrix3x3, SingularVectorsOfEveryRank)
{
    Random random(403);
    Point v;
    EXPECT_TRUE(MMatrix3x3().GetRightSingular(v));
    EXPECT_EQ(v, Point(1.0, 0.0, 0.0));
    EXPECT_FALSE(Diagonal(1.0, 1.0, 1.0).GetRightSingular(v));
    for (int i = 0; i < 500; ++i) {
        const Point p = random.Point(1.0);
        const Point q = random.Point(1.0);
        MMatrix3x3 rankOne;
        rankOne.PDotQTranspose(p, p);
        MMatrix3x3 rankTwo;
        rankTwo.PDotQTranspose(q, random.Point(1.0));
        rankTwo = rankTwo + rankOne;
        EXPECT_TRUE(rankOne.GetRightSingular(v));
        for (const MMatrix3x3& a : {rankOne, rankTwo}) {
            a.GetRightSingular(v);
            EXPECT_LT((a * v).Length(), 1e-12);
            EXPECT_NEAR(v.Length(), 1.0, 1e-15);
            a.GetLeftSingular(v);
            EXPECT_LT(std::abs(a.GetColumn(0).Dot(v)) + std::abs(a.GetColumn(1).Dot(v)), 1e-12);
        }
    }
}

TEST(Matrix3x3, SquareRootInverseOfEverySpectrum)
{
    Random random(404);
    const Eigen::Vector3d spectra[]{{1, 2, 3},        {5, 5, 1},    {1, 5, 5},     {4, 4, 4},
                                    {1, 1 + 1e-9, 2}, {1e-3, 1, 1}, {100, 1, 1e-2}};
    for (const Eigen::Vector3d& values : spectra) {
        for (int i = 0; i < 200; ++i) {
            const Eigen::Matrix3d turn = RandomRotation(random);
            MMatrix3x3 a = Matrix(turn * values.asDiagonal() * turn.transpose());
            const Eigen::Matrix3d before = ToEigen(a);
            ASSERT_TRUE(a.SquareRootInverse()) << values.transpose();
            EXPECT_LT((ToEigen(a) * before * ToEigen(a) - Eigen::Matrix3d::Identity()).norm(),
                      1e-9);
            EXPECT_EQ(a.Value(0, 1), a.Value(1, 0));

            const Eigen::Vector3d flat(values[0], values[1], 0.0);
            MMatrix3x3 p = Matrix(turn * flat.asDiagonal() * turn.transpose() / values.maxCoeff());
            const Eigen::Matrix3d singular = ToEigen(p);
            ASSERT_TRUE(p.SquareRootPseudoInverse()) << values.transpose();
            EXPECT_LT((ToEigen(p) * singular * ToEigen(p) * singular - singular).norm(), 1e-9);
        }
    }
    // Small values that the closed form loses in the rounding of the largest.
    for (int i = 0; i < 200; ++i) {
        const Eigen::Matrix3d turn = RandomRotation(random);
        const Eigen::Vector3d values(1.0, 1e-10, 1e-11);
        MMatrix3x3 a = Matrix(turn * values.asDiagonal() * turn.transpose());
        ASSERT_TRUE(a.SquareRootInverse());
        const Eigen::Vector3d roots = (turn.transpose() * ToEigen(a) * turn).diagonal();
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR(roots[k] * std::sqrt(values[k]), 1.0, 1e-4);
    }
    MMatrix3x3 indefinite = Diagonal(1.0, -1.0, 2.0);
    EXPECT_FALSE(indefinite.SquareRootInverse());
    EXPECT_EQ(indefinite, Diagonal(1.0, -1.0, 2.0));
    MMatrix3x3 full = Diagonal(1.0, 2.0, 3.0);
    EXPECT_FALSE(full.SquareRootPseudoInverse());
}

// The polar factor from a singular value decomposition in another library.
Eigen::Matrix3d PolarFactor(const Eigen::Matrix3d& a, bool proper)
{
    const Eigen::JacobiSVD<Eigen::Matrix3d> svd(a, Eigen::ComputeFullU | Eigen::ComputeFullV);
    Eigen::Matrix3d u = svd.matrixU();
    if (proper && (u * svd.matrixV().transpose()).determinant() < 0.0)
        u.col(2) = -u.col(2);
    return u * svd.matrixV().transpose();
}

TEST(NearestOrthonormal, IsThePolarFactorAtEveryScaleAndSpectrum)
{
    Random random(405);
    const Eigen::Vector3d spectra[]{{2, 3, 4},  {1, 1, 1},    {5, 5, 1},       {5, 1, 1},
                                    {1, 1, -2}, {3, 2, 1e-4}, {1, 1e-3, -1e-5}};
    for (const double scale : {1e-150, 1e-6, 1.0, 1e6, 1e150}) {
        for (const Eigen::Vector3d& values : spectra) {
            for (int i = 0; i < 100; ++i) {
                const Eigen::Matrix3d a = scale * RandomRotation(random) * values.asDiagonal() *
                                          RandomRotation(random).transpose();
                MMatrix3x3 r = Matrix(a);
                ASSERT_TRUE(r.NearestOrthonormal(r)) << scale << ' ' << values.transpose();
                const Eigen::Matrix3d found = ToEigen(r);
                EXPECT_LT(
                    (found.transpose() * found - Eigen::Matrix3d::Identity()).cwiseAbs().maxCoeff(),
                    1e-12);
                EXPECT_LT((found - PolarFactor(a, false)).norm(), 1e-9)
                    << scale << ' ' << values.transpose();
            }
        }
    }
}

TEST(NearestOrthonormal, RanksBelowThree)
{
    Random random(406);
    for (const double scale : {1e-6, 1.0, 1e6}) {
        for (int i = 0; i < 300; ++i) {
            const Eigen::Matrix3d a = scale * RandomRotation(random) *
                                      Eigen::Vector3d(2.0, 1.0, 0.0).asDiagonal() *
                                      RandomRotation(random).transpose();
            MMatrix3x3 r;
            ASSERT_TRUE(Matrix(a).NearestOrthonormal(r));
            EXPECT_LT((ToEigen(r) - PolarFactor(a, true)).norm(), 1e-12);
            MMatrix3x3 line;
            line.PDotQTranspose(scale * random.Point(1.0), random.Point(1.0));
            EXPECT_FALSE(line.NearestOrthonormal(r));
        }
    }
    MMatrix3x3 r;
    EXPECT_FALSE(MMatrix3x3().NearestOrthonormal(r));
    EXPECT_TRUE(Diagonal(1.0, 1.0, 0.0).NearestOrthonormal(r));
    EXPECT_EQ(r, Diagonal(1.0, 1.0, 1.0));
    // The covariance of the corner tetrahedron: a double value in the order that is hard.
    EXPECT_TRUE(Matrix(Eigen::Matrix3d::Identity() - Eigen::Matrix3d::Constant(0.25))
                    .NearestOrthonormal(r));
    EXPECT_LT((ToEigen(r) - Eigen::Matrix3d::Identity()).norm(), 1e-14);
}

TEST(Matrix3x3, NonFiniteEntriesReturn)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double odd : {nan, std::numeric_limits<double>::infinity(), 1e300}) {
        for (unsigned int k = 0; k < 9; ++k) {
            MMatrix3x3 a = Diagonal(1.0, 2.0, 3.0);
            a.Element(k / 3, k % 3) = odd;
            double values[3];
            Point vectors[3];
            a.GetEigenValues(values);
            a.GetEigenVectors(vectors, values);
            MMatrix3x3 result;
            EXPECT_TRUE(odd == 1e300 || !a.NearestOrthonormal(result)) << odd << " at " << k;
            a.SquareRootPseudoInverse();
            a.SquareRootInverse();
        }
    }
    // A NaN among the values is not equal to the others.
    for (const auto& v : {std::array{nan, nan, nan}, {nan, 5.0, 5.0}}) {
        double values[3]{v[0], v[1], v[2]};
        Point vectors[3];
        EXPECT_FALSE(Diagonal(5.0, 5.0, 1.0).GetEigenVectors(vectors, values));
    }
}

TEST(Matrix2x2, KeepsItsThresholds)
{
    double values[2];
    double vector[2];
    EXPECT_TRUE(MMatrix2x2(2.0, 1.0, 1.0, 2.0).GetEigenValues(values));
    EXPECT_EQ(values[0], 3.0);
    EXPECT_EQ(values[1], 1.0);
    EXPECT_TRUE(MMatrix2x2(2.0, 1.0, 1.0, 2.0).GetEigenVector(vector, 3.0));
    EXPECT_NEAR(vector[0], std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(vector[1], std::sqrt(0.5), 1e-15);
    EXPECT_FALSE(MMatrix2x2(0.0, -1.0, 1.0, 0.0).GetEigenValues(values));
    // A determinant of 0 gives (trace, 0), though the trace is the smaller.
    EXPECT_TRUE(MMatrix2x2(-1.0, 0.0, 0.0, 0.0).GetEigenValues(values));
    EXPECT_EQ(values[0], -1.0);
    // The residual is tested on one side: 1.5 is between the values and passes, 4 does not.
    EXPECT_TRUE(MMatrix2x2(2.0, 1.0, 1.0, 2.0).GetEigenVector(vector, 1.5));
    EXPECT_FALSE(MMatrix2x2(2.0, 1.0, 1.0, 2.0).GetEigenVector(vector, 4.0));
    EXPECT_TRUE(MMatrix2x2(2.0, 0.0, 0.0, 3.0).GetEigenVector(vector, 3.0));
    EXPECT_EQ(vector[1], 1.0);

    MMatrix2x2 nearlySingular(1.0, 1.0, 1.0, 1.0 + 1e-15);
    EXPECT_FALSE(nearlySingular.Invert());
    MMatrix2x2 m(2.0, 1.0, 4.0, 3.0);
    double x[2]{5.0, 11.0};
    EXPECT_TRUE(m.SolveSquareSet(x, x));
    EXPECT_EQ(x[0], 2.0);
    EXPECT_EQ(x[1], 1.0);
    EXPECT_TRUE(m.Invert());
    EXPECT_EQ(m.Value(1, 0), -2.0);
}

} // namespace
