#pragma once

#include "linalg/lane_pair.h"

#include <norvek/foundation/point3d.h>
#include <norvek/linalg/matrix3x3.h>

#include <cassert>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// @file
/// The rotation that best carries the second points of pairs onto the first ones, and the sums over
/// the pairs that it is found from. `Pairs` is a container of pairs of points or of pointers.
///
/// Notation: n pairs, cA and cB the centroids, a = first - cA and b = second - cB the deviations,
/// M = sum a b' their moments, m = sum (|a| + |b|) / 2n the mean spread. R maximises the trace of
/// R' M: it is the orthonormal factor of M, and P = M R' is symmetric then.
namespace Norvek::Math::Core
{

using PairPoint = MMPoint3d<double>;
using PointerPair = std::pair<PairPoint*, PairPoint*>;
using PointPair = std::pair<PairPoint, PairPoint>;

inline const PairPoint& FirstOf(const PointerPair& pair)
{
    assert(pair.first != nullptr);
    return *pair.first;
}

inline const PairPoint& SecondOf(const PointerPair& pair)
{
    assert(pair.second != nullptr);
    return *pair.second;
}

inline const PairPoint& FirstOf(const PointPair& pair)
{
    return pair.first;
}

inline const PairPoint& SecondOf(const PointPair& pair)
{
    return pair.second;
}

/// Sums run over the pairs from the left. A sum of a million terms has lost some four digits to
/// rounding; each block of this many is therefore summed from zero as well, and what the long sum
/// misses is collected beside it. (Within a block nothing is lost that counts.)
inline constexpr int kBlockSize = 128;

/// Up to so many pairs the moments lose less than the last digits of the rotation, and the second
/// sums are spared.
inline constexpr std::size_t kFewPairs = 4096;

/// The centroids, each sum divided by n, and what is missing in them.
struct Centroids
{
    PairPoint first;
    PairPoint second;
    PairPoint firstLoss;
    PairPoint secondLoss;
};

/// The sums of both points of the pairs: (x, y) of the first, (x, y) of the second, z of both.
struct PairedSum
{
    LanePair lanes[3]{};

    void Add(const PairPoint& first, const PairPoint& second)
    {
        lanes[0] += LoadPair(&first.x);
        lanes[1] += LoadPair(&second.x);
        lanes[2] += LanePair{first.z, second.z};
    }

    [[nodiscard]] PairPoint First() const
    {
        return {lanes[0][0], lanes[0][1], lanes[2][0]};
    }

    [[nodiscard]] PairPoint Second() const
    {
        return {lanes[1][0], lanes[1][1], lanes[2][1]};
    }
};

/// Two passes and no shifted sums in one: the deviations from the centroid keep their digits
/// however far the points lie from the origin.
template <class Pairs>
Centroids FindCentroids(const Pairs& pairs)
{
    PairedSum sum;
    PairedSum loss;
    auto at = pairs.begin();
    const auto end = pairs.end();
    while (at != end) {
        const PairedSum before = sum;
        PairedSum block;
        for (int k = 0; k < kBlockSize && at != end; ++k, ++at) {
            sum.Add(FirstOf(*at), SecondOf(*at));
            block.Add(FirstOf(*at), SecondOf(*at));
        }
        for (int i = 0; i < 3; ++i)
            loss.lanes[i] += block.lanes[i] - (sum.lanes[i] - before.lanes[i]);
    }
    const auto n = static_cast<double>(pairs.size());
    return {sum.First() / n, sum.Second() / n, loss.First() / n, loss.Second() / n};
}

/// M in lanes: two elements each for the products that one multiplication of pairs gives.
struct MomentLanes
{
    LanePair diagonal{};
    LanePair crossed{};
    LanePair column{};
    LanePair row{};
    double corner = 0.0;

    void Add(const MomentLanes& other)
    {
        diagonal += other.diagonal;
        crossed += other.crossed;
        column += other.column;
        row += other.row;
        corner += other.corner;
    }

    void Subtract(const MomentLanes& other)
    {
        diagonal -= other.diagonal;
        crossed -= other.crossed;
        column -= other.column;
        row -= other.row;
        corner -= other.corner;
    }

