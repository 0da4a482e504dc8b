#include "curve/basis.h"
#include "curve/basis_work.h"

#include <norvek/curve/nurbs.h>

using Norvek::Math::Core::BasisWork;
using Norvek::Math::Core::EvaluateBasis;
using Norvek::Math::Core::FindKnotSpan;
using Norvek::Math::Core::kNurbsZero;

// Notation as for curves, with a letter for each derivative: a[kUV] is A_uv with its weight w_uv,
// s[kUV] is S_uv. The rule for products, differentiated in both directions:
//
//     A_uv = w_uv S + w_u S_v + w_v S_u + w S_uv
//
// Surfaces are evaluated with the general basis at any order: one point of a bicubic patch takes 16
// control points, beside which the two bases do not count.

namespace
{

// The order of the records is that of the result.
enum Record
{
    kValue,
    kU,
    kV,
    kUU,
    kUV,
    kVV
};

constexpr int kNumRecords[] = {1, 3, 6};

// Orders first: what the arrays have to hold follows from them.
int Check(int derivatives, const NURBSSurf* surface, const Nurbs::Point* result)
{
    if (surface == nullptr)
        return Nurbs::kControlPointsErrorU;
    if (surface->orderU < 1)
        return Nurbs::kOrderErrorU;
    if (surface->orderV < 1)
        return Nurbs::kOrderErrorV;
    if (surface->numControlPointsU < surface->orderU || surface->knotsU == nullptr ||
        surface->controlPoints == nullptr || result == nullptr)
        return Nurbs::kControlPointsErrorU;
    if (surface->numControlPointsV < surface->orderV || surface->knotsV == nullptr)
        return Nurbs::kControlPointsErrorV;
    return derivatives < 0 || derivatives > 2 ? Nurbs::kDerivativesError : Nurbs::kNoError;
}

// The basis of one direction at one parameter, with its derivatives up to the wanted one.
class Direction
{
public:
    Direction(int order, std::int32_t count, const double* knots)
        : _order(order),
          _count(count),
          _knots(knots),
          _work(static_cast<std::size_t>(order))
    {}

    [[nodiscard]] bool IsReady() const
    {
        return _work.IsReady();
    }

    // Returns the first of the control points that matter.
    std::ptrdiff_t Evaluate(double t, int derivatives)
    {
        const std::int32_t span = FindKnotSpan(_order, _count, _knots, t);
        EvaluateBasis(t, _order, _knots + span, _work.Array(0),
                      derivatives > 0 ? _work.Array(1) : nullptr,
                      derivatives > 1 ? _work.Array(2) : nullptr);
        return span - _order;
    }

    [[nodiscard]] double Value(std::size_t derivative, std::ptrdiff_t index)
    {
        return _work.Array(derivative)[index];
    }

private:
    int _order;
    std::int32_t _count;
    const double* _knots;
    BasisWork _work;
};

void Add(Point4D& sum, double factor, const Point4D& point)
{
    for (int c = 0; c < 4; ++c)
        sum.coordinates[c] += factor * point.coordinates[c];
}

// The sums over the control points that matter, v within u: a row of the grid lies side by side,
// and its sums serve every derivative in u.
void Combine(int derivatives, const NURBSSurf& surface, Direction& u, Direction& v,
             Point2D parameters, Point4D (&a)[6])
{
    const std::ptrdiff_t firstU = u.Evaluate(parameters.u, derivatives);
    const std::ptrdiff_t firstV = v.Evaluate(parameters.v, derivatives);
    for (std::ptrdiff_t i = 0; i < surface.orderU; ++i) {
        const Point4D* const row =
            surface.controlPoints + (firstU + i) * surface.numControlPointsV + firstV;
        Point4D sums[3]{};
        for (std::ptrdiff_t j = 0; j < surface.orderV; ++j) {
            for (std::size_t d = 0; d <= static_cast<std::size_t>(derivatives); ++d)
                Add(sums[d], v.Value(d, j), row[j]);
        }
        Add(a[kValue], u.Value(0, i), sums[0]);
        if (derivatives < 1)
            continue;
        Add(a[kU], u.Value(1, i), sums[0]);
        Add(a[kV], u.Value(0, i), sums[1]);
        if (derivatives < 2)
            continue;
        Add(a[kUU], u.Value(2, i), sums[0]);
        Add(a[kUV], u.Value(1, i), sums[1]);
        Add(a[kVV], u.Value(0, i), sums[2]);
    }
}

} // namespace

int nurbs_surf_eval(int derivatives, NURBSSurf* surface, Point2D parameters, Nurbs::Point* result)
{
    const int status = Check(derivatives, surface, result);
    if (status != Nurbs::kNoError)
        return status;
    Direction u(surface->orderU, surface->numControlPointsU, surface->knotsU);
    Direction v(surface->orderV, surface->numControlPointsV, surface->knotsV);
    if (!u.IsReady() || !v.IsReady())
        return Nurbs::kMemoryError;
    Point4D a[6]{};
    Combine(derivatives, *surface, u, v, parameters, a);
    const double w = a[kValue].w;
    if (std::abs(w) <= kNurbsZero)
        return Nurbs::kVanishingWeightError;
    for (int c = 0; c < 3; ++c) {
        double s[6]{};
        s[kValue] = a[kValue].coordinates[c] / w;
        s[kU] = (a[kU].coordinates[c] - a[kU].w * s[kValue]) / w;
        s[kV] = (a[kV].coordinates[c] - a[kV].w * s[kValue]) / w;
        s[kUU] = (a[kUU].coordinates[c] - 2.0 * a[kU].w * s[kU] - a[kUU].w * s[kValue]) / w;
        s[kUV] =
            (a[kUV].coordinates[c] - a[kU].w * s[kV] - a[kV].w * s[kU] - a[kUV].w * s[kValue]) / w;
        s[kVV] = (a[kVV].coordinates[c] - 2.0 * a[kV].w * s[kV] - a[kVV].w * s[kValue]) / w;
        for (int record = 0; record < kNumRecords[derivatives]; ++record)
            result[record].coordinates[c] = s[record];
    }
    return Nurbs::kNoError;
}
