#include <norvek/foundation/constants.h>
#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <algorithm>
#include <cmath>
#include <limits>

using Norvek::Math::Core::kMachineEpsilon;

namespace
{

// A power iteration stops when its norm changes by less than this, relatively.
constexpr double kSettled = 0.001;

// No iteration that settles comes near this many steps.
constexpr int kStepLimit = 1'000'000;

// y += a x, element by element.
void AddScaled(double a, const double* x, std::size_t n, double* y)
{
    for (std::size_t i = 0; i < n; ++i)
        y[i] += a * x[i];
}

// Expansion along the row `row` of `values` over the n columns listed. Below the list lies room for
// the shorter lists of the minors.
double Expand(const double* values, std::size_t stride, unsigned int* columns, unsigned int n)
{
    if (n == 0)
        return 0.0;
    if (n == 2) {
        const double* const next = values + stride;
        return values[columns[0]] * next[columns[1]] - values[columns[1]] * next[columns[0]];
    }
    unsigned int* const others = columns + n;
    double result = 0.0;
    for (unsigned int j = 0; j < n; ++j) {
        std::copy(columns, columns + j, others);
        std::copy(columns + j + 1, columns + n, others + j);
        const double sign = j % 2 == 0 ? 1.0 : -1.0;
        result += values[columns[j]] * sign * Expand(values + stride, stride, others, n - 1);
    }
    return result;
}

} // namespace

MGeneralMatrix::MGeneralMatrix(unsigned int rows, unsigned int columns)
    : MMatrix(rows, columns),
      _storage(std::size_t{rows} * columns)
{}

MGeneralMatrix::MGeneralMatrix(unsigned int rows, unsigned int columns, double* values)
    : MMatrix(rows, columns),
      _storage(values, std::size_t{rows} * columns)
{}

MGeneralMatrix& MGeneralMatrix::operator=(const MGeneralMatrix& other)
{
    _storage = other._storage;
    MMatrix::operator=(other);
    return *this;
}

// A matrix without storage gets some even when the count is the same: what was cleaned up can be
// used again, and nobody could tell the difference but by reading where nothing is.
bool MGeneralMatrix::SetDimensions(unsigned int rows, unsigned int columns)
{
    return _storage.Resize(std::size_t{rows} * columns) && MMatrix::SetDimensions(rows, columns);
}

void MGeneralMatrix::CleanUp()
{
    _storage.Release();
}

void MGeneralMatrix::SetToZero()
{
    std::fill_n(_storage.Values(), _storage.Count(), 0.0);
}

void MGeneralMatrix::MakeIdentity()
{
    SetToZero();
    for (unsigned int i = 0; i < std::min(_rows, _columns); ++i)
        Element(i, i) = 1.0;
}

// The source may be packed in any way, so that its elements can only be had one by one.
void MGeneralMatrix::Copy(MMatrix* source)
{
    assert(source != nullptr);
    double* value = _storage.Values();
    for (unsigned int i = 0; i < _rows; ++i) {
        for (unsigned int j = 0; j < _columns; ++j)
            *value++ = source->Value(i, j);
    }
}

void MGeneralMatrix::GetSubMatrix(MGeneralMatrix& target, unsigned int row,
                                  unsigned int column) const
{
    for (unsigned int i = 0; i < target._rows; ++i)
        std::copy_n(_Row(row + i) + column, target._columns, target._Row(i));
}

void MGeneralMatrix::SetSubMatrix(const MGeneralMatrix& source, unsigned int row,
                                  unsigned int column)
{
    for (unsigned int i = 0; i < source._rows; ++i)
        std::copy_n(source._Row(i), source._columns, _Row(row + i) + column);
}

MGeneralMatrix MGeneralMatrix::operator*(const MGeneralMatrix& other) const
{
    // Row by row of the right operand, where values lie side by side and no sum waits for the one
    // before it: each element still sums over k in ascending order.
    MGeneralMatrix result(_rows, other._columns);
    result.SetToZero();
    for (unsigned int i = 0; i < _rows; ++i) {
        for (unsigned int k = 0; k < _columns; ++k)
            AddScaled(_Row(i)[k], other._Row(k), other._columns, result._Row(i));
    }
    return result;
}

MGeneralMatrix MGeneralMatrix::operator+(const MGeneralMatrix& other) const
{
    MGeneralMatrix result(*this);
    result += other;
    return result;
}

MGeneralMatrix& MGeneralMatrix::operator+=(const MGeneralMatrix& other)
{
    double* const values = _storage.Values();
    const double* const others = other._storage.Values();
    assert(other._storage.Count() >= _storage.Count());
    for (std::size_t i = 0; i < _storage.Count(); ++i)
        values[i] += others[i];
    return *this;
}

MGeneralMatrix& MGeneralMatrix::operator*=(double factor)
{
    std::for_each_n(_storage.Values(), _storage.Count(), [=](double& v) { v *= factor; });
    return *this;
}