    [[nodiscard]] MMatrix3x3 Matrix() const
    {
        MMatrix3x3 result;
        result.SetRow(0, {diagonal[0], crossed[0], column[0]});
        result.SetRow(1, {crossed[1], diagonal[1], column[1]});
        result.SetRow(2, {row[0], row[1], corner});
        return result;
    }
};

/// M, what is missing in it, and the sum of |a| + |b|.
struct Moments
{
    MMatrix3x3 sum;
    MMatrix3x3 loss;
    double distances = 0.0;
};

inline LanePair RootOfLanes(LanePair squares)
{
#if defined(__SSE2__)
    return _mm_sqrt_pd(squares);
#else
    return LanePair{std::sqrt(squares[0]), std::sqrt(squares[1])};
#endif
}

/// The sums of one pass over the pairs. The nine products of a pair take five multiplications of
/// two lanes; each element is still the plain sum from the left.
class MomentSums
{
public:
    explicit MomentSums(const Centroids& centroids)
        : _firstXY(LoadPair(&centroids.first.x)),
          _secondXY(LoadPair(&centroids.second.x)),
          _z{centroids.first.z, centroids.second.z}
    {}

    /// Returns the products a b' of the pair, which the sums have taken up.
    MomentLanes Add(const PairPoint& first, const PairPoint& second)
    {
        const LanePair a = LoadPair(&first.x) - _firstXY;
        const LanePair b = LoadPair(&second.x) - _secondXY;
        const LanePair z = LanePair{first.z, second.z} - _z;
        const MomentLanes products{a * b, a * LanePair{b[1], b[0]}, a * BothLanes(z[1]),
                                   b * BothLanes(z[0]), z[0] * z[1]};
        sums.Add(products);
        // The two lengths in two lanes: (x^2 + y^2) + z^2 of a beside that of b.
        const LanePair aa = a * a;
        const LanePair bb = b * b;
        const LanePair squares = LanePair{aa[0], bb[0]} + LanePair{aa[1], bb[1]} + z * z;
        const LanePair lengths = RootOfLanes(squares);
        distances += lengths[0] + lengths[1];
        return products;
    }

