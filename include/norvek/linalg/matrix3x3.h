#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <cassert>

/// Nine values, row by row: the 3x3 matrix of the fitting and registration code.
///
/// Everything is in closed form, with tolerances scaled by the largest entry. "Largest" compares
/// with the sign: a matrix whose entries are all negative has a negative tolerance, and every test
/// against it fails. That is meant; the matrices that come here are moments and products of a
/// matrix with its transpose, whose diagonal is not negative.
///
/// Eigenvalues come through the characteristic cubic. Its double roots are only good to half the
/// digits, and then `GetEigenValues` or `GetEigenVectors` says false for quite ordinary input.
/// `SquareRootInverse`, `SquareRootPseudoInverse` and `NearestOrthonormal` do not depend on that:
/// they go on with Jacobi rotations where the closed form gives up.
///
/// The closed form has no test for overflow: NaN entries, and entries beyond about 1e51, whose
/// cubic overflows, can give a third of the trace as all three eigenvalues, and true. Check what
/// you pass. Indices are 0 to 2, asserted only.
class NORVEK_MATH_API MMatrix3x3
{
public:
    /// All nine values 0.
    MMatrix3x3() = default;

    /// Copies the nine values.
    MMatrix3x3(const MMatrix3x3&) = default;

    /// Copies the nine values.
    MMatrix3x3& operator=(const MMatrix3x3&) = default;
    virtual ~MMatrix3x3() = default;

    /// All nine values 0.
    void SetToZero();

    /// Writes row 0, 1 or 2.
    void SetRow(unsigned short row, const MMPoint3d<double>& values)
    {
        assert(row < 3);
        _a[row][0] = values.x;
        _a[row][1] = values.y;
        _a[row][2] = values.z;
    }

    /// The element, for writing.
    double& Element(unsigned int row, unsigned int column)
    {
        assert(row < 3 && column < 3);
        return _a[row][column];
    }

    /// Multiplies every element.
    MMatrix3x3& operator*=(double factor);

    /// Divides every element.
    MMatrix3x3& operator/=(double divisor);

    /// Becomes B * (this matrix). `B` may be this matrix.
    void PreMultiply(const MMatrix3x3& b);

    /// Becomes p q', the outer product.
    void PDotQTranspose(const MMPoint3d<double>& p, const MMPoint3d<double>& q);

    /// Subtracts the value from the three diagonal elements.
    void SubtractFromDiagonal(double value);

    /// Row 0, 1 or 2.
    [[nodiscard]] MMPoint3d<double> GetRow(int row) const
    {
        assert(row >= 0 && row < 3);
        return {_a[row][0], _a[row][1], _a[row][2]};
    }

    /// Column 0, 1 or 2.
    [[nodiscard]] MMPoint3d<double> GetColumn(int column) const
    {
        assert(column >= 0 && column < 3);
        return {_a[0][column], _a[1][column], _a[2][column]};
    }

    /// The value of an element.
    [[nodiscard]] double Value(unsigned int row, unsigned int column) const
    {
        assert(row < 3 && column < 3);
        return _a[row][column];
    }

    /// The product; sums run over k = 0, 1, 2.
    MMatrix3x3 operator*(const MMatrix3x3& other) const;

    /// The matrix times a column vector.
    MMPoint3d<double> operator*(const MMPoint3d<double>& v) const
    {
        return {GetRow(0).Dot(v), GetRow(1).Dot(v), GetRow(2).Dot(v)};
    }

    /// The sum, element by element.
    MMatrix3x3 operator+(const MMatrix3x3& other) const;

    /// The difference, element by element.
    MMatrix3x3 operator-(const MMatrix3x3& other) const;

    /// Exact comparison of all nine values; NaN equals nothing.
    bool operator==(const MMatrix3x3& other) const;

    /// The sum of the diagonal, from the left.
    [[nodiscard]] double Trace() const;

    /// The largest of the nine values, with the sign, not in magnitude.
    [[nodiscard]] double GetMaxEntry() const;

    /// Writes A A', the product of the matrix with its transpose. The result may be the matrix.
    void TransposeSquare(MMatrix3x3& result) const;

    /// Writes A' A, the same with the factors the other way round. The result may be the matrix.
    void InvTransposeSquare(MMatrix3x3& result) const;

    /// Expansion along the first row.
    [[nodiscard]] double Determinant() const;

    /// The adjugate divided by the determinant. Not tested: a singular matrix gives non-finite
    /// values.
    [[nodiscard]] MMatrix3x3 Inverse() const;

