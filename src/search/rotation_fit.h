#pragma once

#include "linalg/lane_pair.h"

#include <norvek/foundation/point3d.h>
#include <norvek/linalg/matrix3x3.h>

#include <cassert>
#include <cmath>
#include <utility>
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

/// Sums run over the pairs from the left, in blocks of so many. Within a block plain sums lose less
/// than the last digits of a rotation; a million terms in one row would lose two digits, and the
/// centroids of points far from the origin three.
inline constexpr int kBlockSize = 4096;

/// The sum over all pairs; `Sum` takes up pairs of points and other sums. `sum` is one without
/// terms.
template <class Sum, class Pairs>
Sum SumInBlocks(const Pairs& pairs, Sum sum)
{
    const Sum empty = sum;
    auto at = pairs.begin();
    const auto end = pairs.end();
    while (at != end) {
        Sum block = empty;
        for (int k = 0; k < kBlockSize && at != end; ++k, ++at)
            block.Add(FirstOf(*at), SecondOf(*at));
        sum.Add(block);
    }
    return sum;
}

/// Each sum divided by n.
struct Centroids
{
    PairPoint first;
    PairPoint second;
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

    void Add(const PairedSum& other)
    {
        for (int i = 0; i < 3; ++i)
            lanes[i] += other.lanes[i];
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
    const PairedSum sum = SumInBlocks(pairs, PairedSum());
    const auto n = static_cast<double>(pairs.size());
    return {sum.First() / n, sum.Second() / n};
}

inline LanePair RootOfLanes(LanePair squares)
{
#if defined(__SSE2__)
    return _mm_sqrt_pd(squares);
#else
    return LanePair{std::sqrt(squares[0]), std::sqrt(squares[1])};
#endif
}

/// M and the sum of |a| + |b|. The nine products of a pair take five multiplications of two lanes;
/// each element is still the plain sum.
class MomentSums
{
public:
    explicit MomentSums(const Centroids& centroids)
        : _firstXY(LoadPair(&centroids.first.x)),
          _secondXY(LoadPair(&centroids.second.x)),
          _z{centroids.first.z, centroids.second.z}
    {}

    void Add(const PairPoint& first, const PairPoint& second)
    {
        const LanePair a = LoadPair(&first.x) - _firstXY;
        const LanePair b = LoadPair(&second.x) - _secondXY;
        const LanePair z = LanePair{first.z, second.z} - _z;
        _diagonal += a * b;
        _crossed += a * LanePair{b[1], b[0]};
        _column += a * BothLanes(z[1]);
        _row += b * BothLanes(z[0]);
        _corner += z[0] * z[1];
        // The two lengths in two lanes: (x^2 + y^2) + z^2 of a beside that of b.
        const LanePair aa = a * a;
        const LanePair bb = b * b;
        const LanePair squares = LanePair{aa[0], bb[0]} + LanePair{aa[1], bb[1]} + z * z;
        const LanePair lengths = RootOfLanes(squares);
        _distances += lengths[0] + lengths[1];
    }

    void Add(const MomentSums& other)
    {
        _diagonal += other._diagonal;
        _crossed += other._crossed;
        _column += other._column;
        _row += other._row;
        _corner += other._corner;
        _distances += other._distances;
    }

    [[nodiscard]] MMatrix3x3 Matrix() const
    {
        MMatrix3x3 result;
        result.SetRow(0, {_diagonal[0], _crossed[0], _column[0]});
        result.SetRow(1, {_crossed[1], _diagonal[1], _column[1]});
        result.SetRow(2, {_row[0], _row[1], _corner});
        return result;
    }

    [[nodiscard]] double Distances() const
    {
        return _distances;
    }

private:
    LanePair _firstXY;
    LanePair _secondXY;
    LanePair _z;
    LanePair _diagonal{};
    LanePair _crossed{};
    LanePair _column{};
    LanePair _row{};
    double _corner = 0.0;
    double _distances = 0.0;
};

/// The torque by what a rotation leaves: with q = R b the sum of q x (a - q). Residuals of exact
/// pairs are as small as the rounding of the coordinates, and so is the rounding of this sum. The
/// moments have the rounding of squares of the whole length.
template <class Pairs>
PairPoint SumTorque(const Pairs& pairs, const Centroids& centroids, const MMatrix3x3& r)
{
    PairPoint torque;
    for (const auto& pair : pairs) {
        const PairPoint q = r * (SecondOf(pair) - centroids.second);
        torque += q.Cross(FirstOf(pair) - centroids.first - q);
    }
    return torque;
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

/// The moments show that `r` is not the best rotation to rounding, or cannot tell: the points are
/// spread along a line, and moments know the turn about it to few digits.
bool NeedsTurning(const MMatrix3x3& r, const MMatrix3x3& moments);

/// The columns made orthonormal, for a matrix that nearly is.
MMatrix3x3 Orthonormalised(const MMatrix3x3& r);

/// The orthonormal `r`, turned to where the torque vanishes. Torque and moments have one unit.
MMatrix3x3 TurnedByTorque(const MMatrix3x3& r, const MMatrix3x3& moments, const PairPoint& torque);

/// No element differs by more than rounding.
bool IsNear(const MMatrix3x3& a, const MMatrix3x3& b);

/// `r`, the nearest orthonormal matrix, turned to the best; `r` itself, bit for bit, when that is
/// no more than rounding.
template <class Pairs>
MMatrix3x3 Settle(const MMatrix3x3& r, const Pairs& pairs, const Centroids& centroids,
                  const MMatrix3x3& moments, double unit)
{
    const MMatrix3x3 straight = Orthonormalised(r);
    const PairPoint torque = SumTorque(pairs, centroids, straight) / unit;
    const MMatrix3x3 settled = TurnedByTorque(straight, moments, torque);
    return IsNear(settled, r) ? r : settled;
}

/// R: conditioning, the nearest orthonormal matrix, its handedness, and what is left to turn. The
/// road not taken is a singular value decomposition of the moments, which costs more and knows no
/// more than they do.
///
/// False, `rotation` untouched, when the pairs do not determine it (see `Undetermined`), for
/// coordinates that are not finite and for sums that overflow.
template <class Pairs>
bool FitRotation(MMatrix3x3& rotation, const Pairs& pairs, const Centroids& centroids,
                 Undetermined undetermined)
{
    const MomentSums sums = SumInBlocks(pairs, MomentSums(centroids));
    MMatrix3x3 moments = sums.Matrix();
    // Before conditioning, which would divide zeros by zero.
    if (undetermined == Undetermined::TurnsLeast && moments == MMatrix3x3()) {
        rotation.SetToZero();
        rotation.SubtractFromDiagonal(-1.0);
        return true;
    }
    const double spread = sums.Distances() / (2.0 * static_cast<double>(pairs.size()));
    const double unit = spread * spread;
    moments /= unit;
    MMatrix3x3 r;
    if (!moments.NearestOrthonormal(r))
        return undetermined == Undetermined::TurnsLeast && TurnDirections(rotation, moments);
    if (r.Determinant() < 0.0) {
        const auto [first, second] = SumSquares(pairs, centroids);
        r = ChooseHandedness(r, moments, {first / unit, second / unit});
    }
    rotation = NeedsTurning(r, moments) ? Settle(r, pairs, centroids, moments, unit) : r;
    return true;
}

} // namespace Norvek::Math::Core
