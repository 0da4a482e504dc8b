#include "support/random.h"

#include <norvek/foundation/numerical_methods.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace
{

using Methods = MMNumericalMethods;
using Outcome = Methods::BRACKET_EXTREMUM_RETVAL;
using Extremum = Methods::EXTREMUM;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Function : IFunction1D
{
    std::function<double(double)> formula;
    mutable int calls = 0;

    template <class Formula>
    Function(Formula f) : formula(f)
    {}
    [[nodiscard]] double Evaluate(double x) const override
    {
        ++calls;
        return formula(x);
    }
};

struct Bracketing
{
    double a;
    double b;
    double c = 0.0;
    Outcome outcome;

    Bracketing(const Function& f, double from, double over, Extremum extremum = Extremum::Minimum,
               double limit = kInfinity, bool rootMode = false)
        : a(from),
          b(over),
          outcome(Methods::BracketExtremumOrRoot(c, a, b, extremum, &f, limit, rootMode))
    {}
};

TEST(Bracketing, FindsATripleAroundTheExtremum)
{
    const Bracketing exact([](double x) { return (x - 2.0) * (x - 2.0); }, 0.0, 1.0);
    EXPECT_DOUBLE_EQ(exact.b, 2.0);
    EXPECT_TRUE(exact.a == 1.0 && exact.c == 1.0 + 1.618034);

    norvek_test::Random random(601);
    for (int i = 0; i < 500; ++i) {
        const double centre = random.LogUniform(1e-3, 1e6);
        const double power = random.Uniform(1.2, 4.0);
        const double sign = i % 2 == 0 ? 1.0 : -1.0;
        const Function f([&](double x) { return sign * std::pow(std::abs(x - centre), power); });
        const auto extremum = sign > 0.0 ? Extremum::Minimum : Extremum::Maximum;
        const Bracketing t(f, 0.0, std::copysign(random.Uniform(0.01, 1.0), centre), extremum);
        ASSERT_EQ(t.outcome, Outcome::ExtremumBracketed);
        EXPECT_GT((t.b - t.a) * (t.c - t.b), 0.0);
        EXPECT_GT(sign * f.Evaluate(t.c), sign * f.Evaluate(t.b));
        const double x = Methods::FindPointOfExtremum(t.a, t.b, t.c, extremum, &f, 1e-9);
        EXPECT_NEAR(x, centre, 1e-7 * std::abs(centre) + 1e-9) << power;
    }
}

TEST(Bracketing, LooksForTheRiseFirstThenForRootsThenAtTheLimit)
{
    const Function line([](double x) { return 5.0 - x; });
    const Function cliff([](double x) { return x < 2.7 ? -x : 9.0; });
    const struct
    {
        Function f;
        double second;
        double limit;
        bool rootMode;
        Outcome outcome;
    } cases[] = {
        // Falls for ever: the limit, or a root on the way.
        {line, 1.0, 100.0, false, Outcome::LimitPassed},
        {line, 1.0, 1e9, true, Outcome::RootBracketed},
        // Rises from b to c: no root is reported, though one lies between a and b.
        {[](double x) { return x < 0.5 ? -1.0 : x; }, 1.0, 9.0, true, Outcome::ExtremumBracketed},
        // A dip below the limit and a rise beyond it in one step: the limit counts.
        {cliff, 1.0, 3.0, false, Outcome::LimitPassed},
        {cliff, 1.0, kInfinity, false, Outcome::ExtremumBracketed},
        // A downhill walk to the left knows no limit.
        {[](double x) { return (x + 50.0) * (x + 50.0); }, -1.0, 10.0, false,
         Outcome::ExtremumBracketed},
        // The values jump over the root while the old middle point is dropped.
        {[](double x) { return x < 1.5 ? 10.0 - x : -std::sqrt(x); }, 1.0, 1e9, true,
         Outcome::RootBracketed}};
    for (const auto& c : cases) {
        const Bracketing t(c.f, 0.0, c.second, Extremum::Minimum, c.limit, c.rootMode);
        EXPECT_EQ(t.outcome, c.outcome) << c.limit;
        EXPECT_TRUE(t.outcome != Outcome::LimitPassed || t.c >= c.limit);
        EXPECT_TRUE(t.outcome != Outcome::RootBracketed ||
                    c.f.Evaluate(t.a) * c.f.Evaluate(t.b) <= 0.0);
    }
}

TEST(NumericalMethods, EndWhateverTheFunctionReturns)
{
    for (const double value : {0.0, 1.0, kNan, kInfinity, -kInfinity, 1e308}) {
        const Function constant([&](double) { return value; });
        for (const double b : {0.0, 1.0, -1.0, kNan, kInfinity, 1e308})
            for (const double tolerance : {0.0, -1.0, kNan}) {
                Bracketing(constant, 0.0, b, Extremum::Maximum, kInfinity, tolerance == 0.0);
                Methods::FindPointOfExtremum(-b, 0.0, b, Extremum::Minimum, &constant, tolerance);
                Methods::FindRoot(0.0, b, &constant, tolerance);
            }
        EXPECT_LT(constant.calls, 4000000);
    }
    EXPECT_EQ(Bracketing([](double x) { return x * x; }, 3.0, 3.0).outcome, Outcome::LimitPassed);
    // Neighbouring numbers lie farther apart here than the shortest interval.
    const Function far([](double x) { return std::abs(x - 1.5e9); });
    const double x = Methods::FindPointOfExtremum(1e9, 1.4e9, 2e9, Extremum::Minimum, &far, 0.0);
    EXPECT_NEAR(x, 1.5e9, 1e-5);
    EXPECT_LT(far.calls, 200);
}

TEST(FindRoot, ReachesPublishedRootsToFourUnitsInTheLastPlace)
{
    const struct
    {
        Function f;
        double low;
        double high;
        double root;
    } cases[] = {
        // Wallis; Dottie; the omega constant; Kepler with e = 0.9, M = 1; the first zero of J0; the
        // plastic number.
        {[](double x) { return x * x * x - 2.0 * x - 5.0; }, 2.0, 3.0, 2.0945514815423265},
        {[](double x) { return std::cos(x) - x; }, 0.0, 1.0, 0.7390851332151607},
        {[](double x) { return x * std::exp(x) - 1.0; }, 0.0, 1.0, 0.5671432904097838},
        {[](double x) { return x - 0.9 * std::sin(x) - 1.0; }, 0.0, 4.0, 1.8620866868745323},
        {[](double x) { return std::cyl_bessel_j(0.0, x); }, 2.0, 3.0, 2.404825557695773},
        {[](double x) { return x * x * x - x - 1.0; }, 1.0, 2.0, 1.324717957244746}};
    for (const auto& c : cases) {
        const double unit = std::nextafter(c.root, kInfinity) - c.root;
        EXPECT_NEAR(Methods::FindRoot(c.low, c.high, &c.f, unit), c.root, 4.0 * unit);
        EXPECT_NEAR(Methods::FindRoot(c.high, c.low, &c.f, unit), c.root, 4.0 * unit);
    }
}

TEST(FindRoot, AnswersWithoutASignChange)
{
    const Function parabola([](double x) { return (x - 3.0) * (x - 5.0); });
    EXPECT_EQ(Methods::FindRoot(6.0, 7.0, &parabola, 1e-12), 0.0);
    EXPECT_EQ(Methods::FindRoot(3.0, 5.0, &parabola, 1e-12), 3.0);
    EXPECT_EQ(Methods::FindRoot(9.0, 5.0, &parabola, 1e-12), 5.0);
    // The squares of the values vanish before there is an estimate.
    const Function flat([](double x) { return x * 1e-200; });
    EXPECT_EQ(Methods::FindRoot(-1.0, 2.0, &flat, 1e-12), -1.1111e+30);
}

} // namespace
