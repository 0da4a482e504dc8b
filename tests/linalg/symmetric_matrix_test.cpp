#include "support/random.h"

#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace
{

using norvek_test::Random;
using Values = std::vector<double>;

Values RowByRow(const MMatrix& a)
{
    Values values;
    for (unsigned int i = 0; i < a.GetNumRows(); ++i) {
        for (unsigned int j = 0; j < a.GetNumColumns(); ++j)
            values.push_back(a(i, j));
    }
    return values;
}

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
            MSymmetricMatrix s(n);
            for (unsigned int i = 0; i < n; ++i) {
                for (unsigned int j = 0; j <= i; ++j)
                    s(i, j) = random.Uniform(-1.0, 1.0) + (i == j ? n : 0.0);
            }
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

} // namespace
