#include "foundation/safe_length.h"

#include <norvek/foundation/constants.h>
#include <norvek/polyplane/poly_plane_exception.h>
#include <norvek/polyplane/poly_plane_sectors.h>

#include <algorithm>
#include <cmath>

// Notation: p the points, t and n the unit vector and the normal of a segment, L its length, m how
// far a point moves for each unit of displacement (m . n = 1 for both segments that meet there), s
// the displacement. In a sector a point is
//
//     X = p + f L t + s ((1 - f) m + f m'),   0 <= f <= 1,
//
// with m at the start and m' at the end of the segment. So s = n . (X - p); the derived segment at
// s starts at p + s m and has the length l = L + s b, b = (m' - m) . t; and f = a / l with
// a = (X - p - s m) . t. All lines of constant f meet where l = 0, in the focal point.
//
// The sub-dividing plane through p has a normal N with N . m = 0 and N . t > 0, so that
// N . (X - p) = a N . t: the sides of the planes tell whether 0 <= a and a <= l. The planes decide,
// since neighbours read one number for their common plane and leave no gap between them.

using Norvek::Math::Core::kMachineEpsilon;
using Norvek::Math::Core::kSqrtMachineEpsilon;
using Norvek::Math::Core::SafeDirection;

namespace
{

using Point = MMPoint3d<double>;

// What two feet of one point may differ by, for each unit of coordinates, heights and offset.
constexpr double kProjectionError = 16.0 * kMachineEpsilon;

} // namespace

MPolyPlaneSectors::~MPolyPlaneSectors() = default;

bool MPolyPlaneSectors::_Sanity()
{
    return MPolyPlane::_Sanity() && _planes.size() == _Points().size() &&
           _corners.size() == _Points().size();
}

// The new point changes the plane of the point before it (with all that equal that one), its own,
// and that of point 0 (with all that equal it); everything else is settled.
void MPolyPlaneSectors::AddPoint(const MMPoint3d<double>& point)
{
    MPolyPlane::AddPoint(point);
    const std::vector<Point>& points = _Points();
    const std::size_t last = points.size() - 1;
    _planes.emplace_back();
    _corners.emplace_back();
    if (last == 0)
        return;
    const std::size_t previous = last - 1;
    if (!_HasLength(previous)) {
        _AccessSubDividingPlane(last) = _planes[previous];
        _corners[last] = _corners[previous];
        return;
    }
    if (!_hasSegment)
        _firstSegment = previous;
    _hasSegment = true;
    if (_runStart > _firstSegment) {
        _SetCorners(_runStart, previous, _runStart - 1, previous);
        if (_runStart - 1 > _firstSegment)
            _BoundBy(_runStart - 1, _settledPositive, _settledNegative);
    }
    const bool closes = _HasLength(last);
    _SetCorners(last, last, previous, closes ? last : _firstSegment);
    _SetCorners(0, _firstSegment, closes ? last : previous, _firstSegment);
    _runStart = last;
    _ComputePosNegDisplacements();
}

void MPolyPlaneSectors::Clear()
{
    MPolyPlane::Clear();
    _planes.clear();
    _corners.clear();
    _firstSegment = 0;
    _runStart = 0;
    _hasSegment = false;
    _settledPositive = _kUnbounded;
    _settledNegative = -_kUnbounded;
    _posDisplacement = _kUnbounded;
    _negDisplacement = -_kUnbounded;
}

MMPlaneEq<double>& MPolyPlaneSectors::_AccessSubDividingPlane(std::size_t index)
{
    return _planes[index];
}

// The same point at two heights has feet that differ by rounding, and no direction between them.
// The bound is twice what projecting both can lose. NaN counts as a length.
bool MPolyPlaneSectors::_HasLength(std::size_t segment) const
{
    const std::size_t next = _Next(segment);
    const Point& p = _Points()[segment];
    const Point& q = _Points()[next];
    const double size = p.Length() + q.Length() + std::abs(_Heights()[segment]) +
                        std::abs(_Heights()[next]) + std::abs(_ZeroPlane().D());
    return !((q - p).Length() <= kProjectionError * size);
}