MGeneralMatrix& MGeneralMatrix::operator/=(double divisor)
{
    std::for_each_n(_storage.Values(), _storage.Count(), [=](double& v) { v /= divisor; });
    return *this;
}

bool MGeneralMatrix::CalculationATransposeV(double* const result, double* const v) const
{
    // All sums grow together, row by row; each one takes its terms in ascending order of i.
    std::fill_n(result, _columns, 0.0);
    for (unsigned int i = 0; i < _rows; ++i)
        AddScaled(v[i], _Row(i), _columns, result);
    return true;
}

// The argument is a copy, so that the result may be the vector it was copied from.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool MGeneralMatrix::CalculationVTransposeA(std::vector<double>& result,
                                            std::vector<double> v) const
{
    assert(v.size() >= _rows);
    result.resize(_columns);
    return CalculationATransposeV(result.data(), v.data());
}

bool MGeneralMatrix::CreateATransposeA(MSymmetricMatrix& result) const
{
    if (!result.SetDimensions(_columns, _columns))
        return false;
    result.SetToZero();
    // Row i of the packed triangle has i + 1 values and follows upon row i - 1.
    for (unsigned int k = 0; k < _rows; ++k) {
        double* packed = result._storage.Values();
        for (unsigned int i = 0; i < _columns; packed += ++i)
            AddScaled(_Row(k)[i], _Row(k), i + 1, packed);
    }
    return true;
}

// The minors are never copied: a minor is a row to start from and a list of columns. All lists
// together take n (n + 1) / 2 places.
double MGeneralMatrix::Determinant(unsigned int n) const
{
    assert(n <= _rows && n <= _columns);
    std::vector<unsigned int> columns(std::size_t{n} * (n + 1) / 2);
    for (unsigned int j = 0; j < n; ++j)
        columns[j] = j;
    return Expand(_storage.Values(), _columns, columns.data(), n);
}

bool MGeneralMatrix::HouseholderReflection(double* const v)
{
    assert(_rows == _columns);
    double square = 0.0;
    for (unsigned int i = 0; i < _rows; ++i)
        square += v[i] * v[i];
    if (std::abs(square) <= _rows * 3.0 * kMachineEpsilon)
        return false;
    // The order of the factors fixes the last bit: v_i, -2, v_j, 1 / (v' v).
    const double inverse = 1.0 / square;
    for (unsigned int i = 0; i < _rows; ++i) {
        double* const row = _Row(i);
        for (unsigned int j = 0; j < _columns; ++j)
            row[j] = v[i] * -2.0 * v[j] * inverse;
        row[i] += 1.0;
    }
    return true;
}

namespace
{

// x = A old, and the norm: the magnitudes of all partial sums, not of the rows alone. Callers
// compare with vectors that were scaled like that.
double StepWithPartialSums(const double* a, std::size_t n, const double* old, double* x)
{
    double norm = 0.0;
    for (std::size_t i = 0; i < n; ++i, a += n) {
        x[i] = 0.0;
        for (std::size_t j = 0; j < n; ++j) {
            x[i] += a[j] * old[j];
            norm += std::abs(x[i]);
        }
    }
    return norm;
}

// The same with the L1 norm: each row counts once, when it is complete.
double StepWithRowSums(const double* a, std::size_t n, const double* old, double* x)
{
    double norm = 0.0;
    for (std::size_t i = 0; i < n; ++i, a += n) {
        x[i] = 0.0;
        for (std::size_t j = 0; j < n; ++j)
            x[i] += a[j] * old[j];
        norm += std::abs(x[i]);
    }
    return norm;
}

// Iterates x from its start value until the norm settles.
template <class Step>
void Iterate(const double* a, std::vector<double>& x, Step step)
{
    std::vector<double> old = x;
    double oldNorm = 1.0;
    for (int i = 0; i < kStepLimit; ++i) {
        const double norm = step(a, x.size(), old.data(), x.data());
        for (double& value : x)
            value /= norm;
        if (std::abs(norm / oldNorm - 1.0) < kSettled)
            return;
        // From a norm of 0 or beyond the range on all that follows is NaN, for ever.
        if (!(norm > 0.0 && norm <= std::numeric_limits<double>::max()))
            break;
        old = x;
        oldNorm = norm;
    }
    std::fill(x.begin(), x.end(), std::numeric_limits<double>::quiet_NaN());
}

} // namespace

void MGeneralMatrix::GetDominantEigenVector(std::vector<double>& x) const
{
    assert(_rows == _columns);
    x.assign(_columns, 1.0);
    Iterate(_storage.Values(), x, StepWithPartialSums);
}

void MGeneralMatrix::GetLeastEigenVector(std::vector<double>& x) const
{
    assert(_rows == _columns);
    x.assign(_columns, 0.0);
    if (!x.empty())
        x.front() = 1.0;
    Iterate(_storage.Values(), x, StepWithRowSums);
}