    MomentLanes sums;
    double distances = 0.0;

private:
    LanePair _firstXY;
    LanePair _secondXY;
    LanePair _z;
};

template <class Pairs>
Moments SumMoments(const Pairs& pairs, const Centroids& centroids)
{
    MomentSums moments(centroids);
    MomentLanes loss;
    auto at = pairs.begin();
    const auto end = pairs.end();
    if (pairs.size() <= kFewPairs) {
        for (; at != end; ++at)
            moments.Add(FirstOf(*at), SecondOf(*at));
    }
    while (at != end) {
        const MomentLanes before = moments.sums;
        MomentLanes block;
        for (int k = 0; k < kBlockSize && at != end; ++k, ++at)
            block.Add(moments.Add(FirstOf(*at), SecondOf(*at)));
        MomentLanes gain = moments.sums;
        gain.Subtract(before);
        block.Subtract(gain);
        loss.Add(block);
    }
    return {moments.sums.Matrix(), loss.Matrix(), moments.distances};
}

/// What a rotation leaves: with q = R b and the residual r = a - q the sums of q x r, q and r.
struct ResidualSums
{
    PairPoint torque;
    PairPoint turned;
    PairPoint residual;
};

/// Residuals of exact pairs are as small as the rounding of the coordinates, and so is the rounding
/// of these sums. The moments have the rounding of squares of the whole length.
template <class Pairs>
ResidualSums SumResiduals(const Pairs& pairs, const Centroids& centroids, const MMatrix3x3& r)
{
    ResidualSums sums;
    for (const auto& pair : pairs) {
        const PairPoint q = r * (SecondOf(pair) - centroids.second);
        const PairPoint residual = FirstOf(pair) - centroids.first - q;
        sums.torque += q.Cross(residual);
        sums.turned += q;
        sums.residual += residual;
    }
    return sums;
}

/// The sums of |a|^2 and |b|^2. Needed for reflections alone, and therefore no part of the pass
/// over the moments.
template <class Pairs>
std::pair<double, double> SumSquares(const Pairs& pairs, const Centroids& centroids)
{
    std::pair<double, double> sums{0.0, 0.0};
    for (const auto& pair : pairs) {
        sums.first += (FirstOf(pair) - centroids.first).LengthSquared();
        sums.second += (SecondOf(pair) - centroids.second).LengthSquared();
    }
    return sums;
}

/// What becomes of pairs that do not determine a rotation.
enum class Undetermined
{
    /// No answer.
    Fails,
    /// Moments that are exactly zero: no turn. Moments of rank one: the smallest rotation that
    /// turns the direction of the second points onto that of the first.
    TurnsLeast
};

/// R for moments of rank one; false when they have no direction.
bool TurnDirections(MMatrix3x3& rotation, const MMatrix3x3& moments);

/// The reflection `r`, the nearest orthonormal matrix, or the best rotation in its place, see
/// `MMapper3DPoints`. `squares` are the sums of |a|^2 and |b|^2.
MMatrix3x3 ChooseHandedness(const MMatrix3x3& r, const MMatrix3x3& moments,
                            const std::pair<double, double>& squares);

/// `r`, turned by what the moments say is left to turn; `r` itself, bit for bit, when that is no
/// more than rounding.
MMatrix3x3 Settle(const MMatrix3x3& r, const MMatrix3x3& moments);

/// The points are spread along a line, so that the moments know the turn about it to few digits.
bool IsElongated(const MMatrix3x3& r, const MMatrix3x3& moments);

/// `r`, turned by what the residuals of `r` say. `unit` divides the torque as it did the moments.
MMatrix3x3 SettleResiduals(const MMatrix3x3& r, const MMatrix3x3& moments, const ResidualSums& sums,
                           double count, double unit);

/// The spread of points whose moments and lengths neither overflow nor lose digits below the normal
/// numbers, with room for the squares of the moments.
inline constexpr double kLeastSpread = 0x1p-200;
inline constexpr double kGreatestSpread = 0x1p200;

/// R from the sums: conditioning, the nearest orthonormal matrix, its handedness, and what is left
/// to turn. The road not taken is a singular value decomposition of the moments, which costs more
/// and knows no more than they do.
template <class Pairs>
bool SolveRotation(MMatrix3x3& rotation, const Pairs& pairs, const Centroids& centroids,
                   const Moments& moments, Undetermined undetermined)
{
    const auto n = static_cast<double>(pairs.size());
    const double spread = moments.distances / (2.0 * n);
    // Before conditioning, which would divide zeros by zero.
    if (undetermined == Undetermined::TurnsLeast && moments.sum == MMatrix3x3()) {
        rotation.SetToZero();
        rotation.SubtractFromDiagonal(-1.0);
        return true;
    }
    const double unit = spread * spread;
    MMatrix3x3 conditioned = moments.sum;
    conditioned /= unit;
    MMatrix3x3 r;
    if (!conditioned.NearestOrthonormal(r))
        return undetermined == Undetermined::TurnsLeast && TurnDirections(rotation, conditioned);
    // The same about the centroids as they should be, with what the sums lost.
    MMatrix3x3 offset;
    offset.PDotQTranspose(centroids.firstLoss, centroids.secondLoss);
    offset *= n;
    MMatrix3x3 exact = moments.sum + (moments.loss - offset);
    exact /= unit;
    if (r.Determinant() < 0.0) {
        const auto [first, second] = SumSquares(pairs, centroids);
        r = ChooseHandedness(r, exact, {first / unit, second / unit});
    }
    r = Settle(r, exact);
    if (IsElongated(r, exact))
        r = SettleResiduals(r, exact, SumResiduals(pairs, centroids, r), n, unit);
    rotation = r;
    return true;
}

/// The largest magnitude of a coordinate of a deviation; NaN when one is.
template <class Pairs>
double LargestDeviation(const Pairs& pairs, const Centroids& centroids)
{
    double largest = 0.0;
    for (const auto& pair : pairs) {
        const PairPoint a = FirstOf(pair) - centroids.first;
        const PairPoint b = SecondOf(pair) - centroids.second;
        for (const double value : {a.x, a.y, a.z, b.x, b.y, b.z}) {
            if (!(std::abs(value) <= largest))
                largest = std::abs(value);
            if (std::isnan(largest))
                return largest;
        }
    }
    return largest;
}

/// R, in any unit of length: pairs whose squares would leave the range of the doubles are copied
/// with all coordinates multiplied by one power of two, which is exact.
///
/// False, `rotation` untouched, when the pairs do not determine it (see `Undetermined`), for
/// coordinates that are not finite and for sums that overflow.
template <class Pairs>
bool FitRotation(MMatrix3x3& rotation, const Pairs& pairs, const Centroids& centroids,
                 Undetermined undetermined)
{
    const Moments moments = SumMoments(pairs, centroids);
    const double spread = moments.distances / (2.0 * static_cast<double>(pairs.size()));
    if (spread > kLeastSpread && spread < kGreatestSpread)
        return SolveRotation(rotation, pairs, centroids, moments, undetermined);
    const double largest = LargestDeviation(pairs, centroids);
    if (!(largest <= std::numeric_limits<double>::max()))
        return false;
    int exponent = 0;
    std::frexp(largest, &exponent);
    const auto scaled = [exponent](const PairPoint& p) {
        return PairPoint(std::ldexp(p.x, -exponent), std::ldexp(p.y, -exponent),
                         std::ldexp(p.z, -exponent));
    };
    std::vector<PointPair> copies;
    copies.reserve(pairs.size());
    for (const auto& pair : pairs)
        copies.emplace_back(scaled(FirstOf(pair)), scaled(SecondOf(pair)));
    const Centroids newCentroids = FindCentroids(copies);
    return SolveRotation(rotation, copies, newCentroids, SumMoments(copies, newCentroids),
                         undetermined);
}

} // namespace Norvek::Math::Core
