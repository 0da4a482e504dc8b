#pragma once

#include <norvek/foundation/export.h>

/// The abstract dense matrix of `double`: two dimensions, and access to the elements.
///
/// Whatever is written against `MMatrix` works on general, packed symmetric and packed
/// lower-triangular storage alike. Rows and columns count from 0. Nothing here throws on bad input
/// and nothing checks dimensions or indices: those are the caller's, asserted in debug builds.
///
/// The destructor is not virtual and not public: a matrix is destroyed as what it is.
class NORVEK_MATH_API MMatrix
{
public:
    /// Gives the matrix new dimensions; what becomes of the elements is said by each kind. False
    /// when that is impossible, with nothing changed. The base stores both and returns true.
    virtual bool SetDimensions(unsigned int rows, unsigned int columns);

    /// The element, for writing. Packed kinds map two positions to one stored value.
    virtual double& Element(unsigned int row, unsigned int column) = 0;

    /// The value of an element.
    [[nodiscard]] virtual double Value(unsigned int row, unsigned int column) const = 0;

    /// Releases the storage and keeps the dimensions. A matrix without storage may be copied,
    /// assigned, sized anew and destroyed, and nothing else.
    virtual void CleanUp() = 0;

    /// The number of columns.
    [[nodiscard]] virtual unsigned int GetNumColumns() const;

    /// The number of rows.
    [[nodiscard]] virtual unsigned int GetNumRows() const;

    /// The same as `Element`.
    double& operator()(unsigned int row, unsigned int column)
    {
        return Element(row, column);
    }

    /// The same as `Value`.
    double operator()(unsigned int row, unsigned int column) const
    {
        return Value(row, column);
    }

protected:
    /// 0 x 0.
    MMatrix() = default;

    /// Of the given dimensions.
    MMatrix(unsigned int rows, unsigned int columns) : _rows(rows), _columns(columns)
    {}

    /// Copies the two dimensions.
    MMatrix(const MMatrix&) = default;

    /// Copies the two dimensions.
    MMatrix& operator=(const MMatrix&) = default;

    ~MMatrix() = default;

    /// The number of rows.
    unsigned int _rows = 0;
    /// The number of columns.
    unsigned int _columns = 0;
};
