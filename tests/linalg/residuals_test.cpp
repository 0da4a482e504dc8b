// LAPACK's scaled residuals of LU, QR and least squares: in units of the matrix, its order and the
// machine epsilon, where a sound method stays below 30 on every matrix.

#include "platform/least_squares.h"
#include "support/matrix_families.h"
#include "support/matrix_values.h"

#include <norvek/linalg/lu_matrix.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <limits>

namespace
{

using norvek_test::Random;
using norvek_test::RowByRow;
using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kThreshold = 30.0;

double OneNorm(const RowMajor& a)
{
    return a.cwiseAbs().colwise().sum().maxCoeff();
}

RowMajor ToEigen(const MMatrix& a)
{
    return Eigen::Map<const RowMajor>(RowByRow(a).data(), a.GetNumRows(), a.GetNumColumns());
}

MGeneralMatrix FromEigen(const RowMajor& a)
{
    MGeneralMatrix result(static_cast<unsigned int>(a.rows()), static_cast<unsigned int>(a.cols()));
    for (Eigen::Index i = 0; i < a.size(); ++i)
        result(static_cast<unsigned int>(i / a.cols()), static_cast<unsigned int>(i % a.cols())) =
            a.data()[i];
    return result;
}

// Every matrix of the families, its rows moved round by one so that LU has to exchange some, and
// then, below it, its rows upside down at half the size: a tall matrix of the same condition.
template <class Check>
void ForEachSystem(Check check)
{
    Random random(406);
    norvek_test::ForEachMatrix(
        random, [&](const char* name, unsigned int n, const std::vector<double>& values) {
            SCOPED_TRACE(::testing::Message() << name << ' ' << n);
            const Eigen::Map<const RowMajor> a(values.data(), n, n);
            RowMajor tall(2 * n, n);
            tall << a.bottomRows(n - 1), a.topRows(1), 0.5 * a.colwise().reverse();
            const RowMajor b =
                RowMajor::NullaryExpr(2 * n, 1, [&] { return random.Uniform(-1.0, 1.0); });
            check(RowMajor(tall.topRows(n)), RowMajor(b.topRows(n)));
            check(tall, b);
        });
}

Eigen::VectorXd SingularValues(const RowMajor& a)
{
    return Eigen::JacobiSVD<Eigen::MatrixXd>(a).singularValues();
}

double Condition(const RowMajor& a)
{
    const Eigen::VectorXd values = SingularValues(a);
    return values(0) / values(values.size() - 1);
}

// The smallest singular value once the columns have unit length.
double Independence(RowMajor a)
{
    for (Eigen::Index j = 0; j < a.cols(); ++j)
        a.col(j) /= a.col(j).stableNorm();
    return a.allFinite() ? SingularValues(a)(a.cols() - 1) : 0.0;
}

// |A'(b - A x)| / (|A| |b| m eps): the residual is orthogonal to the columns.
double Orthogonality(const RowMajor& a, const RowMajor& x, const RowMajor& b)
{
    return (a.transpose() * (b - a * x)).norm() /
           (a.norm() * b.norm() * static_cast<double>(a.rows()) * kEpsilon);
}

TEST(ScaledResiduals, OfLUAndItsSolutions)
{
    int solved = 0;
    ForEachSystem([&](const RowMajor& a, const RowMajor& b) {
        const Eigen::Index n = a.cols();
        if (a.rows() != n)
            return;
        // Beside A the identity becomes L^-1 P, which tells the exchanges.
        RowMajor beside(n, 2 * n);
        beside << a, RowMajor::Identity(n, n);
        MLUMatrix factors;
        static_cast<void>(FromEigen(beside).FactoriseLU(factors));
        const RowMajor both = ToEigen(factors);
        const RowMajor lower = both.leftCols(n).triangularView<Eigen::UnitLower>();
        const RowMajor upper = both.leftCols(n).triangularView<Eigen::Upper>();
        const RowMajor permutation = (lower * both.rightCols(n)).array().round();

        const double unit = kThreshold * static_cast<double>(n) * kEpsilon * OneNorm(a);
        RowMajor x = b;
        if (!FromEigen(a).FactoriseLU(factors) || !factors.SolveLUxy(x.data()))
            return;
        ++solved;
        EXPECT_LE(OneNorm(permutation * a - lower * upper), unit);
        EXPECT_LE(OneNorm(b - a * x), unit * OneNorm(x));
    });
    // All but Wilkinson's of order 1, which is 0, and Hilbert's of order 50 and Rosser's, whose
    // last pivots are rounding errors.
    EXPECT_GE(solved, 28);
}

// Gram and Schmidt's R is as good as Householder's; their Q loses orthogonality in proportion to
// the condition, and with it a solution that is formed from Q'b.
TEST(ScaledResiduals, OfQRAndLeastSquaresByGramSchmidt)
{
    ForEachSystem([](const RowMajor& a, const RowMajor& b) {
        MGeneralMatrix q;
        MGeneralMatrix r;
        ASSERT_TRUE(FromEigen(a).FactoriseQR(q, r));
        if (a.isZero(0.0)) {
            EXPECT_TRUE(std::isnan(q(0, 0)));
            return;
        }
        const auto n = static_cast<double>(a.cols());
        const auto m = static_cast<double>(a.rows());
        const RowMajor product = ToEigen(q) * ToEigen(r);
        EXPECT_LE(OneNorm(a - product), kThreshold * m * kEpsilon * OneNorm(a));
        const double condition = Condition(a);
        if (condition * kEpsilon * n > 1e-2)
            return;
        const RowMajor gram = ToEigen(q).transpose() * ToEigen(q);
        EXPECT_LE(OneNorm(RowMajor::Identity(a.cols(), a.cols()) - gram),
                  kThreshold * n * kEpsilon * condition);
        RowMajor right = b;
        RowMajor x(a.cols(), 1);
        ASSERT_TRUE(FromEigen(a).SolveLeastSquare(right.data(), x.data()));
        EXPECT_LE(Orthogonality(a, x, b), kThreshold * condition);
    });
}

TEST(ScaledResiduals, OfTheLeastSquaresService)
{
    ForEachSystem([](const RowMajor& a, const RowMajor& b) {
        const auto rows = static_cast<std::size_t>(a.rows());
        RowMajor x = b;
        const bool solved = Norvek::Math::Core::SolveDenseLeastSquares(
            {rows, static_cast<std::size_t>(a.cols()), a.data()}, {rows, 1, x.data()});
        const double limit = 4.0 * static_cast<double>(a.cols()) * kEpsilon;
        const double independence = Independence(a);
        EXPECT_TRUE(solved ? independence > 0.3 * limit : independence < 3.0 * limit)
            << independence / limit;
        if (!solved)
            return;
        const RowMajor solution = x.topRows(a.cols());
        EXPECT_LE(Orthogonality(a, solution, b) * b.norm(),
                  kThreshold * std::max(b.norm(), a.norm() * solution.norm()));
        const double unit = kThreshold * static_cast<double>(a.cols()) * kEpsilon;
        if (a.rows() == a.cols()) {
            EXPECT_LE(OneNorm(b - a * solution), unit * OneNorm(a) * OneNorm(solution));
        }
    });
}

} // namespace
