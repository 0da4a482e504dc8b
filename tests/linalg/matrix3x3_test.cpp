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

using Eigen::Matrix3d;
using Eigen::Vector3d;
using norvek_test::Random;
using Point = MMPoint3d<double>;

MMatrix3x3 Matrix(const Matrix3d& source)
{
    MMatrix3x3 result;
    for (unsigned short i = 0; i < 3; ++i)
        result.SetRow(i, {source(i, 0), source(i, 1), source(i, 2)});
    return result;
}

MMatrix3x3 Diagonal(double x, double y, double z)
{
    return Matrix(Vector3d(x, y, z).asDiagonal());
}

Matrix3d ToEigen(const MMatrix3x3& source)
{
    return Matrix3d::NullaryExpr([&](auto i, auto j) {
        return source.Value(static_cast<unsigned int>(i), static_cast<unsigned int>(j));
    });
}

// How far a product is from the identity.
double Error(const Matrix3d& product)
{
    return (product - Matrix3d::Identity()).norm();
}

Matrix3d RandomRotation(Random& random)
{
    const Point p = random.Point(1.0).Normalised();
    return Eigen::AngleAxisd(random.Uniform(-3.1, 3.1), Vector3d(p.x, p.y, p.z)).matrix();
}

// With the given eigenvalues, in random directions.
Matrix3d Symmetric(Random& random, const Vector3d& values)
{
    const Matrix3d turn = RandomRotation(random);
    return turn * values.asDiagonal() * turn.transpose();
}

