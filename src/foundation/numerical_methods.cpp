#include <norvek/foundation/numerical_methods.h>

#include <cmath>

// Notation: g(x) = s f(x) with s = 1 for a minimum and -1 for a maximum.

namespace
{

// The fractions of the golden section are these six digits, not those of the shared constants:
// results depend on them.
constexpr double kGolden = 1.618034;
constexpr double kRight = 0.618034;
constexpr double kLeft = 0.381966;

// The largest parabolic step, in units of the last step.
constexpr double kLargestStep = 100.0;

// Keeps the parabola's denominator away from 0.
constexpr double kTiny = 1e-20;

// Intervals are not searched below this length.
constexpr double kShortest = 1e-10;

// What a root estimate holds before there is one.
constexpr double kUnset = -1.1111e+30;

// No search that settles comes near: from 1e-308 to 1e308 there are 3,000 golden steps.
constexpr int kMostSteps = 100000;

// Passes of the golden section in which rounding may keep the interval from shrinking.
constexpr int kMostIdlePasses = 10;

constexpr int kMostRidders = 60;

struct Sought
{
    double sign;
    const IFunction1D* function;

    double operator()(double x) const
    {
        return sign * function->Evaluate(x);
    }
};

// A point and its value.
struct Sample
{
    double x;
    double g;
};

struct Triple
{
    Sample a;
    Sample b;
    Sample c;

    void Shift(const Sample& next)
    {
        a = b;
        b = c;
        c = next;
    }
};

bool IsSame(double p, double q)
{
    return p == q || (std::isnan(p) && std::isnan(q));
}

bool IsSame(const Triple& t, const Triple& u)
{
    return IsSame(t.a.x, u.a.x) && IsSame(t.b.x, u.b.x) && IsSame(t.c.x, u.c.x);
}

double GoldenStep(const Triple& t)
{
    return t.c.x + kGolden * (t.c.x - t.b.x);
}

double ParabolicStep(const Triple& t)
{
    const double r = (t.b.x - t.a.x) * (t.b.g - t.c.g);
    const double q = (t.b.x - t.c.x) * (t.b.g - t.a.g);
    const double magnitude = std::abs(q - r) > kTiny ? std::abs(q - r) : kTiny;
    const double d = std::copysign(magnitude, q - r);
    return t.b.x - ((t.b.x - t.c.x) * q - (t.b.x - t.a.x) * r) / (2.0 * d);
}

enum class Step
{
    GoOn,
    Extremum,
    Root
};

bool HasRoot(const Triple& t)
{
    return t.b.g * t.a.g <= 0.0;
}

// Where the search goes next, by where the vertex of the parabola lies. The tests are written as
// they decide about NaN.
Step NextStep(Triple& t, const Sought& g, bool rootMode)
{
    double u = ParabolicStep(t);
    const double farthest = t.b.x + kLargestStep * (t.c.x - t.b.x);
    double gu = 0.0;
    if ((t.b.x - u) * (u - t.c.x) > 0.0) {
        gu = g(u);
        if (gu < t.c.g) {
            t.a = t.b;
            t.b = {u, gu};
            return Step::Extremum;
        }
        if (gu > t.b.g) {
            t.c = {u, gu};
            return Step::Extremum;
        }
        u = GoldenStep(t);
        gu = g(u);
    } else if ((t.c.x - u) * (u - farthest) > 0.0) {
        gu = g(u);
        if (gu < t.c.g) {
            t.b = t.c;
            t.c = {u, gu};
            u = GoldenStep(t);
            gu = g(u);
            // The old b has gone, and the sign may have changed beyond it.
            if (rootMode && HasRoot(t))
                return Step::Root;
        }
    } else {
        u = (farthest - t.c.x) * (u - farthest) < 0.0 ? GoldenStep(t) : farthest;
        gu = g(u);
    }
    t.Shift({u, gu});
    return Step::GoOn;
}

using Outcome = MMNumericalMethods::BRACKET_EXTREMUM_RETVAL;

Outcome Bracket(Triple& t, const Sought& g, double limit, bool rootMode)
{
    // The rise comes first: a root before it is not reported.
    if (t.c.g > t.b.g)
        return Outcome::ExtremumBracketed;
    for (int step = 0; step < kMostSteps; ++step) {
        if (rootMode && HasRoot(t))
            return Outcome::RootBracketed;
        const Triple before = t;
        const Step next = NextStep(t, g, rootMode);
        if (next != Step::GoOn)
            return next == Step::Root ? Outcome::RootBracketed : Outcome::ExtremumBracketed;
        // Upwards only, and before the bracket that this very step may have found.
        if (t.c.x >= limit)
            return Outcome::LimitPassed;
        if (!(t.c.g <= t.b.g))
            return Outcome::ExtremumBracketed;
        if (IsSame(t, before))
            break;
    }
    return Outcome::LimitPassed;
}

bool HaveOppositeSigns(double p, double q)
{
    return (p > 0.0 && q < 0.0) || (p < 0.0 && q > 0.0);
}

} // namespace

