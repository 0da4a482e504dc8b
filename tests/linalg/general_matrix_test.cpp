#include "support/matrix_values.h"
#include "support/random.h"

#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/lu_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using norvek_test::Random;
using norvek_test::RowByRow;
using Values = std::vector<double>;

MGeneralMatrix RandomMatrix(Random& random, unsigned int rows, unsigned int columns)
{
    MGeneralMatrix a(rows, columns);
    for (unsigned int i = 0; i < rows; ++i) {
        for (unsigned int j = 0; j < columns; ++j)
            a(i, j) = random.Uniform(-1.0, 1.0);
    }
    return a;
}

Eigen::MatrixXd ToEigen(const MMatrix& a)
{
    Eigen::MatrixXd result(a.GetNumRows(), a.GetNumColumns());
    for (unsigned int i = 0; i < a.GetNumRows(); ++i) {
        for (unsigned int j = 0; j < a.GetNumColumns(); ++j)
            result(i, j) = a(i, j);
    }
    return result;
}

TEST(GeneralMatrix, StorageFollowsTheElementCount)
{
    auto* const array = new double[6]{1, 2, 3, 4, 5, 6};
    MGeneralMatrix a(2, 3, array);
    EXPECT_EQ(&a.Element(0, 0), array);
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
    MGeneralMatrix wide(2, 3);
    wide.MakeIdentity();
    EXPECT_EQ(RowByRow(wide), (Values{1, 0, 0, 0, 1, 0}));
}

TEST(GeneralMatrix, ACleanedUpMatrixMayBeCopiedAssignedAndSizedAgain)
{
    MGeneralMatrix a(2, 2);
    a.MakeIdentity();
    a.CleanUp();
    EXPECT_EQ(a.GetNumRows(), 2U);
    const MGeneralMatrix copy(a);
    MGeneralMatrix b(2, 2);
    b = copy;
    EXPECT_EQ(b.GetNumColumns(), 2U);
    EXPECT_TRUE(b.SetDimensions(2, 2));
    b.MakeIdentity();
    a = b;
    EXPECT_EQ(RowByRow(a), (Values{1, 0, 0, 1}));
}

TEST(GeneralMatrix, ArithmeticHasTheBitsOfThePlainLoops)
{
    Random random(301);
    const MGeneralMatrix a = RandomMatrix(random, 7, 5);
    const MGeneralMatrix b = RandomMatrix(random, 5, 9);
    const MGeneralMatrix product = a * b;
    MSymmetricMatrix square;
    EXPECT_TRUE(a.CreateATransposeA(square));
    Values v{0.3, -0.2, 0.7, 0.1, -0.9, 0.5, 0.2};
    Values projected;
    EXPECT_TRUE(a.CalculationVTransposeA(projected, v));
    for (unsigned int i = 0; i < 7; ++i) {
        for (unsigned int j = 0; j < 9; ++j) {
            double sum = 0.0;
            for (unsigned int k = 0; k < 5; ++k)
                sum += a(i, k) * b(k, j);
            EXPECT_EQ(product(i, j), sum);
        }
    }
    for (unsigned int j = 0; j < 5; ++j) {
        double sum = 0.0;
        double cross = 0.0;
        for (unsigned int i = 0; i < 7; ++i) {
            sum += a(i, j) * v[i];
            cross += a(i, 0) * a(i, j);
        }
        EXPECT_EQ(projected[j], sum);
        EXPECT_EQ(square(0, j), cross);
    }
    MGeneralMatrix twice = a + a;
    twice /= 2.0;
    EXPECT_EQ(RowByRow(twice), RowByRow(a));
}

TEST(GeneralMatrix, DeterminantExpandsAlongTheFirstRow)
{
    Random random(302);
    for (const unsigned int n : {2U, 3U, 4U, 6U}) {
        const MGeneralMatrix a = RandomMatrix(random, n, n);
        EXPECT_NEAR(a.Determinant(n), ToEigen(a).determinant(), 1e-14);
        EXPECT_EQ(a.Determinant(1), 0.0);
        EXPECT_EQ(a.Determinant(0), 0.0);
    }
    MGeneralMatrix identity(3, 3);
    identity.MakeIdentity();
    EXPECT_EQ(identity.Determinant(3), 1.0);
}

