#pragma once

#include <norvek/foundation/export.h>

#include <cstdint>

/// A function of one variable, as the numerical methods see it. They never take ownership and keep
/// nothing of it; what it throws passes through them, and their outputs are untouched then.
class NORVEK_MATH_API IFunction1D
{
public:
    /// The value at `x`.
    [[nodiscard]] virtual double Evaluate(double x) const = 0;

    virtual ~IFunction1D() = default;

protected:
    /// Nothing to construct.
    IFunction1D() = default;
    /// Nothing to copy.
    IFunction1D(const IFunction1D&) = default;
    /// Nothing to copy.
    IFunction1D& operator=(const IFunction1D&) = default;
};

/// Extrema and roots of a function of one variable: bracketing by golden and parabolic steps,
/// golden-section search, and Ridders' method.
///
/// A maximum is sought as the minimum of the negated function: below, g is the function times the
/// number of the `EXTREMUM`. Every call ends, whatever the function returns; NaN fails every
/// comparison.
class NORVEK_MATH_API MMNumericalMethods
{
public:
    /// What is sought. The number of an enumerator is the factor of every function value.
    enum class EXTREMUM : std::int32_t
    {
        Minimum = 1, ///< The smallest value nearby.
        Maximum = -1 ///< The largest value nearby.
    };

    /// How bracketing ended.
    enum class BRACKET_EXTREMUM_RETVAL : std::int32_t
    {
        ExtremumBracketed = 0, ///< An extremum lies between a and c.
        LimitPassed = 1,       ///< The search went past the limit, or came to a standstill.
        RootBracketed = 2      ///< The function changes its sign between a and b.
    };

    /// Goes downhill of g from `a` over `b` and beyond until g rises again: afterwards
    /// g(b) <= g(a) and g(b) < g(c), with b between a and c.
    ///
    /// The steps grow by the golden ratio or go to the vertex of the parabola through the last
    /// three points, at most 100 times as far as the last step. `a` and `b` are not exchanged: g
    /// has to descend from a to b. When it rises from b to c at once, the answer is
    /// `ExtremumBracketed`, even where it also rises from a to b.
    ///
    /// `limit` bounds the abscissae upwards only, and passing it counts before a bracket found in
    /// the same step. In `rootMode` the search ends with `RootBracketed` as soon as the values at
    /// a and b have different signs or one is 0; the test for a rise from b to c comes first.
    /// `LimitPassed` also ends a search that stands still (a = b), and any after 100,000 steps.
    ///
    /// All three abscissae are written, whatever the outcome. W. H. Press and others, Numerical
    /// Recipes, "Initially bracketing a minimum".
    static BRACKET_EXTREMUM_RETVAL BracketExtremumOrRoot(double& c, double& a, double& b,
                                                         EXTREMUM extremum,
                                                         const IFunction1D* function, double limit,
                                                         bool rootMode);

    /// The abscissa of the extremum inside a bracketing triple (a, b, c), by golden-section search.
    ///
    /// Ends when the interval is at most 1e-10 long, or at most `tolerance` times the sum of the
    /// magnitudes of the two inner points, or when it no longer shrinks. A `tolerance` below 1.5e-8
    /// gains nothing on a smooth function: it is flat to rounding there. 38 % of the interval goes
    /// with each evaluation. J. Kiefer, 1953.
    static double FindPointOfExtremum(double a, double b, double c, EXTREMUM extremum,
                                      const IFunction1D* function, double tolerance);

    /// A root between `x1` and `x2`, where the function has values of strictly opposite signs, by
    /// Ridders' method (C. Ridders, 1979): the error is about squared with every two evaluations.
    ///
    /// Ends when the estimate, or the bracket, moves by at most `tolerance` (absolute), or on an
    /// exact 0. Without a change of sign an end where the function is exactly 0 is the answer, x1
    /// first.
    ///
    /// 0.0 means failure as well as a root at 0: no change of sign, or 60 iterations without an
    /// end. Where the values are so small that their squares vanish, the last estimate is returned,
    /// which is -1.1111e30 before there is one: scale such a function.
    static double FindRoot(double x1, double x2, const IFunction1D* function, double tolerance);
};
