#include "foundation/polynomial_roots.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <limits>
#include <vector>

namespace
{

using Norvek::Math::Core::ComplexRoot;
using Norvek::Math::Core::PolynomialRoots;

std::vector<std::complex<double>> Roots(const std::vector<double>& coefficients)
{
    std::array<ComplexRoot, 3> roots;
    const int count = PolynomialRoots(coefficients, roots);
    std::vector<std::complex<double>> result;
    for (int k = 0; k < count; ++k) {
        const ComplexRoot& root = roots[static_cast<std::size_t>(k)];
        result.emplace_back(root.real, root.imaginary);
    }
    return result;
}

TEST(PolynomialRoots, TheDegreeIsThatOfTheHighestCoefficientThatCounts)
{
    EXPECT_EQ(Roots({6.0, -2.0}), (std::vector<std::complex<double>>{3.0}));
    EXPECT_EQ(Roots({6.0, -2.0, 1e-15, -1e-15}).size(), 1U);
    EXPECT_EQ(Roots({6.0, -2.0, 1.2e-15}).size(), 2U);
    EXPECT_TRUE(Roots({6.0}).empty());
    EXPECT_TRUE(Roots({}).empty());
    EXPECT_TRUE(Roots({1.0, 1.0, 1.0, 1.0, 1.0}).empty());
}

TEST(PolynomialRoots, TheOrderIsThatOfTheFormulas)
{
    EXPECT_EQ(Roots({2.0, -3.0, 1.0}), (std::vector<std::complex<double>>{2.0, 1.0}));
    EXPECT_EQ(Roots({5.0, -2.0, 1.0}),
              (std::vector<std::complex<double>>{{1.0, 2.0}, {1.0, -2.0}}));
    // x^3 - 8: u is the principal root 2 and v = 0, so the others follow anticlockwise.
    const auto roots = Roots({-8.0, 0.0, 0.0, 1.0});
    ASSERT_EQ(roots.size(), 3U);
    EXPECT_LT(std::abs(roots[0] - 2.0), 1e-14);
    EXPECT_LT(std::abs(roots[1] - std::complex(-1.0, std::sqrt(3.0))), 1e-14);
    // (x - 1)(x - 2)(x - 4), all real: u is complex, and its principal root fixes the order.
    const auto real = Roots({-8.0, 14.0, -7.0, 1.0});
    EXPECT_LT(std::abs(real[0] - 4.0) + std::abs(real[1] - 1.0) + std::abs(real[2] - 2.0), 1e-13);
}

// The sums and products of the roots give the coefficients back, also from a complex pair.
TEST(PolynomialRoots, RootsRebuildThePolynomial)
{
    norvek_test::Random random(201);
    for (int i = 0; i < 5000; ++i) {
        const std::vector<double> c{random.LogUniform(1e-2, 1e2), random.LogUniform(1e-2, 1e2),
                                    random.LogUniform(1e-2, 1e2), random.LogUniform(1e-1, 1e1)};
        const auto r = Roots(c);
        ASSERT_EQ(r.size(), 3U);
        const double size = 1.0 + std::abs(r[0]) + std::abs(r[1]) + std::abs(r[2]);
        EXPECT_LT(std::abs(r[0] + r[1] + r[2] + c[2] / c[3]), 1e-12 * size);
        EXPECT_LT(std::abs(r[0] * r[1] + r[1] * r[2] + r[2] * r[0] - c[1] / c[3]),
                  1e-11 * size * size);
    }
}

TEST(PolynomialRoots, NonFiniteCoefficientsReturn)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {nan, infinity, -infinity}) {
        for (std::size_t k = 0; k < 4; ++k) {
            std::vector<double> c{1.0, 2.0, 3.0, 4.0};
            c[k] = odd;
            EXPECT_LE(Roots(c).size(), 3U);
        }
    }
}

} // namespace
