#include "curve/basis.h"
#include "curve/basis_work.h"
#include "linalg/lane_pair.h"

#include <norvek/curve/nurbs.h>

#include <type_traits>

using Norvek::Math::Core::BasisWork;
using Norvek::Math::Core::BothLanes;
using Norvek::Math::Core::EvaluateBasis;
using Norvek::Math::Core::FindKnotSpan;
using Norvek::Math::Core::kNurbsZero;
using Norvek::Math::Core::LanePair;
using Norvek::Math::Core::LoadPair;
using Norvek::Math::Core::StorePair;

namespace
{

// A homogeneous sum, two coordinates at once.
struct Homogeneous
{
    LanePair xy;
    LanePair zw;

    void Add(double factor, const Point4D& point)
    {
        xy += BothLanes(factor) * LoadPair(point.coordinates);
        zw += BothLanes(factor) * LoadPair(point.coordinates + 2);
    }
};

// A curve that has been checked.
struct Curve
{
    std::int32_t count;
    const double* knots;
    const Point4D* controlPoints;
};

template <class Order>
Homogeneous Combine(Order order, const double* basis, const Point4D* points)
{
    Homogeneous sum{};
    for (std::ptrdiff_t r = 0; r < order; ++r)
        sum.Add(basis[r], points[r]);
    return sum;
}

// Divides by the weight and writes: a reciprocal would round twice.
Homogeneous Deliver(const Homogeneous& numerator, LanePair weight, Nurbs::Point& result)
{
    const Homogeneous quotient{numerator.xy / weight, numerator.zw / weight};
    StorePair(result.coordinates, quotient.xy);
    result.z = quotient.zw[0];
    return quotient;
}

template <int kDerivatives, class Order>
int Evaluate(Order order, const Curve& curve, double t, double* const (&basis)[3],
             Nurbs::Point* result)
{
    const std::int32_t span = FindKnotSpan(order, curve.count, curve.knots, t);
    EvaluateBasis(t, order, curve.knots + span, basis[0], kDerivatives > 0 ? basis[1] : nullptr,
                  kDerivatives > 1 ? basis[2] : nullptr);
    const Point4D* const points = curve.controlPoints + (span - order);
    const Homogeneous a = Combine(order, basis[0], points);
    if (std::abs(a.zw[1]) <= kNurbsZero)
        return Nurbs::kVanishingWeightError;
    const LanePair w = BothLanes(a.zw[1]);
    const Homogeneous c = Deliver(a, w, result[0]);
    if constexpr (kDerivatives > 0) {
        const Homogeneous a1 = Combine(order, basis[1], points);
        const LanePair w1 = BothLanes(a1.zw[1]);
        const Homogeneous c1 = Deliver({a1.xy - w1 * c.xy, a1.zw - w1 * c.zw}, w, result[1]);
        if constexpr (kDerivatives > 1) {
            const Homogeneous a2 = Combine(order, basis[2], points);
            const LanePair w2 = BothLanes(a2.zw[1]);
            const LanePair twice = BothLanes(2.0) * w1;
            Deliver({a2.xy - twice * c1.xy - w2 * c.xy, a2.zw - twice * c1.zw - w2 * c.zw}, w,
                    result[2]);
        }
    }
    return Nurbs::kNoError;
}

template <int kDerivatives, std::size_t kOrder>
int EvaluateFixed(const Curve& curve, double t, Nurbs::Point* result)
{
    double values[kOrder];
    double first[kOrder];
    double second[kOrder];
    return Evaluate<kDerivatives>(std::integral_constant<int, int{kOrder}>{}, curve, t,
                                  {values, first, second}, result);
}

template <int kDerivatives>
int EvaluateAny(int order, const Curve& curve, double t, Nurbs::Point* result)
{
    switch (order) {
    case 3:
        return EvaluateFixed<kDerivatives, 3>(curve, t, result);
    case 4:
        return EvaluateFixed<kDerivatives, 4>(curve, t, result);
    default:
        break;
    }
    BasisWork work(static_cast<std::size_t>(order));
    if (!work.IsReady())
        return Nurbs::kMemoryError;
    return Evaluate<kDerivatives>(order, curve, t, {work.Array(0), work.Array(1), work.Array(2)},
                                  result);
}

} // namespace

int nurbs_curv_eval(int derivatives, const NURBSCurv& curve, double t, Nurbs::Point* result)
{
    return nurbs_curv_eval(derivatives, curve.order, curve.numControlPoints, curve.knots,
                           curve.controlPoints, t, result);
}

int nurbs_curv_eval(int derivatives, int order, std::int32_t numControlPoints, double* knots,
                    Point4D* controlPoints, double t, Nurbs::Point* result)
{
    if (order < 1)
        return Nurbs::kOrderErrorU;
    if (numControlPoints < order || knots == nullptr || controlPoints == nullptr ||
        result == nullptr)
        return Nurbs::kControlPointsErrorU;
    const Curve curve{numControlPoints, knots, controlPoints};
    switch (derivatives) {
    case 0:
        return EvaluateAny<0>(order, curve, t, result);
    case 1:
        return EvaluateAny<1>(order, curve, t, result);
    case 2:
        return EvaluateAny<2>(order, curve, t, result);
    default:
        return Nurbs::kDerivativesError;
    }
}

int bc_eval_b_code_sub(double t, int order, double* knots, std::int32_t span, double* N, double* N1,
                       double* N2)
{
    if (order < 1)
        return Nurbs::kOrderErrorU;
    if (knots == nullptr || N == nullptr || span < order)
        return Nurbs::kControlPointsErrorU;
    EvaluateBasis(t, order, knots + span, N, N1, N2);
    return Nurbs::kNoError;
}
