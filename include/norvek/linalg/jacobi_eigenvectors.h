#pragma once

#include <cassert>
#include <utility>

/// Holds the arrays that `MSymmetricMatrix::GetEigensJacobi` hands out, and frees them: one array
/// of n pointers and the n arrays of n values they point to.
///
/// ```cpp
/// MJacobiEigenVectors vectors(3);
/// double values[3];
/// matrix.GetEigensJacobi(vectors.Receive(), values, 1e-12);
/// const double* first = vectors[0];   // belongs to values[0]
/// ```
///
/// It moves and does not copy. One that holds nothing answers nothing but `Receive`.
class MJacobiEigenVectors
{
public:
    /// Holds nothing yet. `order` is the order of the matrix whose vectors it will receive.
    explicit MJacobiEigenVectors(unsigned int order) : _order(order)
    {}

    /// Takes the arrays of `other`, which holds nothing then.
    MJacobiEigenVectors(MJacobiEigenVectors&& other) noexcept
        : _order(other._order),
          _vectors(std::exchange(other._vectors, nullptr))
    {}

    /// Frees what it held and takes the arrays of `other`, which holds nothing then.
    MJacobiEigenVectors& operator=(MJacobiEigenVectors&& other) noexcept
    {
        if (this != &other) {
            _Free();
            _order = other._order;
            _vectors = std::exchange(other._vectors, nullptr);
        }
        return *this;
    }

    MJacobiEigenVectors(const MJacobiEigenVectors&) = delete;
    MJacobiEigenVectors& operator=(const MJacobiEigenVectors&) = delete;

    /// Frees the arrays.
    ~MJacobiEigenVectors()
    {
        _Free();
    }

    /// The pointer to be filled, null at first; what was held is freed. Whatever is put there must
    /// be `order` arrays from array new, or null.
    double**& Receive()
    {
        _Free();
        return _vectors;
    }

    /// The vector of `values[index]`: as many values as the order.
    [[nodiscard]] const double* operator[](unsigned int index) const
    {
        assert(_vectors != nullptr && index < _order);
        return _vectors[index];
    }

    /// The number of vectors, and of values in each.
    [[nodiscard]] unsigned int Order() const
    {
        return _order;
    }

private:
    void _Free()
    {
        for (unsigned int i = 0; _vectors != nullptr && i < _order; ++i)
            delete[] _vectors[i];
        delete[] _vectors;
        _vectors = nullptr;
    }

    unsigned int _order;
    double** _vectors = nullptr;
};
