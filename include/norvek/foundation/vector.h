#pragma once

#include <cassert>
#include <cstddef>
#include <ostream>

/// A fixed-length vector of `N` elements: the corner type of the N-dimensional bounding box.
///
/// An aggregate: `MMVector<double, 3> v{1.0, 2.0, 3.0};`. The elements lie side by side; a default
/// vector is zero; `==` compares exactly. Indices are not checked in release builds.
template <class T, std::size_t N>
struct MMVector
{
    static_assert(N > 0, "A vector has at least one element.");

    /// The elements; public so that the type stays an aggregate.
    T elements[N]{};

    /// An element, to write.
    constexpr T& operator[](std::size_t index)
    {
        assert(index < N);
        return elements[index];
    }

    /// An element.
    constexpr const T& operator[](std::size_t index) const
    {
        assert(index < N);
        return elements[index];
    }

    /// The first element.
    constexpr T* begin()
    {
        return elements;
    }

    /// The first element.
    constexpr const T* begin() const
    {
        return elements;
    }

    /// One past the last element.
    constexpr T* end()
    {
        return elements + N;
    }

    /// One past the last element.
    constexpr const T* end() const
    {
        return elements + N;
    }

    /// Exact equality; NaN equals nothing.
    friend constexpr bool operator==(const MMVector&, const MMVector&) = default;

    /// Prints `(e0, e1, ...)`.
    friend std::ostream& operator<<(std::ostream& stream, const MMVector& vector)
    {
        stream << '(' << vector.elements[0];
        for (std::size_t i = 1; i < N; ++i)
            stream << ", " << vector.elements[i];
        return stream << ')';
    }
};
