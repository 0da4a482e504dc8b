#include "determinism/results.h"
#include "platform/least_squares.h"

#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/jacobi_eigenvectors.h>
#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/lu_matrix.h>
#include <norvek/linalg/matrix3x3.h>
#include <norvek/linalg/symmetric_matrix.h>
#include <norvek/primitives/least_squares_plane.h>
#include <norvek/primitives/sphere.h>

#include <algorithm>
#include <vector>

namespace norvek_test
{

namespace
{

constexpr int kRounds = 2000;

MGeneralMatrix RandomMatrix(Numbers& numbers, unsigned int rows, unsigned int columns)
{
    MGeneralMatrix matrix(rows, columns);
    for (unsigned int i = 0; i < rows; ++i)
        for (unsigned int j = 0; j < columns; ++j)
            matrix(i, j) = numbers.Next(1.0);
    return matrix;
}

void AddMatrix(Hash& hash, const MMatrix3x3& matrix)
{
    for (unsigned int i = 0; i < 3; ++i)
        for (unsigned int j = 0; j < 3; ++j)
            hash.Add(matrix.Value(i, j));
}

MMatrix3x3 RandomMatrix3x3(Numbers& numbers, bool isSymmetric)
{
    MMatrix3x3 matrix;
    for (unsigned short row = 0; row < 3; ++row)
        matrix.SetRow(row, numbers.Point(1.0));
    for (unsigned int i = 0; isSymmetric && i < 3; ++i)
        for (unsigned int j = 0; j < i; ++j)
            matrix.Element(i, j) = matrix.Value(j, i);
    return matrix;
}

} // namespace

std::uint64_t HashGeneralMatrices(Numbers numbers)
{
    Hash hash;
    for (unsigned int i = 0; i < kRounds / 20; ++i) {
        const unsigned int n = 1 + i % 40;
        MGeneralMatrix square = RandomMatrix(numbers, n, n);
        std::vector<double> right(n + 20);
        for (double& value : right)
            value = numbers.Next(1.0);
        std::vector<double> least(n);
        MGeneralMatrix tall = RandomMatrix(numbers, n + 20, n);
        hash.Add(tall.SolveLeastSquare(right.data(), least.data()));
        for (const double value : least)
            hash.Add(value);
        hash.Add(RandomMatrix(numbers, 5, 5).Determinant(5));
        MLUMatrix factors;
        hash.Add(square.FactoriseLU(factors));
        hash.Add(factors.SolveLUxy(right.data()));
        for (unsigned int k = 0; k < n; ++k)
            hash.Add(right[k]);
    }
    return hash.Value();
}

std::uint64_t HashSymmetricMatrices(Numbers numbers)
{
    Hash hash;
    for (unsigned int round = 0; round < kRounds / 20; ++round) {
        const unsigned int n = 1 + round % 40;
        MSymmetricMatrix matrix(n);
        for (unsigned int i = 0; i < n; ++i)
            for (unsigned int j = 0; j <= i; ++j)
                matrix(i, j) = numbers.Next(1.0);
        std::vector<double> values;
        MGeneralMatrix vectors;
        hash.Add(matrix.CalculateEigenVectors(values, vectors));
        MJacobiEigenVectors rotated(n);
        if (n < 8)
            matrix.GetEigensJacobi(rotated.Receive(), values.data(), 1e-12);
        for (unsigned int i = 0; i < n; ++i) {
            hash.Add(values[i]);
            hash.Add(vectors(i, n / 2));
            hash.Add(n < 8 ? rotated[i][n / 2] : 0.0);
            matrix(i, i) += n;
        }
        MLowerTriangularMatrix factor;
        hash.Add(matrix.FACTORISE_CHOLESKY(factor));
        hash.Add(factor.SOLVE_G_TG_X_B(values.data()));
        hash.Add(values[n / 2]);
    }
    return hash.Value();
}

std::uint64_t HashFixedMatrices(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        const MMatrix3x3 symmetric = RandomMatrix3x3(numbers, true);
        double values[3] = {};
        hash.Add(symmetric.GetEigenValues(values));
        MMPoint3d<double> vectors[3];
        hash.Add(symmetric.GetEigenVectors(vectors, values));
        for (int k = 0; k < 3; ++k) {
            hash.Add(values[k]);
            hash.Add(vectors[k]);
        }
        const MMatrix3x3 general = RandomMatrix3x3(numbers, false);
        hash.Add(general.GetEigenValues(values));
        hash.Add(values[1]);
        MMatrix3x3 nearest;
        hash.Add(general.NearestOrthonormal(nearest));
        AddMatrix(hash, nearest);
        AddMatrix(hash, general.Inverse());
    }
    return hash.Value();
}

// Banded and full systems, of up to a few hundred rows, so that every block size occurs.
std::uint64_t HashLeastSquares(Numbers numbers)
{
    Hash hash;
    for (std::size_t i = 0; i < kRounds / 20; ++i) {
        const std::size_t columns = 1 + i % 60;
        const std::size_t rows = columns + i * i % 400;
        const std::size_t run = i % 3 == 0 ? columns : std::min<std::size_t>(columns, 1 + i % 7);
        std::vector<double> system(rows * columns);
        for (std::size_t row = 0; row < rows; ++row) {
            double* const first = &system[row * columns + row * (columns - run + 1) / rows];
            for (std::size_t k = 0; k < run; ++k)
                first[k] = numbers.Next(1.0);
        }
        std::vector<double> right(rows * 3);
        for (double& value : right)
            value = numbers.Next(1.0);
        hash.Add(Norvek::Math::Core::SolveDenseLeastSquares({rows, columns, system.data()},
                                                            {rows, 3, right.data()}));
        for (const double value : right)
            hash.Add(value);
    }
    return hash.Value();
}

std::uint64_t HashFits(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds / 4; ++i) {
        MMLeastSquarePlane fit;
        for (int point = 0; point < 20; ++point) {
            const MMPoint3d<double> p = numbers.Point(9.0);
            fit.AddPoint(p.x, 0.5 * p.y, 0.1 * p.z);
        }
        const MMPlaneEq<double> plane = fit.GetPlane();
        hash.Add(plane.GetNormal());
        hash.Add(plane.D());
        fit.CalculateThroughOrigin();
        hash.Add(fit.GetPlane().GetNormal());
        MMSphere sphere;
        const auto p = numbers.Points<4>(5.0);
        hash.Add(sphere.Fit4Points(p[0], p[1], p[2], p[3]));
        hash.Add(sphere.GetRadius());
        hash.Add(sphere.CapturePoints({p.begin(), p.end()}));
        hash.Add(sphere.GetCenter());
    }
    return hash.Value();
}

} // namespace norvek_test
