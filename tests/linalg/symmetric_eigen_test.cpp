#include "support/matrix_families.h"

#include <norvek/linalg/jacobi_eigenvectors.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace
{

using namespace norvek_test;
using Values = std::vector<double>;
using Vector = Eigen::VectorXd;

// The bits; all NaN are one.
template <class Container>
std::vector<std::uint64_t> Bits(const Container& values)
{
    std::vector<std::uint64_t> bits;
    bits.reserve(static_cast<std::size_t>(values.size()));
    for (const double value : values)
        bits.push_back(std::isnan(value) ? 0 : std::bit_cast<std::uint64_t>(value));
    return bits;
}

// The values by descending magnitude, and then the vectors in the same order.
Values Jacobi(const MSymmetricMatrix& s, double tolerance)
{
    const unsigned int n = s.GetNumRows();
    Values result(n);
    MJacobiEigenVectors vectors(n);
    s.GetEigensJacobi(vectors.Receive(), result.data(), tolerance);
    for (unsigned int i = 0; i < n; ++i)
        result.insert(result.end(), vectors[i], vectors[i] + n);
    return result;
}

// The rotations with whole products and both norms anew after each.
Values PlainJacobi(MSymmetricMatrix s, double tolerance)
{
    const unsigned int n = s.GetNumRows();
    RowMajor v = RowMajor::Identity(n, n);
    double ratio = 1.0;
    for (unsigned int k = 0; ratio > tolerance && k < 200 * n * n; ++k) {
        unsigned int p = 0;
        unsigned int q = 0;
        s.ChooseJacobiIndices(p, q);
        const double theta = (s(q, q) - s(p, p)) / (2.0 * s(p, q));
        const double numerator = k < 100 * n * n ? std::abs(theta) : 1.0;
        double t = numerator / (std::sqrt(theta * theta + 1.0) + std::abs(theta));
        t = theta < 0.0 ? -t : t;
        const double c = 1.0 / std::sqrt(t * t + 1.0);
        RowMajor r = RowMajor::Identity(n, n);
        r(p, q) = c * t;
        r(q, p) = -(c * t);
        r(p, p) = r(q, q) = c;
        s = Packed(PlainProduct(PlainProduct(r.transpose(), ToEigen(s)), r));
        v = PlainProduct(r.transpose(), v);
        ratio = s.GetOffDiagonalEuclidNormSq() / s.GetEuclidNormSq();
    }
    std::vector<unsigned int> order(n);
    std::iota(order.begin(), order.end(), 0U);
    for (unsigned int step = 0; step + n < n * n; ++step) {
        unsigned int* const pair = &order[step % (n - 1)];
        if (std::abs(s(pair[0], pair[0])) < std::abs(s(pair[1], pair[1])))
            std::swap(pair[0], pair[1]);
    }
    Values result;
    for (const unsigned int i : order)
        result.push_back(s(i, i));
    for (const unsigned int i : order)
        result.insert(result.end(), v.row(i).begin(), v.row(i).end());
    return result;
}

void ExpectBitsOfWholeProducts(const MSymmetricMatrix& s)
{
    // No rotation from a tolerance of 1 on, or with none.
    for (const double tolerance : {1.0, std::nan(""), 0.5, 1e-3, 1e-12, 1e-34, 0.0}) {
        ASSERT_EQ(Bits(Jacobi(s, tolerance)), Bits(PlainJacobi(s, tolerance))) << tolerance << '\n'
                                                                               << ToEigen(s);
    }
    EXPECT_EQ(Bits(Jacobi(s, -1.0)), Bits(Jacobi(s, 0.0)));
}

TEST(Jacobi, RotationsHaveTheBitsOfWholeProducts)
{
    Random random(402);
    const double hostile[]{0.0, -0.0, 1.0, -3.0, 1e-170, 1e170, -1e308, INFINITY, NAN, 1e-310};
    for (int round = 0; round < 400; ++round) {
        const int n = round == 0 ? 9 : random.Integer(1, 4);
        // Every other matrix has something worse in it than zeros and whole numbers.
        const int last = round % 2 == 0 ? 3 : round % 4 == 1 ? 5 : 9;
        ExpectBitsOfWholeProducts(Packed(RowMajor::NullaryExpr(n, n, [&] {
            return random.Integer(0, 2) == 0 ? hostile[random.Integer(0, last)]
                                             : random.Uniform(-1.0, 1.0);
        })));
    }
    // Twins whose elements, once both are rotated, are equal in the first row: the first is next.
    for (const bool nested : {false, true}) {
        const unsigned int index[]{1, nested ? 4U : 2U, nested ? 2U : 3U, nested ? 3U : 4U};
        MSymmetricMatrix s = Packed(RowMajor::Zero(5, 5));
        for (const unsigned int k : {0U, 2U}) {
            s(0, index[k]) = s(0, index[k + 1]) = 0.6;
            s(index[k], index[k]) = nested ? 0.1 : 1.0;
            s(index[k + 1], index[k + 1]) = nested ? 1.0 : 0.1;
            s(index[k], index[k + 1]) = 0.9;
        }
        ExpectBitsOfWholeProducts(s);
    }
    // A ratio too small for a double is 0.
    ExpectBitsOfWholeProducts(Packed(RowMajor{{1e15, 1e-150}, {1e-150, 1e15}}));
    EXPECT_TRUE(Jacobi(MSymmetricMatrix(), 1e-12).empty());
}

// The reduction on one half of the matrix. Expressions over rows and columns are element by
// element; sums are in ascending order.
void PlainReduction(RowMajor& z, Vector& d, Vector& e)
{
    d.setZero();
    for (Eigen::Index i = z.rows() - 1; i > 0; --i) {
        auto row = z.row(i).head(i);
        const double scale = Dot(row.cwiseAbs(), Vector::Ones(i));
        e[i] = row(i - 1);
        if (i == 1 || scale == 0.0)
            continue;
        row /= scale;
        const double square = Dot(row, row);
        const double root = std::sqrt(square);
        const double g = row(i - 1) >= 0.0 ? -root : root;
        e[i] = scale * g;
        d[i] = square - row(i - 1) * g;
        row(i - 1) -= g;
        z.col(i).head(i) = row.transpose() / d[i];
        const RowMajor both = z.topLeftCorner(i, i).selfadjointView<Eigen::Lower>();
        e.head(i) = PlainProduct(both, row.transpose()) / d[i];
        const double half = Dot(e.head(i), row) / (d[i] + d[i]);
        e.head(i) -= half * row.transpose();
        for (Eigen::Index j = 0; j < i; ++j)
            z.row(j).head(j + 1) -= row(j) * e.head(j + 1).transpose() + e[j] * row.head(j + 1);
    }
    e[0] = 0.0;
    for (Eigen::Index i = 0; i < z.rows(); ++i) {
        for (Eigen::Index j = 0; i > 0 && d[i] != 0.0 && j < i; ++j)
            z.col(j).head(i) -= Dot(z.row(i).head(i), z.col(j).head(i)) * z.col(i).head(i);
        d[i] = z(i, i);
        z(i, i) = 1.0;
        z.row(i).head(i).setZero();
        z.col(i).head(i).setZero();
    }
}

// One implicit shift on the rows from l to m.
void PlainShift(RowMajor& z, Vector& d, Vector& e, Eigen::Index l, Eigen::Index m)
{
    double g = (d[l + 1] - d[l]) / (2.0 * e[l]);
    g = d[m] - d[l] + e[l] / (g + std::copysign(std::sqrt(g * g + 1.0), g));
    double s = 1.0;
    double c = 1.0;
    double p = 0.0;
    for (Eigen::Index i = m - 1; i >= l; --i) {
        const double f = s * e[i];
        const double b = c * e[i];
        const double r = std::sqrt(f * f + g * g);
        e[i + 1] = r;
        if (r == 0.0) {
            d[i + 1] -= p;
            e[m] = 0.0;
            return;
        }
        s = f / r;
        c = g / r;
        g = d[i + 1] - p;
        const double q = (d[i] - g) * s + 2.0 * c * b;
        p = s * q;
        d[i + 1] = g + p;
        g = c * q - b;
        const Vector lower = z.col(i + 1);
        z.col(i + 1) = s * z.col(i) + c * lower;
        z.col(i) = c * z.col(i) - s * lower;
    }
    d[l] -= p;
    e[l] = g;
    e[m] = 0.0;
}

bool PlainQL(RowMajor& z, Vector& d, Vector& e)
{
    const Eigen::Index n = z.rows();
    e.head(n - 1) = e.tail(n - 1).eval();
    e[n - 1] = 0.0;
    for (Eigen::Index l = 0; l < n; ++l) {
        for (int count = 0;; ++count) {
            Eigen::Index m = l;
            while (m < n - 1 && !(std::abs(e[m]) < 1e-08))
                ++m;
            if (m == l)
                break;
            if (count == 100)
                return false;
            PlainShift(z, d, e, l, m);
        }
    }
    return true;
}

TEST(QL, HasTheBitsOfThePlainLoops)
{
    Random random(403);
    const auto compare = [](const RowMajor& a) {
        RowMajor z = a;
        Vector d(a.rows());
        Vector e(a.rows());
        PlainReduction(z, d, e);
        const MSymmetricMatrix s = Packed(a);
        Values ours;
        Values beside;
        MGeneralMatrix vectors(1, 7);
        s.HouseholderReduction(ours, beside, vectors);
        ASSERT_EQ(Bits(ours), Bits(d)) << a;
        ASSERT_EQ(Bits(beside), Bits(e)) << a;
        ASSERT_EQ(Bits(RowByRow(vectors)), Bits(z.reshaped<Eigen::RowMajor>())) << a;
        const bool isolated = PlainQL(z, d, e);
        EXPECT_EQ(s.CalculateEigenVectors(ours, vectors), isolated);
        ASSERT_EQ(Bits(ours), Bits(d)) << a;
        ASSERT_EQ(Bits(RowByRow(vectors)), Bits(z.reshaped<Eigen::RowMajor>())) << a;
        // Packed storage has no room for what is above the diagonal, but is none the worse for it.
        MSymmetricMatrix packed;
        s.CalculateEigenVectors(ours, packed);
        EXPECT_EQ(Bits(RowByRow(packed)), Bits(RowByRow(Packed(z))));
    };
    ForEachMatrix(random, compare);
    // Zeros, where the matrix falls apart, and what never settles.
    const double hostile[]{0.0, -0.0, 1.0, 1e-9, 1e200, NAN, INFINITY, 1e-310};
    for (int round = 0; round < 400; ++round) {
        const int n = random.Integer(1, 7);
        compare(ToEigen(Packed(
            RowMajor::NullaryExpr(n, n, [&] { return hostile[random.Integer(0, round % 8)]; }))));
    }
    Values values;
    MGeneralMatrix vectors;
    EXPECT_TRUE(MSymmetricMatrix().CalculateEigenVectors(values, vectors) && values.empty());
}

// |A - Z D Z'| and |I - Z Z'| against n machine epsilons.
void ExpectEigens(const RowMajor& a, const Values& d, const RowMajor& z, double limit)
{
    const Eigen::Index n = a.rows();
    const auto diagonal = Eigen::Map<const Vector>(d.data(), n).asDiagonal();
    const double unit = limit * static_cast<double>(n) * kEpsilon;
    EXPECT_LE(OneNorm(a - z * diagonal * z.transpose()), unit * OneNorm(a));
    EXPECT_LE(OneNorm(RowMajor::Identity(n, n) - z * z.transpose()), unit);
}

TEST(SymmetricSolvers, ResidualsAreSmallOnHardMatrices)
{
    Random random(404);
    ForEachMatrix(random, [](const RowMajor& a) {
        // Large enough that QL's absolute 1e-8 is nothing.
        const RowMajor large = 0x1p40 * a;
        Values d;
        MGeneralMatrix vectors;
        EXPECT_TRUE(Packed(large).CalculateEigenVectors(d, vectors));
        ExpectEigens(large, d, ToEigen(vectors), 30.0);
        // 200 n rotations take part in every row of the vectors: they leave more than 30.
        d = Jacobi(Packed(a), 1e-30);
        const Eigen::Map<const Eigen::MatrixXd> z(d.data() + a.rows(), a.rows(), a.rows());
        if (a.norm() > 0.0)
            ExpectEigens(a, d, z, 100.0);
    });
}

} // namespace