MMPoint3d<double> MPolyPlaneSectors::_UnitVector(std::size_t segment) const
{
    return _HasLength(segment) ? SafeDirection(_Points()[_Next(segment)] - _Points()[segment])
                               : Point();
}

double MPolyPlaneSectors::_DescribingLength(std::size_t segment) const
{
    return (_Points()[_Next(segment)] - _Points()[segment]).Length();
}

double MPolyPlaneSectors::_DerivedLength(std::size_t segment, double displacement) const
{
    const Point spread = _corners[_Next(segment)].before - _corners[segment].after;
    return _DescribingLength(segment) + displacement * spread.Dot(_UnitVector(segment));
}

// Gives the points from `first` to `last`, which coincide, the plane between two segments. All get
// it through the start of the second one: points that coincide but for rounding leave no gap.
void MPolyPlaneSectors::_SetCorners(std::size_t first, std::size_t last, std::size_t before,
                                    std::size_t after)
{
    const Point direction = _ZeroPlane().GetNormal();
    const Point unitBefore = _UnitVector(before);
    const Point unitAfter = _UnitVector(after);
    const Point sum = unitBefore + unitAfter;
    _Corner corner{unitBefore.Cross(direction), unitAfter.Cross(direction)};
    corner.turnsBack = sum.LengthSquared() < kSqrtMachineEpsilon * kSqrtMachineEpsilon;
    Point normal = corner.after;
    if (!corner.turnsBack) {
        normal = sum;
        // 1 + n . n' is half of the squared length of n + n', or of t + t', without cancellation.
        corner.before = (corner.before + corner.after) * (2.0 / sum.LengthSquared());
        corner.after = corner.before;
    }
    const MMPlaneEq<double> plane(_Points()[after], normal);
    for (std::size_t i = first; i <= last; ++i) {
        _AccessSubDividingPlane(i) = plane;
        _corners[i] = corner;
    }
}

// Where L + s b becomes 0: the displacement of the focal point.
void MPolyPlaneSectors::_BoundBy(std::size_t segment, double& positive, double& negative) const
{
    if (!_HasLength(segment))
        return;
    const _Corner& start = _corners[segment];
    const _Corner& end = _corners[_Next(segment)];
    const double shrinking = (start.after - end.before).Dot(_UnitVector(segment));
    const double focal = _DescribingLength(segment) / shrinking;
    if (focal > 0.0)
        positive = std::min(positive, focal);
    else if (focal < 0.0)
        negative = std::max(negative, focal);
    if (start.turnsBack || end.turnsBack)
        negative = std::max(negative, 0.0);
}

// Three segments are not settled yet: the first, whose start moves with the closing one, the
// newest, and the closing one itself.
void MPolyPlaneSectors::_ComputePosNegDisplacements()
{
    const std::size_t last = _Points().size() - 1;
    _posDisplacement = _settledPositive;
    _negDisplacement = _settledNegative;
    for (const std::size_t segment : {_firstSegment, last - 1, last})
        _BoundBy(segment, _posDisplacement, _negDisplacement);
}

int MPolyPlaneSectors::GetNumSectors() const
{
    return MPolyPlane::GetNumSegments();
}

MMPlaneEq<double> MPolyPlaneSectors::GetSubDividingPlane(unsigned short index) const
{
    return _planes.empty() ? MMPlaneEq<double>() : _planes[index % _planes.size()];
}

// Columns of the system a x + b y + c z = d, one row a plane.
MMPoint3d<double> MPolyPlaneSectors::GetFocalPoint(unsigned short sector) const
{
    if (_planes.empty())
        throw MPolyPlaneException();
    const std::size_t start = sector % _planes.size();
    const MMPlaneEq<double>& p = _planes[start];
    const MMPlaneEq<double>& q = _planes[_Next(start)];
    const MMPlaneEq<double>& r = _ZeroPlane();
    const Point a(p.A(), q.A(), r.A());
    const Point b(p.B(), q.B(), r.B());
    const Point c(p.C(), q.C(), r.C());
    const Point d(-p.D(), -q.D(), -r.D());
    const double determinant = a.Dot(b.Cross(c));
    // Asked this way round, so that NaN throws as well.
    if (!(std::abs(determinant) >= kMachineEpsilon))
        throw MPolyPlaneException();
    return {d.Dot(b.Cross(c)) / determinant, a.Dot(d.Cross(c)) / determinant,
            a.Dot(b.Cross(d)) / determinant};
}