MMNumericalMethods::BRACKET_EXTREMUM_RETVAL
MMNumericalMethods::BracketExtremumOrRoot(double& c, double& a, double& b, EXTREMUM extremum,
                                          const IFunction1D* function, double limit, bool rootMode)
{
    const Sought g{static_cast<double>(extremum), function};
    Triple t{};
    t.a = {a, g(a)};
    t.b = {b, g(b)};
    t.c.x = b + kGolden * (b - a);
    t.c.g = g(t.c.x);
    const Outcome outcome = Bracket(t, g, limit, rootMode);
    a = t.a.x;
    b = t.b.x;
    c = t.c.x;
    return outcome;
}

double MMNumericalMethods::FindPointOfExtremum(double a, double b, double c, EXTREMUM extremum,
                                               const IFunction1D* function, double tolerance)
{
    const Sought g{static_cast<double>(extremum), function};
    double x0 = a;
    double x1 = b - kLeft * (b - a);
    double x2 = b;
    double x3 = c;
    if (!(std::abs(c - b) <= std::abs(b - a))) {
        x1 = b;
        x2 = b + kLeft * (c - b);
    }
    double g1 = g(x1);
    double g2 = g(x2);
    int idlePasses = 0;
    while (std::abs(x3 - x0) > kShortest &&
           std::abs(x3 - x0) > tolerance * (std::abs(x1) + std::abs(x2)))
    {
        const double before = std::abs(x3 - x0);
        // Not g2 < g1: a value that is not a number drops the part below.
        if (!(g1 <= g2)) {
            x0 = x1;
            x1 = x2;
            x2 = kRight * x1 + kLeft * x3;
            g1 = g2;
            g2 = g(x2);
        } else {
            x3 = x2;
            x2 = x1;
            x1 = kRight * x2 + kLeft * x0;
            g2 = g1;
            g1 = g(x1);
        }
        // Far from 0 neighbouring numbers lie farther apart than the shortest interval.
        idlePasses = std::abs(x3 - x0) < before ? 0 : idlePasses + 1;
        if (idlePasses == kMostIdlePasses)
            break;
    }
    return g1 < g2 ? x1 : x2;
}

double MMNumericalMethods::FindRoot(double x1, double x2, const IFunction1D* function,
                                    double tolerance)
{
    Sample low{x1, function->Evaluate(x1)};
    Sample high{x2, function->Evaluate(x2)};
    if (!HaveOppositeSigns(low.g, high.g))
        return low.g == 0.0 ? x1 : high.g == 0.0 ? x2 : 0.0;

    Sample answer{kUnset, 0.0};
    for (int i = 0; i < kMostRidders; ++i) {
        const double middle = (low.x + high.x) / 2.0;
        const Sample mid{middle, function->Evaluate(middle)};
        const double root = std::sqrt(mid.g * mid.g - low.g * high.g);
        if (root == 0.0)
            return answer.x;
        const double next = mid.x + (mid.x - low.x) * (low.g >= high.g ? 1.0 : -1.0) * mid.g / root;
        if (std::abs(next - answer.x) <= tolerance)
            return answer.x;
        answer = {next, function->Evaluate(next)};
        if (answer.g == 0.0)
            return answer.x;
        if (HaveOppositeSigns(mid.g, answer.g)) {
            low = mid;
            high = answer;
        } else if (HaveOppositeSigns(low.g, answer.g)) {
            high = answer;
        } else if (HaveOppositeSigns(high.g, answer.g)) {
            low = answer;
        }
        if (std::abs(high.x - low.x) <= tolerance)
            return answer.x;
    }
    return 0.0;
}
