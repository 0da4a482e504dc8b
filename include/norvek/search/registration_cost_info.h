#pragma once

#include <norvek/foundation/export.h>

#include <cstdint>

/// How well two point sets fit on each other: the cost of one pairwise registration.
///
/// The count of points that found no partner decides, the residual only breaks ties: of two pairs
/// the one with fewer outliers is preferred, however large its residual. Counts of different totals
/// are compared as they are.
///
/// Laws: `a > b` is `b < a`; a finite record is less than the infinite one. With costs that are
/// numbers `<` is a strict order and exactly one of `a < b`, `a == b`, `a > b` holds.
/// Not laws: equal records need not have equal totals; with a NaN cost and equal outliers none of
/// the three holds, a record that holds NaN does not equal itself.
class NORVEK_MATH_API MRegistrationCostInfo
{
public:
    /// The count of outliers of the infinite cost: all bits set.
    static constexpr std::uint32_t kInfiniteOutliers = 0xFFFFFFFFU;

    /// The residual of the infinite cost: the largest double.
    static constexpr double kInfiniteCost = 1.7976931348623157e308;

    /// The infinite cost: (0xFFFFFFFF, 1, the largest double).
    MRegistrationCostInfo() = default;

    /// Copies the three members.
    MRegistrationCostInfo(const MRegistrationCostInfo&) = default;

    /// Copies the three members.
    MRegistrationCostInfo& operator=(const MRegistrationCostInfo&) = default;

    ~MRegistrationCostInfo() = default;

    /// Becomes the infinite cost: the pair was not registered.
    void SetInfiniteCost();

    /// Becomes (0, 1, 0.0), than which nothing is less.
    void SetNoCost();

    /// Stores the three values as passed; nothing is checked. The references may be members of
    /// this record.
    void SetInfo(const unsigned int& outlierCount, const unsigned int& totalCount,
                 double residualCost);

    /// The same from the count of points that did match: outliers = total - inliers, which wraps
    /// modulo 2^32 when there are more inliers than points. The references may be members of this
    /// record.
    void SetInfoInliers(const unsigned int& inlierCount, const unsigned int& totalCount,
                        double residualCost);

    /// True exactly when the outliers are 0xFFFFFFFF and the cost is the largest double; either
    /// alone is not enough.
    [[nodiscard]] bool GetInfiniteCost() const;

    /// (total - outliers) / total, computed in double: the fraction of points that matched, from 0
    /// to 1 and not in per cent. A total of 0 gives what the division gives (NaN, or minus
    /// infinity), the infinite cost -4294967294.
    [[nodiscard]] double GetOverlapPercentage() const;

    /// Equal outliers and exactly equal cost. The total is not compared; NaN equals nothing.
    bool operator==(const MRegistrationCostInfo& other) const;

    /// Fewer outliers, or as many and the smaller cost.
    bool operator<(const MRegistrationCostInfo& other) const;

    /// More outliers, or as many and the larger cost.
    bool operator>(const MRegistrationCostInfo& other) const;

    /// The number of points that did not match.
    std::uint32_t outliers = kInfiniteOutliers;

    /// The number of points that took part.
    std::uint32_t total = 1;

    /// The residual of the pair, in the caller's measure.
    double cost = kInfiniteCost;
};
