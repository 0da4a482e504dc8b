#include <norvek/linalg/matrix.h>

bool MMatrix::SetDimensions(unsigned int rows, unsigned int columns)
{
    _rows = rows;
    _columns = columns;
    return true;
}

unsigned int MMatrix::GetNumColumns() const
{
    return _columns;
}

unsigned int MMatrix::GetNumRows() const
{
    return _rows;
}