TEST(Matrix3x3, ArithmeticAgreesWithAnIndependentLibrary)
{
    Random random(401);
    for (int i = 0; i < 200; ++i) {
        const Matrix3d a = Matrix3d::NullaryExpr([&] { return random.Uniform(-1, 1); });
        const Matrix3d b = Matrix3d::NullaryExpr([&] { return random.Uniform(-1, 1); });
        MMatrix3x3 m = Matrix(a);
        EXPECT_LT((ToEigen(m * Matrix(b)) - a * b).norm(), 1e-15 * 5);
        EXPECT_NEAR(m.Determinant(), a.determinant(), 1e-15 * 5);
        const double tolerance = 1e-14 / std::abs(a.determinant());
        EXPECT_LT(Error(ToEigen(m.Inverse()) * a), tolerance);
        const Vector3d right(0.3, -0.4, 0.5);
        Vector3d x = right;
        EXPECT_TRUE(m.Solve(x.data()));
        EXPECT_LT((a * x - right).norm(), tolerance);
        m.TransposeSquare(m);
        EXPECT_LT((ToEigen(m) - a * a.transpose()).norm(), 1e-14);
        m = Matrix(a);
        m.InvTransposeSquare(m);
        EXPECT_LT((ToEigen(m) - a.transpose() * a).norm(), 1e-14);
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
        const Matrix3d a = Symmetric(
            random, {random.Uniform(0.1, 1.0), random.Uniform(2.0, 3.0), random.Uniform(5.0, 9.0)});
        double found[3];
        Point vectors[3];
        EXPECT_TRUE(Matrix(a).GetEigenValues(found));
        Matrix(a).GetEigenVectors(vectors, found);
        for (int k = 0; k < 3; ++k) {
            EXPECT_LT((Matrix(a) * vectors[k] - found[k] * vectors[k]).Length(), 1e-12);
            EXPECT_NEAR(vectors[k].Length(), 1.0, 1e-15);
        }
    }
    double values[3];
    EXPECT_TRUE(Diagonal(1.0, 2.0, 3.0).GetEigenValues(values));
    // A quarter turn about z has a complex pair.
    EXPECT_FALSE(Matrix(Matrix3d{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}).GetEigenValues(values));
    // Double values in every order.
    Point vectors[3];
    const std::array<double, 3> doubles[]{{5.0, 5.0, 1.0}, {5.0, 1.0, 5.0}, {1.0, 5.0, 5.0}};
    for (auto v : doubles) {
        for (const auto& d : doubles) {
            EXPECT_TRUE(Diagonal(d[0], d[1], d[2]).GetEigenVectors(vectors, v.data()));
            EXPECT_EQ(std::abs(vectors[0].Cross(vectors[1]).Dot(vectors[2])), 1.0);
        }
    }
    double ones[3]{1.0, 1.0, 1.0};
    EXPECT_TRUE(Diagonal(1.0, 1.0, 1.0).GetEigenVectors(vectors, ones));
    EXPECT_EQ(vectors[1], Point(0.0, 1.0, 0.0));
    // A NaN among the values is not equal to the others.
    double odd[3]{NAN, 5.0, 5.0};
    EXPECT_FALSE(Diagonal(5.0, 5.0, 1.0).GetEigenVectors(vectors, odd));
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
        MMatrix3x3 rankOne;
        rankOne.PDotQTranspose(p, p);
        MMatrix3x3 rankTwo;
        rankTwo.PDotQTranspose(random.Point(1.0), random.Point(1.0));
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
    const Vector3d spectra[]{{1, 2, 3},        {5, 5, 1},    {1, 5, 5},     {4, 4, 4},
                             {1, 1 + 1e-9, 2}, {1e-3, 1, 1}, {100, 1, 1e-2}};
    for (int i = 0; i < 1400; ++i) {
        const Vector3d& values = spectra[i % 7];
        const Matrix3d before = Symmetric(random, values);
        MMatrix3x3 a = Matrix(before);
        ASSERT_TRUE(a.SquareRootInverse()) << values.transpose();
        EXPECT_LT(Error(ToEigen(a) * before * ToEigen(a)), 1e-9);
        EXPECT_EQ(a.Value(0, 1), a.Value(1, 0));

        const Matrix3d flat =
            Symmetric(random, Vector3d(values[0], values[1], 0.0) / values.maxCoeff());
        a = Matrix(flat);
        ASSERT_TRUE(a.SquareRootPseudoInverse()) << values.transpose();
        EXPECT_LT((ToEigen(a) * flat * ToEigen(a) * flat - flat).norm(), 1e-9);
    }
    // Small values that the closed form loses in the rounding of the largest.
    for (int i = 0; i < 200; ++i) {
        const Matrix3d turn = RandomRotation(random);
        const Vector3d values(1.0, 1e-10, 1e-11);
        MMatrix3x3 a = Matrix(turn * values.asDiagonal() * turn.transpose());
        ASSERT_TRUE(a.SquareRootInverse());
        const Vector3d roots = (turn.transpose() * ToEigen(a) * turn).diagonal();
        EXPECT_LT((roots.cwiseProduct(values.cwiseSqrt()) - Vector3d::Ones()).norm(), 1e-4);
    }
    MMatrix3x3 indefinite = Diagonal(1.0, -1.0, 2.0);
    EXPECT_FALSE(indefinite.SquareRootInverse());
    EXPECT_EQ(indefinite, Diagonal(1.0, -1.0, 2.0));
    EXPECT_FALSE(Diagonal(1.0, 2.0, 3.0).SquareRootPseudoInverse());
}

// The polar factor from a singular value decomposition in another library; without a third value,
// the one that is a rotation.
Matrix3d PolarFactor(const Matrix3d& a, bool isFlat)
{
    const Eigen::JacobiSVD<Matrix3d> svd(a, Eigen::ComputeFullU | Eigen::ComputeFullV);
    const Matrix3d factor = svd.matrixU() * svd.matrixV().transpose();
    const double side = isFlat ? factor.determinant() : 1.0;
    return factor + (side - 1.0) * svd.matrixU().col(2) * svd.matrixV().col(2).transpose();
}

