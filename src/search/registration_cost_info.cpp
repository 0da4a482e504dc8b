#include <norvek/search/registration_cost_info.h>

#include <limits>

static_assert(MRegistrationCostInfo::kInfiniteCost == std::numeric_limits<double>::max());

void MRegistrationCostInfo::SetInfiniteCost()
{
    *this = MRegistrationCostInfo();
}

void MRegistrationCostInfo::SetNoCost()
{
    SetInfo(0, 1, 0.0);
}

// The counts may be members of this record: both are read before one is written.
void MRegistrationCostInfo::SetInfo(const unsigned int& outlierCount,
                                    const unsigned int& totalCount, double residualCost)
{
    const std::uint32_t newOutliers = outlierCount;
    const std::uint32_t newTotal = totalCount;
    outliers = newOutliers;
    total = newTotal;
    cost = residualCost;
}

void MRegistrationCostInfo::SetInfoInliers(const unsigned int& inlierCount,
                                           const unsigned int& totalCount, double residualCost)
{
    SetInfo(totalCount - inlierCount, totalCount, residualCost);
}

bool MRegistrationCostInfo::GetInfiniteCost() const
{
    return outliers == kInfiniteOutliers && cost == kInfiniteCost;
}

// In double before the subtraction: the infinite cost has more outliers than points, and the
// difference of the counts would wrap.
double MRegistrationCostInfo::GetOverlapPercentage() const
{
    const double all = total;
    return (all - static_cast<double>(outliers)) / all;
}

bool MRegistrationCostInfo::operator==(const MRegistrationCostInfo& other) const
{
    return outliers == other.outliers && cost == other.cost;
}

bool MRegistrationCostInfo::operator<(const MRegistrationCostInfo& other) const
{
    return outliers < other.outliers || (outliers == other.outliers && cost < other.cost);
}

bool MRegistrationCostInfo::operator>(const MRegistrationCostInfo& other) const
{
    return outliers > other.outliers || (outliers == other.outliers && cost > other.cost);
}
