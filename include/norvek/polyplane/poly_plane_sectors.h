#pragma once

#include <norvek/polyplane/poly_plane.h>
#include <norvek/primitives/line.h>

#include <limits>

/// A poly-plane divided into sectors: each segment owns the wedge between two sub-dividing planes,
/// one through each of its ends, in which points have a position and a displacement.
///
/// **Sub-dividing planes.** Plane i holds point i and the sweep direction and bisects the segments
/// before and after; its normal t + t' (the unit vectors of the two) points the way the polyline
/// runs. Sector i lies before plane i + 1 and behind plane i. The planes meet in a line parallel to
/// the sweep; where it pierces the zero plane lies the **focal point** F of the sector.
///
/// **Displacement.** The derived polyline at displacement s is parallel to the describing one at
/// that signed distance, positive on the side of the normals. Point i moves along its sub-dividing
/// plane to p + s m, m = (n + n') / (1 + n . n'), so that a derived segment has the length
/// L + s b, linear in s; it is 0 where the segment has shrunk to F. The **usable displacements**
/// lie between `GetNegDisplacement` and `GetPosDisplacement`: up to the nearest focal point on
/// either side. Strictly between them derived segments have a positive length, but for empty ones.
///
/// **Position.** The lines from F through the points of a segment (parallel lines, if there is no
/// F) cover the wedge. All points of such a line have the position of its point on the describing
/// polyline.
///
/// Two laws hold, up to rounding:
///
/// 1. For every point X found in a sector that 16 bits can name, `GetPointInPolyPlane` of its
///    position, height, sector and displacement is X, whatever the displacement.
/// 2. For every position, sector of it, and displacement strictly between the bounds, seeking the
///    point of `GetPointInPolyPlane` finds position and displacement again, and says that it is not
///    beyond the focal point, unless another sector lies nearer there: wedges of outlines that fold
///    back on themselves overlap where the fold is narrower than the bounds, and the sector with
///    the smaller displacement takes the point. Convex outlines never do that. At a vertex either
///    of the two sectors may answer, with the same position (0 and the length are one place).
///
/// What looks true and is not: sectors do not fill the space. Inside an outline, farther in than
/// the focal points, a point may lie in no wedge, and is not found.
///
/// **Degenerate outlines answer.** Points that are repeated, at whatever height (feet closer than
/// 16 machine epsilons of coordinates and heights), share one plane; the empty sector between them
/// is never found and bounds nothing. In a straight run planes are parallel: no focal point, no
/// bound. Where the polyline turns straight back (t + t' shorter than 1.5e-8) no plane bisects: the
/// plane of the doubled segment itself divides, the sides of the normals belong to the sectors, the
/// ends of both are cut off squarely, and negative displacements are not usable. NaN coordinates
/// give NaN or nothing found. Without two different points there are no planes.
///
/// Adding a point takes constant time (and as many steps as the first point comes in the beginning,
/// if it is repeated there); seeking and measuring along derived polylines take linear time: the
/// wedges are not ordered, and every displacement has its own lengths.
class NORVEK_MATH_API MPolyPlaneSectors : public MPolyPlane
{
protected:
    /// As for a poly-plane, and one sub-dividing plane a point.
    bool _Sanity() override;

public:
    /// No direction, no points, all displacements usable.
    MPolyPlaneSectors() = default;

    /// Copies everything.
    MPolyPlaneSectors(const MPolyPlaneSectors&) = default;

    /// Copies everything.
    MPolyPlaneSectors& operator=(const MPolyPlaneSectors&) = default;

    ~MPolyPlaneSectors() override;

    /// Appends a describing point and brings the planes and the usable displacements up to date.
    void AddPoint(const MMPoint3d<double>& point) override;

    /// Removes all points and planes; all displacements are usable again.
    void Clear() override;

    /// As many as segments.
    [[nodiscard]] int GetNumSectors() const;

    /// Where sub-dividing planes i and i + 1 and the zero plane meet, by Cramer's rule. Throws
    /// `MPolyPlaneException` when the determinant of the three normals is below one machine
    /// epsilon or NaN: parallel planes, and outlines without planes.
    [[nodiscard]] MMPoint3d<double> GetFocalPoint(unsigned short sector) const;

    /// The sub-dividing plane through point i; indices are taken modulo the number of points. No
    /// plane (zero normal) where there are not two different points.
    [[nodiscard]] MMPlaneEq<double> GetSubDividingPlane(unsigned short index) const;

    /// The sector whose wedge holds the foot of `point`; the planes belong to both sides. Of
    /// several wedges the one wins in which the displacement is smallest, then the lower index.
    ///
    /// `found` tells whether there is one; 0 is returned otherwise. `beyondFocal` tells that the
    /// displacement is not usable: greater than `GetPosDisplacement` or less than
    /// `GetNegDisplacement`, beyond the nearest of all focal points on that side.
    unsigned short SeekSector(const MMPoint3d<double>& point, bool& found, bool& beyondFocal) const;

    /// The position of `point`, an arc length along the describing polyline; 0 when it is not
    /// found. Flags as for `SeekSector`.
    double SeekPositionAlongDescribingPolyline(const MMPoint3d<double>& point, bool& found,
                                               bool& beyondFocal) const;

