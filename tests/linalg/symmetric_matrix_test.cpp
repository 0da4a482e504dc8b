#include "support/matrix_families.h"

#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/jacobi_eigenvectors.h>
#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
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

MSymmetricMatrix Packed(const Values& values, unsigned int n)
{
    MSymmetricMatrix s(n);
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j <= i; ++j)
            s(i, j) = values[i * n + j];
    }
    return s;
}

// The bits; all NaN are one.
std::uint64_t Bits(double value)
{
    return std::isnan(value) ? 0 : std::bit_cast<std::uint64_t>(value);
}

// Row by row.
void ExpectSameBits(const Values& values, const Eigen::MatrixXd& expected)
{
    const Eigen::MatrixXd transposed = expected.transpose();
    ASSERT_EQ(values.size(), static_cast<std::size_t>(transposed.size()));
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(Bits(values[i]), Bits(transposed.data()[i])) << i << ": " << values[i];
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

// The rotations with whole products and both norms anew after each.
void PlainJacobi(MSymmetricMatrix a, double tolerance, Values& values, MGeneralMatrix& v)
{
    const unsigned int n = a.GetNumRows();
    MGeneralMatrix full(n, n);
    MGeneralMatrix r(n, n);
    MGeneralMatrix transposed(n, n);
    v = full;
    v.MakeIdentity();
    double ratio = 1.0;
    for (unsigned int k = 0; ratio > tolerance && k < 200 * n * n; ++k) {
        unsigned int p = 0;
        unsigned int q = 0;
        a.ChooseJacobiIndices(p, q);
        const double theta = (a(q, q) - a(p, p)) / (2.0 * a(p, q));
        const double numerator = k < 100 * n * n ? std::abs(theta) : 1.0;
        double t = numerator / (std::sqrt(theta * theta + 1.0) + std::abs(theta));
        t = theta < 0.0 ? -t : t;
        const double c = 1.0 / std::sqrt(t * t + 1.0);
        r.MakeIdentity();
        r(p, q) = c * t;
        r(q, p) = -(c * t);
        r(p, p) = r(q, q) = c;
        for (unsigned int i = 0; i < n * n; ++i)
            transposed(i / n, i % n) = r(i % n, i / n);
        full.Copy(&a);
        full = transposed * full * r;
        v = transposed * v;
        for (unsigned int i = 0; i < n * n; ++i)
            a(i / n, i % n) = full(i / n, i % n);
        ratio = a.GetOffDiagonalEuclidNormSq() / a.GetEuclidNormSq();
    }
    for (unsigned int i = 0; i < n; ++i)
        values.push_back(a(i, i));
}

TEST(Jacobi, RotationsHaveTheBitsOfWholeProducts)
{
    Random random(402);
    const double hostile[]{0.0, -0.0, 1.0, -3.0, 1e-170, 1e170, -1e308, INFINITY, NAN, 1e-310};
    for (int round = 0; round < 400; ++round) {
        const auto n = static_cast<unsigned int>(round == 0 ? 9 : random.Integer(1, 4));
        // Values of a few sizes, with ties; every other matrix has something worse in it.
        const int last = round % 2 == 0 ? 3 : round % 4 == 1 ? 5 : 9;
        MSymmetricMatrix s(n);
        for (unsigned int i = 0; i < n * n; ++i) {
            s(i / n, i % n) = random.Integer(0, 2) == 0 ? hostile[random.Integer(0, last)]
                                                        : random.Uniform(-1.0, 1.0);
        }
        for (const double tolerance : {0.5, 1e-3, 1e-12, 1e-34}) {
            Values plain;
            MGeneralMatrix v;
            PlainJacobi(s, tolerance, plain, v);
            // The sort must not part a value from its vector: sort the pairs, stably.
            Values values(n);
            MJacobiEigenVectors vectors(n);
            s.GetEigensJacobi(vectors.Receive(), values.data(), tolerance);
            std::vector<unsigned int> order(n);
            for (unsigned int i = 0; i < n; ++i)
                order[i] = i;
            for (unsigned int pass = 0; pass < n; ++pass) {
                for (unsigned int i = 0; i + 1 < n; ++i) {
                    if (std::abs(plain[order[i]]) < std::abs(plain[order[i + 1]]))
                        std::swap(order[i], order[i + 1]);
                }
            }
            for (unsigned int i = 0; i < n; ++i) {
                ASSERT_EQ(Bits(values[i]), Bits(plain[order[i]])) << round << ", " << tolerance;
                for (unsigned int j = 0; j < n; ++j)
                    ASSERT_EQ(Bits(vectors[i][j]), Bits(v(order[i], j))) << round;
            }
        }
    }
}

TEST(Jacobi, EndsEverywhereAndSortsByMagnitude)
{
    const auto eigens = [](const Values& values, unsigned int n, double tolerance) {
        Values result(n);
        MJacobiEigenVectors vectors(n);
        Packed(values, n).GetEigensJacobi(vectors.Receive(), result.data(), tolerance);
        for (unsigned int i = 0; i < n; ++i)
            result.insert(result.end(), vectors[i], vectors[i] + n);
        return result;
    };
    EXPECT_EQ(eigens({1, 0, 0, -3}, 2, 0.5), (Values{-3, 1, 0, 1, 1, 0}));
    // No rotation from a tolerance of 1 on; equal magnitudes keep their order.
    EXPECT_EQ(eigens({2, 9, 9, -2}, 2, 1.0), (Values{2, -2, 1, 0, 0, 1}));
    EXPECT_EQ(eigens({2, 9, 9, -2}, 2, NAN), (Values{2, -2, 1, 0, 0, 1}));
    // The described tangent is 0 here, for ever.
    const Values equal = eigens({1, 2, 2, 1}, 2, 1e-12);
    EXPECT_NEAR(equal[0], 3.0, 1e-15);
    EXPECT_NEAR(equal[1], -1.0, 1e-15);
    for (const double tolerance : {0.0, -1.0})
        EXPECT_NEAR(eigens({4, 1, 1, 1, 3, 1, 1, 1, -2}, 3, tolerance)[2], -2.3318, 0.1);
    // A diagonal that begins with 0 is divided by it.
    EXPECT_TRUE(std::isnan(eigens({0, 0, 0, 5}, 2, 1e-12)[0]));
    EXPECT_TRUE(eigens({}, 0, 1e-12).empty());
}

// The reduction and QL on one half of the matrix, column by column.
void PlainReduction(Eigen::MatrixXd& z, Eigen::VectorXd& d, Eigen::VectorXd& e)
{
    const int n = static_cast<int>(z.rows());
    for (int i = n - 1; i > 0; --i) {
        double h = 0.0;
        double scale = 0.0;
        for (int k = 0; k < i; ++k)
            scale += std::abs(z(i, k));
        d[i] = 0.0;
        e[i] = z(i, i - 1);
        if (i == 1 || scale == 0.0)
            continue;
        for (int k = 0; k < i; ++k) {
            z(i, k) /= scale;
            h += z(i, k) * z(i, k);
        }
        double f = z(i, i - 1);
        double g = f >= 0.0 ? -std::sqrt(h) : std::sqrt(h);
        e[i] = scale * g;
        h -= f * g;
        z(i, i - 1) = f - g;
        f = 0.0;
        for (int j = 0; j < i; ++j) {
            z(j, i) = z(i, j) / h;
            g = 0.0;
            for (int k = 0; k < i; ++k)
                g += (k <= j ? z(j, k) : z(k, j)) * z(i, k);
            e[j] = g / h;
            f += e[j] * z(i, j);
        }
        const double hh = f / (h + h);
        for (int j = 0; j < i; ++j) {
            f = z(i, j);
            e[j] = g = e[j] - hh * f;
            for (int k = 0; k <= j; ++k)
                z(j, k) -= f * e[k] + g * z(i, k);
        }
        d[i] = h;
    }
    d[0] = e[0] = 0.0;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; d[i] != 0.0 && j < i; ++j) {
            double g = 0.0;
            for (int k = 0; k < i; ++k)
                g += z(i, k) * z(k, j);
            for (int k = 0; k < i; ++k)
                z(k, j) -= g * z(k, i);
        }
        d[i] = z(i, i);
        z(i, i) = 1.0;
        for (int j = 0; j < i; ++j)
            z(j, i) = z(i, j) = 0.0;
    }
}