TEST(NearestOrthonormal, IsThePolarFactorAtEveryScaleAndSpectrum)
{
    Random random(405);
    const Vector3d spectra[]{{2, 3, 4},  {1, 1, 1},    {5, 5, 1},        {5, 1, 1},
                             {1, 1, -2}, {3, 2, 1e-4}, {1, 1e-3, -1e-5}, {2, 1, 0}};
    MMatrix3x3 r;
    for (const double scale : {1e-150, 1e-6, 1.0, 1e6, 1e150}) {
        for (int i = 0; i < 800; ++i) {
            const Vector3d& values = spectra[i % 8];
            const Matrix3d a =
                scale * RandomRotation(random) * values.asDiagonal() * RandomRotation(random);
            // The result may be the matrix.
            r = Matrix(a);
            ASSERT_TRUE(r.NearestOrthonormal(r)) << scale << ' ' << values.transpose();
            const Matrix3d off = ToEigen(r).transpose() * ToEigen(r) - Matrix3d::Identity();
            EXPECT_LT(off.cwiseAbs().maxCoeff(), 1e-12);
            const bool isFlat = values[2] == 0.0;
            EXPECT_LT((ToEigen(r) - PolarFactor(a, isFlat)).norm(), isFlat ? 1e-12 : 1e-9)
                << scale << ' ' << values.transpose();
            MMatrix3x3 line;
            line.PDotQTranspose(scale * random.Point(1.0), random.Point(1.0));
            EXPECT_FALSE(line.NearestOrthonormal(r));
        }
    }
    EXPECT_FALSE(MMatrix3x3().NearestOrthonormal(r));
    EXPECT_TRUE(Diagonal(1.0, 1.0, 0.0).NearestOrthonormal(r));
    EXPECT_EQ(r, Diagonal(1.0, 1.0, 1.0));
    // The covariance of the corner tetrahedron: a double value in the order that is hard.
    EXPECT_TRUE(Matrix(Matrix3d::Identity() - Matrix3d::Constant(0.25)).NearestOrthonormal(r));
    EXPECT_LT(Error(ToEigen(r)), 1e-14);
    // Whatever the matrix, all of them return.
    for (const double odd : {std::nan(""), std::numeric_limits<double>::infinity(), 1e300}) {
        for (unsigned int k = 0; k < 9; ++k) {
            r = Diagonal(1.0, 2.0, 3.0);
            r.Element(k / 3, k % 3) = odd;
            MMatrix3x3 other = r;
            other.SquareRootPseudoInverse();
            other.SquareRootInverse();
            EXPECT_TRUE(odd == 1e300 || !r.NearestOrthonormal(r)) << odd << " at " << k;
        }
    }
}

TEST(Matrix2x2, KeepsItsThresholds)
{
    double values[2];
    double vector[2];
    const MMatrix2x2 ordinary(2.0, 1.0, 1.0, 2.0);
    EXPECT_TRUE(ordinary.GetEigenValues(values) && values[0] == 3.0 && values[1] == 1.0);
    EXPECT_TRUE(ordinary.GetEigenVector(vector, 3.0));
    EXPECT_NEAR(vector[0], std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(vector[1], std::sqrt(0.5), 1e-15);
    EXPECT_FALSE(MMatrix2x2(0.0, -1.0, 1.0, 0.0).GetEigenValues(values));
    // A determinant of 0 gives (trace, 0), though the trace is the smaller.
    EXPECT_TRUE(MMatrix2x2(-1.0, 0.0, 0.0, 0.0).GetEigenValues(values) && values[0] == -1.0);
    // The residual is tested on one side: 1.5 is between the values and passes, 4 does not.
    EXPECT_TRUE(ordinary.GetEigenVector(vector, 1.5));
    EXPECT_FALSE(ordinary.GetEigenVector(vector, 4.0));
    EXPECT_TRUE(MMatrix2x2(2.0, 0.0, 0.0, 3.0).GetEigenVector(vector, 3.0) && vector[1] == 1.0);
    EXPECT_TRUE(MMatrix2x2(4.0, 0.0, 1.0, 3.0).GetEigenVector(vector, 4.0));
    EXPECT_NEAR(vector[0], std::sqrt(0.5), 1e-15);

    EXPECT_FALSE(MMatrix2x2(1.0, 1.0, 1.0, 1.0 + 1e-15).Invert());
    MMatrix2x2 m(2.0, 1.0, 4.0, 3.0);
    double x[2]{5.0, 11.0};
    EXPECT_TRUE(m.SolveSquareSet(x, x) && x[0] == 2.0 && x[1] == 1.0);
    EXPECT_TRUE(m.Invert() && m.Value(1, 0) == -2.0);
}

} // namespace
