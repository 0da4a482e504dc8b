#include "curve/basis.h"
#include "curve/basis_work.h"
#include "curve/fixed_basis.h"
#include "linalg/lane_pair.h"

#include <norvek/curve/nurbs.h>

using Norvek::Math::Core::BasisWork;
using Norvek::Math::Core::BothLanes;
using Norvek::Math::Core::EvaluateBasis;
using Norvek::Math::Core::FindKnotSpan;
using Norvek::Math::Core::FixedBasis;
using Norvek::Math::Core::IsSpanPlain;
using Norvek::Math::Core::kNurbsZero;
using Norvek::Math::Core::LanePair;
using Norvek::Math::Core::LoadPair;
using Norvek::Math::Core::StorePair;

// Notation: P the homogeneous control points of a span, (A, w) their sum over the basis N, A', w'
// and A'', w'' those over its derivatives, C = A / w the curve. L. Piegl and W. Tiller, The NURBS
// Book, chapter 4.
//
// Two coordinates share a register; the lane of w runs along in the quotients and is not used
// there. A curve whose weights are 1 could do without the division. But its w is a sum that
// rounding takes off 1 now and then, and to look first would cost as much as it spares.

namespace
{

// A homogeneous sum, two coordinates at once.
struct Homogeneous
{
    LanePair xy;
    LanePair zw;
};

// The basis of an order that is known when a call is made.
template <int kDerivatives>
class AnyBasis
{
public:
    AnyBasis(double t, int order, const double* knots, BasisWork& work)
        : _arrays{work.Array(0), work.Array(1), work.Array(2)}
    {
        EvaluateBasis(t, order, knots, _arrays[0], kDerivatives > 0 ? _arrays[1] : nullptr,
                      kDerivatives > 1 ? _arrays[2] : nullptr);
    }

    template <int kDerivative>
    [[nodiscard]] LanePair At(int r) const
    {
        return BothLanes(_arrays[kDerivative][r]);
    }

private:
    double* _arrays[3];
};

// A derivative of the homogeneous curve.
template <int kDerivative, class Basis>
Homogeneous Combine(int order, const Basis& basis, const Point4D* points)
{
    const LanePair head = basis.template At<kDerivative>(0);
    Homogeneous sum{head * LoadPair(points[0].coordinates),
                    head * LoadPair(points[0].coordinates + 2)};
    for (int r = 1; r < order; ++r) {
        const LanePair factor = basis.template At<kDerivative>(r);
        sum.xy += factor * LoadPair(points[r].coordinates);
        sum.zw += factor * LoadPair(points[r].coordinates + 2);
    }
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

// `points` are those of the span, `order` many.
template <int kDerivatives, class Basis>
int Project(int order, const Basis& basis, const Point4D* points, Nurbs::Point* result)
{
    const Homogeneous a = Combine<0>(order, basis, points);
    if (std::abs(a.zw[1]) <= kNurbsZero)
        return Nurbs::kVanishingWeightError;
    const LanePair w = BothLanes(a.zw[1]);
    const Homogeneous c = Deliver(a, w, result[0]);
    if constexpr (kDerivatives > 0) {
        const Homogeneous a1 = Combine<1>(order, basis, points);
        const LanePair w1 = BothLanes(a1.zw[1]);
        const Homogeneous c1 = Deliver({a1.xy - w1 * c.xy, a1.zw - w1 * c.zw}, w, result[1]);
        if constexpr (kDerivatives > 1) {
            const Homogeneous a2 = Combine<2>(order, basis, points);
            const LanePair w2 = BothLanes(a2.zw[1]);
            const LanePair twice = BothLanes(2.0) * w1;
            Deliver({a2.xy - twice * c1.xy - w2 * c.xy, a2.zw - twice * c1.zw - w2 * c.zw}, w,
                    result[2]);
        }
    }
    return Nurbs::kNoError;
}

template <int kDerivatives, int kOrder>
int EvaluateFixed(double t, const double* knots, const Point4D* points, Nurbs::Point* result)
{
    return Project<kDerivatives>(kOrder, FixedBasis<kOrder, kDerivatives>(t, knots), points,
                                 result);
}

// Kept out of line: its work memory would burden the frame of the usual orders.
template <int kDerivatives>
[[gnu::noinline]] int EvaluateAny(int order, double t, const double* knots, const Point4D* points,
                                  Nurbs::Point* result)
{
    BasisWork work(static_cast<std::size_t>(order));
    if (!work.IsReady())
        return Nurbs::kMemoryError;
    return Project<kDerivatives>(order, AnyBasis<kDerivatives>(t, order, knots, work), points,
                                 result);
}

template <int kDerivatives>
int Evaluate(int order, std::int32_t count, const double* knots, const Point4D* points, double t,
             Nurbs::Point* result)
{
    const std::int32_t span = FindKnotSpan(order, count, knots, t);
    // From here on seen from the span: its knots end before `knots`, its points begin at `points`.
    knots += span;
    points += span - order;
    if (IsSpanPlain(knots)) {
        if (order == 4)
            return EvaluateFixed<kDerivatives, 4>(t, knots, points, result);
        if (order == 3)
            return EvaluateFixed<kDerivatives, 3>(t, knots, points, result);
    }
    return EvaluateAny<kDerivatives>(order, t, knots, points, result);
}

// Both entries come here, not one through the other: a call between exported functions of a shared
// library goes through a table.
int EvaluateChecked(int derivatives, int order, std::int32_t count, const double* knots,
                    const Point4D* points, double t, Nurbs::Point* result)
{
    if (order < 1)
        return Nurbs::kOrderErrorU;
    if (count < order || knots == nullptr || points == nullptr || result == nullptr)
        return Nurbs::kControlPointsErrorU;
    switch (derivatives) {
    case 0:
        return Evaluate<0>(order, count, knots, points, t, result);
    case 1:
        return Evaluate<1>(order, count, knots, points, t, result);
    case 2:
        return Evaluate<2>(order, count, knots, points, t, result);
    default:
        return Nurbs::kDerivativesError;
    }
}

} // namespace

int nurbs_curv_eval(int derivatives, const NURBSCurv& curve, double t, Nurbs::Point* result)
{
    return EvaluateChecked(derivatives, curve.order, curve.numControlPoints, curve.knots,
                           curve.controlPoints, t, result);
}

int nurbs_curv_eval(int derivatives, int order, std::int32_t numControlPoints, double* knots,
                    Point4D* controlPoints, double t, Nurbs::Point* result)
{
    return EvaluateChecked(derivatives, order, numControlPoints, knots, controlPoints, t, result);
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
