#pragma once

#include <cstdint>

namespace Norvek::Math::Core
{

/// What a fit works with: the caller's wishes after repair.
struct FitOptions
{
    /// The exponent of the parametrisation in percent, 0 to 100.
    int percentage = 0;
    /// 0 open, 1 periodic, 2 unclamped knots with an open fit.
    int closeStatus = 0;
    /// 1 to 20, at most `count`.
    int order = 0;
    /// The number of control points, 1 to the number of points.
    int count = 0;
    /// The warnings that the repairs raise.
    int warnings = 0;

    /// The control points that the fit solves for; the others repeat the first ones.
    [[nodiscard]] int FreeCount() const
    {
        return closeStatus == 1 ? count - order + 1 : count;
    }
};

/// Whether `numPoints` points are some and within the work size W.
[[nodiscard]] bool IsPointCountAccepted(std::int32_t numPoints, int workSize);

/// The options after the repairs of `spd_create_curve`, for an accepted number of points. Storage
/// for the curve follows `order` and `count` of the result.
[[nodiscard]] FitOptions RepairedFitOptions(const FitOptions& wanted, std::int32_t numPoints,
                                            int workSize);

} // namespace Norvek::Math::Core
