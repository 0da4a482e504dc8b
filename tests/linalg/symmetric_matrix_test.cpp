#include "support/matrix_values.h"

#include <norvek/linalg/lower_triangular_matrix.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace
{

using namespace norvek_test;
using Values = std::vector<double>;

TEST(SymmetricMatrix, StoresEachPairOnce)
{
    MSymmetricMatrix s = Packed(RowMajor{{0, 2, 0}, {2, 0, -2}, {0, -2, 3}});
    EXPECT_EQ(s.GetEuclidNormSq(), 25.0);
    EXPECT_EQ(s.GetOffDiagonalEuclidNormSq(), 16.0);
    EXPECT_FALSE(s.SetDimensions(3, 4));
    MSymmetricMatrix damped;
    s.MultiplyDiagonal(damped, 1.5);
    EXPECT_EQ(RowByRow(damped), (Values{0, 2, 0, 2, 0, -2, 0, -2, 4.5}));
    s.MultiplyDiagonal(s, 2.0);
    EXPECT_EQ(s.Value(2, 2), 6.0);
    s.SetToZero();
    EXPECT_EQ(s.GetEuclidNormSq(), 0.0);
    s.CleanUp();
    damped = s;
    EXPECT_EQ(damped.GetNumRows(), 3U);
}

// On a full matrix of which only the lower triangle is looked at.
bool PlainCholesky(RowMajor& a)
{
    for (Eigen::Index k = 0; k < a.cols(); ++k) {
        for (Eigen::Index i = k; i < a.rows(); ++i)
            a(i, k) -= Dot(a.row(i).head(k), a.row(k).head(k));
        if (a(k, k) <= 0.0)
            return false;
        a.col(k).tail(a.rows() - k) /= std::sqrt(a(k, k));
    }
    return true;
}

TEST(Cholesky, StripsHaveTheBitsOfThePlainLoopsAlsoOnFailure)
{
    Random random(401);
    for (const unsigned int n : {1U, 2U, 7U, 28U, 29U, 31U, 32U, 33U, 50U, 98U}) {
        for (const unsigned int badPivot : {n, n - 1, n / 2, n / 3}) {
            RowMajor plain = RandomElements(random, n, n);
            plain.diagonal().array() += n;
            if (badPivot < n)
                plain(badPivot, badPivot) = 1e-3;
            MSymmetricMatrix s = Packed(plain);
            const RowMajor before = ToEigen(s);
            const bool isDefinite = PlainCholesky(plain);
            EXPECT_EQ(s.FactoriseCholesky(), isDefinite);
            EXPECT_EQ(RowByRow(s), RowByRow(Packed(plain))) << n;
            const RowMajor g = plain.triangularView<Eigen::Lower>();
            EXPECT_TRUE(!isDefinite || (before - g * g.transpose()).norm() <= 1e-14 * n);
        }
    }
    // NaN passes the test of a pivot.
    MSymmetricMatrix s = Packed(RowMajor::Zero(40, 40));
    s(0, 0) = NAN;
    EXPECT_TRUE(s.FactoriseCholesky());
    EXPECT_TRUE(std::isnan(s(39, 39)));
    // The storage is handed over, but not on failure.
    MLowerTriangularMatrix g;
    s = Packed(RowMajor{{4, 0}, {0, 9}});
    EXPECT_TRUE(g.SetDimensions(5, 5) && s.FACTORISE_CHOLESKY(g));
    EXPECT_EQ(RowByRow(g), (Values{2, 0, 0, 3}));
    EXPECT_EQ(s.GetNumRows() + s.GetNumColumns(), 0U);
    EXPECT_TRUE(s.FactoriseCholesky());
    s = Packed(RowMajor{{-1}});
    EXPECT_FALSE(s.FACTORISE_CHOLESKY(g));
    EXPECT_EQ(s.GetNumRows() + g.GetNumRows(), 3U);
}

} // namespace
