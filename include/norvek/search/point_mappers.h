#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>
#include <norvek/transform/ortho_transform.h>

#include <list>
#include <utility>

/// @file
/// Closed-form best fits between paired points: rigid motions and relative sizes.
///
/// A pair is (first, second): the first point is the target and stays, the second is moved. Fits
/// minimise the sum of the squared distances |first - (R second + t)|^2.
///
/// Pairs of pointers are borrowed. No pointer may be null (asserted); several may point to one
/// point. The classes hold no data, their functions no state: any number of threads may use them on
/// points that nobody changes.

/// What the mappers share.
class NORVEK_MATH_API MBasePointMapper
{
public:
    /// Pairs of (target, point to be moved).
    using PairList = std::list<std::pair<MMPoint3d<double>*, MMPoint3d<double>*>>;

    /// Nothing to construct.
    MBasePointMapper() = default;
    /// Nothing to copy.
    MBasePointMapper(const MBasePointMapper&) = default;
    /// Nothing to copy.
    MBasePointMapper& operator=(const MBasePointMapper&) = default;
    virtual ~MBasePointMapper();

    /// Keeps the rotation R of `motion` and sets its translation to first - R second, so that the
    /// motion carries the second point of the pair onto the first (to rounding, relative to the
    /// larger of both).
    static void FindTranslation(MMOrthoTransform& motion,
                                const std::pair<MMPoint3d<double>, MMPoint3d<double>>& pair);
};

/// The rigid motion that carries the second points of pairs onto the first ones.
///
/// With a and b the deviations of the points from their centroids, R is the orthonormal matrix
/// nearest to the sum of a b' (Schoenemann's orthogonal Procrustes problem, solved by the polar
/// decomposition), and t carries the second centroid onto the first.
///
/// Law: R is the best rotation, to rounding, at any distance from the origin and for points 1e-150
/// to 1e150 apart. It is what `NearestOrthonormal` gives, bit for bit, where that is right within
/// 4e-15; where its closed forms keep half of their digits, R is turned by what the residuals say.
/// Sums run from the left, in blocks of 4,096 pairs. Motions come back from exact pairs within
/// 1e-14 radians if the coordinates hold that much: what counts is their last digit against the
/// width of the set, across its longest axis.
///
/// Flat sets, three points among them, give a proper rotation. A reflection (determinant -1) comes
/// back only for pairs that are related by one: sets that are not flat, where it leaves less than
/// half of the squared error that the best rotation leaves (both with the best scale). So a flat
/// scan does not turn inside out through its noise, and a mirrored copy is told from the thing
/// itself. `MMOrthoTransform::Verify` does not tell; the determinant does.
///
/// Not laws: swapping first and second gives the inverse to rounding only; adding a pair that fits
/// exactly may change R, unless all do.
class NORVEK_MATH_API MMapper3DPoints : public MBasePointMapper
{
public:
    /// Nothing to construct.
    MMapper3DPoints() = default;
    /// Nothing to copy.
    MMapper3DPoints(const MMapper3DPoints&) = default;
    /// Nothing to copy.
    MMapper3DPoints& operator=(const MMapper3DPoints&) = default;
    ~MMapper3DPoints() override;

    /// Writes the best motion: first = R second + t, as nearly as may be. Linear in the number of
    /// pairs: two passes over them, and one or two more where R is turned (few points, and points
    /// along a line).
    ///
    /// False, `result` untouched, for fewer than three pairs, for pairs that do not determine a
    /// rotation (either set coincident or collinear, or unrelated sets whose moments have rank
    /// below two), for NaN and infinite coordinates and when sums or squares leave the doubles.
    /// Sets narrower than 2.2e-4 of their length count as collinear: moments are squares, and
    /// `NearestOrthonormal` judges theirs against 4.7e-8.
    static bool MapPoints(MMOrthoTransform& result, const PairList& pairs);
};

/// The relative size of two paired sets.
class NORVEK_MATH_API MMapper3DPointsScale : public MBasePointMapper
{
public:
    /// Nothing to construct.
    MMapper3DPointsScale() = default;
    /// Nothing to copy.
    MMapper3DPointsScale(const MMapper3DPointsScale&) = default;
    /// Nothing to copy.
    MMapper3DPointsScale& operator=(const MMapper3DPointsScale&) = default;
    ~MMapper3DPointsScale() override;

    /// Writes the sum of the distances of the first points from their centroid over that of the
    /// second points (plain distances, no squares), and the centroid of the second points. Needs
    /// no rotation to be known: multiplying the second points by `scale` about `centre` makes the
    /// sets equally large.
    ///
    /// False, both outputs untouched, for fewer than three pairs. True otherwise, whatever the
    /// division gives: coincident second points give an infinite scale, or NaN when the first
    /// coincide too; so may coordinates that are not finite or whose squares leave the doubles.
    static bool MapPoints(double& scale, MMPoint3d<double>& centre, const PairList& pairs);
};

/// The rigid motion between paired segments.
class NORVEK_MATH_API MMapper3dSegments : public MBasePointMapper
{
public:
    /// A segment by its end points.
    using Segment = std::pair<MMPoint3d<double>, MMPoint3d<double>>;

    /// Pairs of (target, segment to be moved).
    using SegmentList = std::list<std::pair<Segment, Segment>>;

    /// Nothing to construct.
    MMapper3dSegments() = default;
    /// Nothing to copy.
    MMapper3dSegments(const MMapper3dSegments&) = default;
    /// Nothing to copy.
    MMapper3dSegments& operator=(const MMapper3dSegments&) = default;
    ~MMapper3dSegments() override;

    /// Writes the best motion over the end points, first with first and second with second, as
    /// `MMapper3DPoints` finds it. Directions count: a segment and its reverse are different. Long
    /// segments weigh more than short ones. The motion carries the second centroid onto the first.
    ///
    /// One pair of segments, or ends along one direction, leave the turn about it open: the result
    /// is the smallest rotation that turns the second direction onto the first, for opposite ones a
    /// half turn about a perpendicular that depends on the second direction alone. When the moments
    /// are exactly zero (segments of no length) there is no rotation, only the translation.
    ///
    /// False, `result` untouched, for an empty list, for NaN and infinite coordinates and when sums
    /// or squares leave the doubles.
    static bool MapSegments(MMOrthoTransform& result, const SegmentList& pairs);
};
