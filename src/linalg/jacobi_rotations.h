#pragma once

#include <cstddef>
#include <vector>

namespace Norvek::Math::Core
{

/// Jacobi rotations of a symmetric matrix, each of the element off the diagonal that is largest in
/// magnitude, until the squares off the diagonal are a small part of all.
///
/// A rotation has the bits of the products R' A R and R' V of whole matrices, each element summed
/// from the left, but costs O(n): rows and columns p and q change, and no others. What the zeros
/// and ones of R would add elsewhere changes finite values in nothing but the sign of a zero, which
/// is dropped at the start; values that are not finite, or whose squares are not, are rotated by
/// whole products.
class JacobiRotations
{
public:
    /// A copy of the packed triangle of order n; the vectors are those of the identity.
    JacobiRotations(const double* packed, std::size_t n);

    /// Rotates while the sum of squares off the diagonal, divided by that of all elements, exceeds
    /// the tolerance. At first the ratio counts as 1. Always ends.
    void Run(double tolerance);

    /// Element (i, i): an eigenvalue, in as far as the matrix is diagonal.
    [[nodiscard]] double Value(std::size_t i) const
    {
        return _a[i * _n + i];
    }

    /// Its vector, n values.
    [[nodiscard]] const double* Vector(std::size_t i) const
    {
        return _v.data() + i * _n;
    }

private:
    enum class Numerator
    {
        Theta,
        One,
    };

    double* _Row(std::size_t i)
    {
        return _a.data() + i * _n;
    }

    bool _Settle(double tolerance, Numerator numerator);
    bool _IsSettled(double tolerance);
    [[nodiscard]] double _SumOfSquares(bool diagonal) const;
    void _FindLargest();
    void _FindLargestInRow(std::size_t i);
    void _Consider(std::size_t i, std::size_t j);
    void _Choose();
    void _Rotate(double c, double s);
    void _RotateFinite(double c, double s);
    void _RotateWhole(double c, double s);

    std::size_t _n;
    std::vector<double> _a;
    std::vector<double> _v;
    double _norm = 0.0;

    // The element to be rotated next.
    std::size_t _p = 0;
    std::size_t _q = 0;

    // Of every row, the largest magnitude behind the diagonal and its column, the first of equals.
    std::vector<double> _largest;
    std::vector<std::size_t> _column;
};

} // namespace Norvek::Math::Core
