#include "platform/banded_qr.h"
#include "platform/least_squares.h"
#include "support/random.h"

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using Norvek::Math::Core::BandedQR;
using norvek_test::Random;
using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool Solve(const RowMajor& a, RowMajor& b)
{
    const auto size = [](Eigen::Index count) {
        return static_cast<std::size_t>(count);
    };
    return Norvek::Math::Core::SolveDenseLeastSquares({size(a.rows()), size(a.cols()), a.data()},
                                                      {size(b.rows()), size(b.cols()), b.data()});
}

// Each row as the run from its first nonzero value on, all as long as the longest.
struct Runs : Norvek::Math::Core::RunSource
{
    explicit Runs(const RowMajor& matrix) : a(matrix)
    {
        for (Eigen::Index i = 0; i < a.rows(); ++i) {
            Eigen::Index last = a.cols();
            while (last > First(i) && a(i, last - 1) == 0.0)
                --last;
            width = std::max(width, last - First(i));
        }
    }

    [[nodiscard]] Eigen::Index First(Eigen::Index i) const
    {
        Eigen::Index first = 0;
        while (first + 1 < a.cols() && a(i, first) == 0.0)
            ++first;
        return std::min(first, a.cols() - width);
    }

    void Make(std::size_t begin, std::size_t end, double* values,
              std::uint32_t* firsts) const override
    {
        for (std::size_t i = begin; i < end; ++i, values += width) {
            const auto row = static_cast<Eigen::Index>(i);
            *firsts++ = static_cast<std::uint32_t>(First(row));
            std::copy_n(a.row(row).data() + First(row), width, values);
        }
    }

    const RowMajor& a;
    Eigen::Index width = 0;
};

// The solution by runs; nothing when there is none.
RowMajor SolveRuns(const RowMajor& a, const RowMajor& b)
{
    const auto rows = static_cast<std::size_t>(a.rows());
    const Runs runs(a);
    RowMajor x(a.cols(), b.cols());
    const bool isSolved = Norvek::Math::Core::SolveLeastSquaresOfRuns(
        {rows, static_cast<std::size_t>(a.cols()), static_cast<std::size_t>(runs.width), &runs},
        {rows, static_cast<std::size_t>(b.cols()), b.data()}, x.data());
    return isSolved ? x : RowMajor();
}

