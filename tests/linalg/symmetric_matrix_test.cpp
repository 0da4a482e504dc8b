#include "support/matrix_families.h"
#include "support/matrix_values.h"

#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/jacobi_eigenvectors.h>
#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace
{

using norvek_test::Packed;
using norvek_test::Random;
using norvek_test::RowByRow;
using Values = std::vector<double>;

TEST(SymmetricMatrix, StoresEachPairOnce)
{
    MSymmetricMatrix s(3);
    s.SetToZero();
    s(0, 1) = 2.0;
    s(2, 2) = 3.0;
    EXPECT_EQ(s.Value(1, 0), 2.0);
    EXPECT_EQ(s.GetEuclidNormSq(), 17.0);
    EXPECT_EQ(s.GetOffDiagonalEuclidNormSq(), 8.0);
    EXPECT_FALSE(s.SetDimensions(3, 4));
    MSymmetricMatrix damped;
    s.MultiplyDiagonal(damped, 1.5);
    EXPECT_EQ(RowByRow(damped), (Values{0, 2, 0, 2, 0, 0, 0, 0, 4.5}));
    unsigned int p = 7;
    unsigned int q = 7;
    MSymmetricMatrix().ChooseJacobiIndices(p, q);
    EXPECT_EQ(p + q, 0U);
    s(2, 1) = -2.0;
    s.ChooseJacobiIndices(p, q);
    EXPECT_EQ(std::pair(p, q), std::pair(0U, 1U));
    s(2, 1) = -2.5;
    s.ChooseJacobiIndices(p, q);
    EXPECT_EQ(std::pair(p, q), std::pair(1U, 2U));
    s.MultiplyDiagonal(s, 2.0);
    EXPECT_EQ(s.Value(2, 2), 6.0);
    s.CleanUp();
    damped = s;
    EXPECT_EQ(damped.GetNumRows(), 3U);
}

TEST(Cholesky, HandsItsStorageOverAndFailsAtThePivot)
{
    MSymmetricMatrix s(2);
    s.SetToZero();
    s(0, 0) = 4.0;
    s(1, 1) = 9.0;
    MLowerTriangularMatrix g;
    EXPECT_TRUE(g.SetDimensions(5, 5));
    EXPECT_TRUE(s.FACTORISE_CHOLESKY(g));
    EXPECT_EQ(RowByRow(g), (Values{2, 0, 0, 3}));
    EXPECT_EQ(s.GetNumRows() + s.GetNumColumns(), 0U);
    EXPECT_TRUE(s.FactoriseCholesky());

    // The column of the pivot is reduced, but not divided.
    EXPECT_TRUE(s.SetDimensions(3, 3));
    s.SetToZero();
    s(0, 0) = 4.0;
    s(0, 1) = s(0, 2) = 2.0;
    s(1, 1) = s(1, 2) = 1.0;
    s(2, 2) = 7.0;
    EXPECT_FALSE(s.FACTORISE_CHOLESKY(g));
    EXPECT_EQ(RowByRow(s), (Values{2, 1, 1, 1, 0, 0, 1, 0, 7}));
    EXPECT_EQ(g.GetNumRows(), 2U);
}

// The loops on a full matrix of which only the lower triangle is looked at.
bool PlainCholesky(Values& a, unsigned int n)
{
    for (unsigned int k = 0; k < n; ++k) {
        for (unsigned int i = k; k > 0 && i < n; ++i) {
            double sum = 0.0;
            for (unsigned int j = 0; j < k; ++j)
                sum += a[i * n + j] * a[k * n + j];
            a[i * n + k] -= sum;
        }
        if (a[k * n + k] <= 0.0)
            return false;
        const double root = std::sqrt(a[k * n + k]);
        for (unsigned int i = k; i < n; ++i)
            a[i * n + k] /= root;
    }
    return true;
}

TEST(Cholesky, StripsHaveTheBitsOfThePlainLoopsAlsoOnFailure)
{
    Random random(401);
    for (const unsigned int n : {1U, 2U, 7U, 28U, 29U, 31U, 32U, 33U, 50U, 98U}) {
        for (const unsigned int badPivot : {n, n - 1, n / 2, n / 3}) {
            MSymmetricMatrix s = Packed(norvek_test::kMatrixFamilies[0].make(random, n), n);
            for (unsigned int i = 0; i < n; ++i)
                s(i, i) += n;
            if (badPivot < n)
                s(badPivot, badPivot) = 1e-3;
            Values plain = RowByRow(s);
            EXPECT_EQ(s.FactoriseCholesky(), PlainCholesky(plain, n));
            for (unsigned int i = 0; i < n; ++i) {
                for (unsigned int j = 0; j <= i; ++j)
                    ASSERT_EQ(s(i, j), plain[i * n + j]) << n << ": " << i << ", " << j;
            }
        }
    }
    // NaN passes the test of a pivot.
    MSymmetricMatrix s(40);
    s.SetToZero();
    s(0, 0) = NAN;
    EXPECT_TRUE(s.FactoriseCholesky());
    EXPECT_TRUE(std::isnan(s(39, 39)));
}

double OneNorm(const Eigen::MatrixXd& a)
{
    return a.cwiseAbs().colwise().sum().maxCoeff();
}

constexpr double kEpsilon = 2.220446049250313e-16;

// |A - Z D Z'| and |I - Z Z'| against n machine epsilons, and what a tolerance adds to the first.
void ExpectEigens(const Values& values, const Values& d, const Eigen::MatrixXd& z, double limit,
                  double tolerance)
{
    const auto n = static_cast<Eigen::Index>(d.size());
    const Eigen::MatrixXd a = Eigen::Map<const Eigen::MatrixXd>(values.data(), n, n);
    const Eigen::VectorXd diagonal = Eigen::Map<const Eigen::VectorXd>(d.data(), n);
    const double unit = limit * static_cast<double>(n) * kEpsilon;
    EXPECT_LE(OneNorm(a - z * diagonal.asDiagonal() * z.transpose()),
              unit * OneNorm(a) + tolerance);
    EXPECT_LE(OneNorm(Eigen::MatrixXd::Identity(n, n) - z * z.transpose()), unit);
}

TEST(SymmetricSolvers, ResidualsAreSmallOnHardMatrices)
{
    Random random(404);
    using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    norvek_test::ForEachMatrix(random, [](const char* name, unsigned int n, const Values& values) {
        SCOPED_TRACE(::testing::Message() << name << ' ' << n);
        const double root = std::sqrt(n);
        Values d;
        MGeneralMatrix vectors;
        // The absolute 1e-8 is all that limits QL, and nothing where values are large.
        for (const double scale : {1.0, 0x1p40}) {
            Values scaled = values;
            std::for_each(scaled.begin(), scaled.end(), [=](double& value) { value *= scale; });
            EXPECT_TRUE(Packed(scaled, n).CalculateEigenVectors(d, vectors));
            const Values z = RowByRow(vectors);
            ExpectEigens(scaled, d, Eigen::Map<const RowMajor>(z.data(), n, n), 30.0,
                         scale == 1.0 ? 2e-8 * root : 0.0);
        }

        const Eigen::MatrixXd a = Eigen::Map<const Eigen::MatrixXd>(values.data(), n, n);
        // 200 n rotations take part in every row of the vectors: they leave more than 30.
        for (const double tolerance : {1e-12, 1e-30}) {
            MJacobiEigenVectors jacobi(n);
            Packed(values, n).GetEigensJacobi(jacobi.Receive(), d.data(), tolerance);
            Eigen::MatrixXd z(n, n);
            for (unsigned int i = 0; i < n; ++i)
                z.col(i) = Eigen::Map<const Eigen::VectorXd>(jacobi[i], n);
            if (a.norm() > 0.0)
                ExpectEigens(values, d, z, 100.0, std::sqrt(tolerance) * root * a.norm());
        }

        // Just so much more than positive semidefinite that rounding cannot make it indefinite.
        Eigen::MatrixXd square = a * a;
        square.diagonal().array() += 1e-14 * n * OneNorm(square) + 1e-300;
        square.triangularView<Eigen::StrictlyUpper>() = square.transpose();
        const double norm = OneNorm(square);
        MLowerTriangularMatrix factor;
        EXPECT_TRUE(Packed(Values(square.data(), square.data() + square.size()), n)
                        .FACTORISE_CHOLESKY(factor));
        const Values rows = RowByRow(factor);
        const Eigen::MatrixXd g = Eigen::Map<const RowMajor>(rows.data(), n, n);
        EXPECT_LE(OneNorm(square - g * g.transpose()), 30.0 * n * kEpsilon * norm);
        const Eigen::VectorXd b = Eigen::VectorXd::LinSpaced(n, 1.0, 2.0);
        Eigen::VectorXd x = b;
        if (factor.SOLVE_G_TG_X_B(x.data()))
            EXPECT_LE((b - square * x).lpNorm<1>(), 30.0 * kEpsilon * norm * x.lpNorm<1>());
        else
            EXPECT_LE(norm, kEpsilon);
    });
}

// Nothing is expected of the results: every call returns.
TEST(SymmetricSolvers, ReturnFromEverything)
{
    Random random(405);
    const double hostile[]{0.0, 1.0, -2.0, NAN, INFINITY, -INFINITY, 1e308, -1e308, 1e-310};
    for (int round = 0; round < 2000; ++round) {
        const auto n = static_cast<unsigned int>(round < 20 ? 29 : random.Integer(0, 5));
        MSymmetricMatrix s(n);
        for (unsigned int i = 0; i < n * n; ++i)
            s(i / n, i % n) = hostile[random.Integer(0, 8)];
        Values values(n);
        Values beside;
        MGeneralMatrix vectors;
        MJacobiEigenVectors jacobi(n);
        s.GetEigensJacobi(jacobi.Receive(), values.data(), hostile[random.Integer(0, 8)]);
        s.HouseholderReduction(values, beside, vectors);
        s.CalculateEigenVectors(values, vectors);
        MLowerTriangularMatrix g;
        if (s.FACTORISE_CHOLESKY(g))
            g.SOLVE_G_TG_X_B(values.data());
    }
}

} // namespace
