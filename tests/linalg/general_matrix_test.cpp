#include "support/matrix_families.h"

#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/lu_matrix.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using namespace norvek_test;
using Values = std::vector<double>;

TEST(GeneralMatrix, StorageFollowsTheElementCount)
{
    auto* const array = new double[6]{1, 2, 3, 4, 5, 6};
    MGeneralMatrix a(2, 3, array);
    EXPECT_TRUE(a.SetDimensions(3, 2));
    EXPECT_EQ(&a.Element(0, 0), array);
    EXPECT_EQ(a.Value(2, 1), 6.0);
    EXPECT_FALSE(a.SetDimensions(4294967295U, 4294967295U));
    EXPECT_EQ(a.GetNumRows(), 3U);

    MGeneralMatrix target(1, 2);
    a.GetSubMatrix(target, 1, 0);
    EXPECT_EQ(RowByRow(target), (Values{3, 4}));
    a.SetSubMatrix(target, 2, 0);
    EXPECT_EQ(RowByRow(a), (Values{1, 2, 3, 4, 3, 4}));
    target.Copy(&a);
    EXPECT_EQ(RowByRow(target), (Values{1, 2}));
    EXPECT_TRUE(a.SetDimensions(2, 3));
    a.MakeIdentity();
    EXPECT_EQ(RowByRow(a), (Values{1, 0, 0, 0, 1, 0}));
}

TEST(GeneralMatrix, ACleanedUpMatrixMayBeCopiedAssignedAndSizedAgain)
{
    const MGeneralMatrix whole = General(RowMajor::Identity(2, 2));
    MGeneralMatrix a = whole;
    a.CleanUp();
    MGeneralMatrix b = whole;
    b = MGeneralMatrix(a);
    EXPECT_EQ(b.GetNumColumns(), 2U);
    EXPECT_TRUE(b.SetDimensions(2, 2));
    a = whole;
    EXPECT_EQ(ToEigen(a), ToEigen(whole));
}

TEST(GeneralMatrix, ArithmeticHasTheBitsOfThePlainLoops)
{
    Random random(301);
    const RowMajor a = RandomElements(random, 7, 5);
    const RowMajor b = RandomElements(random, 5, 9);
    EXPECT_EQ(ToEigen(General(a) * General(b)), PlainProduct(a, b));
    MSymmetricMatrix square;
    EXPECT_TRUE(General(a).CreateATransposeA(square));
    EXPECT_EQ(ToEigen(square), PlainProduct(a.transpose(), a));
    const RowMajor v = RandomElements(random, 1, 7);
    Values projected;
    EXPECT_TRUE(General(a).CalculationVTransposeA(projected, {v.data(), v.data() + 7}));
    EXPECT_EQ(projected, RowByRow(General(PlainProduct(v, a))));
    MGeneralMatrix same = General(a) + General(a);
    same /= 4.0;
    same *= 2.0;
    EXPECT_EQ(ToEigen(same), a);
}

TEST(GeneralMatrix, DeterminantExpandsAlongTheFirstRow)
{
    Random random(302);
    for (const unsigned int n : {2U, 3U, 4U, 6U}) {
        const RowMajor a = RandomElements(random, n, n);
        EXPECT_NEAR(General(a).Determinant(n), a.determinant(), 1e-14);
        // Orders 0 and 1 are 0.
        EXPECT_EQ(General(a).Determinant(n % 2), 0.0);
    }
}

// With the steps that a singular pivot passes over.
bool PlainElimination(RowMajor& a)
{
    const Eigen::Index steps = std::min(a.rows(), a.cols());
    bool regular = true;
    for (Eigen::Index k = 0; k < steps; ++k) {
        Eigen::Index p = k;
        for (Eigen::Index i = k + 1; i < steps; ++i)
            p = std::abs(a(p, k)) < std::abs(a(i, k)) ? i : p;
        a.row(k).swap(a.row(p));
        if (std::abs(a(k, k)) <= static_cast<double>(k) * 3.0 * kEpsilon) {
            regular = false;
            continue;
        }
        for (Eigen::Index i = k + 1; i < a.rows(); ++i) {
            a(i, k) /= a(k, k);
            a.row(i).tail(a.cols() - k - 1) -= a(i, k) * a.row(k).tail(a.cols() - k - 1);
        }
    }
    return regular;
}

