#include "foundation/polynomial_roots.h"

#include <norvek/foundation/constants.h>

#include <cmath>
#include <cstddef>

// Notation: c_k or b_k the coefficient of x^k, p and q those of the depressed cubic, s the root of
// its discriminant, u and v the two cube roots of Cardano's formula, w the primitive cube root of
// one. Everything complex is written out in pairs of doubles, so that it rounds alike with every
// compiler.

namespace Norvek::Math::Core
{

namespace
{

// Five machine epsilons: coefficients up to it do not count towards the degree, and a cube root up
// to it is taken as zero.
constexpr double kNegligible = 1.1102230246251565e-15;
static_assert(kNegligible == 5.0 * kMachineEpsilon);

// sqrt(3) / 2, the imaginary part of the primitive cube root of one.
constexpr double kHalfRootThree = 0.8660254037844386;

// The principal square root of a real number, imaginary for a negative one.
ComplexRoot SquareRootOfReal(double value)
{
    if (value < 0.0)
        return {0.0, std::sqrt(-value)};
    return {std::sqrt(value), 0.0};
}

// z times -1/2 + i h, for h the imaginary part of a cube root of one.
ComplexRoot TurnedByThird(const ComplexRoot& z, double h)
{
    return {-0.5 * z.real - h * z.imaginary, -0.5 * z.imaginary + h * z.real};
}

void QuadraticRoots(const double* c, std::span<ComplexRoot, 3> roots)
{
    const ComplexRoot s = SquareRootOfReal(c[1] * c[1] - 4.0 * c[2] * c[0]);
    const double imaginary = s.imaginary * 0.5 / c[2];
    roots[0] = {(s.real - c[1]) * 0.5 / c[2], imaginary};
    roots[1] = {(-s.real - c[1]) * 0.5 / c[2], -imaginary};
}

} // namespace

// Cardano on the depressed cubic y^3 + p y + q, x = y + shift.
void MonicCubicRoots(double b0, double b1, double b2, std::span<ComplexRoot, 3> roots)
{
    const double shift = -b2 / 3.0;
    const double p = b1 - b2 * b2 / 3.0;
    const double q = ((shift + b2) * shift + b1) * shift + b0;
    const ComplexRoot s = SquareRootOfReal(4.0 * p * p * p / 27.0 + q * q);
    const ComplexRoot cube{(s.real - q) / 2.0, s.imaginary / 2.0};

    // The principal cube root, |cube|^(1/3) at a third of the angle.
    constexpr double third = 1.0 / 3.0;
    const double modulus = std::sqrt(cube.real * cube.real + cube.imaginary * cube.imaginary);
    const double size = std::pow(modulus, third);
    ComplexRoot u;
    ComplexRoot v;
    // Meant as it stands: a discriminant that overflowed is NaN, fails the test and gives three
    // equal roots.
    if (size > kNegligible) {
        const double angle = std::atan2(cube.imaginary, cube.real) * third;
        u = {size * std::cos(angle), size * std::sin(angle)};
        // v = -p / 3 u, multiplied out with the conjugate.
        const ComplexRoot w{3.0 * u.real, 3.0 * u.imaginary};
        const double square = w.real * w.real + w.imaginary * w.imaginary;
        v = {-p * w.real / square, p * w.imaginary / square};
    }
    // w u and w v, and w^2 u and w^2 v: a third of a turn forwards, and back.
    const ComplexRoot turnedU = TurnedByThird(u, kHalfRootThree);
    const ComplexRoot turnedV = TurnedByThird(v, kHalfRootThree);
    const ComplexRoot backU = TurnedByThird(u, -kHalfRootThree);
    const ComplexRoot backV = TurnedByThird(v, -kHalfRootThree);
    roots[0] = {u.real + v.real + shift, u.imaginary + v.imaginary};
    roots[1] = {turnedU.real + backV.real + shift, turnedU.imaginary + backV.imaginary};
    roots[2] = {backU.real + turnedV.real + shift, backU.imaginary + turnedV.imaginary};
}

int PolynomialRoots(std::span<const double> coefficients, std::span<ComplexRoot, 3> roots)
{
    std::size_t degree = coefficients.size();
    while (degree > 0 && !(std::abs(coefficients[degree - 1]) > kNegligible))
        --degree;
    if (degree < 2 || degree > 4)
        return 0;
    --degree;
    if (degree == 1)
        roots[0] = {-coefficients[0] / coefficients[1], 0.0};
    else if (degree == 2)
        QuadraticRoots(coefficients.data(), roots);
    else
        MonicCubicRoots(coefficients[0] / coefficients[3], coefficients[1] / coefficients[3],
                        coefficients[2] / coefficients[3], roots);
    return static_cast<int>(degree);
}

} // namespace Norvek::Math::Core
