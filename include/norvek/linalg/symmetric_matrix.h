#pragma once

#include <norvek/linalg/matrix.h>
#include <norvek/linalg/matrix_storage.h>

#include <cassert>
#include <vector>

class MLowerTriangularMatrix;

/// A symmetric matrix, its lower triangle packed row by row: (i, j) and (j, i) are one stored
/// value, at index g (g + 1) / 2 + s with g the greater and s the smaller of i and j.
///
/// Rows and columns are always equal. Values are not initialised.
class NORVEK_MATH_API MSymmetricMatrix : public MMatrix
{
public:
    /// 0 x 0, without storage.
    MSymmetricMatrix() = default;

    /// order x order. Throws `std::bad_alloc` when there is no memory.
    explicit MSymmetricMatrix(unsigned int order);

    /// Deep copy; a matrix without storage gives one without storage.
    MSymmetricMatrix(const MSymmetricMatrix& other) = default;

    /// Deep copy; the storage is reallocated only when the orders differ.
    MSymmetricMatrix& operator=(const MSymmetricMatrix& other);

    /// Frees the storage.
    ~MSymmetricMatrix() = default;

    /// False, nothing changed, for rows != columns or without memory. With an equal order the
    /// values stay, otherwise they are undefined.
    bool SetDimensions(unsigned int rows, unsigned int columns) override;

    /// The element, in either order of the indices: writing (0, 1) changes (1, 0).
    double& Element(unsigned int row, unsigned int column) override
    {
        assert(row < _rows && column < _rows && _storage.Values() != nullptr);
        return _storage.Values()[_Index(row, column)];
    }

    /// The value, in either order of the indices.
    [[nodiscard]] double Value(unsigned int row, unsigned int column) const override
    {
        assert(row < _rows && column < _rows && _storage.Values() != nullptr);
        return _storage.Values()[_Index(row, column)];
    }

    /// Releases the storage and keeps the dimensions.
    void CleanUp() override;

    /// All values 0.
    void SetToZero();

    /// Makes `target` a copy of this matrix whose diagonal is multiplied by `factor`: the step that
    /// damps normal equations. `target` may be this matrix; storage of the same order is kept.
    void MultiplyDiagonal(MSymmetricMatrix& target, double factor) const;

    /// The sum of the squares of all n^2 elements, so that values off the diagonal count twice; row
    /// by row from the left.
    [[nodiscard]] double GetEuclidNormSq() const;

    /// The same sum without the diagonal.
    [[nodiscard]] double GetOffDiagonalEuclidNormSq() const;

    /// The position p < q of the element off the diagonal that is largest in magnitude; of equal
    /// ones the first, row by row. Both 0 when nothing off the diagonal differs from 0. NaN does
    /// not count. Cost: n^2 / 2.
    void ChooseJacobiIndices(unsigned int& p, unsigned int& q) const;

    /// Factorises in place into G G': the stored triangle becomes G, lower triangular with a
    /// positive diagonal.
    ///
    /// False at the first pivot that is zero or negative: the columns before it are those of G
    /// then, its own has been reduced but not divided, and the columns behind it are untouched.
    /// NaN is not refused; it goes on into the factor. True for the empty matrix. Cost: n^3 / 3.
    bool FactoriseCholesky();

    /// Factorises in place and hands the storage to `g`, whose own is freed; this matrix is left
    /// 0 x 0. `g` solves A x = b by `SOLVE_G_TG_X_B`.
    ///
    /// False as for `FactoriseCholesky`: `g` is untouched then, and this matrix keeps its storage,
    /// partly overwritten.
    bool FACTORISE_CHOLESKY(MLowerTriangularMatrix& g);

    /// Eigenvalues and eigenvectors by Jacobi rotations, sorted by descending magnitude; equal
    /// magnitudes keep their order. Prefer `CalculateEigenVectors`: it is faster and more accurate
    /// at every order, and says whether it succeeded.
    ///
    /// `values` (n values from the caller) receives the eigenvalues. `vectors` is set to a new
    /// array of n pointers to new arrays of n values, vectors[i] the unit vector of values[i]: the
    /// caller frees all n + 1 with array delete, or receives them in a `MJacobiEigenVectors`.
    /// Throws `std::bad_alloc` when there is no memory, nothing written then.
    ///
    /// Rotations go on while the squares off the diagonal sum to more than `tolerance` times all
    /// squares; the first takes place whenever `tolerance` is below 1. 1e-12 leaves errors of 1e-6
    /// of the norm in the vectors. A negative tolerance counts as 0; 1, more, or NaN give the
    /// diagonal and unit vectors. Matrices beyond 1e+-150, whose squares leave the range, get one
    /// rotation only.
    ///
    /// The tangent, |theta| / (sqrt(theta^2 + 1) + |theta|), is not the textbook's, whose numerator
    /// is 1, and seldom settles: 100 n^2 such rotations are followed by at most as many by the
    /// textbook. A diagonal matrix is rotated by the identity, but where (0, 0) is 0 its value and
    /// vector become NaN. NaN or infinity gives NaN. Cost: O(n) a rotation, 100 n^3 mostly.
    void GetEigensJacobi(double**& vectors, double* const values, double tolerance) const;

    /// Reduces to tridiagonal form T = Z' A Z by Householder reflections, accumulated in Z (the
    /// classical TRED2 of Martin, Reinsch and Wilkinson).
    ///
    /// `d` receives the diagonal of T, n values, `e` the elements below it: e[i] lies at
    /// (i, i - 1), and e[0] is 0. `z` is given n x n values, the orthogonal Z; it has to be of a
    /// kind that stores every element. Without memory the three are not written. Cost:
    /// 8/3 n^3.
    void HouseholderReduction(std::vector<double>& d, std::vector<double>& e, MMatrix& z) const;

    /// Eigenvalues and eigenvectors: the reduction to tridiagonal form, then implicit QL with
    /// shifts. The one to prefer.
    ///
    /// `values` receives the n eigenvalues, in no particular order, and `vectors` (given n x n
    /// values, of a kind that stores every element) the unit vector of values[j] in column j.
    ///
    /// Elements beside the diagonal below 1e-8 count as zero. This is absolute: values are good to
    /// about 1e-16 / gap + n machine epsilons of the largest, vectors to 1e-8 / gap, with gap the
    /// distance to the next value. Scale a matrix whose values are not far above 1e-8.
    ///
    /// False when 100 iterations did not isolate a value, which NaN and infinity do; `values` and
    /// `vectors` hold what was reached. False as well without memory, nothing written then. Cost:
    /// about 9 n^3.
    bool CalculateEigenVectors(std::vector<double>& values, MMatrix& vectors) const;

private:
    friend class MGeneralMatrix;

    [[nodiscard]] static std::size_t _Index(std::size_t row, std::size_t column)
    {
        return row >= column ? row * (row + 1) / 2 + column : column * (column + 1) / 2 + row;
    }

    Norvek::Math::Core::MatrixStorage _storage;
};
