#include "support/matrix_families.h"
#include "support/matrix_values.h"

#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/jacobi_eigenvectors.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace
{

using norvek_test::Packed;
using norvek_test::Random;
using norvek_test::RowByRow;
using Values = std::vector<double>;

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

void ExpectBitsOfWholeProducts(const MSymmetricMatrix& s)
{
    const unsigned int n = s.GetNumRows();
    for (const double tolerance : {0.5, 1e-3, 1e-12, 1e-34}) {
        Values plain;
        MGeneralMatrix v;
        PlainJacobi(s, tolerance, plain, v);
        std::vector<unsigned int> order(n);
        for (unsigned int i = 0; i < n; ++i)
            order[i] = i;
        for (unsigned int step = 0; step + n < n * n; ++step) {
            const unsigned int i = step % (n - 1);
            if (std::abs(plain[order[i]]) < std::abs(plain[order[i + 1]]))
                std::swap(order[i], order[i + 1]);
        }
        Values values(n);
        MJacobiEigenVectors vectors(n);
        s.GetEigensJacobi(vectors.Receive(), values.data(), tolerance);
        for (unsigned int i = 0; i < n; ++i) {
            ASSERT_EQ(Bits(values[i]), Bits(plain[order[i]])) << tolerance;
            for (unsigned int j = 0; j < n; ++j)
                ASSERT_EQ(Bits(vectors[i][j]), Bits(v(order[i], j))) << tolerance;
        }
    }
}

TEST(Jacobi, RotationsHaveTheBitsOfWholeProducts)
{
    Random random(402);
    const double hostile[]{0.0, -0.0, 1.0, -3.0, 1e-170, 1e170, -1e308, INFINITY, NAN, 1e-310};
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        const auto n = static_cast<unsigned int>(round == 0 ? 9 : random.Integer(1, 4));
        // Every other matrix has something worse in it than zeros and whole numbers.
        const int last = round % 2 == 0 ? 3 : round % 4 == 1 ? 5 : 9;
        MSymmetricMatrix s(n);
        for (unsigned int i = 0; i < n * n; ++i) {
            s(i / n, i % n) = random.Integer(0, 2) == 0 ? hostile[random.Integer(0, last)]
                                                        : random.Uniform(-1.0, 1.0);
        }
        ExpectBitsOfWholeProducts(s);
    }
    // Twins whose elements, once both are rotated, are equal in the first row: the first is next.
    for (const bool nested : {false, true}) {
        const unsigned int index[]{1, nested ? 4U : 2U, nested ? 2U : 3U, nested ? 3U : 4U};
        MSymmetricMatrix s(5);
        s.SetToZero();
        for (const unsigned int k : {0U, 2U}) {
            s(0, index[k]) = s(0, index[k + 1]) = 0.6;
            s(index[k], index[k]) = nested ? 0.1 : 1.0;
            s(index[k + 1], index[k + 1]) = nested ? 1.0 : 0.1;
            s(index[k], index[k + 1]) = 0.9;
        }
        ExpectBitsOfWholeProducts(s);
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
    // A ratio too small for a double is 0.
    EXPECT_EQ(eigens({1e15, 1e-150, 1e-150, 1e15}, 2, 0.0), (Values{1e15, 1e15, 1, 0, 0, 1}));
    // A diagonal that begins with 0 is divided by it.
    EXPECT_TRUE(std::isnan(eigens({0, 0, 0, 5}, 2, 1e-12)[0]));
    EXPECT_TRUE(eigens({}, 0, 1e-12).empty());
}

// The reduction and QL on one half of the matrix. Expressions over rows and columns are element by
// element; sums are written out.
void PlainReduction(Eigen::MatrixXd& z, Eigen::VectorXd& d, Eigen::VectorXd& e)
{
    const auto n = static_cast<int>(z.rows());
    d.setZero();
    for (int i = n - 1; i > 0; --i) {
        double h = 0.0;
        double scale = 0.0;
        for (int k = 0; k < i; ++k)
            scale += std::abs(z(i, k));
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
            z.row(j).head(j + 1) -= f * e.head(j + 1).transpose() + g * z.row(i).head(j + 1);
        }
        d[i] = h;
    }
    e[0] = 0.0;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; i > 0 && d[i] != 0.0 && j < i; ++j) {
            double g = 0.0;
            for (int k = 0; k < i; ++k)
                g += z(i, k) * z(k, j);
            z.col(j).head(i) -= g * z.col(i).head(i);
        }
        d[i] = z(i, i);
        z(i, i) = 1.0;
        z.row(i).head(i).setZero();
        z.col(i).head(i).setZero();
    }
}

bool PlainQL(Eigen::MatrixXd& z, Eigen::VectorXd& d, Eigen::VectorXd& e)
{
    const auto n = static_cast<int>(z.rows());
    for (int i = 1; i < n; ++i)
        e[i - 1] = e[i];
    e[n - 1] = 0.0;
    for (int l = 0, count = 0, m = 0; l < n; l += m == l ? 1 : 0) {
        for (m = l; m < n - 1 && !(std::abs(e[m]) < 1e-08);)
            ++m;
        count = m == l ? 0 : count + 1;
        if (m == l)
            continue;
        if (count > 100)
            return false;
        double g = (d[l + 1] - d[l]) / (2.0 * e[l]);
        double r = std::sqrt(g * g + 1.0);
        g = d[m] - d[l] + e[l] / (g + std::copysign(r, g));
        double s = 1.0;
        double c = 1.0;
        double p = 0.0;
        for (int i = m - 1; i >= l && r != 0.0; --i) {
            const double f = s * e[i];
            const double b = c * e[i];
            e[i + 1] = r = std::sqrt(f * f + g * g);
            if (r == 0.0) {
                d[i + 1] -= p;
                break;
            }
            s = f / r;
            c = g / r;
            g = d[i + 1] - p;
            const double q = (d[i] - g) * s + 2.0 * c * b;
            p = s * q;
            d[i + 1] = g + p;
            g = c * q - b;
            const Eigen::VectorXd lower = z.col(i + 1);
            z.col(i + 1) = s * z.col(i) + c * lower;
            z.col(i) = c * z.col(i) - s * lower;
        }
        if (r != 0.0) {
            d[l] -= p;
            e[l] = g;
        }
        e[m] = 0.0;
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
    for (const unsigned int n : {4U, 7U, 17U})
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

} // namespace