    /// Solves A x = b by Cramer's rule, in place in `b` (three values). False, `b` untouched, only
    /// when the determinant is exactly 0 or NaN.
    bool Solve(double* const b) const;

    /// The real parts of the three roots of the characteristic polynomial, in the order in which
    /// Cardano's formula gives them: not sorted.
    ///
    /// True when every imaginary part is at most 40 machine epsilons times the largest entry. The
    /// three values are written in either case. Isolated values are good to a few epsilons of the
    /// largest value, the two of a close pair to half as many digits.
    bool GetEigenValues(double* const values) const;

    /// Unit eigenvectors for the three values of `GetEigenValues`, vector k for value k.
    ///
    /// Values that differ by at most ten machine epsilons count as one, and get orthogonal vectors;
    /// the third value is compared with the first too, for the order (large, small, large). All
    /// three vectors are always written. True when each passes the test of `GetRightSingular`.
    bool GetEigenVectors(MMPoint3d<double>* const vectors, double* const values) const;

    /// A unit vector v with A v = 0, for a singular matrix: the longest cross product of two rows;
    /// for rank 1 a perpendicular to the longest row; (1, 0, 0) for the zero matrix.
    ///
    /// `v` is always written. True when |row . v| is at most ten machine epsilons times the
    /// largest entry for all three rows. With entries beyond about 1e77 the cross products
    /// overflow, and `v` may be 0 though the result is true; scale such a matrix first.
    bool GetRightSingular(MMPoint3d<double>& v) const;

    /// A unit vector u with u' A = 0: the same on the columns, except that the last test is against
    /// ten machine epsilons, not scaled.
    bool GetLeftSingular(MMPoint3d<double>& u) const;

    /// Replaces a symmetric positive definite A by its inverse square root, written symmetric.
    ///
    /// False, and unchanged, when an eigenvalue is below ten machine epsilons (absolute), or when
    /// the matrix is not symmetric and the closed form fails.
    bool SquareRootInverse();

    /// Replaces a symmetric positive semi-definite A of rank 2 by the inverse square root on its
    /// range: the sum over the two non-zero values of v v' / sqrt(value).
    ///
    /// False, and unchanged, unless the smallest eigenvalue is within ten machine epsilons
    /// (absolute) of 0 and the middle one at least that.
    bool SquareRootPseudoInverse();

    /// The orthonormal factor R of the polar decomposition A = R S: of all orthonormal matrices the
    /// nearest to A. `result` may be this matrix.
    ///
    /// For full rank the determinant of R has the sign of that of A: a reflection stays one. For
    /// rank 2 the result is a proper rotation. False, `result` untouched, below rank 2 and for
    /// non-finite entries. True means orthonormal to 1e-12, at any scale; rank is judged by the
    /// squares of the singular values, against ten machine epsilons of the largest.
    bool NearestOrthonormal(MMatrix3x3& result) const;

private:
    // The steps of the operations above. A vector is always written; true when it passes the test
    // of `GetRightSingular`. Those that are inline are defined where they are used.

    /// The unit eigenvector for `value`: the null vector of the matrix less `value` on its
    /// diagonal.
    inline bool _GetEigenVector(MMPoint3d<double>& v, double value) const;

    /// The eigenvector for `value` that is orthogonal to `first`, which has the same value.
    inline bool _GetSecondEigenvector(MMPoint3d<double>& v, double value,
                                      const MMPoint3d<double>& first) const;

    /// The vector that completes two orthogonal eigenvectors of a value that is there three times.
    inline static MMPoint3d<double> _GetThirdEigenvector(const MMPoint3d<double>& first,
                                                         const MMPoint3d<double>& second);

    /// A second null vector, orthogonal to the null vector `first`.
    inline bool _GetSecondRightSingular(MMPoint3d<double>& v, const MMPoint3d<double>& first) const;

    /// The two eigenvalues beside one that is known to be 0; true as for `GetEigenValues`.
    bool _GetTwoEigenvalues(double* const values) const;

    /// The eigenvectors of these two values; those of a double value are orthogonal.
    bool _GetTwoEigenVectors(MMPoint3d<double>* const vectors, const double* const values) const;

    /// The cofactor of an element.
    [[nodiscard]] inline double _GetCofactor(int row, int column) const;

    /// The inverse square root on the range of a matrix of rank 2, in closed form.
    bool _GetClosedPseudoRoot(MMatrix3x3& root) const;

    /// The orthonormal factor in closed form, to be checked by the caller.
    bool _GetClosedNearest(MMatrix3x3& result) const;

    double _a[3][3]{};
};
