#include "platform/least_squares.h"

#include "platform/banded_qr.h"
#include "platform/pivoted_qr.h"
#include "platform/upper_triangle.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace Norvek::Math::Core
{

namespace
{

// Magnitudes within 2^-200 and 2^200 need no scaling: their products and squares are far from both
// ends of the range.
constexpr double kSmallestPlain = 0x1p-200;
constexpr double kLargestPlain = 0x1p200;

using Values = std::vector<double>;
using Exponents = std::vector<int>;

// For every column of a matrix the exponent that brings its largest magnitude to [1/2, 1); 0 for
// a column of zeros. Nothing when a value is not finite.
std::optional<Exponents> ColumnExponents(const ConstMatrixView& matrix)
{
    Values largest(matrix.columns);
    for (std::size_t i = 0; i < matrix.rows; ++i) {
        const double* const row = matrix.values + i * matrix.columns;
        for (std::size_t j = 0; j < matrix.columns; ++j) {
            const double magnitude = std::abs(row[j]);
            if (!(magnitude <= std::numeric_limits<double>::max()))
                return std::nullopt;
            largest[j] = std::max(largest[j], magnitude);
        }
    }
    Exponents exponents(matrix.columns);
    for (std::size_t j = 0; j < matrix.columns; ++j) {
        std::frexp(largest[j], &exponents[j]);
        // The factor itself has to be a number of full precision.
        exponents[j] = std::max(exponents[j], -1020);
    }
    return exponents;
}

Values Dense(const RunsView& runs)
{
    Values values(runs.rows * runs.columns);
    Values run(runs.width);
    for (std::size_t i = 0; i < runs.rows; ++i) {
        std::uint32_t first = 0;
        runs.source->Make(i, i + 1, run.data(), &first);
        std::size_t column = first;
        for (const double value : run) {
            values[i * runs.columns + column] += value;
            column = column + 1 == runs.columns ? 0 : column + 1;
        }
    }
    return values;
}

std::optional<Exponents> ColumnExponents(const RunsView& runs)
{
    return ColumnExponents({runs.rows, runs.columns, Dense(runs).data()});
}

Values Factors(const Exponents& exponents)
{
    Values factors;
    for (const int exponent : exponents)
        factors.push_back(std::ldexp(1.0, -exponent));
    return factors;
}

// Rows and columns; whether there are values is asked elsewhere.
template <class System>
bool AreShapesSolvable(const System& system, const ConstMatrixView& right)
{
    return system.columns > 0 && system.rows >= system.columns && right.columns > 0 &&
           right.rows == system.rows && right.values != nullptr;
}

// Every product with 0 is 0, unless a factor is infinite or not a number.
bool AreFinite(const double* values, std::size_t count)
{
    double sums[4]{};
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        for (std::size_t lane = 0; lane < 4; ++lane)
            sums[lane] += 0.0 * values[i + lane];
    }
    for (; i < count; ++i)
        sums[0] += 0.0 * values[i];
    return sums[0] + sums[1] + sums[2] + sums[3] == 0.0;
}

// What both forms make of a system: R, and the right-hand sides turned along with it.
struct Reduced
{
    UpperTriangle r;
    Values lengths;
    // The rows of R, column by column of the right-hand sides; becomes the solutions.
    Values projected;
    // Column k of R is column order[k] of the system.
    std::vector<std::size_t> order;
    // The powers of two by which columns and right-hand sides were divided.
    Exponents exponents;
    Exponents rightExponents;
};

// Solves with R and writes the solutions, unless R is short of rank or one of them is not finite.
bool Deliver(Reduced& reduced, const MatrixView& solution)
{
    const std::size_t n = reduced.r.columns;
    Values work(n);
    if (!HasFullRank(reduced.r, reduced.lengths.data(), work.data()))
        return false;
    SolveUpper(reduced.r, reduced.projected.data(), solution.columns);
    for (std::size_t c = 0; c < solution.columns; ++c) {
        double* const x = reduced.projected.data() + c * n;
        for (std::size_t k = 0; k < n; ++k) {
            const int exponent = reduced.rightExponents[c] - reduced.exponents[reduced.order[k]];
            if (exponent != 0)
                x[k] = std::ldexp(x[k], exponent);
            if (!std::isfinite(x[k]))
                return false;
        }
    }
    for (std::size_t c = 0; c < solution.columns; ++c) {
        for (std::size_t k = 0; k < n; ++k)
            solution.values[reduced.order[k] * solution.columns + c] = reduced.projected[c * n + k];
    }
    return true;
}

bool IsPlain(double magnitude)
{
    return magnitude >= kSmallestPlain && magnitude <= kLargestPlain;
}

// Whether Q'b of every right-hand side has a magnitude that needs no scaling. That of a right-hand
// side of zeros needs none.
bool AreProjectionsPlain(const BandedQR& qr, const ConstMatrixView& right)
{
    for (std::size_t c = 0; c < right.columns; ++c) {
        double largest = 0.0;
        for (std::size_t j = 0; j < qr.R().columns; ++j)
            largest = std::max(largest, std::abs(qr.Projected(j)[c]));
        if (IsPlain(largest))
            continue;
        for (std::size_t i = 0; i < right.rows; ++i) {
            if (right.values[i * right.columns + c] != 0.0)
                return false;
        }
    }
    return true;
}

enum class Outcome
{
    Solved,
    Failed,
    NotBanded
};

// Hardly any system needs scaling, and to look for the largest values would take as long as the
// factorisation of a narrow one: it is tried without, and repeated when the result says so.
template <class System>
Outcome SolveBanded(const System& system, const ConstMatrixView& right, double* solution)
{
    const std::size_t n = system.columns;
    BandedQR qr(system, right);
    if (!qr.Factorise())
        return Outcome::NotBanded;
    Reduced reduced{.r = qr.R(),
                    .lengths = Values(n),
                    .projected = Values(n * right.columns),
                    .order = std::vector<std::size_t>(n),
                    .exponents = Exponents(n),
                    .rightExponents = Exponents(right.columns)};
    ColumnLengths(reduced.r, reduced.lengths.data());
    if (!std::all_of(reduced.lengths.begin(), reduced.lengths.end(), IsPlain) ||
        !AreProjectionsPlain(qr, right))
    {
        auto exponents = ColumnExponents(system);
        auto rightExponents = ColumnExponents(right);
        if (!exponents || !rightExponents)
            return Outcome::Failed;
        reduced.exponents = std::move(*exponents);
        reduced.rightExponents = std::move(*rightExponents);
        if (!qr.Factorise(Factors(reduced.exponents).data(),
                          Factors(reduced.rightExponents).data()))
            return Outcome::NotBanded;
        reduced.r = qr.R();
        ColumnLengths(reduced.r, reduced.lengths.data());
    }
    for (std::size_t j = 0; j < n; ++j) {
        reduced.order[j] = j;
        for (std::size_t c = 0; c < right.columns; ++c)
            reduced.projected[c * n + j] = qr.Projected(j)[c];
    }
    return Deliver(reduced, {n, right.columns, solution}) ? Outcome::Solved : Outcome::Failed;
}

bool SolvePivoted(const ConstMatrixView& system, const ConstMatrixView& right, double* solution)
{
    const std::size_t n = system.columns;
    auto exponents = ColumnExponents(system);
    auto rightExponents = ColumnExponents(right);
    if (!exponents || !rightExponents)
        return false;
    PivotedQR qr = FactorisePivoted(system, right, Factors(*exponents), Factors(*rightExponents));
    // A full triangle, row by row: from one diagonal value to the next it is a row and a column.
    Reduced reduced{.r = {n, n, n + 1, qr.r.data()},
                    .lengths = Values(n),
                    .projected = std::move(qr.projected),
                    .order = std::move(qr.order),
                    .exponents = std::move(*exponents),
                    .rightExponents = std::move(*rightExponents)};
    ColumnLengths(reduced.r, reduced.lengths.data());
    return Deliver(reduced, {n, right.columns, solution});
}

// `solveFull` is asked when A is not banded.
template <class System, class SolveFull>
bool Solve(const System& system, const ConstMatrixView& right, double* solution,
           const SolveFull& solveFull)
{
    if (!AreShapesSolvable(system, right) || !AreFinite(right.values, right.rows * right.columns))
        return false;
    try {
        const Outcome outcome = SolveBanded(system, right, solution);
        return outcome == Outcome::NotBanded ? solveFull() : outcome == Outcome::Solved;
    } catch (const std::exception&) {
        // No memory, or a size beyond what a vector holds.
        return false;
    }
}

} // namespace

bool SolveDenseLeastSquares(const ConstMatrixView& system,
                            const MatrixView& rightHandSides) noexcept
{
    const ConstMatrixView right{rightHandSides.rows, rightHandSides.columns, rightHandSides.values};
    return system.values != nullptr && Solve(system, right, rightHandSides.values, [&] {
               return SolvePivoted(system, right, rightHandSides.values);
           });
}

bool SolveLeastSquaresOfRuns(const RunsView& system, const ConstMatrixView& rightHandSides,
                             double* solution) noexcept
{
    return system.source != nullptr && solution != nullptr &&
           Solve(system, rightHandSides, solution, [&] {
               const Values dense = Dense(system);
               return SolvePivoted({system.rows, system.columns, dense.data()}, rightHandSides,
                                   solution);
           });
}

} // namespace Norvek::Math::Core
