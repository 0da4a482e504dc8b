#pragma once

#include <norvek/linalg/matrix.h>
#include <norvek/linalg/matrix_storage.h>

#include <cassert>
#include <vector>

class MLUMatrix;
class MSymmetricMatrix;

/// A dense matrix of any size, its values row by row: element (r, c) at index r * columns + c.
///
/// It carries the small set of factorisations that fitting needs. Sums run from the left, in the
/// order written at each operation, starting at 0; however an operation is organised inside, the
/// bits are those of the plain loops. Dimensions are never checked against each other: operands
/// that do not match are a precondition violation.
///
/// Trouble is reported by a `bool`. Nothing throws but `std::bad_alloc`, and that only where a
/// matrix or a vector is made, copied or sized other than by `SetDimensions`: constructors,
/// assignment,
/// `+` and `*`, vector results, and the little room that `Determinant` and `FactoriseLU` take.
class NORVEK_MATH_API MGeneralMatrix : public MMatrix
{
public:
    /// 0 x 0, without storage.
    MGeneralMatrix() = default;

    /// rows x columns values, not initialised.
    MGeneralMatrix(unsigned int rows, unsigned int columns);

    /// Takes the caller's array as its own storage, without copying: rows * columns values from
    /// array new, freed by the matrix with array delete.
    MGeneralMatrix(unsigned int rows, unsigned int columns, double* values);

    /// Deep copy; a matrix without storage gives one without storage.
    MGeneralMatrix(const MGeneralMatrix& other) = default;

    /// Deep copy; the storage is reallocated only when the element counts differ.
    MGeneralMatrix& operator=(const MGeneralMatrix& other);

    ~MGeneralMatrix() = default;

    /// With an equal element count the old values stay and are read in the new shape; otherwise
    /// the contents are undefined. False only when there is no memory, dimensions unchanged then.
    bool SetDimensions(unsigned int rows, unsigned int columns) override;

    double& Element(unsigned int row, unsigned int column) override
    {
        assert(row < _rows && column < _columns && _storage.Values() != nullptr);
        return _storage.Values()[_Index(row, column)];
    }

    [[nodiscard]] double Value(unsigned int row, unsigned int column) const override
    {
        assert(row < _rows && column < _columns && _storage.Values() != nullptr);
        return _storage.Values()[_Index(row, column)];
    }

    void CleanUp() override;

    /// All values 0.
    void SetToZero();

    /// 1 where row == column and 0 elsewhere, for any rectangular shape.
    void MakeIdentity();

    /// Fills this matrix, in its own dimensions, with the values of `source` at the same places,
    /// which must exist there.
    void Copy(MMatrix* source);

    /// Fills the whole target, in its own dimensions, from the block of this matrix whose top left
    /// corner is (row, column). The block must lie inside.
    void GetSubMatrix(MGeneralMatrix& target, unsigned int row, unsigned int column) const;

    /// Writes the whole source into this matrix, its top left corner at (row, column).
    void SetSubMatrix(const MGeneralMatrix& source, unsigned int row, unsigned int column);

    /// Takes the storage and the dimensions of `lu` back, which is left 0 x 0 and without pivots.
    /// The values are the factors, not what was factorised.
    void RetrieveMemory(MLUMatrix& lu);

    /// The product: element (i, j) is the sum over k of A(i, k) B(k, j), k ascending.
    MGeneralMatrix operator*(const MGeneralMatrix& other) const;

    /// Element by element over the dimensions of this matrix.
    MGeneralMatrix operator+(const MGeneralMatrix& other) const;

    /// Adds element by element, over the rows and columns of this matrix.
    MGeneralMatrix& operator+=(const MGeneralMatrix& other);

    /// Multiplies every element.
    MGeneralMatrix& operator*=(double factor);

    /// Divides every element.
    MGeneralMatrix& operator/=(double divisor);

