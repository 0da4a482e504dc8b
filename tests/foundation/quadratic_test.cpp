#include "support/random.h"

#include <norvek/foundation/diminishing_functions.h>
#include <norvek/foundation/quadratic.h>
#include <norvek/foundation/quadratic_equation.h>

#include <gtest/gtest.h>

#include <limits>
#include <numbers>

namespace
{

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(QuadraticEquation, SolvesAndCountsByTheExactDiscriminant)
{
    norvek_test::Random random(611);
    MMQuadraticEquation equation(0.0, 0.0, 0.0);
    for (int i = 0; i < 1000; ++i) {
        const double a = random.Uniform(0.5, 2.0);
        const double low = random.Uniform(-3.0, 0.0);
        const double high = random.Uniform(0.1, 3.0);
        equation.Set(a, -a * (low + high), a * low * high);
        ASSERT_EQ(equation.GetNumRoots(), 2);
        EXPECT_NEAR(equation.GetRoot(0), low, 1e-13);
        EXPECT_NEAR(equation.GetRoot(1), high, 1e-13);
    }
    equation.Set(1.0, -6.0, 9.0);
    EXPECT_TRUE(equation.GetNumRoots() == 1 && equation.GetRoot(0) == 3.0);
    equation.SetC(10.0);
    EXPECT_TRUE(!equation.Solve() && equation.GetNumRoots() == 0 && equation.GetRoot(1) == 0.0);
    equation.SetB(kNan);
    EXPECT_TRUE(equation.Solve() && equation.GetNumRoots() == 1);
    // A linear equation is not recognised.
    equation.Set(0.0, 2.0, -4.0);
    EXPECT_EQ(equation.GetNumRoots(), 2);
    EXPECT_TRUE(std::isnan(equation.GetRoot(1)) && std::isinf(equation.GetRoot(0)));
}

// NIST StRD, Pontius: loads 150,000 apart, two deflections at each, here their sums in 1e-5. The
// parabola through the means is that through all.
TEST(Quadratic, FitsACertifiedRegressionToNineDigits)
{
    const double sums[]{22071,  43974,  65888,  87785,  109601, 131433, 153158,
                        174961, 196592, 218296, 240005, 261640, 283212, 304807,
                        326353, 347912, 369342, 390837, 412305, 433673};
    std::map<double, double> points;
    double load = 0.0;
    for (const double sum : sums)
        points[load += 150000.0] = sum / 2e5;
    MM1dQuadratic fit;
    ASSERT_TRUE(fit.FitThroughMap(points));
    MMPoint3d<double> c;
    EXPECT_TRUE(fit.GetCoefficients(c.x, c.y, c.z));
    EXPECT_NEAR(c.x / -0.316081871345029e-14, 1.0, 1e-9);
    EXPECT_NEAR(c.y / 0.732059160401003e-06, 1.0, 1e-9);
    EXPECT_NEAR(c.z / 0.673565789473684e-03, 1.0, 1e-9);

    const MM1dQuadratic before = fit;
    EXPECT_FALSE(fit.FitThroughMap({{1.0, 2.0}, {3.0, 4.0}}));
    EXPECT_FALSE(fit.FitThroughMap({{1e-99, 2.0}, {2e-99, 4.0}, {3e-99, 4.0}}));
    EXPECT_EQ(fit, before);
}

TEST(Quadratic, HasATopUnlessItIsALine)
{
    double a = 7.0;
    double b = 7.0;
    double c = 7.0;
    for (const double none : {0.0, -0.0, kNan}) {
        const MM1dQuadratic line(none, 2.0, 3.0);
        EXPECT_FALSE(line.GetTopOfQuadratic(a, b));
        EXPECT_EQ(a, 7.0);
        double zero = 7.0;
        EXPECT_FALSE(line.GetCoefficients(zero, b, c));
        EXPECT_EQ(zero + b + c, 0.0);
    }
    const MM1dQuadratic parabola(1.0, 4.0, 9.0);
    EXPECT_TRUE(parabola.GetTopOfQuadratic(a, b) && a == -2.0 && b == 5.0 && parabola(-1.0) == 6.0);
}

TEST(Diminishing, BlendsAndKeepsItsAbsoluteTest)
{
    using namespace DiminishingFunctions;
    for (const double x : {1.0, 2.5, 5.0, 9.0}) {
        EXPECT_NEAR(DoDiminishing(x, 0.0, 10.0, 2.0, 7.0, Linear), 2.0 + 0.5 * x, 1e-6);
        const double wave = 4.5 - 2.5 * std::cos(x * std::numbers::pi / 10.0);
        EXPECT_NEAR(DoDiminishing(x, 0.0, 10.0, 2.0, 7.0, Cosine), wave, 1e-6);
    }
    const MMPoint3d<float> start(1.0F, 2.0F, 3.0F);
    const MMPoint3d<float> end(3.0F, 6.0F, 1.0F);
    EXPECT_EQ(DoDiminishing(3.0, 2.0, 4.0, start, end, Linear), MMPoint3d<float>(2.0F, 4.0F, 2.0F));
    const struct
    {
        double x;
        double start;
        double result;
    } edges[] = {{1e-8, 0.0, 2.0},  {10.0 - 1e-8, 0.0, 7.0}, {-1.0, -5.0, 7.0},
                 {-6.0, -5.0, 2.0}, {1.0, 1.0, 2.0},         {10.0, 0.0, 7.0}};
    for (const auto type : {Linear, Cosine}) {
        for (const auto& edge : edges)
            EXPECT_EQ(DoDiminishing(edge.x, edge.start, 10.0, 2.0, 7.0, type), edge.result);
        EXPECT_TRUE(std::isnan(DoDiminishing(kNan, 0.0, 10.0, 2.0, 7.0, type)));
    }
    EXPECT_EQ(DoDiminishing(-6.0, -5.0, 10.0, 2.0, 7.0, AtEnd), 7.0);
    EXPECT_EQ(DoDiminishing(50.0, 0.0, 10.0, 2.0, 7.0, static_cast<DiminishingType>(3)), 2.0);
    // Each weight is rounded on its own: a third and two thirds of 1 do not make 1.
    EXPECT_EQ(DoDiminishing(1.0, 0.0, 3.0, 1.0, 0.0, Linear), static_cast<double>(2.0F / 3.0F));
    EXPECT_EQ(DoDiminishing(1.0, 0.0, 3.0, 0.0, 1.0, Linear), static_cast<double>(1.0F / 3.0F));
}

} // namespace
