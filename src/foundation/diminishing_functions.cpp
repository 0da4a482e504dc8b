#include "foundation/round_to_float.h"

#include <norvek/foundation/constants.h>
#include <norvek/foundation/diminishing_functions.h>

#include <cmath>

using namespace Norvek::Math::Core;

namespace
{

// Pi of single precision.
constexpr float kSinglePi = 3.1415927F;

template <class T>
T Weighted(double weight, const T& value)
{
    if constexpr (std::same_as<T, double>)
        return weight * value;
    else
        return static_cast<float>(weight) * value;
}

template <class T>
T HalfWave(double cosine, const T& atStart, const T& atEnd)
{
    const T half = Weighted(-cosine, atEnd - atStart) + atEnd + atStart;
    if constexpr (std::same_as<T, double>)
        return half / 2.0;
    else
        return half / 2.0F;
}

} // namespace

template <class T>
    requires std::same_as<T, double> || std::same_as<T, MMPoint3d<float>>
        T DiminishingFunctions::DoDiminishing(double x, double start, double end, const T& atStart,
                                              const T& atEnd, DiminishingType type)
    {
        if (type == AtEnd)
            return atEnd;
        if (type != Linear && type != Cosine)
            return atStart;
        if (start + kSqrtMachineEpsilon >= x)
            return atStart;
        // The second test is absolute, not relative to the start, and is meant: callers rely on it.
        if (x >= end - kSqrtMachineEpsilon || x < kSqrtMachineEpsilon)
            return atEnd;
        if (type == Linear) {
            const double atStartShare = RoundToFloat((end - x) / (end - start));
            const double atEndShare = RoundToFloat((x - start) / (end - start));
            return Weighted(atStartShare, atStart) + Weighted(atEndShare, atEnd);
        }
        const double angle = RoundToFloat((x - start) * kSinglePi / (end - start));
        return HalfWave(RoundToFloat(std::cos(angle)), atStart, atEnd);
    }

template double DiminishingFunctions::DoDiminishing<double>(double, double, double, const double&,
                                                            const double&, DiminishingType);
template MMPoint3d<float> DiminishingFunctions::DoDiminishing<MMPoint3d<float>>(
    double, double, double, const MMPoint3d<float>&, const MMPoint3d<float>&, DiminishingType);
