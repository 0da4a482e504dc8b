#include "linalg/jacobi_rotations.h"
#include "linalg/tridiagonal.h"

#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

using Norvek::Math::Core::IterateQL;
using Norvek::Math::Core::JacobiRotations;
using Norvek::Math::Core::MatrixStorage;
using Norvek::Math::Core::ReduceToTridiagonal;

namespace
{

// By descending magnitude. Equal magnitudes are not exchanged, nor is NaN.
void SortByMagnitude(double* values, std::unique_ptr<double[]>* vectors, std::size_t n)
{
    for (std::size_t pass = 0; pass < n; ++pass) {
        for (std::size_t i = 0; i + 1 < n; ++i) {
            if (std::abs(values[i]) < std::abs(values[i + 1])) {
                std::swap(values[i], values[i + 1]);
                std::swap(vectors[i], vectors[i + 1]);
            }
        }
    }
}

// Both halves of a packed triangle.
void Unpack(const double* packed, std::size_t n, double* values)
{
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j <= i; ++j)
            values[i * n + j] = values[j * n + i] = *packed++;
    }
}

void Transpose(double* values, std::size_t n)
{
    for (std::size_t i = 1; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j)
            std::swap(values[i * n + j], values[j * n + i]);
    }
}

// False without memory, nothing changed; afterwards a resize to n needs none.
bool Reserve(std::vector<double>& values, std::size_t n)
{
    try {
        values.reserve(n);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

// n x n values of a matrix of whatever kind: those of a general matrix themselves, else a copy that
// is written back element by element.
class SquareValues
{
public:
    explicit SquareValues(MMatrix& matrix)
        : _matrix(&matrix),
          _general(dynamic_cast<MGeneralMatrix*>(&matrix))
    {}

    // False without memory.
    bool Resize(unsigned int n)
    {
        return (_general != nullptr || _copy.Resize(std::size_t{n} * n)) &&
               _matrix->SetDimensions(n, n);
    }

    double* Values()
    {
        if (_general == nullptr)
            return _copy.Values();
        return _general->GetNumRows() > 0 ? &_general->Element(0, 0) : nullptr;
    }

    void Write()
    {
        const double* value = _copy.Values();
        const unsigned int n = _general == nullptr ? _matrix->GetNumRows() : 0;
        for (unsigned int i = 0; i < n; ++i) {
            for (unsigned int j = 0; j < n; ++j)
                _matrix->Element(i, j) = *value++;
        }
    }

private:
    MMatrix* _matrix;
    MGeneralMatrix* _general;
    MatrixStorage _copy;
};

} // namespace

void MSymmetricMatrix::GetEigensJacobi(double**& vectors, double* const values,
                                       double tolerance) const
{
    const std::size_t n = _rows;
    JacobiRotations rotations(_storage.Values(), n);
    rotations.Run(tolerance);

    std::vector<std::unique_ptr<double[]>> rows(n);
    for (std::size_t i = 0; i < n; ++i) {
        rows[i].reset(new double[n]);
        std::copy_n(rotations.Vector(i), n, rows[i].get());
    }
    auto pointers = std::make_unique<double*[]>(n);
    for (std::size_t i = 0; i < n; ++i)
        values[i] = rotations.Value(i);
    SortByMagnitude(values, rows.data(), n);
    for (std::size_t i = 0; i < n; ++i)
        pointers[i] = rows[i].release();
    vectors = pointers.release();
}

void MSymmetricMatrix::HouseholderReduction(std::vector<double>& d, std::vector<double>& e,
                                            MMatrix& z) const
{
    const std::size_t n = _rows;
    SquareValues values(z);
    MatrixStorage room;
    if (!room.Resize(n) || !Reserve(d, n) || !Reserve(e, n) || !values.Resize(_rows))
        return;
    d.resize(n);
    e.resize(n);
    Unpack(_storage.Values(), n, values.Values());
    ReduceToTridiagonal(values.Values(), n, d.data(), e.data(), room.Values());
    values.Write();
}

bool MSymmetricMatrix::CalculateEigenVectors(std::vector<double>& values, MMatrix& vectors) const
{
    const std::size_t n = _rows;
    SquareValues square(vectors);
    MatrixStorage room;
    if (!room.Resize(3 * n) || !Reserve(values, n) || !square.Resize(_rows))
        return false;
    values.resize(n);
    double* const z = square.Values();
    double* const d = values.data();
    double* const e = room.Values();
    Unpack(_storage.Values(), n, z);
    ReduceToTridiagonal(z, n, d, e, e + n);
    std::move(e + std::min<std::size_t>(n, 1), e + n, e);
    if (n > 0)
        e[n - 1] = 0.0;
    // The rotations of QL take columns of Z two by two: rows of its transpose, which lie side by
    // side.
    Transpose(z, n);
    const bool isolated = IterateQL(d, e, z, n, e + n);
    Transpose(z, n);
    square.Write();
    return isolated;
}
