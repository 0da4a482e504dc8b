#pragma once

#include "curve/basis.h"
#include "linalg/lane_pair.h"

namespace Norvek::Math::Core
{

/// Whether the span before `knots` is so long that no quotient over it or over more knots, which do
/// not descend, is guarded.
inline bool IsSpanPlain(const double* knots)
{
    return knots[0] - knots[-1] > kNurbsZero;
}

/// What `EvaluateBasis` gives on a plain span, bit for bit, for an order that is known to the
/// compiler: two values at a time, and all of them in registers.
template <int kOrder, int kDerivatives>
class FixedBasis
{
public:
    /// `knots` is the first knot behind the span. One knot behind those that matter is read.
    FixedBasis(double t, const double* knots)
    {
        _values.pairs[0] = LanePair{1.0, 0.0};
        for (int j = 1; j < kOrder; ++j)
            _Raise(t, j, knots);
        if constexpr (kDerivatives > 0)
            _first.TakeDifferences(kOrder - 1);
        if constexpr (kDerivatives > 1) {
            _second.TakeDifferences(kOrder - 2);
            for (int p = 0; 2 * p < kOrder - 1; ++p)
                _second.pairs[p] = _Quotients(_second.pairs[p], kOrder - 1, 2 * p, knots);
            _second.TakeDifferences(kOrder - 1);
        }
    }

    /// The values, or a derivative, at control point r of the span, in both lanes.
    template <int kDerivative>
    [[nodiscard]] LanePair At(int r) const
    {
        if constexpr (kDerivative == 0)
            return BothLanes(_values.pairs[r / 2][r % 2]);
        else if constexpr (kDerivative == 1)
            return BothLanes(_first.pairs[r / 2][r % 2]);
        else
            return BothLanes(_second.pairs[r / 2][r % 2]);
    }

private:
    static constexpr std::size_t kPairs = (kOrder + 1) / 2;

    struct _Row
    {
        LanePair pairs[kPairs]{};

        void TakeDifferences(int j)
        {
            const LanePair factor = BothLanes(j);
            double before = 0.0;
            for (int p = 0; 2 * p <= j; ++p) {
                const LanePair q = pairs[p];
                pairs[p] = factor * (LanePair{before, q[0]} - q);
                before = q[1];
            }
        }
    };

    // The quotients of values r and r + 1 of order j; 0 for r + 1 = j, where there is no value.
    static LanePair _Quotients(LanePair values, int j, int r, const double* knots)
    {
        const LanePair quotients = values / (LoadPair(knots + r) - LoadPair(knots + (r - j)));
        return r + 1 == j ? LanePair{quotients[0], 0.0} : quotients;
    }

    // From order j to order j + 1.
    void _Raise(double t, int j, const double* knots)
    {
        double saved = 0.0;
        int p = 0;
        for (; 2 * p < j; ++p) {
            const LanePair quotients = _Quotients(_values.pairs[p], j, 2 * p, knots);
            if (kDerivatives > 0 && j == kOrder - 1)
                _first.pairs[p] = quotients;
            if (kDerivatives > 1 && j == kOrder - 2)
                _second.pairs[p] = quotients;
            // A value of the next order takes one share from above and one from the value before
            // it.
            const LanePair up = (LoadPair(knots + 2 * p) - t) * quotients;
            const LanePair down = (t - LoadPair(knots + (2 * p - j))) * quotients;
            const LanePair next = LanePair{saved, down[0]} + up;
            _values.pairs[p] = 2 * p + 1 == j ? LanePair{next[0], down[0]} : next;
            saved = down[1];
        }
        if (j % 2 == 0)
            _values.pairs[p] = LanePair{saved, 0.0};
    }

    _Row _values;
    _Row _first;
    _Row _second;
};

} // namespace Norvek::Math::Core
