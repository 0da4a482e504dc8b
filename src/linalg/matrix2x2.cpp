#include <norvek/foundation/constants.h>
#include <norvek/linalg/matrix2x2.h>

#include <algorithm>
#include <cmath>

using Norvek::Math::Core::kTenEpsilons;

namespace
{

// Up to this determinant a matrix has no inverse.
constexpr double kSingularDeterminant = 2.220446049250313e-14;
static_assert(kSingularDeterminant == 100.0 * Norvek::Math::Core::kMachineEpsilon);

void WriteUnit(double x, double y, double* vector)
{
    const double length = std::sqrt(x * x + y * y);
    vector[0] = x / length;
    vector[1] = y / length;
}

} // namespace

bool MMatrix2x2::GetEigenValues(double* const values) const
{
    const double trace = _a[0][0] + _a[1][1];
    const double determinant = _a[0][0] * _a[1][1] - _a[0][1] * _a[1][0];
    if (std::abs(determinant) < kTenEpsilons) {
        values[0] = trace;
        values[1] = 0.0;
        return true;
    }
    const double difference = _a[0][0] - _a[1][1];
    double discriminant = 4.0 * _a[0][1] * _a[1][0] + difference * difference;
    if (std::abs(discriminant) < kTenEpsilons)
        discriminant = 0.0;
    else if (discriminant < 0.0)
        return false;
    const double root = std::sqrt(discriminant);
    values[0] = (trace + root) * 0.5;
    values[1] = (trace - root) * 0.5;
    return true;
}

bool MMatrix2x2::GetEigenVector(double* const vector, double value) const
{
    const double first = _a[0][0] - value;
    const double second = _a[1][1] - value;
    const double largest = *std::max_element(&_a[0][0], &_a[0][0] + 4);
    // One-sided: a negative residual passes.
    if (first * second - _a[1][0] * _a[0][1] > largest * largest * kTenEpsilons)
        return false;
    // Divide by the larger of the two elements off the diagonal.
    const double upper = std::abs(_a[0][1]);
    const double lower = std::abs(_a[1][0]);
    if (upper >= lower && !(upper < kTenEpsilons)) {
        WriteUnit(1.0, (value - _a[0][0]) / _a[0][1], vector);
    } else if (!(upper >= lower) && !(lower < kTenEpsilons)) {
        WriteUnit((value - _a[1][1]) / _a[1][0], 1.0, vector);
    } else if (std::abs(first) < kTenEpsilons) {
        WriteUnit(1.0, 0.0, vector);
    } else if (std::abs(second) < kTenEpsilons) {
        WriteUnit(0.0, 1.0, vector);
    } else {
        return false;
    }
    return true;
}

bool MMatrix2x2::Invert()
{
    const double determinant = _a[0][0] * _a[1][1] - _a[0][1] * _a[1][0];
    if (std::abs(determinant) < kSingularDeterminant)
        return false;
    *this = MMatrix2x2(_a[1][1] / determinant, -_a[0][1] / determinant, -_a[1][0] / determinant,
                       _a[0][0] / determinant);
    return true;
}

bool MMatrix2x2::SolveSquareSet(double* const x, double* const b) const
{
    const double determinant = _a[0][0] * _a[1][1] - _a[0][1] * _a[1][0];
    // One comparison that a zero and a NaN determinant both fail.
    if (!(determinant < 0.0 || determinant > 0.0))
        return false;
    // Both before either is written: x may be b.
    const double x0 = (b[0] * _a[1][1] - _a[0][1] * b[1]) / determinant;
    const double x1 = (_a[0][0] * b[1] - b[0] * _a[1][0]) / determinant;
    x[0] = x0;
    x[1] = x1;
    return true;
}
