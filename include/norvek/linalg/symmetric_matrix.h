#pragma once

#include <norvek/linalg/matrix.h>
#include <norvek/linalg/matrix_storage.h>

#include <cassert>

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

private:
    friend class MGeneralMatrix;

    [[nodiscard]] static std::size_t _Index(std::size_t row, std::size_t column)
    {
        return row >= column ? row * (row + 1) / 2 + column : column * (column + 1) / 2 + row;
    }

    Norvek::Math::Core::MatrixStorage _storage;
};