bool IsBanded(const RowMajor& a)
{
    RowMajor b = RowMajor::Zero(a.rows(), 1);
    const auto rows = static_cast<std::size_t>(a.rows());
    return BandedQR({rows, static_cast<std::size_t>(a.cols()), a.data()}, {rows, 1, b.data()})
        .Factorise();
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

// The same equations with the last one first: no longer banded.
RowMajor UpsideDown(const RowMajor& matrix)
{
    return matrix.colwise().reverse();
}

// False from both forms, and nothing written.
void ExpectRefused(const RowMajor& a, const RowMajor& b)
{
    for (const bool isTurned : {false, true}) {
        const RowMajor before = isTurned ? UpsideDown(b) : b;
        RowMajor after = before;
        EXPECT_FALSE(Solve(isTurned ? UpsideDown(a) : a, after));
        for (Eigen::Index i = 0; i < b.size(); ++i) {
            const double value = before.data()[i];
            EXPECT_TRUE(after.data()[i] == value || std::isnan(value));
        }
    }
}

TEST(LeastSquares, BandedAndDenseFormAgreeWithExtendedPrecision)
{
    struct Shape
    {
        Eigen::Index rows, columns, width, right;
    };
    constexpr Shape shapes[] = {{1, 1, 1, 1},    {7, 1, 1, 2},     {2, 2, 1, 1},    {9, 5, 4, 3},
                                {20, 20, 3, 1},  {30, 12, 12, 2},  {64, 40, 20, 3}, {90, 80, 40, 1},
                                {300, 60, 7, 3}, {2000, 10, 4, 2}, {500, 9, 1, 1}};
    Random random(71);
    for (const Shape& s : shapes) {
        SCOPED_TRACE(testing::Message() << s.rows << " x " << s.columns << ", run " << s.width);
        const RowMajor a = RandomBanded(random, s.rows, s.columns, s.width);
        const RowMajor b = RandomMatrix(random, s.rows, s.right);
        EXPECT_EQ(IsBanded(a), s.width < s.columns);
        EXPECT_TRUE(s.columns == s.width || s.rows < 3 || !IsBanded(UpsideDown(a)));

        using Extended = Eigen::Matrix<long double, Eigen::Dynamic, Eigen::Dynamic>;
        const Extended exact =
            a.cast<long double>().colPivHouseholderQr().solve(b.cast<long double>());
        const Eigen::VectorXd singular = a.jacobiSvd().singularValues();
        const double condition = singular(0) / singular(singular.size() - 1);
        const double bound = 2e-15 * condition * (condition + 10.0) *
                             std::max(1.0, static_cast<double>(exact.norm()));
        RowMajor banded = b;
        RowMajor dense = UpsideDown(b);
        ASSERT_TRUE(Solve(a, banded));
        ASSERT_TRUE(Solve(UpsideDown(a), dense));
        EXPECT_LE((banded.topRows(s.columns) - exact.cast<double>()).norm(), bound);
        EXPECT_LE((dense.topRows(s.columns) - exact.cast<double>()).norm(), bound);
        EXPECT_EQ(banded.bottomRows(s.rows - s.columns), b.bottomRows(s.rows - s.columns));
        EXPECT_LE((SolveRuns(a, b) - exact.cast<double>()).norm(), bound);
        EXPECT_EQ(SolveRuns(UpsideDown(a), UpsideDown(b)), dense.topRows(s.columns));

        RowMajor alone = b.rightCols(1);
        ASSERT_TRUE(Solve(a, alone));
        EXPECT_EQ(alone.topRows(s.columns), banded.rightCols(1).topRows(s.columns));
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
    ASSERT_TRUE(IsBanded(a));
    RowMajor b = a.rowwise().sum();
    ASSERT_TRUE(Solve(a, b));
    EXPECT_LE((b.topRows(n).array() - 1.0).abs().maxCoeff(), 1e-4);
}

TEST(LeastSquares, DependentColumnsAreRefused)
{
    Random random(72);
    const RowMajor good = RandomBanded(random, 40, 12, 4);
    const RowMajor b = RandomMatrix(random, 40, 2);
    RowMajor a = good;
    a.col(5).setZero();
    ExpectRefused(a, b);
    a = good;
    a.col(6) = 3.0 * a.col(5);
    ExpectRefused(a, b);
    // Eleven different equations for twelve unknowns, the others repeat or are empty.
    a = good;
    a.bottomRows(29).setZero();
    ExpectRefused(a, b);
    for (Eigen::Index i = 11; i < 40; ++i)
        a.row(i) = a.row(10);
    ExpectRefused(a, b);
    // The runs jump over two columns.
    a = RowMajor::Zero(40, 12);
    for (Eigen::Index i = 0; i < 40; ++i)
        a.row(i).segment(i < 20 ? 0 : 7, 5).setRandom();
    ExpectRefused(a, b);
    ExpectRefused(RowMajor::Zero(40, 12), b);
    // No diagonal value of R is small, and yet the columns depend: by 2^-n.
    for (const Eigen::Index n : {20, 80}) {
        a = RowMajor::Identity(n, n);
        a.diagonal(1).setConstant(-2.0);
        RowMajor x = RowMajor::Ones(n, 1);
        if (n == 80)
            ExpectRefused(a, x);
        else
            EXPECT_TRUE(Solve(a, x));
    }
}

// Both forms change their verdict at about the same distance, whatever the units of the columns.
TEST(LeastSquares, NearlyDependentColumnsAreRefusedAtTheDocumentedDistance)
{
    Random random(73);
    for (int round = 0; round < 20; ++round) {
        const RowMajor good = RandomBanded(random, 60, 12, 4);
        const RowMajor b = RandomMatrix(random, 60, 1);
        const double unit = std::ldexp(1.0, random.Integer(-400, 400));
        for (const double distance : {1e-6, 1e-9, 1e-12, 1e-13, 1e-16, 1e-17}) {
            RowMajor a = good;
            a.col(7) = a.col(6) + distance * good.col(7);
            a.col(7) *= unit;
            RowMajor banded = b;
            RowMajor dense = UpsideDown(b);
            EXPECT_EQ(Solve(a, banded), distance > 1e-14) << distance;
            EXPECT_EQ(Solve(UpsideDown(a), dense), distance > 1e-14) << distance;
        }
    }
}

TEST(LeastSquares, ShapesThatCannotBeSolvedAreRefused)
{
    using Norvek::Math::Core::SolveDenseLeastSquares;
    const double a[6] = {1, 0, 0, 1, 1, 1};
    double b[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_FALSE(SolveDenseLeastSquares({2, 3, a}, {2, 1, b}));
    EXPECT_FALSE(SolveDenseLeastSquares({3, 2, a}, {2, 1, b}));
    EXPECT_FALSE(SolveDenseLeastSquares({3, 2, a}, {3, 0, b}));
    EXPECT_FALSE(SolveDenseLeastSquares({3, 0, a}, {3, 1, b}));
    EXPECT_FALSE(SolveDenseLeastSquares({0, 0, a}, {0, 1, b}));
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
    RowMajor solved = b;
    ASSERT_TRUE(Solve(good, solved));
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
    ExpectRefused(RowMajor(1e-300 * good), RowMajor(1e300 * b));
}

// Units are powers of two here, so that the same digits must come out.
TEST(LeastSquares, UnitsOfLengthChangeNoDigit)
{
    Random random(75);
    const RowMajor a = RandomBanded(random, 50, 12, 4);
    const RowMajor b = RandomMatrix(random, 50, 2);
    RowMajor banded = b;
    RowMajor dense = UpsideDown(b);
    ASSERT_TRUE(Solve(a, banded));
    ASSERT_TRUE(Solve(UpsideDown(a), dense));
    for (const int exponent : {-1000, -700, -500, -150, 150, 500, 700, 1000}) {
        for (const int rightExponent : {-900, -200, 0, 200, 900}) {
            if (std::abs(rightExponent - exponent) > 1000)
                continue;
            const RowMajor scaled = std::ldexp(1.0, exponent) * a;
            RowMajor x = std::ldexp(1.0, rightExponent) * b;
            const RowMajor byRuns = SolveRuns(scaled, x);
            RowMajor y = UpsideDown(x);
            ASSERT_TRUE(Solve(scaled, x)) << exponent << ' ' << rightExponent;
            ASSERT_TRUE(Solve(UpsideDown(scaled), y));
            const double back = std::ldexp(1.0, exponent - rightExponent);
            EXPECT_EQ(RowMajor(back * x.topRows(12)), banded.topRows(12));
            EXPECT_EQ(RowMajor(back * byRuns), SolveRuns(a, b));
            EXPECT_EQ(RowMajor(back * y.topRows(12)), dense.topRows(12));
        }
    }
    // Columns in units of their own, and a right-hand side of zeros beside others.
    RowMajor mixed = a;
    mixed.col(3) *= 0x1p600;
    mixed.col(8) *= 0x1p-600;
    RowMajor x = b;
    x.col(1).setZero();
    ASSERT_TRUE(Solve(mixed, x));
    EXPECT_EQ(x(3, 0) * 0x1p600, banded(3, 0));
    EXPECT_EQ(x(8, 0) * 0x1p-600, banded(8, 0));
    EXPECT_TRUE(x.col(1).topRows(12).isZero(0.0));
    // Subnormal values throughout.
    x = RowMajor::Constant(3, 1, 0x1p-1060);
    ASSERT_TRUE(Solve(0x1p-1070 * RowMajor::Identity(3, 3), x));
    EXPECT_EQ(x, RowMajor::Constant(3, 1, 1024.0));
}

} // namespace
