#include "curve/fit_options.h"

#include <norvek/curve/nurbs.h>

#include <algorithm>
#include <cmath>

namespace Norvek::Math::Core
{

namespace
{

// What a wish that cannot be met becomes: centripetal parameters, cubic pieces.
constexpr int kDefaultPercentage = 50;
constexpr int kDefaultOrder = 4;
// Curves of higher orders are evaluated but not fitted: their systems have no digits left.
constexpr int kLargestOrder = 20;
constexpr int kLargestCount = 2000;

bool IsCountAccepted(const FitOptions& options, std::int32_t numPoints, int workSize)
{
    const int largest =
        std::min(static_cast<int>(std::sqrt(static_cast<double>(workSize))), kLargestCount);
    return options.count >= options.order && options.count <= largest &&
           options.count <= numPoints &&
           // In 64 bits: 2000 times the largest number of points is beyond 32.
           static_cast<std::int64_t>(options.count) * numPoints <= workSize;
}

// The limits of an accepted count, the root of W and 2000, are not applied here: that is meant.
void RepairCount(FitOptions& options, std::int32_t numPoints, int workSize)
{
    // No number asked for: half the points, in cubic pieces whatever the order was.
    if (options.count < 1) {
        options.order = kDefaultOrder;
        options.count = std::max(numPoints / 2, 4);
    }
    options.count = std::min({options.count, numPoints, workSize / numPoints});
    // Down to 1, below what may be asked for: a single control point is a constant curve.
    options.order = std::min(options.order, options.count);
}

} // namespace

bool IsPointCountAccepted(std::int32_t numPoints, int workSize)
{
    return numPoints > 0 && numPoints <= workSize / 10;
}

FitOptions RepairedFitOptions(const FitOptions& wanted, std::int32_t numPoints, int workSize)
{
    FitOptions options = wanted;
    options.warnings = 0;
    if (options.percentage < 0 || options.percentage > 100) {
        options.percentage = kDefaultPercentage;
        options.warnings |= Nurbs::kParametrisationWarning;
    }
    if (options.closeStatus < 0 || options.closeStatus > 2) {
        options.closeStatus = 0;
        options.warnings |= Nurbs::kCloseStatusWarningU;
    }
    if (options.order < 2 || options.order > kLargestOrder) {
        options.order = kDefaultOrder;
        options.warnings |= Nurbs::kOrderWarningU;
    }
    if (!IsCountAccepted(options, numPoints, workSize)) {
        RepairCount(options, numPoints, workSize);
        options.warnings |= Nurbs::kControlPointsWarningU;
    }
    return options;
}

} // namespace Norvek::Math::Core
