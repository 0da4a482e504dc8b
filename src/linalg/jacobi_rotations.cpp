#include "linalg/jacobi_rotations.h"

#include <norvek/linalg/general_matrix.h>

#include <algorithm>
#include <cmath>
#include <limits>

// Notation: A the matrix, V the vectors as rows, R the rotation: the identity but for R(p, p) =
// R(q, q) = c, R(p, q) = s, R(q, p) = -s. A becomes R' A R, V becomes R' V.

namespace Norvek::Math::Core
{

namespace
{

// Rotations of one kind, per element of the matrix. Rotations by the right angle need a handful.
constexpr std::size_t kRotationsPerElement = 100;

// x becomes c x - s y, y becomes s x + c y. The sums of a product of whole matrices begin at zero
// and never give a negative zero. Nor do these, as long as no value is one: c is not small, so that
// c times a value is zero only where the value is.
void Turn(double* x, double* y, std::size_t n, double c, double s)
{
    for (std::size_t i = 0; i < n; ++i) {
        const double xi = x[i];
        const double yi = y[i];
        x[i] = c * xi - s * yi;
        y[i] = s * xi + c * yi;
    }
}

} // namespace

JacobiRotations::JacobiRotations(const double* packed, std::size_t n)
    : _n(n),
      _a(n * n),
      _v(n * n),
      _largest(n),
      _column(n)
{
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j <= i; ++j)
            _Row(i)[j] = _Row(j)[i] = *packed++;
        _v[i * n + i] = 1.0;
    }
}

// The ratio is never negative: a negative tolerance means 0, which a diagonal matrix reaches. With
// the tangent |theta| / ... rotations seldom settle; what that leaves is settled by the tangent
// 1 / ..., which clears the element.
void JacobiRotations::Run(double tolerance)
{
    const double limit = std::max(tolerance, 0.0);
    if (_n == 0 || !(1.0 > limit))
        return;
    // The products of the first rotation would drop the signs of zeros everywhere.
    for (double& value : _a)
        value += 0.0;
    _norm = _SumOfSquares(true);
    _FindLargest();
    if (!_Settle(limit, Numerator::Theta))
        _Settle(limit, Numerator::One);
}

// False when the matrix has not settled and rotations of this kind will not change that.
bool JacobiRotations::_Settle(double tolerance, Numerator numerator)
{
    for (std::size_t k = 0; k < kRotationsPerElement * _n * _n; ++k) {
        const double theta = (_Row(_q)[_q] - _Row(_p)[_p]) / (2.0 * _Row(_p)[_q]);
        const double magnitude = std::abs(theta);
        // The numerator |theta| is meant: results depend on every rotation that it makes.
        double t = (numerator == Numerator::Theta ? magnitude : 1.0) /
                   (std::sqrt(theta * theta + 1.0) + magnitude);
        if (theta < 0.0)
            t = -t;
        const double c = 1.0 / std::sqrt(t * t + 1.0);
        _Rotate(c, c * t);
        if (_IsSettled(tolerance))
            return true;
        // That was the identity, and so would be all that follow.
        if (t == 0.0)
            return false;
    }
    return false;
}

// NaN, which a zero matrix gives, is settled.
bool JacobiRotations::_IsSettled(double tolerance)
{
    // Twice the square of the largest element is a lower bound of the sum off the diagonal, and
    // rotations keep the sum of all but for rounding. Where this bound alone, less a factor of two
    // for rounding, exceeds the tolerance, the exact ratio would, unless it vanishes.
    constexpr double kLeast = std::numeric_limits<double>::min();
    const double square = _largest[_p] * _largest[_p];
    if (std::isfinite(_norm) && square > kLeast && square > std::max(tolerance, kLeast) * _norm)
        return false;
    _norm = _SumOfSquares(true);
    return !(_SumOfSquares(false) / _norm > tolerance);
}

double JacobiRotations::_SumOfSquares(bool diagonal) const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < _n; ++i) {
        for (std::size_t j = 0; j < _n; ++j) {
            const double value = _a[i * _n + j];
            if (diagonal || i != j)
                sum += value * value;
        }
    }
    return sum;
}

