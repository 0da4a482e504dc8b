#include "linalg/symmetric_jacobi.h"

#include <norvek/foundation/constants.h>
#include <norvek/linalg/matrix3x3.h>

#include <algorithm>
#include <cmath>
#include <limits>

// Notation: A the matrix, M = A' A its square, l_k and v_k the eigenvalues and eigenvectors of M,
// R the orthonormal factor of A = R S. For full rank R = A M^(-1/2).

using namespace Norvek::Math::Core;

namespace
{

using Vector = MMPoint3d<double>;

// A result of the closed form is kept when R' R differs from the identity by no more than this.
constexpr double kOrthonormal = 1e-12;

// Two passes of rotations bring A V to orthogonal columns at any ratio of the singular values; the
// third finds nothing left to do.
constexpr int kRefinements = 3;

MMatrix3x3 FromColumns(const Vector& a, const Vector& b, const Vector& c)
{
    MMatrix3x3 result;
    result.SetRow(0, {a.x, b.x, c.x});
    result.SetRow(1, {a.y, b.y, c.y});
    result.SetRow(2, {a.z, b.z, c.z});
    return result;
}

MMatrix3x3 Outer(const Vector& p, const Vector& q)
{
    MMatrix3x3 result;
    result.PDotQTranspose(p, q);
    return result;
}

// The largest magnitude of the nine entries; NaN when one of them is.
double LargestMagnitude(const MMatrix3x3& a)
{
    double largest = 0.0;
    for (unsigned int i = 0; i < 9; ++i) {
        const double magnitude = std::abs(a.Value(i / 3, i % 3));
        if (!(magnitude <= largest))
            largest = magnitude;
        if (std::isnan(largest))
            break;
    }
    return largest;
}

// Finite, and symmetric but for rounding: beside an infinite entry no difference would count.
bool IsSymmetric(const MMatrix3x3& a)
{
    const double largest = LargestMagnitude(a);
    const double tolerance = kTenEpsilons * largest;
    return largest <= std::numeric_limits<double>::max() &&
           std::abs(a.Value(0, 1) - a.Value(1, 0)) <= tolerance &&
           std::abs(a.Value(0, 2) - a.Value(2, 0)) <= tolerance &&
           std::abs(a.Value(1, 2) - a.Value(2, 1)) <= tolerance;
}

bool IsOrthonormal(const MMatrix3x3& r)
{
    for (int i = 0; i < 3; ++i) {
        for (int j = i; j < 3; ++j) {
            const double expected = i == j ? 1.0 : 0.0;
            if (!(std::abs(r.GetColumn(i).Dot(r.GetColumn(j)) - expected) <= kOrthonormal))
                return false;
        }
    }
    return true;
}

// The sum over the first `count` pairs of v v' / sqrt(l), its lower triangle a copy of the upper.
MMatrix3x3 InverseRoot(const double* values, const Vector* vectors, int count)
{
    MMatrix3x3 result;
    for (unsigned int i = 0; i < 3; ++i) {
        for (unsigned int j = i; j < 3; ++j) {
            double sum = 0.0;
            for (int k = 0; k < count; ++k) {
                const double v[3]{vectors[k].x, vectors[k].y, vectors[k].z};
                sum += 1.0 / std::sqrt(values[k]) * v[i] * v[j];
            }
            result.Element(i, j) = sum;
            result.Element(j, i) = sum;
        }
    }
    return result;
}

// The described thresholds on the values of a matrix of rank 2, in any order.
bool HasRankTwo(double l0, double l1, double l2)
{
    const double smallest = std::min({l0, l1, l2});
    const double middle = std::max(std::min(l0, l1), std::min(std::max(l0, l1), l2));
    return std::abs(smallest) <= kTenEpsilons && middle >= kTenEpsilons;
}

// M^(-1/2) in closed form.
bool ClosedRoot(const MMatrix3x3& m, MMatrix3x3& root)
{
    double values[3];
    Vector vectors[3];
    if (!m.GetEigenValues(values) || std::min({values[0], values[1], values[2]}) < kTenEpsilons ||
        !m.GetEigenVectors(vectors, values))
        return false;
    root = InverseRoot(values, vectors, 3);
    return true;
}

// The polar factor from rotations, at any scale and any ratio of the singular values.
//
// V makes the columns of B = A V orthogonal; their directions u_k and the columns v_k of V give
// R = sum u_k v_k'. Rotations from M alone lose the small columns (M squares their ratio), so M is
// formed again from B, whose columns are graded by then, until nothing is left to rotate.
bool RobustNearest(MMatrix3x3 a, MMatrix3x3& result)
{
    const double largest = LargestMagnitude(a);
    if (!(largest > 0.0 && largest <= std::numeric_limits<double>::max()))
        return false;
    // Twice, since the reciprocal of a subnormal number overflows.
    int exponent = 0;
    std::frexp(largest, &exponent);
    a *= std::ldexp(1.0, -exponent / 2);
    a *= std::ldexp(1.0, -exponent - (-exponent / 2));

    Vector b[3]{a.GetColumn(0), a.GetColumn(1), a.GetColumn(2)};
    Vector v[3]{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    for (int pass = 0; pass < kRefinements; ++pass) {
        MMatrix3x3 m;
        FromColumns(b[0], b[1], b[2]).InvTransposeSquare(m);
        const SymmetricEigen eigen = SolveSymmetric(m);
        const Vector bOld[3]{b[0], b[1], b[2]};
        const Vector vOld[3]{v[0], v[1], v[2]};
        for (int k = 0; k < 3; ++k) {
            const Vector& turn = eigen.vectors[static_cast<std::size_t>(k)];
            b[k] = bOld[0] * turn.x + bOld[1] * turn.y + bOld[2] * turn.z;
            v[k] = vOld[0] * turn.x + vOld[1] * turn.y + vOld[2] * turn.z;
        }
    }
    // The thresholds of the closed form, relative to the largest value. b is in descending order.
    // A NaN fails here.
    const double limit = kTenEpsilons * b[0].LengthSquared();
    if (!(b[1].LengthSquared() >= limit))
        return false;
    const Vector u0 = b[0].Normalised();
    const Vector u1 = (b[1] - u0 * u0.Dot(b[1])).Normalised();
    // The third direction is fixed by the other two but for its side: that of b_2 where it has one,
    // else the one that makes a rotation.
    Vector u2 = u0.Cross(u1);
    const bool fullRank = b[2].LengthSquared() > limit;
    const double side = fullRank ? u2.Dot(b[2]) : v[0].Cross(v[1]).Dot(v[2]);
    if (side < 0.0)
        u2 = -u2;
    result = Outer(u0, v[0]) + Outer(u1, v[1]) + Outer(u2, v[2]);
    return true;
}

} // namespace

bool MMatrix3x3::_GetClosedPseudoRoot(MMatrix3x3& root) const
{
    double values[2];
    Vector vectors[2];
    if (!_GetTwoEigenvalues(values) || !HasRankTwo(values[0], values[1], 0.0) ||
        !_GetTwoEigenVectors(vectors, values))
        return false;
    root = InverseRoot(values, vectors, 2);
    return true;
}

// The decision on the rank is absolute, so that what comes out is only a proposal.
bool MMatrix3x3::_GetClosedNearest(MMatrix3x3& result) const
{
    MMatrix3x3 m;
    InvTransposeSquare(m);
    const double determinant = m.Determinant();
    const double largest = m.GetMaxEntry();
    MMatrix3x3 root;
    if (determinant * determinant > largest * largest * kMachineEpsilon) {
        if (!ClosedRoot(m, root))
            return false;
        root.PreMultiply(*this);
        result = root;
        return true;
    }
    Vector u;
    Vector w;
    if (!m._GetClosedPseudoRoot(root) || !GetLeftSingular(u) || !GetRightSingular(w))
        return false;
    const MMatrix3x3 x = *this * root;
    const MMatrix3x3 complement = Outer(u, w);
    const MMatrix3x3 sum = x + complement;
    result = sum.Determinant() > 0.0 ? sum : x - complement;
    return true;
}

// The closed form's smallest value carries the rounding of the largest, so a value that it finds
// below the threshold is looked at again.
bool MMatrix3x3::SquareRootInverse()
{
    MMatrix3x3 root;
    if (!ClosedRoot(*this, root)) {
        if (!IsSymmetric(*this))
            return false;
        const SymmetricEigen eigen = SolveSymmetric(*this);
        if (!(eigen.values[2] >= kTenEpsilons) ||
            !(eigen.values[0] <= std::numeric_limits<double>::max()))
            return false;
        root = InverseRoot(eigen.values.data(), eigen.vectors.data(), 3);
    }
    *this = root;
    return true;
}

bool MMatrix3x3::SquareRootPseudoInverse()
{
    MMatrix3x3 root;
    if (!_GetClosedPseudoRoot(root)) {
        if (!IsSymmetric(*this))
            return false;
        const SymmetricEigen eigen = SolveSymmetric(*this);
        if (!HasRankTwo(eigen.values[0], eigen.values[1], eigen.values[2]) ||
            !(eigen.values[0] <= std::numeric_limits<double>::max()))
            return false;
        root = InverseRoot(eigen.values.data(), eigen.vectors.data(), 2);
    }
    *this = root;
    return true;
}

bool MMatrix3x3::NearestOrthonormal(MMatrix3x3& result) const
{
    MMatrix3x3 nearest;
    const bool kept = _GetClosedNearest(nearest) && IsOrthonormal(nearest);
    if (!kept && !RobustNearest(*this, nearest))
        return false;
    result = nearest;
    return true;
}
