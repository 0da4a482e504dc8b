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

// Values that differ by no more than this count as one. Absolute.
bool Distinct(double a, double b)
{
    return std::abs(a - b) > kTenEpsilons;
}

ThreeVectors Rows(const MMatrix3x3& matrix)
{
    return {matrix.GetRow(0), matrix.GetRow(1), matrix.GetRow(2)};
}

} // namespace

bool MMatrix3x3::GetEigenValues(double* const values) const
{
    // The principal minors as cofactors of (0, 0), (1, 1) and (2, 2), with cyclic indices.
    const double minors = (_a[1][1] * _a[2][2] - _a[1][2] * _a[2][1]) +
                          (_a[2][2] * _a[0][0] - _a[2][0] * _a[0][2]) +
                          (_a[0][0] * _a[1][1] - _a[0][1] * _a[1][0]);
    // det - minors x + trace x^2 - x^3, divided by -1.
    ComplexRoot roots[3];
    Norvek::Math::Core::MonicCubicRoots(-Determinant(), minors, -Trace(), roots);
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

bool MMatrix3x3::GetEigenVectors(MMPoint3d<double>* const vectors, double* const values) const
{
    if (!Distinct(values[0], values[1]) && !Distinct(values[1], values[2])) {
        vectors[0] = {1.0, 0.0, 0.0};
        vectors[1] = {0.0, 1.0, 0.0};
        vectors[2] = {0.0, 0.0, 1.0};
        return true;
    }
    const ThreeVectors rows = Rows(*this);
    // The null vector of A - value I, orthogonal to `first` where that has the same value.
    const auto find = [&rows](double value, const MMPoint3d<double>* first, MMPoint3d<double>& v) {
        const ThreeVectors shifted = rows.Shifted(value);
        const double tolerance = shifted.MaxEntry() * kTenEpsilons;
        v = first == nullptr ? NullVector(shifted, tolerance)
                             : SecondNullVector(shifted, *first, tolerance);
        return shifted.AllPerpendicular(v, tolerance);
    };
    // Every step writes its vector, whether it passes its test or not: the caller of a fit takes
    // the vector of the value that stands apart and does not ask about the others.
    const bool firstTwo = Distinct(values[1], values[0]);
    bool found = find(values[0], nullptr, vectors[0]);
    found = find(values[1], firstTwo ? nullptr : &vectors[0], vectors[1]) && found;
    if (!Distinct(values[2], values[1])) {
        if (firstTwo)
            return find(values[2], &vectors[1], vectors[2]) && found;
        // Three values in a chain of equals: what is left is fixed by the other two.
        vectors[2] = vectors[0].Cross(vectors[1]);
        return found;
    }
    // The order (large, small, large): the double value is the first and the third.
    const bool likeFirst = firstTwo && !Distinct(values[2], values[0]);
    return find(values[2], likeFirst ? &vectors[0] : nullptr, vectors[2]) && found;
}
