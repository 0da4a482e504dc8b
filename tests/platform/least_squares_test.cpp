#include "platform/banded_qr.h"
#include "platform/least_squares.h"
#include "support/random.h"

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace
{

using namespace Norvek::Math::Core;
using norvek_test::Random;
using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

ConstMatrixView View(const RowMajor& a)
{
    return {static_cast<std::size_t>(a.rows()), static_cast<std::size_t>(a.cols()), a.data()};
}

// The solution, or NaN where it is refused. What the solution does not take is as it was.
RowMajor Solve(const RowMajor& a, const RowMajor& b)
{
    RowMajor x = b;
    const bool isSolved =
        SolveDenseLeastSquares(View(a), {View(x).rows, View(x).columns, x.data()});
    const Eigen::Index taken = isSolved ? a.cols() * b.cols() : 0;
    const auto kept = static_cast<std::size_t>(b.size() - taken) * sizeof(double);
    EXPECT_EQ(std::memcmp(x.data() + taken, b.data() + taken, kept), 0);
    if (!isSolved)
        x.setConstant(kNaN);
    return x.topRows(a.cols());
}

// The same equations with the last one first: no longer banded.
RowMajor SolveUpsideDown(const RowMajor& a, const RowMajor& b)
{
    return Solve(a.colwise().reverse(), b.colwise().reverse());
}

// Each row as the run of `width` values from its first nonzero value on.
struct Runs : RunSource
{
    Runs(const RowMajor& matrix, Eigen::Index length) : a(matrix), width(length)
    {}

    void Make(std::size_t begin, std::size_t end, double* values,
              std::uint32_t* firsts) const override
    {
        for (auto i = static_cast<Eigen::Index>(begin); i < static_cast<Eigen::Index>(end); ++i) {
            Eigen::Index first = 0;
            while (first < a.cols() - width && a(i, first) == 0.0)
                ++first;
            *firsts++ = static_cast<std::uint32_t>(first);
            values = std::copy_n(a.row(i).data() + first, width, values);
        }
    }

    const RowMajor& a;
    Eigen::Index width;
};

RowMajor SolveRuns(const RowMajor& a, const RowMajor& b, Eigen::Index width)
{
    const Runs runs(a, width);
    RowMajor x(a.cols(), b.cols());
    EXPECT_TRUE(SolveLeastSquaresOfRuns(
        {View(a).rows, View(a).columns, static_cast<std::size_t>(width), &runs}, View(b),
        x.data()));
    return x;
}

bool IsBanded(const RowMajor& a)
{
    return BandedQR(View(a), View(a)).Factorise();
}

RowMajor RandomMatrix(Random& random, Eigen::Index rows, Eigen::Index columns)
{
    return RowMajor::NullaryExpr(rows, columns, [&] { return random.Uniform(-1.0, 1.0); });
}

// Runs of `width` that advance evenly from the first column to the last. Where there are rows
// enough, they begin with one value and grow on the way down.
RowMajor RandomBanded(Random& random, Eigen::Index rows, Eigen::Index columns, Eigen::Index width)
{
    RowMajor a = RowMajor::Zero(rows, columns);
    for (Eigen::Index i = 0; i < rows; ++i) {
        const Eigen::Index first = i * (columns - width + 1) / rows;
        const Eigen::Index length = rows < 4 * columns ? width : 1 + i * width / rows;
        for (Eigen::Index k = 0; k < length; ++k)
            a(i, first + k) = random.Uniform(0.1, 1.0);
    }
    return a;
}

void ExpectRefused(const RowMajor& a, const RowMajor& b)
{
    EXPECT_TRUE(Solve(a, b).hasNaN() && SolveUpsideDown(a, b).hasNaN());
}

TEST(LeastSquares, AllFormsAgreeWithExtendedPrecision)
{
    constexpr Eigen::Index shapes[][4] = {{1, 1, 1, 1},     {7, 1, 1, 2},    {2, 2, 1, 1},
                                          {9, 5, 4, 3},     {20, 20, 3, 1},  {30, 12, 12, 2},
                                          {64, 40, 20, 3},  {90, 80, 40, 1}, {300, 60, 7, 3},
                                          {2000, 10, 4, 2}, {500, 9, 1, 1}};
    Random random(71);
    for (const auto& [rows, columns, width, right] : shapes) {
        SCOPED_TRACE(testing::Message() << rows << " x " << columns << ", run " << width);
        const RowMajor a = RandomBanded(random, rows, columns, width);
        const RowMajor b = RandomMatrix(random, rows, right);
        EXPECT_EQ(IsBanded(a), width < columns);
        EXPECT_TRUE(columns == width || rows < 3 || !IsBanded(a.colwise().reverse()));

        using Extended = Eigen::Matrix<long double, Eigen::Dynamic, Eigen::Dynamic>;
        const Extended exact =
            a.cast<long double>().colPivHouseholderQr().solve(b.cast<long double>());
        const Eigen::VectorXd singular = a.jacobiSvd().singularValues();
        const double condition = singular(0) / singular(singular.size() - 1);
        const double bound = 2e-15 * condition * (condition + 10.0) *
                             std::max(1.0, static_cast<double>(exact.norm()));
        const RowMajor banded = Solve(a, b);
        const RowMajor dense = SolveUpsideDown(a, b);
        EXPECT_LE((banded - exact.cast<double>()).norm(), bound);
        EXPECT_LE((dense - exact.cast<double>()).norm(), bound);
        EXPECT_LE((SolveRuns(a, b, width) - exact.cast<double>()).norm(), bound);
        EXPECT_EQ(SolveRuns(a.colwise().reverse(), b.colwise().reverse(), width), dense);
        EXPECT_EQ(Solve(a, b.rightCols(1)), banded.rightCols(1));
    }
}

// Householder, not normal equations: with a condition of 1e9 half of the digits remain.
TEST(LeastSquares, TheBandedFormKeepsTheDigitsOfAnIllConditionedSystem)
{
    constexpr Eigen::Index n = 30;
    RowMajor a = RowMajor::Zero(2 * n, n);
    for (Eigen::Index i = 0; i < 2 * n; ++i) {
        const Eigen::Index j = std::min(i / 2, n - 2);
        a(i, j) = 1.0;
        a(i, j + 1) = i % 2 == 0 ? 1.0 : 1.0 + 1e-9 * static_cast<double>(i);
    }
    EXPECT_TRUE(IsBanded(a));
    EXPECT_LE((Solve(a, a.rowwise().sum()).array() - 1.0).abs().maxCoeff(), 1e-4);
}

TEST(LeastSquares, DependentColumnsAreRefused)
{
    Random random(72);
    const RowMajor good = RandomBanded(random, 40, 12, 4);
    const RowMajor b = RandomMatrix(random, 40, 2);
    // A column of zeros, two of one direction, eleven equations for twelve unknowns, runs that jump
    // over two columns, and nothing.
    std::vector<RowMajor> matrices(5, good);
    matrices[0].col(5).setZero();
    matrices[1].col(6) = 3.0 * good.col(5);
    matrices[2].bottomRows(29).rowwise() = good.row(10);
    matrices[3].setZero();
    matrices[3].topLeftCorner(20, 5).setRandom();
    matrices[3].bottomRightCorner(20, 5).setRandom();
    matrices[4].setZero();
    for (const RowMajor& a : matrices)
        ExpectRefused(a, b);
    // No diagonal value of R is small, and yet the columns depend: by 2^-n.
    for (const Eigen::Index n : {20, 80}) {
        RowMajor a = RowMajor::Identity(n, n);
        a.diagonal(1).setConstant(-2.0);
        EXPECT_EQ(Solve(a, RowMajor::Ones(n, 1)).hasNaN(), n == 80);
    }
}

// All forms change their verdict at about the same distance, whatever the units of the columns.
TEST(LeastSquares, NearlyDependentColumnsAreRefusedAtTheDocumentedDistance)
{
    Random random(73);
    for (int round = 0; round < 20; ++round) {
        const RowMajor good = RandomBanded(random, 60, 12, 4);
        const RowMajor b = RandomMatrix(random, 60, 1);
        const double unit = std::ldexp(1.0, random.Integer(-400, 400));
        for (const double distance : {1e-6, 1e-9, 1e-12, 1e-13, 1e-16, 1e-17}) {
            RowMajor a = good;
            a.col(7) = unit * (a.col(6) + distance * good.col(7));
            EXPECT_EQ(Solve(a, b).hasNaN(), distance < 1e-14) << distance;
            EXPECT_EQ(SolveUpsideDown(a, b).hasNaN(), distance < 1e-14) << distance;
        }
    }
}

TEST(LeastSquares, ShapesThatCannotBeSolvedAreRefused)
{
    const double a[6] = {1, 0, 0, 1, 1, 1};
    double b[6] = {1, 2, 3, 4, 5, 6};
    constexpr std::size_t shapes[][4] = {
        {2, 3, 2, 1}, {3, 2, 2, 1}, {3, 2, 3, 0}, {3, 0, 3, 1}, {0, 0, 0, 1}};
    for (const auto& [rows, columns, rightRows, right] : shapes)
        EXPECT_FALSE(SolveDenseLeastSquares({rows, columns, a}, {rightRows, right, b}));
    EXPECT_FALSE(SolveDenseLeastSquares({3, 2, nullptr}, {3, 1, b}));
    EXPECT_FALSE(SolveDenseLeastSquares({3, 2, a}, {3, 1, nullptr}));
    EXPECT_EQ(b[0], 1.0);
    EXPECT_TRUE(SolveDenseLeastSquares({3, 2, a}, {3, 2, b}));
}

TEST(LeastSquares, ValuesThatAreNotFiniteAreRefusedWhereverTheyStand)
{
    Random random(74);
    RowMajor good = RandomBanded(random, 300, 12, 4);
    good.row(0).setZero();
    good.row(299).setZero();
    const RowMajor b = RandomMatrix(random, 300, 2);
    EXPECT_FALSE(Solve(good, b).hasNaN());
    for (const double bad : {kNaN, kInfinity, -kInfinity}) {
        for (const Eigen::Index row : {0, 1, 130, 298, 299}) {
            for (const Eigen::Index column : {0, 5, 11}) {
                RowMajor a = good;
                a(row, column) = bad;
                ExpectRefused(a, b);
            }
            RowMajor right = b;
            right(row, 1) = bad;
            ExpectRefused(good, right);
        }
    }
    // A solution beyond the range: 1e300 / 1e-300.
    ExpectRefused(1e-300 * good, 1e300 * b);
}

// Units are powers of two here, so that the same digits must come out.
TEST(LeastSquares, UnitsOfLengthChangeNoDigit)
{
    Random random(75);
    const RowMajor a = RandomBanded(random, 50, 12, 4);
    const RowMajor b = RandomMatrix(random, 50, 2);
    const RowMajor banded = Solve(a, b);
    for (const int exponent : {-1000, -700, -500, -150, 150, 500, 700, 1000}) {
        for (const int rightExponent : {-900, -200, 0, 200, 900}) {
            if (std::abs(rightExponent - exponent) > 1000)
                continue;
            const RowMajor scaled = std::ldexp(1.0, exponent) * a;
            const RowMajor right = std::ldexp(1.0, rightExponent) * b;
            const double back = std::ldexp(1.0, exponent - rightExponent);
            EXPECT_EQ(back * Solve(scaled, right), banded) << exponent << ' ' << rightExponent;
            EXPECT_EQ(back * SolveRuns(scaled, right, 4), SolveRuns(a, b, 4));
            EXPECT_EQ(back * SolveUpsideDown(scaled, right), SolveUpsideDown(a, b));
        }
    }
    // Columns in units of their own, and a right-hand side of zeros beside others.
    RowMajor mixed = a;
    mixed.col(3) *= 0x1p600;
    mixed.col(8) *= 0x1p-600;
    RowMajor right = b;
    right.col(1).setZero();
    const RowMajor x = Solve(mixed, right);
    EXPECT_EQ(x(3, 0) * 0x1p600, banded(3, 0));
    EXPECT_EQ(x(8, 0) * 0x1p-600, banded(8, 0));
    EXPECT_TRUE(x.col(1).isZero(0.0));
    // Subnormal values throughout.
    right = RowMajor::Constant(3, 1, 0x1p-1060);
    EXPECT_EQ(Solve(0x1p-1070 * RowMajor::Identity(3, 3), right), RowMajor::Constant(3, 1, 1024.0));
}

} // namespace