TEST(LU, PanelsHaveTheBitsOfThePlainLoops)
{
    Random random(303);
    const std::pair<unsigned int, unsigned int> shapes[]{{1, 1},    {4, 4},   {10, 10},   {72, 72},
                                                         {73, 73},  {99, 99}, {160, 160}, {80, 131},
                                                         {131, 80}, {5, 9},   {9, 5}};
    for (const auto& [rows, columns] : shapes) {
        for (const bool singular : {false, true}) {
            RowMajor plain = RandomElements(random, rows, columns);
            // Equal columns make a pivot vanish but for rounding, a zero column exactly.
            if (singular && columns > 4) {
                plain.col(columns - 2) = plain.col(1);
                plain.col(3).setZero();
            }
            MGeneralMatrix a = General(plain);
            MLUMatrix lu;
            EXPECT_EQ(a.FactoriseLU(lu), PlainElimination(plain));
            EXPECT_EQ(ToEigen(lu), plain) << rows << " x " << columns;
            EXPECT_EQ(a.GetNumRows() + a.GetNumColumns(), 0U);
            a.RetrieveMemory(lu);
            EXPECT_EQ(ToEigen(a), plain);
            EXPECT_EQ(lu.GetNumRows(), 0U);
        }
    }
}

TEST(LU, KeepsItsRulesOnPivots)
{
    MLUMatrix lu;
    double b[9]{1.0, 1.0};
    EXPECT_TRUE(MGeneralMatrix().FactoriseLU(lu) && lu.SolveLUxy(b));
    // At step 0 only an exact zero is singular; a tie keeps the upper row.
    EXPECT_TRUE(General(RowMajor{{1e-300, 1}, {0, 1}}).FactoriseLU(lu));
    EXPECT_FALSE(General(RowMajor{{0, 1}, {0, 1}}).FactoriseLU(lu) || lu.SolveLUxy(b));
    EXPECT_TRUE(General(RowMajor{{-1, 2}, {1, 5}}).FactoriseLU(lu));
    EXPECT_EQ(RowByRow(lu), (Values{-1.0, 2.0, -1.0, 7.0}));
    Random random(304);
    EXPECT_TRUE(General(RandomElements(random, 9, 5)).FactoriseLU(lu));
    EXPECT_FALSE(lu.SolveLUxy(b));
}

TEST(QR, TilesHaveTheBitsOfThePlainLoopsAndOperandsMayBeTheMatrix)
{
    Random random(305);
    const std::pair<unsigned int, unsigned int> shapes[]{{1, 1},   {4, 4},   {10, 10},
                                                         {40, 17}, {30, 24}, {5, 8}};
    for (const auto& [m, n] : shapes) {
        RowMajor plain = RandomElements(random, m, n);
        MGeneralMatrix r = General(plain);
        MGeneralMatrix q(n, n);
        EXPECT_TRUE(r.FactoriseQR(q, r));
        RowMajor plainR = RowMajor::Zero(n, n);
        for (Eigen::Index k = 0; k < n; ++k) {
            auto column = plain.col(k);
            plainR(k, k) = std::sqrt(Dot(column, column));
            column /= plainR(k, k);
            for (Eigen::Index j = k + 1; j < n; ++j) {
                plainR(k, j) = Dot(plain.col(j), column);
                plain.col(j) -= column * plainR(k, j);
            }
        }
        EXPECT_EQ(ToEigen(q), plain) << m << " x " << n;
        EXPECT_EQ(ToEigen(r), plainR) << m << " x " << n;
    }
    // A zero column is not detected; it gives non-finite values.
    MGeneralMatrix zero(2, 1);
    zero.SetToZero();
    double b[2]{1.0, 1.0};
    EXPECT_TRUE(zero.SolveLeastSquare(b, b));
    EXPECT_FALSE(std::isfinite(b[0]));
    MGeneralMatrix empty;
    EXPECT_FALSE(empty.FactoriseQR(empty, empty) || empty.SolveLeastSquare(b, b));
}

