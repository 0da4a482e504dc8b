#include <norvek/foundation/constants.h>
#include <norvek/polyplane/poly_plane.h>

#include <algorithm>
#include <cmath>

// Notation: d the sweep direction, p the feet of the points on the zero plane, h their heights
// above it, e = p' - p the vector along the segment from a foot to the next one, round to the
// first.
//
// Only `GetPlane` asks virtual operations, for point and normal, so that derived classes can change
// them. Everything else reads the fields of this very object: a prism, which is a poly-plane of its
// own around another one, relies on its own empty outline being seen.

using Norvek::Math::Core::kMachineEpsilon;

namespace
{

using Point = MMPoint3d<double>;

// Divides by the plain length where that is above 0; anything else stays as it is, NaN too.
void MakeUnit(Point& vector)
{
    const double length = vector.Length();
    if (length > 0.0)
        vector /= length;
}

} // namespace

MPolyPlane::~MPolyPlane() = default;

// The tolerance is absolute and as strict as the machine epsilon: meant, although the planes of
// most outlines miss their own end points by more. A zero normal is on every point.
bool MPolyPlane::_Sanity()
{
    const std::size_t count = _points.size();
    if (_normals.size() != count || _heights.size() != count)
        return false;
    if (count < 2)
        return true;
    for (std::size_t i = 0; i < count; ++i) {
        const MMPlaneEq<double> plane(_points[i], _normals[i]);
        if (!plane.On(_points[_Next(i)], kMachineEpsilon))
            return false;
    }
    return true;
}

// The points that are there keep their feet and normals: meant.
void MPolyPlane::SetZeroPlane(const MMPoint3d<double>& direction, const MMPoint3d<double>& origin)
{
    const Point newOrigin = origin;
    _direction = direction;
    MakeUnit(_direction);
    _origin = newOrigin;
    _zeroPlane.Set(_origin, _direction);
}

// Not by way of the virtual operation: the fields of this object are meant.
void MPolyPlane::SetDirection(const MMPoint3d<double>& direction)
{
    MPolyPlane::SetZeroPlane(direction, _origin);
}

void MPolyPlane::SetBottomHeight(double height)
{
    _bottomHeight = height;
}

MMPoint3d<double> MPolyPlane::GetDirection()
{
    return _direction;
}

MMPoint3d<double> MPolyPlane::GetOrigin()
{
    return _origin;
}

// The segment to the new point took the place of the closing one: two normals change, and all other
// arc lengths stand. The closing segment's length is left to those who ask.
void MPolyPlane::AddPoint(const MMPoint3d<double>& point)
{
    Point foot;
    _zeroPlane.Project(foot, point);
    _heights.push_back((point - foot).Dot(_direction));
    _points.push_back(foot);
    _normals.emplace_back();

    const std::size_t last = _points.size() - 1;
    _starts.push_back(last == 0 ? 0.0
                                : _starts.back() + (_points[last] - _points[last - 1]).Length());
    // In this order of arguments a NaN coordinate leaves the limit as it is.
    _box.minX = std::min(_box.minX, foot.x);
    _box.maxX = std::max(_box.maxX, foot.x);
    _box.minY = std::min(_box.minY, foot.y);
    _box.maxY = std::max(_box.maxY, foot.y);
    _box.minZ = std::min(_box.minZ, foot.z);
    _box.maxZ = std::max(_box.maxZ, foot.z);

    _ComputeNormal(last);
    if (last > 0)
        _ComputeNormal(last - 1);
}

// e x d. The index is as wide as the count: more points may come than the interface can name.
void MPolyPlane::_ComputeNormal(std::size_t index)
{
    Point normal = (_points[_Next(index)] - _points[index]).Cross(_direction);
    MakeUnit(normal);
    _normals[index] = normal;
}

// The interface tests no index; one beyond the points gives zeros rather than somebody else's
// memory.
MMPoint3d<double> MPolyPlane::GetPoint(unsigned short index)
{
    return index < _points.size() ? _points[index] : Point();
}

MMPoint3d<double> MPolyPlane::GetNormal(unsigned short index)
{
    return index < _normals.size() ? _normals[index] : Point();
}

MMPlaneEq<double> MPolyPlane::GetPlane(unsigned short index)
{
    const Point normal = GetNormal(index);
    return {GetPoint(index), normal};
}

MMPoint3d<double> MPolyPlane::GetPolylineSegmentUnitVector(unsigned short index)
{
    if (index >= _points.size())
        return {};
    Point along = _points[_Next(index)] - _points[index];
    MakeUnit(along);
    return along;
}

void MPolyPlane::Clear()
{
    _points.clear();
    _normals.clear();
    _heights.clear();
    _starts.clear();
    _box.Clear();
}

int MPolyPlane::GetNumPoints() const
{
    return static_cast<int>(_points.size());
}