// The three plain loops, for any shape, with the steps that a singular pivot passes over.
bool PlainElimination(Values& a, unsigned int rows, unsigned int columns)
{
    const auto at = [&](unsigned int i, unsigned int j) -> double& {
        return a[i * columns + j];
    };
    const unsigned int steps = std::min(rows, columns);
    bool regular = true;
    for (unsigned int k = 0; k < steps; ++k) {
        unsigned int p = k;
        for (unsigned int i = k + 1; i < steps; ++i)
            p = std::abs(at(p, k)) < std::abs(at(i, k)) ? i : p;
        for (unsigned int j = 0; p != k && j < columns; ++j)
            std::swap(at(p, j), at(k, j));
        if (std::abs(at(k, k)) <= k * 3.0 * 2.220446049250313e-16) {
            regular = false;
            continue;
        }
        for (unsigned int i = k + 1; i < rows; ++i) {
            at(i, k) /= at(k, k);
            for (unsigned int j = k + 1; j < columns; ++j)
                at(i, j) -= at(i, k) * at(k, j);
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
            MGeneralMatrix a = RandomMatrix(random, rows, columns);
            // Equal columns make a pivot vanish but for rounding, a zero column exactly.
            for (unsigned int i = 0; singular && columns > 4 && i < rows; ++i) {
                a(i, columns - 2) = a(i, 1);
                a(i, 3) = 0.0;
            }
            Values plain = RowByRow(a);
            MLUMatrix lu;
            EXPECT_EQ(a.FactoriseLU(lu), PlainElimination(plain, rows, columns));
            EXPECT_EQ(RowByRow(lu), plain) << rows << " x " << columns;
            EXPECT_EQ(a.GetNumRows() + a.GetNumColumns(), 0U);
            a.RetrieveMemory(lu);
            EXPECT_EQ(RowByRow(a), plain);
            EXPECT_EQ(lu.GetNumRows(), 0U);
        }
    }
}

TEST(LU, SolvesAndKeepsItsRulesOnPivots)
{
    Random random(304);
    for (const unsigned int n : {0U, 1U, 2U, 3U, 6U, 11U, 90U}) {
        MGeneralMatrix a = RandomMatrix(random, n, n);
        Values b(n);
        std::generate(b.begin(), b.end(), [&] { return random.Uniform(-1.0, 1.0); });
        const Eigen::VectorXd expected =
            n == 0 ? Eigen::VectorXd()
                   : Eigen::VectorXd(ToEigen(a).fullPivLu().solve(
                         Eigen::Map<Eigen::VectorXd>(b.data(), static_cast<Eigen::Index>(n))));
        MLUMatrix lu;
        EXPECT_TRUE(a.FactoriseLU(lu));
        EXPECT_TRUE(lu.SolveLUxy(b.data()));
        for (unsigned int i = 0; i < n; ++i)
            EXPECT_NEAR(b[i], expected[i], 1e-10);
    }
    // At step 0 only an exact zero is singular; a tie keeps the upper row.
    MGeneralMatrix tiny(2, 2, new double[4]{1e-300, 1.0, 0.0, 1.0});
    MGeneralMatrix zero(2, 2, new double[4]{0.0, 1.0, 0.0, 1.0});
    MGeneralMatrix tie(2, 2, new double[4]{-1.0, 2.0, 1.0, 5.0});
    MLUMatrix lu;
    EXPECT_TRUE(tiny.FactoriseLU(lu));
    EXPECT_FALSE(zero.FactoriseLU(lu));
    double b[2]{1.0, 1.0};
    EXPECT_FALSE(lu.SolveLUxy(b));
    EXPECT_TRUE(tie.FactoriseLU(lu));
    EXPECT_EQ(RowByRow(lu), (Values{-1.0, 2.0, -1.0, 7.0}));
    MGeneralMatrix tall = RandomMatrix(random, 9, 5);
    EXPECT_TRUE(tall.FactoriseLU(lu));
    Values right(9, 1.0);
    EXPECT_FALSE(lu.SolveLUxy(right.data()));
}

TEST(QR, TilesHaveTheBitsOfThePlainLoopsAndOperandsMayBeTheMatrix)
{
    Random random(305);
    const std::pair<unsigned int, unsigned int> shapes[]{{1, 1},   {4, 4},   {10, 10},
                                                         {40, 17}, {30, 24}, {5, 8}};
    for (const auto& [m, n] : shapes) {
        MGeneralMatrix a = RandomMatrix(random, m, n);
        MGeneralMatrix w = a;
        MGeneralMatrix plainQ(m, n);
        MGeneralMatrix plainR(n, n);
        plainR.SetToZero();
        for (unsigned int k = 0; k < n; ++k) {
            double square = 0.0;
            for (unsigned int i = 0; i < m; ++i)
                square += w(i, k) * w(i, k);
            plainR(k, k) = std::sqrt(square);
            for (unsigned int i = 0; i < m; ++i)
                plainQ(i, k) = w(i, k) / plainR(k, k);
            for (unsigned int j = k + 1; j < n; ++j) {
                for (unsigned int i = 0; i < m; ++i)
                    plainR(k, j) += w(i, j) * plainQ(i, k);
                for (unsigned int i = 0; i < m; ++i)
                    w(i, j) -= plainQ(i, k) * plainR(k, j);
            }
        }
        MGeneralMatrix q(n, n);
        EXPECT_TRUE(a.FactoriseQR(q, a));
        EXPECT_EQ(RowByRow(q), RowByRow(plainQ)) << m << " x " << n;
        EXPECT_EQ(RowByRow(a), RowByRow(plainR)) << m << " x " << n;
    }
    MGeneralMatrix empty;
    EXPECT_FALSE(empty.FactoriseQR(empty, empty));
}

