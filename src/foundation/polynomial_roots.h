#pragma once

#include <span>

namespace Norvek::Math::Core
{

/// A complex number as two parts. The standard type is avoided on purpose: its products and
/// quotients differ from compiler to compiler in the treatment of infinities, and our bits must
/// not.
struct ComplexRoot
{
    double real = 0.0;
    double imaginary = 0.0;
};

/// The roots of c0 + c1 x + c2 x^2 + c3 x^3, coefficients in ascending order.
///
/// The degree is the index of the highest coefficient whose magnitude exceeds five machine
/// epsilons. Returns the number of roots, which is the degree, in the order of the formulas:
///
/// - degree 1: -c0 / c1;
/// - degree 2: (s - c1) / 2 c2, then (-s - c1) / 2 c2, with s the root of the discriminant;
/// - degree 3: Cardano, u + v, then w u + w^2 v, then w^2 u + w v, with u the principal cube root
///   and w = -1/2 + i sqrt(3)/2.
///
/// 0, and nothing written, for degree 0 and for a degree above 3. `roots` has room for three.
/// Double roots come out with half the digits. A complex pair may lose all of them: for q > 0 and a
/// small p the difference s - q cancels (x^3 + 8 gives three zeros). Callers look for real roots.
/// A NaN does not count towards the degree. A cubic whose discriminant is not a number (a NaN below
/// the leading coefficient, roots beyond about 1e51) gives three equal roots: their mean, which may
/// be finite and is no root.
int PolynomialRoots(std::span<const double> coefficients, std::span<ComplexRoot, 3> roots);

/// The three roots of b0 + b1 x + b2 x^2 + x^3, as above for degree 3. A caller whose leading
/// coefficient is -1 passes the others negated, which is what dividing by it gives.
void MonicCubicRoots(double b0, double b1, double b2, std::span<ComplexRoot, 3> roots);

} // namespace Norvek::Math::Core