bool PlainQL(Eigen::MatrixXd& z, Eigen::VectorXd& d, Eigen::VectorXd& e)
{
    const int n = static_cast<int>(z.rows());
    for (int i = 1; i < n; ++i)
        e[i - 1] = e[i];
    e[n - 1] = 0.0;
    for (int l = 0; l < n; ++l) {
        for (int count = 0;; ++count) {
            int m = l;
            while (m < n - 1 && !(std::abs(e[m]) < 1e-08))
                ++m;
            if (m == l)
                break;
            if (count == 100)
                return false;
            double g = (d[l + 1] - d[l]) / (2.0 * e[l]);
            double r = std::sqrt(g * g + 1.0);
            g = d[m] - d[l] + e[l] / (g + std::copysign(r, g));
            double s = 1.0;
            double c = 1.0;
            double p = 0.0;
            int i = m - 1;
            for (; i >= l; --i) {
                double f = s * e[i];
                const double b = c * e[i];
                e[i + 1] = r = std::sqrt(f * f + g * g);
                if (r == 0.0) {
                    d[i + 1] -= p;
                    e[m] = 0.0;
                    break;
                }
                s = f / r;
                c = g / r;
                g = d[i + 1] - p;
                r = (d[i] - g) * s + 2.0 * c * b;
                p = s * r;
                d[i + 1] = g + p;
                g = c * r - b;
                for (int k = 0; k < n; ++k) {
                    f = z(k, i + 1);
                    z(k, i + 1) = s * z(k, i) + c * f;
                    z(k, i) = c * z(k, i) - s * f;
                }
            }
            if (i >= l)
                continue;
            d[l] -= p;
            e[l] = g;
            e[m] = 0.0;
        }
    }
    return true;
}