TEST(QR, LeastSquaresAgreesWithAnIndependentSolver)
{
    Random random(306);
    for (const unsigned int n : {1U, 3U, 9U, 20U}) {
        MGeneralMatrix a = RandomMatrix(random, 2 * n + 1, n);
        Values b(2 * n + 1);
        std::generate(b.begin(), b.end(), [&] { return random.Uniform(-1.0, 1.0); });
        const Eigen::VectorXd expected = ToEigen(a).colPivHouseholderQr().solve(
            Eigen::Map<Eigen::VectorXd>(b.data(), static_cast<Eigen::Index>(b.size())));
        EXPECT_TRUE(a.SolveLeastSquare(b.data(), b.data()));
        for (unsigned int i = 0; i < n; ++i)
            EXPECT_NEAR(b[i], expected[i], 1e-12);
    }
    // A zero column is not detected; it gives non-finite values.
    MGeneralMatrix zero(2, 1, new double[2]{0.0, 0.0});
    double b[2]{1.0, 1.0};
    EXPECT_TRUE(zero.SolveLeastSquare(b, b));
    EXPECT_FALSE(std::isfinite(b[0]));
}

TEST(GeneralMatrix, HouseholderReflects)
{
    MGeneralMatrix h(3, 3);
    double axis[3]{1.0, 0.0, 0.0};
    EXPECT_TRUE(h.HouseholderReflection(axis));
    EXPECT_EQ(RowByRow(h), (Values{-1, 0, 0, 0, 1, 0, 0, 0, 1}));
    const Values before = RowByRow(h);
    double zero[3]{};
    EXPECT_FALSE(h.HouseholderReflection(zero));
    EXPECT_EQ(RowByRow(h), before);
}

TEST(PowerIteration, FindsTheDominantVectorAndEndsEverywhere)
{
    MGeneralMatrix a(2, 2, new double[4]{3.0, 1.0, 1.0, 3.0});
    Values x;
    a.GetDominantEigenVector(x);
    // The norm counts every partial sum: 3 + 4 + 1 + 4.
    EXPECT_NEAR(x[0], 4.0 / 12.0, 1e-15);
    EXPECT_NEAR(x[1], 4.0 / 12.0, 1e-15);
    MGeneralMatrix identity(3, 3);
    identity.MakeIdentity();
    identity.GetLeastEigenVector(x);
    EXPECT_EQ(x, (Values{1, 0, 0}));
    // A zero matrix, and one whose norm swings for ever.
    MGeneralMatrix zero(2, 2, new double[4]{});
    MGeneralMatrix swinging(2, 2, new double[4]{0.0, 3.0, 2.0, 0.0});
    for (const MGeneralMatrix* matrix : {&zero, &swinging}) {
        matrix->GetLeastEigenVector(x);
        EXPECT_TRUE(std::isnan(x[0]));
    }
    zero.GetDominantEigenVector(x);
    EXPECT_TRUE(std::isnan(x[0]));
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
    EXPECT_EQ(g.Value(0, 3), 0.0);

    double b[4]{1.0, -2.0, 3.0, 0.5};
    const Eigen::MatrixXd dense = ToEigen(g);
    const Eigen::Vector4d expected =
        (dense * dense.transpose()).fullPivLu().solve(Eigen::Map<Eigen::Vector4d>(b).eval());
    const MLowerTriangularMatrix copy(g);
    EXPECT_TRUE(copy.SOLVE_G_TG_X_B(b));
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(b[i], expected[i], 1e-14);
    // The first diagonal element is not tested on the way forwards, but it is on the way back.
    g(0, 0) = 0.0;
    EXPECT_FALSE(g.SOLVE_G_TG_X_B(b));
    EXPECT_TRUE(g.SetDimensions(2, 8));
    EXPECT_FALSE(g.SOLVE_G_TG_X_B(b));
}

} // namespace
