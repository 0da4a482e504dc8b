#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <concepts>
#include <cstdint>

/// Blends that carry a value from one end of an interval to the other.
namespace DiminishingFunctions
{

/// The course of a blend.
enum DiminishingType : std::int32_t
{
    AtEnd = 0,  ///< The value at the end, everywhere.
    Linear = 1, ///< Straight.
    Cosine = 2  ///< Half a wave of a cosine: level at both ends.
};

/// The value at `x` of a blend from `atStart` at `start` to `atEnd` at `end`. `T` is `double` or
/// `MMPoint3d<float>`, which is blended coordinate by coordinate.
///
/// `atStart` up to start + 1.49e-8 (the square root of the machine epsilon), `atEnd` from
/// end - 1.49e-8 on. **Below 1.49e-8 it is `atEnd` as well**, wherever `start` lies: a blend over
/// negative abscissae jumps. That test is absolute on purpose; shift an interval so that it starts
/// at 0 or above.
///
/// The weights are single precision, each rounded on its own, so that they add up to 1 to 1e-7
/// only. A type that is none of the three gives `atStart`. A NaN `x` gives NaN.
template <class T>
    requires std::same_as<T, double> || std::same_as<T, MMPoint3d<float>>
[[nodiscard]] T DoDiminishing(double x, double start, double end, const T& atStart, const T& atEnd,
                              DiminishingType type);

/// @cond
extern template NORVEK_MATH_API double DoDiminishing<double>(double, double, double, const double&,
                                                             const double&, DiminishingType);
extern template NORVEK_MATH_API MMPoint3d<float>
DoDiminishing<MMPoint3d<float>>(double, double, double, const MMPoint3d<float>&,
                                const MMPoint3d<float>&, DiminishingType);
/// @endcond

} // namespace DiminishingFunctions