    /// result[j] = sum over i of A(i, j) v[i]: `result` holds columns values, `v` rows values, and
    /// the two do not overlap. Always true.
    bool CalculationATransposeV(double* const result, double* const v) const;

    /// The same product; `result` is sized to the columns and may be the argument's source.
    bool CalculationVTransposeA(std::vector<double>& result, std::vector<double> v) const;

    /// Makes `result` columns x columns and fills it with the product of the transpose with this
    /// matrix, (i, j) = sum over k of A(k, i) A(k, j). True, unless there is no memory.
    bool CreateATransposeA(MSymmetricMatrix& result) const;

    /// The determinant of the leading n x n block by expansion along the first row.
    ///
    /// The cost is factorial in n: for small orders. `Determinant(0)` is 0, and so is
    /// `Determinant(1)` of every matrix, which the expansion makes of it; callers rely on orders
    /// from 2 up.
    [[nodiscard]] double Determinant(unsigned int n) const;

    /// Factorises in place into L U with partial pivoting by rows (Doolittle; a tie keeps the
    /// upper row) and hands the storage to `lu`; this matrix is left 0 x 0, also on failure.
    ///
    /// False when a pivot was singular: |pivot| at step k not above k * 3 machine epsilons. The
    /// factor is the step, not the order, so that at step 0 only an exact 0 is singular: 1e-300 is
    /// accepted there. The column of a singular pivot is left as it is. For a rectangular matrix
    /// the steps end with the shorter side. Cost: 2/3 n^3.
    bool FactoriseLU(MLUMatrix& lu);

    /// Factorises m x n into Q (m x n) and R (n x n, zero below the diagonal) by modified
    /// Gram-Schmidt on the columns, from the left.
    ///
    /// Q or R may be this matrix. False for an empty matrix (nothing changes then) or when there
    /// is no memory. A column that is 0, or depends exactly on its predecessors, gives non-finite
    /// values. Cost: 2 m n^2. Q loses orthogonality in proportion to the condition of the matrix.
    bool FactoriseQR(MGeneralMatrix& q, MGeneralMatrix& r) const;

    /// The x (columns values) that minimises |A x - b| (b: rows values), by `FactoriseQR`.
    ///
    /// `x` may be `b`. False for an empty matrix or when there is no memory, `x` untouched.
    /// Dependent columns are not detected: they give non-finite or large values.
    bool SolveLeastSquare(double* b, double* x) const;

    /// Makes this matrix (square) the reflection I - 2 v v' / (v' v), v with as many values as
    /// the matrix has rows, none of them an element of the matrix. False, and nothing changed, when
    /// v' v is not above 3 n machine epsilons.
    bool HouseholderReflection(double* const v);

    /// Power iteration on this square matrix, from (1, 1, ...): a vector along the eigenvector of
    /// the largest eigenvalue, to the step at which the norm changes by less than one in a
    /// thousand.
    ///
    /// The norm by which the vector is divided is the sum of the magnitudes of all partial sums of
    /// the product, not its L1 norm; callers compare against vectors scaled like that. A matrix
    /// that does not settle within a million steps, and the zero matrix, give NaN.
    void GetDominantEigenVector(std::vector<double>& x) const;

    /// The same iteration from (1, 0, 0, ...), divided by the L1 norm. It goes forwards: who wants
    /// the vector of the smallest eigenvalue passes a matrix transformed for that.
    void GetLeastEigenVector(std::vector<double>& x) const;

protected:
    /// Where an element lies in the storage.
    [[nodiscard]] std::size_t _Index(unsigned int row, unsigned int column) const
    {
        return std::size_t{row} * _columns + column;
    }

    /// The first element of a row.
    [[nodiscard]] double* _Row(unsigned int row)
    {
        return _storage.Values() + _Index(row, 0);
    }

    /// The first element of a row.
    [[nodiscard]] const double* _Row(unsigned int row) const
    {
        return _storage.Values() + _Index(row, 0);
    }

    /// The elements, row by row.
    Norvek::Math::Core::MatrixStorage _storage;
};
