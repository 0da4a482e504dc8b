#include "support/random.h"

#include <norvek/foundation/numerical_methods.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace
{

using norvek_test::Random;
using Methods = MMNumericalMethods;
using Outcome = Methods::BRACKET_EXTREMUM_RETVAL;
using Extremum = Methods::EXTREMUM;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Function : IFunction1D
{
    std::function<double(double)> formula;
    mutable int calls = 0;

    explicit Function(std::function<double(double)> f) : formula(std::move(f))
    {}
    [[nodiscard]] double Evaluate(double x) const override
    {
        ++calls;
        return formula(x);
    }
};

struct Bracketing
{
    Outcome outcome;
    double a;
    double b;
    double c;

    Bracketing(const Function& f, double from, double over, Extremum extremum = Extremum::Minimum,
               double limit = kInfinity, bool rootMode = false)
        : a(from),
          b(over),
          c(0.0)
    {
        outcome = Methods::BracketExtremumOrRoot(c, a, b, extremum, &f, limit, rootMode);
    }
};

TEST(Bracketing, FindsATripleAroundTheExtremum)
{
    const Function parabola([](double x) { return (x - 2.0) * (x - 2.0); });
    const Bracketing exact(parabola, 0.0, 1.0);
    EXPECT_EQ(exact.outcome, Outcome::ExtremumBracketed);
    EXPECT_EQ(exact.a, 1.0);
    EXPECT_DOUBLE_EQ(exact.b, 2.0);
    EXPECT_EQ(exact.c, 1.0 + 1.618034);

    Random random(601);
    for (int i = 0; i < 500; ++i) {
        const double centre = random.LogUniform(1e-3, 1e6);
        const double power = random.Uniform(1.2, 4.0);
        const double sign = i % 2 == 0 ? 1.0 : -1.0;
        const Function f([&](double x) { return sign * std::pow(std::abs(x - centre), power); });
        const auto extremum = sign > 0.0 ? Extremum::Minimum : Extremum::Maximum;
        const double step = random.Uniform(0.01, 1.0) * (centre > 0.0 ? 1.0 : -1.0);
        const Bracketing t(f, 0.0, step, extremum);
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
    // Falls for ever: the limit, upwards only, or a root on the way.
    const Bracketing limited(line, 0.0, 1.0, Extremum::Minimum, 100.0);
    EXPECT_EQ(limited.outcome, Outcome::LimitPassed);
    EXPECT_GE(limited.c, 100.0);
    const Bracketing root(line, 0.0, 1.0, Extremum::Minimum, 1e9, true);
    EXPECT_EQ(root.outcome, Outcome::RootBracketed);
    EXPECT_LE(line.Evaluate(root.a) * line.Evaluate(root.b), 0.0);
    // Rises from b to c: no root is reported, though one lies between a and b.
    const Function valley([](double x) { return x < 0.5 ? -1.0 : x; });
    EXPECT_EQ(Bracketing(valley, 0.0, 1.0, Extremum::Minimum, 9.0, true).outcome,
              Outcome::ExtremumBracketed);
    // A dip below the limit and a rise beyond it in one step: the limit counts.
    const Function cliff([](double x) { return x < 2.7 ? -x : 9.0; });
    EXPECT_EQ(Bracketing(cliff, 0.0, 1.0, Extremum::Minimum, 3.0).outcome, Outcome::LimitPassed);
    EXPECT_EQ(Bracketing(cliff, 0.0, 1.0).outcome, Outcome::ExtremumBracketed);
    // A downhill walk to the left knows no limit.
    const Function left([](double x) { return (x + 50.0) * (x + 50.0); });
    EXPECT_EQ(Bracketing(left, 0.0, -1.0, Extremum::Minimum, 10.0).outcome,
              Outcome::ExtremumBracketed);
}

// The values jump over the root while the old middle point is dropped.
TEST(Bracketing, SeesASignChangeBeyondTheDroppedPoint)
{
    const Function f([](double x) { return x < 1.5 ? 10.0 - x : -std::sqrt(x); });
    const Bracketing t(f, 0.0, 1.0, Extremum::Minimum, 1e9, true);
    EXPECT_EQ(t.outcome, Outcome::RootBracketed);
    EXPECT_LE(f.Evaluate(t.a) * f.Evaluate(t.b), 0.0);
}

TEST(NumericalMethods, EndWhateverTheFunctionReturns)
{
    for (const double value : {0.0, 1.0, kNan, kInfinity, -kInfinity, 1e308}) {
        const Function constant([&](double) { return value; });
        for (const double b : {0.0, 1.0, -1.0, kNan, kInfinity, 1e308}) {
            for (const bool rootMode : {false, true})
                Bracketing(constant, 0.0, b, Extremum::Maximum, kInfinity, rootMode);
            for (const double tolerance : {0.0, -1.0, kNan}) {
                Methods::FindPointOfExtremum(-b, 0.0, b, Extremum::Minimum, &constant, tolerance);
                Methods::FindRoot(0.0, b, &constant, tolerance);
            }
        }
        EXPECT_LT(constant.calls, 3000000);
    }
    const Function parabola([](double x) { return x * x; });
    EXPECT_EQ(Bracketing(parabola, 3.0, 3.0).outcome, Outcome::LimitPassed);
    // Neighbouring numbers lie farther apart here than the shortest interval.
    const Function far([](double x) { return std::abs(x - 1.5e9); });
    const double x = Methods::FindPointOfExtremum(1e9, 1.4e9, 2e9, Extremum::Minimum, &far, 0.0);
    EXPECT_NEAR(x, 1.5e9, 1e-5);
    EXPECT_LT(far.calls, 200);
}

TEST(FindRoot, ReachesPublishedRootsToFourUnitsInTheLastPlace)
{
    struct Case
    {
        std::function<double(double)> f;
        double low;
        double high;
        double root;
    };
    // Wallis; Dottie; the omega constant; Alefeld, Potra and Shi 1; Kepler with e = 0.9, M = 1;
    // Euler's number; the first zero of J0; x = tan x; the golden ratio; the plastic number.
    const Case cases[]{
        {[](double x) { return x * x * x - 2.0 * x - 5.0; }, 2.0, 3.0, 2.0945514815423265},
        {[](double x) { return std::cos(x) - x; }, 0.0, 1.0, 0.7390851332151607},
        {[](double x) { return x * std::exp(x) - 1.0; }, 0.0, 1.0, 0.5671432904097838},
        {[](double x) { return std::sin(x) - x / 2.0; }, 1.6, 3.1, 1.8954942670339809},
        {[](double x) { return x - 0.9 * std::sin(x) - 1.0; }, 0.0, 4.0, 1.8620866868745323},
        {[](double x) { return std::log(x) - 1.0; }, 1.0, 10.0, 2.718281828459045},
        {[](double x) { return std::cyl_bessel_j(0.0, x); }, 2.0, 3.0, 2.404825557695773},
        {[](double x) { return std::sin(x) - x * std::cos(x); }, 4.0, 5.0, 4.493409457909064},
        {[](double x) { return x * x - x - 1.0; }, 1.0, 2.0, 1.618033988749895},
        {[](double x) { return x * x * x - x - 1.0; }, 1.0, 2.0, 1.324717957244746},
    };
    for (const Case& c : cases) {
        const Function f(c.f);
        const double unit = std::nextafter(c.root, kInfinity) - c.root;
        for (const bool turned : {false, true}) {
            const double x =
                Methods::FindRoot(turned ? c.high : c.low, turned ? c.low : c.high, &f, unit);
            EXPECT_NEAR(x, c.root, 4.0 * unit);
        }
    }
}

TEST(FindRoot, AnswersWithoutASignChange)
{
    const Function square([](double x) { return x * x - 2.0; });
    EXPECT_EQ(Methods::FindRoot(2.0, 3.0, &square, 1e-12), 0.0);
    const Function line([](double x) { return (x - 3.0) * (x - 5.0); });
    EXPECT_EQ(Methods::FindRoot(3.0, 5.0, &line, 1e-12), 3.0);
    EXPECT_EQ(Methods::FindRoot(9.0, 5.0, &line, 1e-12), 5.0);
    // The squares of the values vanish before there is an estimate.
    const Function flat([](double x) { return x * 1e-200; });
    EXPECT_EQ(Methods::FindRoot(-1.0, 2.0, &flat, 1e-12), -1.1111e+30);
}

} // namespace