    /// The same, and the displacement of `point`; 0 when it is not found.
    double SeekPositionAlongDescribingPolyline(const MMPoint3d<double>& point, bool& found,
                                               bool& beyondFocal, double& displacement) const;

    /// The line of all points that have a position, in the zero plane: from the point of the
    /// describing polyline to the one at displacement 1. It passes through the focal point, if
    /// there is one. Both points are equal without segments.
    [[nodiscard]] MMLine
    GetLineThroughFocalAtPositionAlongDescribingPolyline(double position) const;

    /// A point of the plane that lies in a sector at a displacement from its segment.
    ///
    /// `position` (along the describing polyline, clamped to the sector) and `height` (above the
    /// zero plane) say from where; `along` (the way the segment runs) and `up` (along the
    /// direction) are true lengths in the displaced plane from there, so that grids of a true
    /// size can be laid out. With both 0 this is the inverse of seeking. The origin of coordinates
    /// for a sector that does not exist.
    [[nodiscard]] MMPoint3d<double> GetPointInPolyPlane(double position, double height,
                                                        double along, double up,
                                                        unsigned short sector,
                                                        double displacement) const;

    /// Where segment i of the derived polyline starts, in the zero plane; indices modulo the number
    /// of points. Not confined to the usable displacements.
    [[nodiscard]] MMPoint3d<double> GetPointOnDerivedPolyline(unsigned short index,
                                                              double displacement) const;

    /// From the start to the end of segment i of the derived polyline. Beyond the focal point it
    /// runs backwards.
    [[nodiscard]] MMPoint3d<double> GetSegmentVectorOnDerivedPolyline(unsigned short index,
                                                                      double displacement) const;

    /// The length of segment i of the derived polyline, 0 from the focal point on.
    [[nodiscard]] double GetLengthOfDerivedSegment(unsigned short index, double displacement) const;

    /// The sum of these lengths up to and with segment i; of all beyond the last.
    [[nodiscard]] double GetCumulativeLengthToEndOfDerivedSegment(unsigned short index,
                                                                  double displacement) const;

    /// The length of the derived polyline at `displacement` between the lines on which two points
    /// lie (`SeekPositionAlongDescribingPolyline`), the shorter way round. -1 when one of the
    /// points is not found.
    [[nodiscard]] double DistanceBetweenPointsAlongDerivedPolyline(const MMPoint3d<double>& a,
                                                                   const MMPoint3d<double>& b,
                                                                   double displacement) const;

    /// The true distance of `point` from the swept surface, positive on the side of the normals,
    /// negative on the other. The largest double without points and for NaN.
    [[nodiscard]] double DistanceToPolyPlane(const MMPoint3d<double>& point) const;

    /// The bound of the usable displacements on the side of the normals; the largest double when
    /// there is none.
    [[nodiscard]] double GetPosDisplacement() const
    {
        return _posDisplacement;
    }

    /// The bound on the other side; the largest double, negated, when there is none.
    [[nodiscard]] double GetNegDisplacement() const
    {
        return _negDisplacement;
    }

    /// A number that the sectors keep for their callers, 5.0 at first; it has no influence here.
    [[nodiscard]] double GetParameter() const
    {
        return _parameter;
    }

    /// Sets the number that is kept for callers.
    void SetParameter(double parameter)
    {
        _parameter = parameter;
    }

private:
    // How a point moves with the displacement: as the end of the segment before it and as the start
    // of the one after. They differ where the polyline turns straight back.
    struct _Corner
    {
        MMPoint3d<double> before;
        MMPoint3d<double> after;
        bool turnsBack = false;
    };

    // What seeking finds: the sector, the displacement, and the share of the segment passed.
    struct _Place
    {
        std::size_t sector = 0;
        double displacement = 0.0;
        double share = 0.0;
        bool found = false;
    };

    static constexpr double _kUnbounded = std::numeric_limits<double>::max();

    MMPlaneEq<double>& _AccessSubDividingPlane(std::size_t index);
    void _ComputePosNegDisplacements();
    void _SetCorners(std::size_t first, std::size_t last, std::size_t before, std::size_t after);
    void _BoundBy(std::size_t segment, double& positive, double& negative) const;
    bool _HasLength(std::size_t segment) const;
    MMPoint3d<double> _UnitVector(std::size_t segment) const;
    double _DescribingLength(std::size_t segment) const;
    double _DerivedLength(std::size_t segment, double displacement) const;
    double _PositionOnDerived(const _Place& place, double displacement) const;
    MMPoint3d<double> _Move(std::size_t segment, double share) const;
    bool _HoldsSquarely(std::size_t segment, const MMPoint3d<double>& foot) const;
    bool _IsBeyond(const _Place& place) const;
    _Place _Seek(const MMPoint3d<double>& point) const;

    double _parameter = 5.0;
    double _posDisplacement = _kUnbounded;
    double _negDisplacement = -_kUnbounded;
    std::vector<MMPlaneEq<double>> _planes;
    std::vector<_Corner> _corners;
    // The first segment with a length, if any; the first of the points that equal the last one.
    std::size_t _firstSegment = 0;
    std::size_t _runStart = 0;
    bool _hasSegment = false;
    // The bounds by the segments that later points do not change.
    double _settledPositive = _kUnbounded;
    double _settledNegative = -_kUnbounded;
};
