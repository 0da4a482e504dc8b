#pragma once

#include <norvek/linalg/matrix.h>
#include <norvek/linalg/matrix_storage.h>

#include <cassert>

/// A lower-triangular matrix, packed row by row: element (i, j), i >= j, at index
/// i (i + 1) / 2 + j. It holds the Cholesky factor G of A = G G'.
class NORVEK_MATH_API MLowerTriangularMatrix : public MMatrix
{
public:
    /// 0 x 0, without storage.
    MLowerTriangularMatrix() = default;

    /// Deep copy; a matrix without storage gives one without storage.
    MLowerTriangularMatrix(const MLowerTriangularMatrix& other) = default;

    /// Deep copy; the storage is reallocated only when the stored counts differ.
    MLowerTriangularMatrix& operator=(const MLowerTriangularMatrix& other);

    /// Frees the storage.
    ~MLowerTriangularMatrix() = default;

    /// Reallocates rows * (rows + 1) / 2 values when rows * columns changes, or when what is there
    /// has no room for them (2 x 8 has the product of 4 x 4 and fewer values); otherwise the
    /// values stay. False when there is no memory, nothing changed then.
    bool SetDimensions(unsigned int rows, unsigned int columns) override;

    /// The element. Above the diagonal it is the first stored value, (0, 0): nothing is stored
    /// there, and callers never write there.
    double& Element(unsigned int row, unsigned int column) override
    {
        assert(row < _rows && _storage.Values() != nullptr);
        return _storage.Values()[row < column ? 0 : _Index(row, column)];
    }

    /// The value, 0 above the diagonal.
    [[nodiscard]] double Value(unsigned int row, unsigned int column) const override
    {
        assert(row < _rows && _storage.Values() != nullptr);
        return row < column ? 0.0 : _storage.Values()[_Index(row, column)];
    }

    /// Releases the storage and keeps the dimensions.
    void CleanUp() override;

    /// Solves G G' x = b in place in `b`, as many values as columns.
    ///
    /// False when the magnitude of a diagonal element is below the machine epsilon; `b` is partly
    /// overwritten then. The first diagonal element is not tested on the way forwards, nor the
    /// last on the way back. False as well, `b` untouched, when the matrix has more columns than
    /// rows. Cost: 2 n^2.
    bool SOLVE_G_TG_X_B(double* const b) const;

private:
    friend class MSymmetricMatrix;

    [[nodiscard]] static std::size_t _Index(std::size_t row, std::size_t column)
    {
        return row * (row + 1) / 2 + column;
    }

    Norvek::Math::Core::MatrixStorage _storage;
};
