#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace Norvek::Math::Core
{

/// Knot differences and weights up to this magnitude count as zero, itself included. Absolute, not
/// relative to the parameter range: that is meant, and callers with tiny ranges have to scale them.
constexpr double kNurbsZero = 1e-11;

/// Up to so many spans are looked through one after the other: in a row of parameters that ascend
/// the processor foresees where the search ends, and elsewhere it errs once.
constexpr std::int32_t kFewSpans = 20;

/// The smallest i with order <= i < count and t < knots[i]; `count` when there is none, and for
/// NaN.
///
/// Many spans are not searched: fits make even knots, so that the place of t among evenly spaced
/// ones is right or near, and only where it is not, the search is binary.
inline std::int32_t FindKnotSpan(std::int32_t order, std::int32_t count, const double* knots,
                                 double t)
{
    const std::int32_t spans = count - order + 1;
    if (spans <= kFewSpans) {
        std::int32_t i = order;
        while (i < count && !(t < knots[i]))
            ++i;
        return i;
    }
    const double start = knots[order - 1];
    const double range = knots[count] - start;
    double place = (t - start) * spans;
    // Where nearly every curve spares the wait for a division.
    if (range != 1.0)
        place /= range;
    if (place >= 0.0 && place < spans) {
        std::int32_t i = order + static_cast<std::int32_t>(place);
        for (int step = 0; step < 4; ++step) {
            // The ends are asked for because knots that should not descend might.
            if (i > order && t < knots[i - 1])
                --i;
            else if (i < count && !(t < knots[i]))
                ++i;
            else
                return i;
        }
    }
    return static_cast<std::int32_t>(std::upper_bound(knots + order, knots + count, t) - knots);
}

/// A quotient of the recursion: 0 over a difference that counts as zero.
inline double GuardedQuotient(double value, double difference)
{
    return std::abs(difference) > kNurbsZero ? value / difference : 0.0;
}

/// (j) (Q[r - 1] - Q[r]) for r = 0 to j, in place over the quotients Q[0] to Q[j - 1].
template <class Count>
void DifferencesOfQuotients(Count j, double* q)
{
    const double factor = j;
    q[j] = factor * q[j - 1];
    for (std::ptrdiff_t r = j - 1; r > 0; --r)
        q[r] = factor * (q[r - 1] - q[r]);
    q[0] = factor * (0.0 - q[0]);
}

/// The basis values of a span as `bc_eval_b_code_sub` describes them, into arrays of `order`
/// values; `first` and `second` may be null. `knots` is the first knot behind the span.
///
/// Order is `int`, or an `std::integral_constant` where a fixed order is to be unrolled: the same
/// operations in either case. The quotients that derivatives are made of are kept where these will
/// stand, so that no other memory is needed.
template <class Order>
inline void EvaluateBasis(double t, Order order, const double* knots, double* values, double* first,
                          double* second)
{
    values[0] = 1.0;
    for (std::ptrdiff_t j = 1; j < order; ++j) {
        double saved = 0.0;
        for (std::ptrdiff_t r = 0; r < j; ++r) {
            const double from = knots[r - j];
            const double to = knots[r];
            const double quotient = GuardedQuotient(values[r], to - from);
            if (first != nullptr && j == order - 1)
                first[r] = quotient;
            if (second != nullptr && j == order - 2)
                second[r] = quotient;
            values[r] = saved + (to - t) * quotient;
            saved = (t - from) * quotient;
        }
        values[j] = saved;
    }
    if (first != nullptr) {
        if (order > 1)
            DifferencesOfQuotients(order - 1, first);
        else
            first[0] = 0.0;
    }
    if (second == nullptr)
        return;
    if (order < 3) {
        std::fill_n(second, static_cast<std::ptrdiff_t>(order), 0.0);
        return;
    }
    const std::ptrdiff_t last = order - 1;
    DifferencesOfQuotients(order - 2, second);
    for (std::ptrdiff_t r = 0; r < last; ++r)
        second[r] = GuardedQuotient(second[r], knots[r] - knots[r - last]);
    DifferencesOfQuotients(order - 1, second);
}

} // namespace Norvek::Math::Core
