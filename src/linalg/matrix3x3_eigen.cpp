#include "foundation/polynomial_roots.h"
#include "linalg/singular_vector.h"

#include <norvek/linalg/matrix3x3.h>

#include <cmath>

using Norvek::Math::Core::ComplexRoot;
using Norvek::Math::Core::kEigenImaginary;
using Norvek::Math::Core::kTenEpsilons;
using Norvek::Math::Core::NullVector;
using Norvek::Math::Core::SecondNullVector;
using Norvek::Math::Core::ThreeVectors;

namespace
{

// Values that differ by no more than this count as one. Absolute. NaN is neither equal to another
// value nor distinct from it.
bool Equal(double a, double b)
{
    return std::abs(a - b) <= kTenEpsilons;
}

bool Distinct(double a, double b)
{
    return std::abs(a - b) > kTenEpsilons;
}

ThreeVectors Rows(const MMatrix3x3& matrix)
{
    return {matrix.GetRow(0), matrix.GetRow(1), matrix.GetRow(2)};
}

// The sum of the cofactors of (0, 0), (1, 1) and (2, 2), with cyclic indices.
double PrincipalMinors(const MMatrix3x3& m)
{
    return (m.Value(1, 1) * m.Value(2, 2) - m.Value(1, 2) * m.Value(2, 1)) +
           (m.Value(2, 2) * m.Value(0, 0) - m.Value(2, 0) * m.Value(0, 2)) +
           (m.Value(0, 0) * m.Value(1, 1) - m.Value(0, 1) * m.Value(1, 0));
}

} // namespace

bool MMatrix3x3::GetEigenValues(double* const values) const
{
    // det - minors x + trace x^2 - x^3, divided by -1.
    ComplexRoot roots[3];
    Norvek::Math::Core::MonicCubicRoots(-Determinant(), PrincipalMinors(*this), -Trace(), roots);
    const double tolerance = GetMaxEntry() * kEigenImaginary;
    for (int k = 0; k < 3; ++k)
        values[k] = roots[k].real;
    return std::abs(roots[0].imaginary) <= tolerance && std::abs(roots[1].imaginary) <= tolerance &&
           std::abs(roots[2].imaginary) <= tolerance;
}

bool MMatrix3x3::GetRightSingular(MMPoint3d<double>& v) const
{
    const ThreeVectors rows = Rows(*this);
    const double tolerance = GetMaxEntry() * kTenEpsilons;
    v = NullVector(rows, tolerance);
    return rows.AllPerpendicular(v, tolerance);
}

bool MMatrix3x3::GetLeftSingular(MMPoint3d<double>& u) const
{
    const ThreeVectors columns{GetColumn(0), GetColumn(1), GetColumn(2)};
    u = NullVector(columns, GetMaxEntry() * kTenEpsilons);
    // Not scaled by the largest entry, unlike the right one.
    return columns.AllPerpendicular(u, kTenEpsilons);
}

inline bool MMatrix3x3::_GetEigenVector(MMPoint3d<double>& v, double value) const
{
    const ThreeVectors shifted = Rows(*this).Shifted(value);
    const double tolerance = shifted.MaxEntry() * kTenEpsilons;
    v = NullVector(shifted, tolerance);
    return shifted.AllPerpendicular(v, tolerance);
}

inline bool MMatrix3x3::_GetSecondRightSingular(MMPoint3d<double>& v,
                                                const MMPoint3d<double>& first) const
{
    const ThreeVectors rows = Rows(*this);
    const double tolerance = rows.MaxEntry() * kTenEpsilons;
    v = SecondNullVector(rows, first, tolerance);
    return rows.AllPerpendicular(v, tolerance);
}

inline bool MMatrix3x3::_GetSecondEigenvector(MMPoint3d<double>& v, double value,
                                              const MMPoint3d<double>& first) const
{
    MMatrix3x3 shifted = *this;
    shifted.SubtractFromDiagonal(value);
    return shifted._GetSecondRightSingular(v, first);
}

inline MMPoint3d<double> MMatrix3x3::_GetThirdEigenvector(const MMPoint3d<double>& first,
                                                          const MMPoint3d<double>& second)
{
    return first.Cross(second);
}

// Every step writes its vector, whether it passes its test or not: the caller of a fit takes the
// vector of the value that stands apart and does not ask about the others.
bool MMatrix3x3::GetEigenVectors(MMPoint3d<double>* const vectors, double* const values) const
{
    if (Equal(values[0], values[1]) && Equal(values[1], values[2])) {
        vectors[0] = {1.0, 0.0, 0.0};
        vectors[1] = {0.0, 1.0, 0.0};
        vectors[2] = {0.0, 0.0, 1.0};
        return true;
    }
    const bool firstTwo = Distinct(values[1], values[0]);
    bool found = _GetEigenVector(vectors[0], values[0]);
    found = (firstTwo ? _GetEigenVector(vectors[1], values[1])
                      : _GetSecondEigenvector(vectors[1], values[1], vectors[0])) &&
            found;
    if (!Distinct(values[2], values[1])) {
        if (firstTwo)
            return _GetSecondEigenvector(vectors[2], values[2], vectors[1]) && found;
        // Three values in a chain of equals: what is left is fixed by the other two.
        vectors[2] = _GetThirdEigenvector(vectors[0], vectors[1]);
        return found;
    }
    // The order (large, small, large): the double value is the first and the third.
    if (firstTwo && !Distinct(values[2], values[0]))
        return _GetSecondEigenvector(vectors[2], values[2], vectors[0]) && found;
    return _GetEigenVector(vectors[2], values[2]) && found;
}

// The characteristic cubic less the root at zero.
bool MMatrix3x3::_GetTwoEigenvalues(double* const values) const
{
    const double coefficients[3]{-PrincipalMinors(*this), Trace(), -1.0};
    ComplexRoot roots[3];
    Norvek::Math::Core::PolynomialRoots(coefficients, roots);
    const double tolerance = GetMaxEntry() * kEigenImaginary;
    values[0] = roots[0].real;
    values[1] = roots[1].real;
    return std::abs(roots[0].imaginary) <= tolerance && std::abs(roots[1].imaginary) <= tolerance;
}

bool MMatrix3x3::_GetTwoEigenVectors(MMPoint3d<double>* const vectors,
                                     const double* const values) const
{
    const bool found = _GetEigenVector(vectors[0], values[0]);
    if (Distinct(values[1], values[0]))
        return _GetEigenVector(vectors[1], values[1]) && found;
    return _GetSecondEigenvector(vectors[1], values[1], vectors[0]) && found;
}
