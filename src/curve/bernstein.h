#pragma once

#include "curve/basis.h"
#include "linalg/lane_pair.h"

#include <norvek/curve/nurbs.h>

namespace Norvek::Math::Core
{

/// The largest order whose binomial coefficients, and products of two of them, a double can hold.
constexpr int kMostBernsteinOrder = 500;

/// Whether a curve can be taken apart: finite knots that do not descend, an order in range.
inline bool IsTakenApart(const NURBSCurv& curve)
{
    double sum = 0.0;
    bool isAscending = true;
    for (int i = 0; i < curve.order + curve.numControlPoints; ++i) {
        // 0 times NaN or infinity is NaN.
        sum += 0.0 * curve.knots[i];
        isAscending = isAscending && (i == 0 || curve.knots[i - 1] <= curve.knots[i]);
    }
    return isAscending && sum == 0.0 && curve.order <= kMostBernsteinOrder;
}

/// The parameters of span `span` (that before knot `span`) within the range; the first and the last
/// span go on outside. Empty where the end is not behind the start, as it is for spans that are too
/// short to have a basis.
struct SpanInterval
{
    double from;
    double to;

    SpanInterval(const NURBSCurv& curve, int span, double rangeFrom, double rangeTo)
        : from(rangeFrom),
          to(rangeTo)
    {
        if (!(curve.knots[span] - curve.knots[span - 1] > kNurbsZero)) {
            to = from;
            return;
        }
        if (span > curve.order)
            from = std::max(from, curve.knots[span - 1]);
        if (span < curve.numControlPoints)
            to = std::min(to, curve.knots[span]);
    }
};

/// into = (1 - share) a + share b, all four coordinates.
inline void Blend(const Point4D& a, const Point4D& b, double share, Point4D& into)
{
    const LanePair rest = BothLanes(1.0 - share);
    const LanePair part = BothLanes(share);
    for (int half = 0; half < 4; half += 2)
        StorePair(into.coordinates + half,
                  rest * LoadPair(a.coordinates + half) + part * LoadPair(b.coordinates + half));
}

/// The Bernstein control points, `order` many, of a span's polynomial over [from, to], by its polar
/// form: point j takes `to` for j of the arguments and `from` for the others. The array has room
/// for 2 order - 1. L. Ramshaw, Blossoms are polar forms (1989).
inline void ExtractPiece(const NURBSCurv& curve, int span, const SpanInterval& interval,
                         Point4D* piece)
{
    const int degree = curve.order - 1;
    const double* const knots = curve.knots + span - 1;
    const Point4D* const points = curve.controlPoints + span - curve.order;
    for (int j = 0; j <= degree; ++j) {
        Point4D* const column = piece + j;
        // In the rest of the array, which later points overwrite.
        for (int k = 0; k <= degree; ++k)
            column[k] = points[k];
        for (int r = 1; r <= degree; ++r) {
            const double argument = r <= j ? interval.to : interval.from;
            for (int k = degree; k >= r; --k) {
                const double low = knots[k - degree];
                const double share = (argument - low) / (knots[k - r + 1] - low);
                Blend(column[k - 1], column[k], share, column[k]);
            }
        }
        column[0] = column[degree];
    }
}

/// Splits a piece in the middle, by de Casteljau's construction: `piece` becomes the left half.
inline void Halve(int order, Point4D* piece, Point4D* right)
{
    for (int r = order; r > 0; --r) {
        right[r - 1] = piece[order - 1];
        for (int k = order - 1; k > order - r; --k)
            Blend(piece[k - 1], piece[k], 0.5, piece[k]);
    }
}

} // namespace Norvek::Math::Core