// LAPACK's scaled residuals: in units of the matrix, its order and the machine epsilon, where a
// sound method stays below 30 on every matrix. Gram and Schmidt's R is as good as Householder's;
// their Q loses orthogonality in proportion to the condition, and with it a solution from Q'b.
TEST(ScaledResiduals, OfLUAndGramSchmidtOnHardMatrices)
{
    Random random(406);
    int solved = 0;
    const auto check = [&](const RowMajor& symmetric) {
        // Its rows are moved round by one so that LU has to exchange some. Below it come its rows
        // upside down at half the size: a tall matrix of the same condition.
        const Eigen::Index n = symmetric.rows();
        RowMajor tall(2 * n, n);
        tall << symmetric.bottomRows(n - 1), symmetric.topRows(1),
            0.5 * symmetric.colwise().reverse();
        const double unit = 30.0 * static_cast<double>(n) * kEpsilon;
        const RowMajor a = tall.topRows(n);
        const RowMajor b = RandomElements(random, 2 * n, 1);
        RowMajor x = b.topRows(n);
        MLUMatrix lu;
        if (General(a).FactoriseLU(lu) && lu.SolveLUxy(x.data())) {
            ++solved;
            EXPECT_LE(OneNorm(b.topRows(n) - a * x), unit * OneNorm(a) * OneNorm(x));
        }
        if (a.isZero(0.0))
            return;
        MGeneralMatrix q;
        MGeneralMatrix r;
        ASSERT_TRUE(General(tall).FactoriseQR(q, r));
        EXPECT_LE(OneNorm(tall - ToEigen(q) * ToEigen(r)), 2.0 * unit * OneNorm(tall));
        const Eigen::VectorXd singular = Eigen::JacobiSVD<RowMajor>(tall).singularValues();
        const double condition = singular(0) / singular(n - 1);
        if (condition * unit > 0.3)
            return;
        const RowMajor gram = ToEigen(q).transpose() * ToEigen(q);
        EXPECT_LE(OneNorm(RowMajor::Identity(n, n) - gram), unit * condition);
        // Where the solution goes, the right side may lie.
        RowMajor right = b;
        ASSERT_TRUE(General(tall).SolveLeastSquare(right.data(), right.data()));
        const RowMajor rest = b - tall * right.topRows(n);
        EXPECT_LE((tall.transpose() * rest).norm(),
                  2.0 * unit * condition * tall.norm() * b.norm());
    };
    ForEachMatrix(random, check);
    // All but Wilkinson's of order 1, which is 0, and Hilbert's of order 50 and Rosser's, whose
    // last pivots are rounding errors.
    EXPECT_GE(solved, 33);
    for (const int n : {11, 90})
        check(RandomElements(random, n, n));
}

TEST(GeneralMatrix, HouseholderReflects)
{
    MGeneralMatrix h(3, 3);
    double axis[3]{2.0, 0.0, 0.0};
    EXPECT_TRUE(h.HouseholderReflection(axis));
    double zero[3]{};
    EXPECT_FALSE(h.HouseholderReflection(zero));
    EXPECT_EQ(RowByRow(h), (Values{-1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

TEST(PowerIteration, FindsTheDominantVectorAndEndsEverywhere)
{
    Values x;
    General(RowMajor{{3, 1}, {1, 3}}).GetDominantEigenVector(x);
    // The norm counts every partial sum: 3 + 4 + 1 + 4.
    EXPECT_NEAR(x[0], 4.0 / 12.0, 1e-15);
    EXPECT_NEAR(x[1], 4.0 / 12.0, 1e-15);
    General(RowMajor::Identity(3, 3)).GetLeastEigenVector(x);
    EXPECT_EQ(x, (Values{1, 0, 0}));
    // A zero matrix, and one whose norm swings for ever.
    for (const RowMajor& endless : {RowMajor{{0, 0}, {0, 0}}, RowMajor{{0, 3}, {2, 0}}}) {
        General(endless).GetLeastEigenVector(x);
        EXPECT_TRUE(std::isnan(x[0]));
    }
    MGeneralMatrix().GetDominantEigenVector(x);
    EXPECT_TRUE(x.empty());
}

TEST(LowerTriangularMatrix, HasRoomInEveryShapeOfOneProduct)
{
    MLowerTriangularMatrix g;
    EXPECT_TRUE(g.SetDimensions(2, 8));
    EXPECT_TRUE(g.SetDimensions(4, 4));
    for (unsigned int i = 0; i < 4; ++i) {
        for (unsigned int j = 0; j <= i; ++j)
            g(i, j) = i == j ? 2.0 + i : 0.5;
    }
    EXPECT_EQ(&g.Element(0, 3), &g.Element(0, 0));
    const RowMajor dense = ToEigen(g);
    EXPECT_EQ(dense(0, 3), 0.0);
    const Eigen::Vector4d right(1.0, -2.0, 3.0, 0.5);
    Eigen::Vector4d x = right;
    const MLowerTriangularMatrix copy(g);
    EXPECT_TRUE(copy.SOLVE_G_TG_X_B(x.data()));
    EXPECT_LT((dense * dense.transpose() * x - right).norm(), 1e-14);
    // The first diagonal element is not tested on the way forwards, but it is on the way back.
    g(0, 0) = 0.0;
    EXPECT_FALSE(g.SOLVE_G_TG_X_B(x.data()));
    EXPECT_TRUE(g.SetDimensions(2, 8));
    EXPECT_FALSE(g.SOLVE_G_TG_X_B(x.data()));
}

} // namespace
