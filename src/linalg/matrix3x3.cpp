#include <norvek/linalg/matrix3x3.h>

#include <algorithm>

void MMatrix3x3::SetToZero()
{
    *this = MMatrix3x3();
}

MMatrix3x3& MMatrix3x3::operator*=(double factor)
{
    for (auto& row : _a) {
        for (double& value : row)
            value *= factor;
    }
    return *this;
}

MMatrix3x3& MMatrix3x3::operator/=(double divisor)
{
    for (auto& row : _a) {
        for (double& value : row)
            value /= divisor;
    }
    return *this;
}

void MMatrix3x3::PreMultiply(const MMatrix3x3& b)
{
    *this = b * *this;
}

void MMatrix3x3::PDotQTranspose(const MMPoint3d<double>& p, const MMPoint3d<double>& q)
{
    SetRow(0, p.x * q);
    SetRow(1, p.y * q);
    SetRow(2, p.z * q);
}

void MMatrix3x3::SubtractFromDiagonal(double value)
{
    _a[0][0] -= value;
    _a[1][1] -= value;
    _a[2][2] -= value;
}

MMatrix3x3 MMatrix3x3::operator*(const MMatrix3x3& other) const
{
    MMatrix3x3 result;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            result._a[i][j] = GetRow(i).Dot(other.GetColumn(j));
    }
    return result;
}

MMatrix3x3 MMatrix3x3::operator+(const MMatrix3x3& other) const
{
    MMatrix3x3 result;
    for (unsigned short i = 0; i < 3; ++i)
        result.SetRow(i, GetRow(i) + other.GetRow(i));
    return result;
}

MMatrix3x3 MMatrix3x3::operator-(const MMatrix3x3& other) const
{
    MMatrix3x3 result;
    for (unsigned short i = 0; i < 3; ++i)
        result.SetRow(i, GetRow(i) - other.GetRow(i));
    return result;
}

bool MMatrix3x3::operator==(const MMatrix3x3& other) const
{
    return GetRow(0) == other.GetRow(0) && GetRow(1) == other.GetRow(1) &&
           GetRow(2) == other.GetRow(2);
}

double MMatrix3x3::Trace() const
{
    return _a[0][0] + _a[1][1] + _a[2][2];
}

// With the sign: the tolerances of a matrix without a positive entry are negative and never met.
double MMatrix3x3::GetMaxEntry() const
{
    double largest = _a[0][0];
    for (const auto& row : _a) {
        for (const double value : row)
            largest = std::max(largest, value);
    }
    return largest;
}

// Both squares are built beside the result, which may be the matrix itself.
void MMatrix3x3::TransposeSquare(MMatrix3x3& result) const
{
    MMatrix3x3 square;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            square._a[i][j] = GetRow(i).Dot(GetRow(j));
    }
    result = square;
}

void MMatrix3x3::InvTransposeSquare(MMatrix3x3& result) const
{
    MMatrix3x3 square;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            square._a[i][j] = GetColumn(i).Dot(GetColumn(j));
    }
    result = square;
}

double MMatrix3x3::Determinant() const
{
    return _a[0][0] * (_a[1][1] * _a[2][2] - _a[1][2] * _a[2][1]) -
           _a[0][1] * (_a[1][0] * _a[2][2] - _a[1][2] * _a[2][0]) +
           _a[0][2] * (_a[1][0] * _a[2][1] - _a[1][1] * _a[2][0]);
}

// With cyclic indices the sign is in the order of the rows.
inline double MMatrix3x3::_GetCofactor(int row, int column) const
{
    const int i1 = (row + 1) % 3;
    const int i2 = (row + 2) % 3;
    const int j1 = (column + 1) % 3;
    const int j2 = (column + 2) % 3;
    return _a[i1][j1] * _a[i2][j2] - _a[i1][j2] * _a[i2][j1];
}

// No test of the determinant: what a singular matrix gives is not finite, and says so by itself.
MMatrix3x3 MMatrix3x3::Inverse() const
{
    const double determinant = Determinant();
    MMatrix3x3 result;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            result._a[i][j] = _GetCofactor(j, i) / determinant;
    }
    return result;
}

bool MMatrix3x3::Solve(double* const b) const
{
    const double determinant = Determinant();
    // One comparison that a zero and a NaN determinant both fail.
    if (!(determinant < 0.0 || determinant > 0.0))
        return false;
    double x[3];
    for (unsigned int k = 0; k < 3; ++k) {
        MMatrix3x3 replaced = *this;
        for (unsigned int i = 0; i < 3; ++i)
            replaced._a[i][k] = b[i];
        x[k] = replaced.Determinant() / determinant;
    }
    std::copy_n(x, 3, b);
    return true;
}
