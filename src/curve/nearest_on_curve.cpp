#include "curve/nearest_on_curve.h"

#include "curve/bernstein.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

// Notation: A and w the homogeneous curve seen from the point, in units of its extent, so that
// |A / w|^2 is what is to be made least; B its least value so far. Over the Bernstein basis of
// degree 2 (k - 1) the coefficients of |A|^2 are sums of scalar products of control points. A
// polynomial lies within the range of its coefficients, and is convex where they are.

namespace Norvek::Math::Core
{

namespace
{

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// No piece of a proper curve is halved as often.
constexpr int kMostHalvings = 50;

// How many pieces a span may give. Proper curves stay far below; where rounding spoils the
// coefficients, of weights many powers of ten apart, it is the time that is kept. Such a span takes
// nothing from the others.
constexpr int kMostPieces = 1000;

double Dot3(const Point4D& a, const Point4D& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// Half the squared distance from the point: its derivatives at a parameter.
struct Slope
{
    double first;
    double second;

    // `p` are the point and two derivatives, seen from the point.
    explicit Slope(const Nurbs::Point (&p)[3])
        : first(p[0].x * p[1].x + p[0].y * p[1].y + p[0].z * p[1].z),
          second(p[1].x * p[1].x + p[1].y * p[1].y + p[1].z * p[1].z + p[0].x * p[2].x +
                 p[0].y * p[2].y + p[0].z * p[2].z)
    {}
};

struct Piece
{
    double from;
    double to;
    int depth;
};

class Search
{
public:
    Search(const NURBSCurv& curve, double from, double to)
        : _curve(curve),
          _order(curve.order),
          _from(from),
          _to(to),
          _rounding(4 * curve.order * kEpsilon)
    {}

    // False for values that are not finite.
    bool Place(const MMPoint3d<double>& point);

    void Run();

    [[nodiscard]] double Parameter() const
    {
        return _parameter;
    }

    [[nodiscard]] bool HasFound() const
    {
        return _best < std::numeric_limits<double>::infinity();
    }

private:
    void _PrepareBinomials();
    void _Offer(double t);
    void _OfferIn(const Piece& piece, double t);
    void _OfferFirstGuess();
    [[nodiscard]] bool _IsNear(const Point4D* points) const;
    void _SearchSpan(int span, const SpanInterval& interval);
    bool _SearchPiece(const Piece& piece, const Point4D* points);
    double _Coefficients(const Point4D* points);
    double _Minimum(double low, double high, double t);
    void _Polish();

    NURBSCurv _curve;
    int _order;
    double _from;
    double _to;
    std::vector<Point4D> _relative;
    std::vector<Point4D> _pieces;
    std::vector<Point4D> _scaled;
    std::vector<double> _coefficients;
    std::vector<double> _binomials;
    std::vector<double> _inverses;
    bool _isRational = false;
    double _best = std::numeric_limits<double>::infinity();
    // What a piece has to come below, B less the slack.
    double _bound = std::numeric_limits<double>::infinity();
    // Relative errors of coefficients.
    double _rounding;
    // Distances are known to some epsilons of the curve's extent: pieces that could improve the
    // best one by less are left out, or a curve of one distance would be halved down to its points.
    double _slack = 0.0;
    double _parameter = 0.0;
};

bool Search::Place(const MMPoint3d<double>& point)
{
    const auto count = static_cast<std::size_t>(_curve.numControlPoints);
    _relative.resize(count);
    double largest = 0.0;
    double weight = 0.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const Point4D& p = _curve.controlPoints[i];
        const Point4D a{{p.x - p.w * point.x, p.y - p.w * point.y, p.z - p.w * point.z, p.w}};
        sum += 0.0 * (a.x + a.y + a.z) + 0.0 * a.w;
        largest = std::max({largest, std::abs(a.x), std::abs(a.y), std::abs(a.z)});
        weight = std::max(weight, std::abs(a.w));
        _relative[i] = a;
    }
    if (sum != 0.0 || weight == 0.0)
        return false;
    _slack = (16 * kEpsilon + _rounding) / weight;
    // A power of two changes no digit.
    const int extent = largest == 0.0 ? 0 : -std::ilogb(largest);
    const double factor = std::ldexp(1.0, std::min(extent, 1000));
    for (Point4D& a : _relative)
        a = {{a.x * factor, a.y * factor, a.z * factor, a.w}};
    _curve.controlPoints = _relative.data();
    return true;
}

// Row k - 1 of Pascal's triangle, and the inverses of row 2 (k - 1).
void Search::_PrepareBinomials()
{
    const auto row = [](int n) {
        std::vector<double> values(static_cast<std::size_t>(n) + 1, 1.0);
        for (std::size_t m = 1; m < values.size(); ++m)
            values[m] = values[m - 1] * (n + 1.0 - static_cast<double>(m)) / static_cast<double>(m);
        return values;
    };
    _binomials = row(_order - 1);
    _inverses = row(2 * _order - 2);
    for (double& value : _inverses)
        value = 1.0 / value;
}

void Search::_Offer(double t)
{
    Nurbs::Point p;
    if (nurbs_curv_eval(0, _curve, t, &p) != Nurbs::kNoError)
        return;
    const double square = p.x * p.x + p.y * p.y + p.z * p.z;
    if (!(square < _best))
        return;
    _best = square;
    _parameter = t;
    const double length = std::max(std::sqrt(square) - _slack, 0.0);
    _bound = length * length;
}

// A parameter of a piece. At a knot that is as multiple as the order the curve jumps, and the end
// of a piece belongs to what comes behind.
void Search::_OfferIn(const Piece& piece, double t)
{
    _Offer(t);
    if (t == piece.to)
        _Offer(std::nextafter(t, _from));
}

// The parameter where the nearest control point has most of its weight, and down from there: a good
// bound at once lets most spans be left out.
void Search::_OfferFirstGuess()
{
    const auto nearest = std::min_element(
        _relative.begin(), _relative.end(),
        [](const Point4D& a, const Point4D& b) { return Dot3(a, a) < Dot3(b, b); });
    const double* const knots = _curve.knots + (nearest - _relative.begin());
    double sum = 0.0;
    for (int j = 1; j < _order; ++j)
        sum += knots[j] / (_order - 1);
    double t = std::clamp(_order > 1 ? sum : knots[0], _from, _to);
    for (int step = 0; step < 4; ++step) {
        _Offer(t);
        Nurbs::Point p[3];
        if (nurbs_curv_eval(2, _curve, t, p) != Nurbs::kNoError)
            return;
        const Slope slope(p);
        if (!(slope.second > 0.0))
            return;
        t = std::clamp(t - slope.first / slope.second, _from, _to);
    }
    _Offer(t);
}

// Whether the box around the control points comes below the bound.
bool Search::_IsNear(const Point4D* points) const
{
    double square = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        double low = points[0].coordinates[axis];
        double high = low;
        for (int r = 1; r < _order; ++r) {
            low = std::min(low, points[r].coordinates[axis]);
            high = std::max(high, points[r].coordinates[axis]);
        }
        const double gap = std::max({low, -high, 0.0});
        square += gap * gap;
    }
    return square < _bound;
}

// The coefficients of |A|^2, or of |A|^2 - B w^2 with weights that differ; returns the smallest,
// less what rounding may have added to it: close to the curve that is more than B.
double Search::_Coefficients(const Point4D* points)
{
    const int degree = _order - 1;
    for (int i = 0; i <= degree; ++i) {
        const double factor = _binomials[static_cast<std::size_t>(i)];
        const Point4D& p = points[i];
        _scaled[static_cast<std::size_t>(i)] = {
            {factor * p.x, factor * p.y, factor * p.z, factor * p.w}};
    }
    double least = std::numeric_limits<double>::infinity();
    double largest = 0.0;
    for (int m = 0; m <= 2 * degree; ++m) {
        double square = 0.0;
        double weight = 0.0;
        // Both products of two different points at once.
        for (int i = std::max(0, m - degree); 2 * i <= m; ++i) {
            const Point4D& a = _scaled[static_cast<std::size_t>(i)];
            const Point4D& b = _scaled[static_cast<std::size_t>(m - i)];
            const double factor = 2 * i == m ? 1.0 : 2.0;
            square += factor * Dot3(a, b);
            weight += factor * (a.w * b.w);
        }
        const double inverse = _inverses[static_cast<std::size_t>(m)];
        largest = std::max(largest, std::abs(square * inverse));
        const double coefficient = (_isRational ? square - _bound * weight : square) * inverse;
        _coefficients[static_cast<std::size_t>(m)] = coefficient;
        least = std::min(least, coefficient);
    }
    return least - _rounding * largest;
}

// The root of the derivative between low, where it is negative, and high, where it is positive.
double Search::_Minimum(double low, double high, double t)
{
    double last = std::numeric_limits<double>::infinity();
    for (int step = 0; step < 60; ++step) {
        Nurbs::Point p[3];
        if (nurbs_curv_eval(2, _curve, t, p) != Nurbs::kNoError)
            break;
        const Slope slope(p);
        if (slope.first == 0.0)
            break;
        (slope.first < 0.0 ? low : high) = t;
        const double newton = t - slope.first / slope.second;
        const double next = newton > low && newton < high ? newton : low + (high - low) / 2.0;
        const double moved = std::abs(next - t);
        t = next;
        // Settled, or down at the noise, where steps do not shrink any more.
        const bool isNoise = moved > 0.75 * last && moved <= 1e-12 * std::abs(t);
        if (moved <= kEpsilon * std::abs(t) || isNoise)
            break;
        last = moved;
    }
    return t;
}

// True when the piece has to be halved.
bool Search::_SearchPiece(const Piece& piece, const Point4D* points)
{
    const double least = _Coefficients(points);
    if (_isRational) {
        if (!(least < 0.0))
            return false;
        _Offer(piece.from + (piece.to - piece.from) / 2.0);
        return true;
    }
    if (!(least < _bound))
        return false;
    const std::vector<double>& c = _coefficients;
    const std::size_t last = c.size() - 1;
    bool isConvex = true;
    for (std::size_t m = 2; m <= last; ++m)
        isConvex = isConvex && c[m] - c[m - 1] >= c[m - 1] - c[m - 2];
    if (!isConvex) {
        _Offer(piece.from + (piece.to - piece.from) / 2.0);
        return true;
    }
    const double start = last == 0 ? 0.0 : c[1] - c[0];
    const double end = last == 0 ? 0.0 : c[last] - c[last - 1];
    if (start >= 0.0)
        _Offer(piece.from);
    else
        _OfferIn(piece, end <= 0.0 ? piece.to
                                   : _Minimum(piece.from, piece.to,
                                              piece.from + (piece.to - piece.from) *
                                                               (-start / (end - start))));
    return false;
}

void Search::_SearchSpan(int span, const SpanInterval& interval)
{
    const Point4D* const points = _curve.controlPoints + span - _order;
    _isRational = false;
    for (int r = 0; r < _order; ++r)
        _isRational = _isRational || points[r].w != 1.0;
    const bool isWithin =
        interval.from >= _curve.knots[span - 1] && interval.to <= _curve.knots[span];
    if (!_isRational && isWithin && !_IsNear(points))
        return;
    std::vector<Piece> stack{{interval.from, interval.to, 0}};
    const auto order = static_cast<std::size_t>(_order);
    ExtractPiece(_curve, span, interval, _pieces.data());
    // Piece i of the stack has its points in place i.
    for (int count = 0; !stack.empty() && count < kMostPieces; ++count) {
        const Piece piece = stack.back();
        Point4D* const own = _pieces.data() + (stack.size() - 1) * order;
        stack.pop_back();
        if (!_SearchPiece(piece, own) || piece.depth == kMostHalvings)
            continue;
        const double middle = piece.from + (piece.to - piece.from) / 2.0;
        Halve(_order, own, own + order);
        stack.push_back({piece.from, middle, piece.depth + 1});
        stack.push_back({middle, piece.to, piece.depth + 1});
    }
}

// Distances tell parameters apart to half their digits only; Newton's method finds the others.
// Steps that do not lead to a smaller slope at the same distance lead away from a corner.
void Search::_Polish()
{
    double slopeBefore = std::numeric_limits<double>::infinity();
    double t = _parameter;
    for (int step = 0; step < 4; ++step) {
        Nurbs::Point p[3];
        if (nurbs_curv_eval(2, _curve, t, p) != Nurbs::kNoError)
            return;
        const Slope slope(p);
        const double square = p[0].x * p[0].x + p[0].y * p[0].y + p[0].z * p[0].z;
        if (!(std::abs(slope.first) < slopeBefore && square <= _best * (1.0 + 8.0 * kEpsilon)))
            return;
        _parameter = t;
        slopeBefore = std::abs(slope.first);
        if (!(slope.second > 0.0))
            return;
        t = std::clamp(t - slope.first / slope.second, _from, _to);
    }
}

void Search::Run()
{
    const auto order = static_cast<std::size_t>(_order);
    _PrepareBinomials();
    _pieces.resize((kMostHalvings + 3) * order);
    _scaled.resize(order);
    _coefficients.resize(2 * order - 1);
    _Offer(_from);
    _Offer(_to);
    _OfferFirstGuess();
    for (int span = _order; span <= _curve.numControlPoints; ++span) {
        const SpanInterval interval(_curve, span, _from, _to);
        if (interval.from < interval.to)
            _SearchSpan(span, interval);
    }
    if (HasFound())
        _Polish();
}

} // namespace

bool FindNearestOnCurve(const NURBSCurv& curve, double from, double to,
                        const MMPoint3d<double>& point, double& t)
{
    if (!IsTakenApart(curve))
        return false;
    Search search(curve, from, to);
    if (!search.Place(point))
        return false;
    search.Run();
    if (!search.HasFound())
        return false;
    t = search.Parameter();
    return true;
}

} // namespace Norvek::Math::Core