void JacobiRotations::_FindLargest()
{
    for (std::size_t i = 0; i < _n; ++i)
        _FindLargestInRow(i);
    _Choose();
}

void JacobiRotations::_FindLargestInRow(std::size_t i)
{
    _largest[i] = 0.0;
    _column[i] = _n;
    for (std::size_t j = i + 1; j < _n; ++j) {
        const double magnitude = std::abs(_Row(i)[j]);
        if (magnitude > _largest[i]) {
            _largest[i] = magnitude;
            _column[i] = j;
        }
    }
}

// Takes note of a new value at (i, j), where the largest of the row does not lie.
void JacobiRotations::_Consider(std::size_t i, std::size_t j)
{
    const double magnitude = std::abs(_Row(i)[j]);
    if (magnitude > _largest[i] || (magnitude == _largest[i] && j < _column[i] && magnitude > 0.0))
    {
        _largest[i] = magnitude;
        _column[i] = j;
    }
}

// The largest element, the first of equals row by row; p = q = 0 when all are zero.
void JacobiRotations::_Choose()
{
    _p = _q = 0;
    double largest = 0.0;
    for (std::size_t i = 0; i < _n; ++i) {
        if (_largest[i] > largest) {
            largest = _largest[i];
            _p = i;
            _q = _column[i];
        }
    }
}

void JacobiRotations::_Rotate(double c, double s)
{
    // With a finite sum of squares no element can leave the range by a rotation.
    if (!std::isfinite(_norm) || !std::isfinite(s))
        _RotateWhole(c, s);
    else if (_p != _q)
        _RotateFinite(c, s);
}

void JacobiRotations::_RotateFinite(double c, double s)
{
    const std::size_t p = _p;
    const std::size_t q = _q;
    double* const rowP = _Row(p);
    double* const rowQ = _Row(q);

    // The block of p and q is turned from both sides, first from the left. Of the two values for
    // (p, q), which differ by rounding, the one below the diagonal is kept.
    const double pp = c * rowP[p] - s * rowP[q];
    const double pq = c * rowP[q] - s * rowQ[q];
    const double qp = s * rowP[p] + c * rowP[q];
    const double qq = s * rowP[q] + c * rowQ[q];
    Turn(rowP, rowQ, _n, c, s);
    rowP[p] = pp * c - pq * s;
    rowQ[q] = qp * s + qq * c;
    rowP[q] = rowQ[p] = qp * c - qq * s;
    Turn(_v.data() + p * _n, _v.data() + q * _n, _n, c, s);

    for (std::size_t i = 0; i < _n; ++i) {
        _Row(i)[p] = rowP[i];
        _Row(i)[q] = rowQ[i];
        if (i == p || i == q || _column[i] == p || _column[i] == q) {
            _FindLargestInRow(i);
            continue;
        }
        if (i < p)
            _Consider(i, p);
        if (i < q)
            _Consider(i, q);
    }
    _Choose();
}

// Infinities and NaN spread along rows and columns, as zero times infinity is NaN.
void JacobiRotations::_RotateWhole(double c, double s)
{
    const auto n = static_cast<unsigned int>(_n);
    const auto p = static_cast<unsigned int>(_p);
    const auto q = static_cast<unsigned int>(_q);
    MGeneralMatrix a(n, n);
    MGeneralMatrix v(n, n);
    MGeneralMatrix r(n, n);
    MGeneralMatrix transposed(n, n);
    std::copy(_a.begin(), _a.end(), &a.Element(0, 0));
    std::copy(_v.begin(), _v.end(), &v.Element(0, 0));
    r.MakeIdentity();
    // The cosines last, so that p = q gives the identity.
    r(p, q) = s;
    r(q, p) = -s;
    r(p, p) = c;
    r(q, q) = c;
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j < n; ++j)
            transposed(i, j) = r(j, i);
    }
    a = transposed * a * r;
    v = transposed * v;
    std::copy_n(&v.Element(0, 0), _v.size(), _v.begin());
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j <= i; ++j)
            _Row(i)[j] = _Row(j)[i] = a(i, j);
    }
    _norm = _SumOfSquares(true);
    _FindLargest();
}

} // namespace Norvek::Math::Core