TEST(QL, HasTheBitsOfThePlainLoops)
{
    Random random(403);
    const auto compare = [](const Values& values, unsigned int n) {
        Eigen::MatrixXd z = Eigen::Map<const Eigen::MatrixXd>(values.data(), n, n);
        Eigen::VectorXd d(n);
        Eigen::VectorXd e(n);
        PlainReduction(z, d, e);
        const MSymmetricMatrix s = Packed(values, n);
        Values ours;
        Values beside;
        MGeneralMatrix vectors(1, 7);
        s.HouseholderReduction(ours, beside, vectors);
        ExpectSameBits(ours, d);
        ExpectSameBits(beside, e);
        ExpectSameBits(RowByRow(vectors), z);
        const bool isolated = PlainQL(z, d, e);
        EXPECT_EQ(s.CalculateEigenVectors(ours, vectors), isolated);
        ExpectSameBits(ours, d);
        ExpectSameBits(RowByRow(vectors), z);
    };
    norvek_test::ForEachMatrix(random, [&](const char* name, unsigned int n, const Values& values) {
        SCOPED_TRACE(name);
        compare(values, n);
    });
    for (const unsigned int n : {4U, 7U, 9U, 17U})
        compare(norvek_test::kMatrixFamilies[0].make(random, n), n);
    // Zeros, where the matrix falls apart, and what never settles.
    const double hostile[]{0.0, -0.0, 1.0, 1e-9, 1e200, NAN, INFINITY, 1e-310};
    for (int round = 0; round < 400; ++round) {
        const auto n = static_cast<unsigned int>(random.Integer(1, 7));
        Values values(std::size_t{n} * n);
        for (double& value : values)
            value = hostile[random.Integer(0, round % 8)];
        compare(RowByRow(Packed(values, n)), n);
    }
}

TEST(QL, FillsMatricesOfEveryKindAndOrder)
{
    Values values;
    MGeneralMatrix vectors;
    EXPECT_TRUE(Packed({3, 0, 0, -1}, 2).CalculateEigenVectors(values, vectors));
    EXPECT_EQ(values, (Values{3, -1}));
    EXPECT_EQ(RowByRow(vectors), (Values{1, 0, 0, 1}));
    // Packed storage has no room for the zeros and ones above, but is none the worse for it.
    MSymmetricMatrix packed;
    EXPECT_TRUE(Packed({3, 0, 0, -1}, 2).CalculateEigenVectors(values, packed));
    EXPECT_EQ(RowByRow(packed), (Values{1, 0, 0, 1}));
    EXPECT_TRUE(MSymmetricMatrix().CalculateEigenVectors(values, vectors));
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(vectors.GetNumRows(), 0U);
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

} // namespace
