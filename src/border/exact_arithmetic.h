#pragma once

namespace Norvek::Math::Core
{

/// A rounded result and what rounding took from it: together they are exact.
struct WithError
{
    double value;
    double error;
};

/// The sum and its error (D. E. Knuth, The Art of Computer Programming, volume 2).
inline WithError ExactSum(double a, double b)
{
    const double sum = a + b;
    const double partOfB = sum - a;
    return {sum, (a - (sum - partOfB)) + (b - partOfB)};
}

/// The product and its error, by splitting both factors into halves of 26 bits (T. J. Dekker, A
/// floating-point technique for extending the available precision, Numerische Mathematik 18, 1971).
/// Exact while nothing overflows or underflows.
inline WithError ExactProduct(double a, double b)
{
    constexpr double kSplitter = 0x1p27 + 1.0;
    const double product = a * b;
    const double bigA = kSplitter * a;
    const double highA = bigA - (bigA - a);
    const double lowA = a - highA;
    const double bigB = kSplitter * b;
    const double highB = bigB - (bigB - b);
    const double lowB = b - highB;
    return {product, lowA * lowB - (((product - highA * highB) - lowA * highB) - highA * lowB)};
}

} // namespace Norvek::Math::Core
