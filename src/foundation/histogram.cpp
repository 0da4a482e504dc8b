#include <norvek/foundation/histogram.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numeric>
#include <utility>

namespace
{

// With so many cells a boundary most cells are empty, and the search ends with the look-up.
constexpr std::size_t kCellsPerBoundary = 4;

// Fewer are searched as fast without cells.
constexpr std::size_t kFewestForCells = 3;

} // namespace

MHistogram::MHistogram() : _slots(1)
{}

MHistogram& MHistogram::operator=(MHistogram other) noexcept
{
    _Swap(other);
    return *this;
}

void MHistogram::_Swap(MHistogram& other) noexcept
{
    _boundaries.swap(other._boundaries);
    _slots.swap(other._slots);
    _cellStarts.swap(other._cellStarts);
    std::swap(_cellsPerUnit, other._cellsPerUnit);
    std::swap(_totalWeight, other._totalWeight);
    std::swap(_minValue, other._minValue);
    std::swap(_maxValue, other._maxValue);
}

// Boundaries, slots and cells have to agree: all are made before any is replaced.
void MHistogram::SetIntervals(const std::vector<double>& boundaries)
{
    MHistogram next;
    next._boundaries = boundaries;
    next._slots.resize(boundaries.size() + 1);
    next._MakeCells();
    _Swap(next);
}

void MHistogram::SetIntervals(double lo, double hi, unsigned int count)
{
    const double step = count >= 2 ? (hi - lo) / (count - 1) : 0.0;
    std::vector<double> boundaries(count);
    for (unsigned int i = 0; i < count; ++i)
        boundaries[i] = lo + i * step;
    SetIntervals(boundaries);
}

// Even cells over the boundaries. Which cell a number falls into grows with the number, rounding
// included, so that boundaries in lower cells are below it and those in higher cells are not.
void MHistogram::_MakeCells()
{
    _cellStarts.clear();
    const std::size_t count = _boundaries.size();
    // Boundaries beside one that is not a number may lie outside all cells.
    const auto isOutOfOrder = [](double low, double high) {
        return !(low <= high);
    };
    if (count < kFewestForCells || std::adjacent_find(_boundaries.begin(), _boundaries.end(),
                                                      isOutOfOrder) != _boundaries.end())
        return;
    const auto cells = static_cast<double>(kCellsPerBoundary * count);
    _cellsPerUnit = cells / (_boundaries.back() - _boundaries.front());
    // Not for equal or infinite boundaries, nor for a range that overflows.
    if (!(_cellsPerUnit > 0.0 && _cellsPerUnit <= std::numeric_limits<double>::max()))
        return;
    _cellStarts.assign(kCellsPerBoundary * count + 2, 0);
    for (const double boundary : _boundaries)
        ++_cellStarts[_CellOf(boundary) + 1];
    std::partial_sum(_cellStarts.begin(), _cellStarts.end(), _cellStarts.begin());
}

// The number of boundaries below `value`, where std::lower_bound ends.
std::size_t MHistogram::_CountBelow(double value) const
{
    auto first = _boundaries.begin();
    auto last = _boundaries.end();
    if (!_cellStarts.empty()) {
        if (!(_boundaries.front() < value))
            return 0;
        if (_boundaries.back() < value)
            return _boundaries.size();
        const std::size_t cell = _CellOf(value);
        last = first + _cellStarts[cell + 1];
        first += _cellStarts[cell];
    }
    return static_cast<std::size_t>(std::lower_bound(first, last, value) - _boundaries.begin());
}

void MHistogram::AddValue(double value, double weight)
{
    if (weight <= 0.0)
        return;
    // One above the interval of the value; what lies above every boundary goes to slot 0. Meant.
    const std::size_t below = _CountBelow(value);
    Slot& slot = _slots[below == _boundaries.size() ? 0 : below + 1];
    slot.average = (slot.weight * slot.average + value * weight) / (slot.weight + weight);
    slot.weight += weight;
    _totalWeight += weight;
    if (value < _minValue)
        _minValue = value;
    if (value > _maxValue)
        _maxValue = value;
}

void MHistogram::ClearValues()
{
    _totalWeight = 0.0;
    _minValue = std::numeric_limits<double>::max();
    _maxValue = std::numeric_limits<double>::lowest();
    _slots.assign(_slots.size(), Slot());
}

void MHistogram::GetIntervalBounds(unsigned int i, double& lo, double& hi) const
{
    assert(i < _slots.size());
    const std::size_t count = _boundaries.size();
    lo = i >= 1 && i <= count ? _boundaries[i - 1] : std::numeric_limits<double>::lowest();
    hi = i < count ? _boundaries[i] : std::numeric_limits<double>::max();
}

double MHistogram::GetWeight(unsigned int i) const
{
    assert(i < _slots.size());
    return _slots[i].weight;
}

double MHistogram::GetAverageValue(unsigned int i) const
{
    assert(i < _slots.size());
    return _slots[i].average;
}

double MHistogram::GetDensity(unsigned int i) const
{
    assert(i < _slots.size());
    return _totalWeight <= 0.0 ? 0.0 : _slots[i].weight / _totalWeight;
}

double MHistogram::GetDistribution(unsigned int i) const
{
    assert(i < _slots.size());
    if (_totalWeight <= 0.0)
        return 0.0;
    double sum = 0.0;
    for (unsigned int k = 0; k <= i; ++k)
        sum += _slots[k].weight;
    return sum / _totalWeight;
}

double MHistogram::GetAverageValue() const
{
    if (_totalWeight <= 0.0)
        return 0.0;
    double sum = 0.0;
    for (const Slot& slot : _slots)
        sum += slot.average * slot.weight;
    return sum / _totalWeight;
}

double MHistogram::GetStandartDeviation() const
{
    const double mean = GetAverageValue();
    double sum = 0.0;
    for (const Slot& slot : _slots)
        sum += (slot.average - mean) * (slot.average - mean) * slot.weight;
    return _totalWeight > 0.0 ? std::sqrt(sum / _totalWeight) : std::sqrt(sum);
}
