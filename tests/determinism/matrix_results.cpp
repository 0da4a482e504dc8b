#include "determinism/results.h"
#include "platform/least_squares.h"
#include "support/matrix_values.h"

#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/jacobi_eigenvectors.h>
#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/lu_matrix.h>
#include <norvek/linalg/matrix3x3.h>
#include <norvek/primitives/least_squares_plane.h>
#include <norvek/primitives/sphere.h>

#include <algorithm>

namespace norvek_test
{

namespace
{

MGeneralMatrix RandomMatrix(Numbers& numbers, unsigned int rows, unsigned int columns)
{
    MGeneralMatrix matrix(rows, columns);
    for (unsigned int i = 0; i < rows * columns; ++i)
        matrix(i / columns, i % columns) = numbers.Next(1.0);
    return matrix;
}

MMatrix3x3 Rows(const std::array<MMPoint3d<double>, 3>& rows)
{
    MMatrix3x3 matrix;
    for (unsigned short row = 0; row < 3; ++row)
        matrix.SetRow(row, rows[row]);
    return matrix;
}

} // namespace

void HashGeneralMatrices(Hash& hash, Numbers& numbers, int round)
{
    const unsigned int n = 1 + static_cast<unsigned int>(round) % 40;
    auto right = numbers.Fill(std::vector<double>(n + 20), 1.0);
    std::vector<double> least(n);
    hash << RandomMatrix(numbers, n + 20, n).SolveLeastSquare(right.data(), least.data()) << least
         << RandomMatrix(numbers, 5, 5).Determinant(5);
    MLUMatrix factors;
    hash << RandomMatrix(numbers, n, n).FactoriseLU(factors) << factors.SolveLUxy(right.data())
         << right;
}

void HashSymmetricMatrices(Hash& hash, Numbers& numbers, int round)
{
    const unsigned int n = 1 + static_cast<unsigned int>(round) % 40;
    const auto elements = numbers.Fill(std::vector<double>(std::size_t{n} * n), 1.0);
    MSymmetricMatrix matrix = Packed(Eigen::Map<const RowMajor>(elements.data(), n, n));
    std::vector<double> values;
    MGeneralMatrix vectors;
    hash << matrix.CalculateEigenVectors(values, vectors) << values << RowByRow(vectors);
    MJacobiEigenVectors rotated(n);
    if (n < 8)
        matrix.GetEigensJacobi(rotated.Receive(), values.data(), 1e-12);
    for (unsigned int i = 0; i < n; ++i) {
        hash << (n < 8 ? rotated[i][n / 2] : 0.0);
        matrix(i, i) += n;
    }
    MLowerTriangularMatrix factor;
    hash << matrix.FACTORISE_CHOLESKY(factor) << factor.SOLVE_G_TG_X_B(values.data()) << values;
}

void HashFixedMatrices(Hash& hash, Numbers& numbers, int /*round*/)
{
    auto rows = numbers.Points<3>(1.0);
    const MMatrix3x3 general = Rows(rows);
    MMatrix3x3 nearest;
    std::array<double, 3> values{};
    hash << general.GetEigenValues(values.data()) << values[1]
         << general.NearestOrthonormal(nearest);
    for (const MMatrix3x3& matrix : {nearest, general.Inverse()})
        for (unsigned int i = 0; i < 9; ++i)
            hash << matrix.Value(i / 3, i % 3);
    rows[1].x = rows[0].y;
    rows[2].x = rows[0].z;
    rows[2].y = rows[1].z;
    const MMatrix3x3 symmetric = Rows(rows);
    hash << symmetric.GetEigenValues(values.data()) << values;
    hash << symmetric.GetEigenVectors(rows.data(), values.data()) << rows;
}

// Banded and full systems, of up to a few hundred rows, so that every block size occurs.
void HashLeastSquares(Hash& hash, Numbers& numbers, int round)
{
    const auto i = static_cast<std::size_t>(round);
    const std::size_t columns = 1 + i % 60;
    const std::size_t rows = columns + i * i % 400;
    const std::size_t run = i % 3 == 0 ? columns : std::min<std::size_t>(columns, 1 + i % 7);
    std::vector<double> system(rows * columns);
    for (std::size_t row = 0; row < rows; ++row)
        for (std::size_t k = 0; k < run; ++k)
            system[row * columns + row * (columns - run + 1) / rows + k] = numbers.Next(1.0);
    auto right = numbers.Fill(std::vector<double>(rows * 3), 1.0);
    hash << Norvek::Math::Core::SolveDenseLeastSquares({rows, columns, system.data()},
                                                       {rows, 3, right.data()})
         << right;
}

void HashFits(Hash& hash, Numbers& numbers, int /*round*/)
{
    MMLeastSquarePlane fit;
    for (const MMPoint3d<double>& p : numbers.Points<20>(9.0))
        fit.AddPoint(p.x, 0.5 * p.y, 0.1 * p.z);
    hash << fit.GetPlane().GetNormal() << fit.GetPlane().D();
    fit.CalculateThroughOrigin();
    hash << fit.GetPlane().GetNormal();
    MMSphere sphere;
    const auto p = numbers.Points<4>(5.0);
    hash << sphere.Fit4Points(p[0], p[1], p[2], p[3]) << sphere.GetRadius()
         << sphere.CapturePoints({p.begin(), p.end()}) << sphere.GetCenter();
}

} // namespace norvek_test
