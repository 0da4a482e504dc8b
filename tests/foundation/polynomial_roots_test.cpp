#include "foundation/polynomial_roots.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <limits>
#include <vector>

namespace
{

using Complex = std::complex<double>;

std::vector<Complex> Roots(const std::vector<double>& coefficients)
{
    std::array<Norvek::Math::Core::ComplexRoot, 3> roots;
    const int count = PolynomialRoots(coefficients, roots);
    std::vector<Complex> result;
    for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k)
        result.emplace_back(roots[k].real, roots[k].imaginary);
    return result;
}

TEST(PolynomialRoots, TheDegreeIsThatOfTheHighestCoefficientThatCounts)
{
    EXPECT_EQ(Roots({6.0, -2.0, 1e-15, -1e-15}), std::vector<Complex>{3.0});
    EXPECT_EQ(Roots({6.0, -2.0, 1.2e-15}).size(), 2U);
    for (const std::vector<double>& none : {{}, {6.0}, std::vector<double>(5, 1.0)})
        EXPECT_TRUE(Roots(none).empty());
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity})
        for (std::size_t k = 0; k < 4; ++k) {
            std::vector<double> c{1.0, 2.0, 3.0, 4.0};
            c[k] = odd;
            EXPECT_EQ(Roots(c).size(), k == 3 && std::isnan(odd) ? 2U : 3U);
        }
}

TEST(PolynomialRoots, TheOrderIsThatOfTheFormulas)
{
    const std::pair<std::vector<double>, std::vector<Complex>> cases[] = {
        {{2.0, -3.0, 1.0}, {2.0, 1.0}},
        {{5.0, -2.0, 1.0}, {{1.0, 2.0}, {1.0, -2.0}}},
        // u is the principal root 2 and v = 0, so the others follow anticlockwise.
        {{-8.0, 0.0, 0.0, 1.0}, {2.0, {-1.0, std::sqrt(3.0)}, {-1.0, -std::sqrt(3.0)}}},
        // All real: u is complex, and its principal root fixes the order.
        {{-8.0, 14.0, -7.0, 1.0}, {4.0, 1.0, 2.0}}};
    for (const auto& [coefficients, expected] : cases) {
        const std::vector<Complex> roots = Roots(coefficients);
        ASSERT_EQ(roots.size(), expected.size());
        for (std::size_t k = 0; k < roots.size(); ++k)
            EXPECT_LT(std::abs(roots[k] - expected[k]), 1e-13);
    }
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

} // namespace