// Where the planes do not bisect, the ends of the segment are cut off squarely.
bool MPolyPlaneSectors::_HoldsSquarely(std::size_t segment, const MMPoint3d<double>& foot) const
{
    const Point offset = foot - _Points()[segment];
    const double displacement = _Normals()[segment].Dot(offset);
    const double along =
        (offset - displacement * _corners[segment].after).Dot(_UnitVector(segment));
    return along >= 0.0 && along <= _DerivedLength(segment, displacement);
}

// Every wedge is asked: where an outline folds back several hold the point. The sides of the planes
// rule out nearly all of them; only for the others lengths and displacements are formed.
MPolyPlaneSectors::_Place MPolyPlaneSectors::_Seek(const MMPoint3d<double>& point) const
{
    const std::vector<Point>& points = _Points();
    _Place best;
    if (!_hasSegment)
        return best;
    Point foot;
    _ZeroPlane().Project(foot, point);
    double fromStart = _planes[0].Distance(foot);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::size_t next = _Next(i);
        const double toEnd = _planes[next].Distance(foot);
        const bool inside = fromStart >= 0.0 && toEnd <= 0.0;
        fromStart = toEnd;
        if (!inside || !_HasLength(i))
            continue;
        if ((_corners[i].turnsBack || _corners[next].turnsBack) && !_HoldsSquarely(i, foot))
            continue;
        const double displacement = _Normals()[i].Dot(foot - points[i]);
        if (!best.found || std::abs(displacement) < std::abs(best.displacement))
            best = {i, displacement, 0.0, true};
    }
    if (best.found) {
        const Point start = points[best.sector] + best.displacement * _corners[best.sector].after;
        const double share = (foot - start).Dot(_UnitVector(best.sector)) /
                             _DerivedLength(best.sector, best.displacement);
        // At the focal point itself all positions are as good: 0 / 0 becomes the start.
        best.share = share > 0.0 ? std::min(share, 1.0) : 0.0;
    }
    return best;
}

// A place that was not found has the displacement 0, which is never beyond.
bool MPolyPlaneSectors::_IsBeyond(const _Place& place) const
{
    return place.displacement > _posDisplacement || place.displacement < _negDisplacement;
}

unsigned short MPolyPlaneSectors::SeekSector(const MMPoint3d<double>& point, bool& found,
                                             bool& beyondFocal) const
{
    const _Place place = _Seek(point);
    found = place.found;
    beyondFocal = _IsBeyond(place);
    return _Short(place.sector);
}

double MPolyPlaneSectors::SeekPositionAlongDescribingPolyline(const MMPoint3d<double>& point,
                                                              bool& found, bool& beyondFocal) const
{
    double displacement = 0.0;
    return SeekPositionAlongDescribingPolyline(point, found, beyondFocal, displacement);
}

double MPolyPlaneSectors::SeekPositionAlongDescribingPolyline(const MMPoint3d<double>& point,
                                                              bool& found, bool& beyondFocal,
                                                              double& displacement) const
{
    const _Place place = _Seek(point);
    found = place.found;
    beyondFocal = _IsBeyond(place);
    displacement = place.displacement;
    if (!place.found)
        return 0.0;
    return _StartOfSegment(place.sector) + place.share * _DescribingLength(place.sector);
}

// How far the point at a share of a segment moves for each unit of displacement.
MMPoint3d<double> MPolyPlaneSectors::_Move(std::size_t segment, double share) const
{
    return (1.0 - share) * _corners[segment].after + share * _corners[_Next(segment)].before;
}

MMLine
MPolyPlaneSectors::GetLineThroughFocalAtPositionAlongDescribingPolyline(double position) const
{
    if (_Points().empty())
        return {};
    double rest = 0.0;
    const std::size_t i = _SegmentAt(position, rest);
    const double length = _DescribingLength(i);
    const double share = length > 0.0 ? rest / length : 0.0;
    const Point start = _Points()[i] + share * (_Points()[_Next(i)] - _Points()[i]);
    return {start, start + _Move(i, share)};
}

