#pragma once

#include <norvek/foundation/point3d.h>
#include <norvek/linalg/matrix3x3.h>

#include <array>
#include <cmath>
#include <utility>

/// @file
/// Eigenvalues and eigenvectors of a symmetric 3x3 matrix by cyclic Jacobi rotations: slower than
/// the closed form, but it never fails on finite input, and close or equal values cost no digits.

namespace Norvek::Math::Core
{

/// values[k] belongs to vectors[k]; the values descend, with the sign, and the vectors are
/// orthonormal.
struct SymmetricEigen
{
    std::array<double, 3> values{};
    std::array<MMPoint3d<double>, 3> vectors{};
};

namespace JacobiDetail
{

/// More sweeps than any matrix needs (convergence is quadratic, ten are many): the bound only stops
/// non-finite input.
inline constexpr int kSweeps = 50;

/// The rotation that clears element (p, q): the textbook one, with the smaller of the two angles.
/// r is the third index; `v` has the vectors as rows.
inline void Rotate(double (&a)[3][3], double (&v)[3][3], int p, int q)
{
    const int r = 3 - p - q;
    const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
    const double t = std::copysign(1.0, theta) / (std::abs(theta) + std::sqrt(theta * theta + 1.0));
    const double c = 1.0 / std::sqrt(t * t + 1.0);
    const double s = t * c;
    a[p][p] -= t * a[p][q];
    a[q][q] += t * a[p][q];
    a[p][q] = a[q][p] = 0.0;
    const double arp = a[r][p];
    const double arq = a[r][q];
    a[r][p] = a[p][r] = c * arp - s * arq;
    a[r][q] = a[q][r] = s * arp + c * arq;
    for (int k = 0; k < 3; ++k) {
        const double vp = v[p][k];
        const double vq = v[q][k];
        v[p][k] = c * vp - s * vq;
        v[q][k] = s * vp + c * vq;
    }
}

} // namespace JacobiDetail

/// Solves the symmetric matrix whose upper triangle is that of `matrix`. Non-finite entries give
/// non-finite results.
inline SymmetricEigen SolveSymmetric(const MMatrix3x3& matrix)
{
    double a[3][3];
    double v[3][3]{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    for (unsigned int i = 0; i < 3; ++i) {
        for (unsigned int j = 0; j < 3; ++j)
            a[i][j] = matrix.Value(i < j ? i : j, i < j ? j : i);
    }
    // An element that no longer changes the product of its two diagonal elements counts as zero;
    // relative like this, small values of a graded matrix keep their digits.
    constexpr double negligible = 0x1p-54;
    for (int sweep = 0; sweep < JacobiDetail::kSweeps; ++sweep) {
        bool rotated = false;
        for (const auto& [p, q] : {std::pair{0, 1}, std::pair{0, 2}, std::pair{1, 2}}) {
            const double limit = std::sqrt(std::abs(a[p][p])) * std::sqrt(std::abs(a[q][q]));
            if (a[p][q] == 0.0 || std::abs(a[p][q]) <= negligible * limit)
                continue;
            JacobiDetail::Rotate(a, v, p, q);
            rotated = true;
        }
        if (!rotated)
            break;
    }
    int order[3]{0, 1, 2};
    for (const auto& [i, j] : {std::pair{0, 1}, std::pair{1, 2}, std::pair{0, 1}}) {
        if (a[order[i]][order[i]] < a[order[j]][order[j]])
            std::swap(order[i], order[j]);
    }
    SymmetricEigen result;
    for (std::size_t k = 0; k < 3; ++k) {
        const int from = order[k];
        result.values[k] = a[from][from];
        result.vectors[k] = {v[from][0], v[from][1], v[from][2]};
    }
    return result;
}

} // namespace Norvek::Math::Core
