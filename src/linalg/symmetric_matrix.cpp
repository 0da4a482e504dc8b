#include <norvek/linalg/symmetric_matrix.h>

#include <algorithm>
#include <cmath>

MSymmetricMatrix::MSymmetricMatrix(unsigned int order)
    : MMatrix(order, order),
      _storage(_Index(order, 0))
{}

MSymmetricMatrix& MSymmetricMatrix::operator=(const MSymmetricMatrix& other)
{
    _storage = other._storage;
    MMatrix::operator=(other);
    return *this;
}

bool MSymmetricMatrix::SetDimensions(unsigned int rows, unsigned int columns)
{
    if (rows != columns || !_storage.Resize(_Index(rows, 0)))
        return false;
    return MMatrix::SetDimensions(rows, columns);
}

void MSymmetricMatrix::CleanUp()
{
    _storage.Release();
}

void MSymmetricMatrix::SetToZero()
{
    std::fill_n(_storage.Values(), _storage.Count(), 0.0);
}

void MSymmetricMatrix::MultiplyDiagonal(MSymmetricMatrix& target, double factor) const
{
    if (&target != this) {
        // A larger array would be enough, but then a copy of the target would carry the surplus.
        target._storage = _storage;
        target._rows = _rows;
        target._columns = _columns;
    }
    if (_storage.Values() == nullptr)
        return;
    for (unsigned int i = 0; i < _rows; ++i)
        target._storage.Values()[_Index(i, i)] *= factor;
}

double MSymmetricMatrix::GetEuclidNormSq() const
{
    double sum = 0.0;
    for (unsigned int i = 0; i < _rows; ++i) {
        for (unsigned int j = 0; j < _columns; ++j) {
            const double value = _storage.Values()[_Index(i, j)];
            sum += value * value;
        }
    }
    return sum;
}

double MSymmetricMatrix::GetOffDiagonalEuclidNormSq() const
{
    double sum = 0.0;
    for (unsigned int i = 0; i < _rows; ++i) {
        for (unsigned int j = 0; j < _columns; ++j) {
            const double value = i == j ? 0.0 : _storage.Values()[_Index(i, j)];
            sum += value * value;
        }
    }
    return sum;
}

// The half above the diagonal is enough: below it, every value was met before and no longer exceeds
// the largest.
void MSymmetricMatrix::ChooseJacobiIndices(unsigned int& p, unsigned int& q) const
{
    p = 0;
    q = 0;
    double largest = 0.0;
    for (unsigned int i = 0; i < _rows; ++i) {
        for (unsigned int j = i + 1; j < _columns; ++j) {
            const double magnitude = std::abs(_storage.Values()[_Index(i, j)]);
            if (magnitude > largest) {
                largest = magnitude;
                p = i;
                q = j;
            }
        }
    }
}