// The bottom may lie above a point, and d may point down: both ends of every sweep are looked at.
void MPolyPlane::GetMinMaxZ(double& min, double& max)
{
    if (_points.empty()) {
        min = 0.0;
        max = 0.0;
        return;
    }
    M3DBoundingBox<double> box;
    for (std::size_t i = 0; i < _points.size(); ++i) {
        for (const double height : {_bottomHeight, _heights[i]}) {
            const double z = _points[i].z + _direction.z * height;
            box.minZ = std::min(box.minZ, z);
            box.maxZ = std::max(box.maxZ, z);
        }
    }
    min = box.minZ;
    max = box.maxZ;
}

int MPolyPlane::GetNumSegments() const
{
    return _points.size() < 2 ? 0 : static_cast<int>(_points.size());
}

int MPolyPlane::GetLastSegment() const
{
    return MPolyPlane::GetNumSegments() - 1;
}

double MPolyPlane::_LengthOfSegment(std::size_t index) const
{
    return (_points[_Next(index)] - _points[index]).Length();
}

double MPolyPlane::GetLengthOfDescribingPolyline() const
{
    return _points.empty() ? 0.0 : _starts.back() + _LengthOfSegment(_points.size() - 1);
}

MMPoint3d<double> MPolyPlane::GetPointOnDescribingPolyline(unsigned short index)
{
    return _points.empty() ? Point() : _points[index % _points.size()];
}

double MPolyPlane::GetLengthOfDescribingSegment(unsigned short index) const
{
    return index < _points.size() ? _LengthOfSegment(index) : 0.0;
}

double MPolyPlane::GetCumulativeLengthToEndOfDescribingSegment(unsigned short index) const
{
    const std::size_t end = std::size_t{index} + 1;
    return end < _starts.size() ? _starts[end] : MPolyPlane::GetLengthOfDescribingPolyline();
}

// The last of the segments that start at or before the position. The comparisons put NaN at 0, and
// starts that are NaN still leave the search within its vector.
std::size_t MPolyPlane::_SegmentAt(double position, double& rest) const
{
    const double length = MPolyPlane::GetLengthOfDescribingPolyline();
    const double clamped = position > 0.0 ? (position < length ? position : length) : 0.0;
    const auto after = std::upper_bound(_starts.begin(), _starts.end(), clamped);
    const std::size_t segment =
        after == _starts.begin() ? 0 : static_cast<std::size_t>(after - _starts.begin()) - 1;
    rest = clamped - _starts[segment];
    return segment;
}

unsigned short MPolyPlane::GetSegmentAtPositionAlongDescribingPolyline(double position,
                                                                       double& rest) const
{
    rest = 0.0;
    return _points.empty() ? _Short(0) : _Short(_SegmentAt(position, rest));
}

unsigned short MPolyPlane::GetSegmentAtPositionAlongDescribingPolyline(double position) const
{
    double rest = 0.0;
    return MPolyPlane::GetSegmentAtPositionAlongDescribingPolyline(position, rest);
}

// As a share of the segment's own length, so that its far end is met to a rounding.
MMPoint3d<double> MPolyPlane::GetPointAtPositionAlongDescribingPolyline(double position)
{
    if (_points.empty())
        return {};
    double rest = 0.0;
    const std::size_t i = _SegmentAt(position, rest);
    const double length = _LengthOfSegment(i);
    if (!(length > 0.0))
        return _points[i];
    return _points[i] + (rest / length) * (_points[_Next(i)] - _points[i]);
}

// The difference is taken with the bottom subtracted, which makes a vector that points up: meant.
MMPoint3d<double> MPolyPlane::GetVectorToBottom(unsigned short index)
{
    return index < _heights.size() ? _direction * (_heights[index] - _bottomHeight) : Point();
}

// The upper rim between two points is the straight line between them, as they were added.
MMPoint3d<double> MPolyPlane::GetVectorToBottom(double position)
{
    if (_points.empty())
        return {};
    double rest = 0.0;
    const std::size_t i = _SegmentAt(position, rest);
    const double length = _LengthOfSegment(i);
    const double share = length > 0.0 ? rest / length : 0.0;
    const double height = _heights[i] + share * (_heights[_Next(i)] - _heights[i]);
    return _direction * (height - _bottomHeight);
}

MMPoint3d<double> MPolyPlane::GetNormalAtPositionAlongDescribingPolyline(double position)
{
    double rest = 0.0;
    return _points.empty() ? Point() : _normals[_SegmentAt(position, rest)];
}

MMPoint3d<double>
MPolyPlane::GetPolylineSegmentUnitVectorAtPositionAlongDescribingPolyline(double position)
{
    if (_points.empty())
        return {};
    double rest = 0.0;
    const std::size_t i = _SegmentAt(position, rest);
    Point along = _points[_Next(i)] - _points[i];
    MakeUnit(along);
    return along;
}

// Measured from the segment's own start, which keeps the digits far from the origin.
double MPolyPlane::DistanceToPlaneSegment(MMPoint3d<double> point, unsigned short index,
                                          bool& inside) const
{
    inside = false;
    if (index >= _points.size())
        return 0.0;
    const Point offset = point - _points[index];
    const Point along = _points[_Next(index)] - _points[index];
    const double squared = along.LengthSquared();
    const double passed = offset.Dot(along);
    inside = squared > 0.0 && passed >= 0.0 && passed <= squared;
    return _normals[index].Dot(offset);
}
