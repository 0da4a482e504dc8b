#pragma once

#include <cassert>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

/// A table of records, rows times columns, in one vector.
///
/// Element (i, j) lies at i + rows * j: the elements of a column are neighbours, so that a loop
/// over all elements is fastest with i inside. Over point sets the table is square, and (i, j)
/// holds what belongs to the pair of set i and set j; (i, j) and (j, i) are different elements.
///
/// A table without rows or columns is empty and has no elements. Copies are independent. Threads
/// may read one table at once.
template <class T>
class MDataArray2D
{
public:
    /// An empty table.
    MDataArray2D() = default;

    /// A table whose elements are all `value`.
    ///
    /// @throws std::length_error when there can be no vector of so many
    MDataArray2D(std::size_t rows, std::size_t columns, const T& value = T())
        : _rows(rows),
          _columns(columns),
          _elements(_Count(rows, columns), value)
    {}

    /// Copies all elements.
    MDataArray2D(const MDataArray2D&) = default;

    /// Takes over the elements; `other` is left empty.
    MDataArray2D(MDataArray2D&& other) noexcept
    {
        _Swap(other);
    }

    /// Takes over the elements, by copy or by move as they come.
    MDataArray2D& operator=(MDataArray2D other) noexcept
    {
        _Swap(other);
        return *this;
    }

    virtual ~MDataArray2D() = default;

    /// Becomes a table of this size whose elements are all `value`, which may be an element of this
    /// table.
    void Resize(std::size_t rows, std::size_t columns, const T& value = T())
    {
        *this = MDataArray2D(rows, columns, value);
    }

    /// The element (i, j), for writing. i < rows and j < columns, asserted only.
    T& operator()(std::size_t i, std::size_t j)
    {
        assert(i < _rows && j < _columns);
        return _elements[i + _rows * j];
    }

    /// The element (i, j). i < rows and j < columns, asserted only.
    const T& operator()(std::size_t i, std::size_t j) const
    {
        assert(i < _rows && j < _columns);
        return _elements[i + _rows * j];
    }

    /// The number of rows: i runs from 0 to one less.
    [[nodiscard]] std::size_t GetNumRows() const
    {
        return _rows;
    }

    /// The number of columns: j runs from 0 to one less.
    [[nodiscard]] std::size_t GetNumColumns() const
    {
        return _columns;
    }

private:
    // A product that wrapped would make a table smaller than its size says.
    static std::size_t _Count(std::size_t rows, std::size_t columns)
    {
        if (columns != 0 && rows > static_cast<std::size_t>(-1) / columns)
            throw std::length_error("MDataArray2D too large");
        return rows * columns;
    }

    void _Swap(MDataArray2D& other) noexcept
    {
        std::swap(_rows, other._rows);
        std::swap(_columns, other._columns);
        _elements.swap(other._elements);
    }

    std::size_t _rows = 0;
    std::size_t _columns = 0;
    std::vector<T> _elements;
};