// A segment without length makes the share NaN or infinite, and the comparisons 0 or 1.
MMPoint3d<double> MPolyPlaneSectors::GetPointInPolyPlane(double position, double height,
                                                         double along, double up,
                                                         unsigned short sector,
                                                         double displacement) const
{
    if (sector >= _Points().size())
        return {};
    const Point segment = _Points()[_Next(sector)] - _Points()[sector];
    const double length = segment.Length();
    const double passed = (position - _StartOfSegment(sector)) / length;
    const double share = passed > 0.0 ? std::min(passed, 1.0) : 0.0;
    const Point foot = _Points()[sector] + share * segment + displacement * _Move(sector, share);
    return foot + along * _UnitVector(sector) + (height + up) * _ZeroPlane().GetNormal();
}

MMPoint3d<double> MPolyPlaneSectors::GetPointOnDerivedPolyline(unsigned short index,
                                                               double displacement) const
{
    if (_Points().empty())
        return {};
    const std::size_t i = index % _Points().size();
    return _Points()[i] + displacement * _corners[i].after;
}

MMPoint3d<double> MPolyPlaneSectors::GetSegmentVectorOnDerivedPolyline(unsigned short index,
                                                                       double displacement) const
{
    if (index >= _Points().size())
        return {};
    return _DerivedLength(index, displacement) * _UnitVector(index);
}

double MPolyPlaneSectors::GetLengthOfDerivedSegment(unsigned short index, double displacement) const
{
    return index < _Points().size() ? std::max(0.0, _DerivedLength(index, displacement)) : 0.0;
}

double MPolyPlaneSectors::GetCumulativeLengthToEndOfDerivedSegment(unsigned short index,
                                                                   double displacement) const
{
    double sum = 0.0;
    const std::size_t end = std::min(std::size_t{index} + 1, _Points().size());
    for (std::size_t i = 0; i < end; ++i)
        sum += std::max(0.0, _DerivedLength(i, displacement));
    return sum;
}

double MPolyPlaneSectors::_PositionOnDerived(const _Place& place, double displacement) const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < place.sector; ++i)
        sum += std::max(0.0, _DerivedLength(i, displacement));
    return sum + place.share * std::max(0.0, _DerivedLength(place.sector, displacement));
}

// The polyline is closed: what is far one way is near the other.
double MPolyPlaneSectors::DistanceBetweenPointsAlongDerivedPolyline(const MMPoint3d<double>& a,
                                                                    const MMPoint3d<double>& b,
                                                                    double displacement) const
{
    const _Place first = _Seek(a);
    const _Place second = _Seek(b);
    if (!first.found || !second.found)
        return -1.0;
    _Place end;
    end.sector = _Points().size() - 1;
    end.share = 1.0;
    const double direct = std::abs(_PositionOnDerived(first, displacement) -
                                   _PositionOnDerived(second, displacement));
    return std::min(direct, _PositionOnDerived(end, displacement) - direct);
}

// Beside a point the sides of its two segments can disagree; the bisector decides there.
double MPolyPlaneSectors::DistanceToPolyPlane(const MMPoint3d<double>& point) const
{
    const std::vector<Point>& points = _Points();
    Point foot;
    _ZeroPlane().Project(foot, point);
    double nearest = _kUnbounded;
    bool isRight = true;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point along = points[_Next(i)] - points[i];
        const Point offset = foot - points[i];
        const double passed = offset.Dot(along);
        const double whole = along.LengthSquared();
        const bool isBeyond = passed >= whole;
        const bool isBeside = passed > 0.0 && !isBeyond;
        const Point across = isBeside ? offset - (passed / whole) * along
                                      : foot - points[isBeyond && whole > 0.0 ? _Next(i) : i];
        const double distance = across.LengthSquared();
        if (!(distance < nearest))
            continue;
        const _Corner& corner = _corners[isBeyond ? _Next(i) : i];
        nearest = distance;
        isRight = across.Dot(isBeside ? _Normals()[i] : corner.before + corner.after) >= 0.0;
    }
    if (nearest == _kUnbounded)
        return nearest;
    return isRight ? std::sqrt(nearest) : -std::sqrt(nearest);
}
