#pragma once

#include <norvek/foundation/constants.h>

#include <algorithm>
#include <cmath>
#include <cstring>

/// Small operations on 4x4 arrays, [row][column].
namespace Norvek::Math::Core
{

using Matrix4 = double[4][4];

inline constexpr Matrix4 kUnitMatrix4 = {
    {1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}};

inline void CopyMatrix4(Matrix4& to, const Matrix4& from)
{
    std::memcpy(&to, &from, sizeof(Matrix4));
}

/// Writes one row.
inline void SetRow4(double (&row)[4], double e0, double e1, double e2, double e3)
{
    row[0] = e0;
    row[1] = e1;
    row[2] = e2;
    row[3] = e3;
}

/// product = a b, each element summed from the left. `product` must be neither operand. Runs along
/// the rows, so that neighbouring elements are computed side by side.
inline void MultiplyMatrix4(Matrix4& __restrict product, const Matrix4& __restrict a,
                            const Matrix4& __restrict b)
{
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            product[i][j] =
                a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j] + a[i][3] * b[3][j];
        }
    }
}

/// All 16 elements differ by less than the tolerance. Strictly, so that a NaN element, or
/// infinities that agree, count as different.
inline bool AreEqualMatrix4(const Matrix4& a, const Matrix4& b)
{
    return std::equal(a[0], a[0] + 16, b[0],
                      [](double x, double y) { return std::abs(x - y) < kMatrixEqualTolerance; });
}

/// The dot product of rows 0 to 2 of two columns, from the top.
inline double DotColumns(const Matrix4& m, int a, int b)
{
    return m[0][a] * m[0][b] + m[1][a] * m[1][b] + m[2][a] * m[2][b];
}

/// One coordinate of the image of (x, y, z), without the homogeneous division.
inline double RowTimesPoint(const double (&row)[4], double x, double y, double z, bool isDirection)
{
    const double sum = row[0] * x + row[1] * y + row[2] * z;
    return isDirection ? sum : sum + row[3];
}

} // namespace Norvek::Math::Core
