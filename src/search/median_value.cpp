#include "search/median_value.h"

#include <algorithm>

namespace Norvek::Math::Core
{

namespace
{

// Up to here each number's rank is counted: n^2 comparisons without a branch.
constexpr std::size_t kCounted = 32;

// The sample: its size, and how far its bracket reaches to either side of the wanted rank. Two
// standard deviations of the rank in the sample; the value lies outside in one case of twenty.
constexpr std::size_t kMostSampled = 256;
constexpr std::size_t kSampleShare = 4;

// At `rank` lies the number with at most `rank` smaller ones, and more that are not greater.
double SelectByCounting(const double* values, std::size_t count, std::size_t rank)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t smaller = 0;
        std::size_t notGreater = 0;
        for (std::size_t k = 0; k < count; ++k) {
            smaller += values[k] < values[i] ? 1 : 0;
            notGreater += values[k] <= values[i] ? 1 : 0;
        }
        if (smaller <= rank && rank < notGreater)
            return values[i];
    }
    return values[0];
}

struct Bracket
{
    double low;
    double high;
};

Bracket BracketRank(const double* values, std::size_t stride, std::size_t count, std::size_t rank)
{
    double sample[kMostSampled];
    const std::size_t size = std::min(kMostSampled, count / kSampleShare);
    const std::size_t step = count / size;
    for (std::size_t i = 0; i < size; ++i)
        sample[i] = values[i * step * stride];
    std::sort(sample, sample + size);
    const std::size_t place = rank * size / count;
    std::size_t reach = 1;
    while (reach * reach < size)
        ++reach;
    return {sample[place - std::min(place, reach)], sample[std::min(place + reach, size - 1)]};
}

} // namespace

double SelectValue(const double* values, std::size_t stride, std::size_t count, std::size_t rank,
                   double* scratch)
{
    std::size_t kept = 0;
    std::size_t below = 0;
    if (count > kCounted) {
        const Bracket bracket = BracketRank(values, stride, count, rank);
        for (std::size_t i = 0; i < count; ++i) {
            const double value = values[i * stride];
            scratch[kept] = value;
            below += value < bracket.low ? 1U : 0U;
            kept += ((value >= bracket.low) & (value <= bracket.high)) ? 1U : 0U;
        }
    }
    if (rank < below || rank >= below + kept) {
        // Few numbers, or a sample that missed.
        for (std::size_t i = 0; i < count; ++i)
            scratch[i] = values[i * stride];
        kept = count;
        below = 0;
    }
    if (kept <= kCounted)
        return SelectByCounting(scratch, kept, rank - below);
    std::nth_element(scratch, scratch + (rank - below), scratch + kept);
    return scratch[rank - below];
}

} // namespace Norvek::Math::Core
