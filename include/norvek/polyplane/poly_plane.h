#pragma once

#include <norvek/bounds/bounding_box.h>
#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>
#include <norvek/primitives/plane_equation.h>

#include <cstddef>
#include <vector>

/// A bent cutting surface: a polyline in a base plane, swept along the normal of that plane.
///
/// The base plane, called the zero plane, is given by the sweep direction d (its unit normal) and
/// an origin. Every point P that is added is split into its foot p on the zero plane and its height
/// h above it, P = p + h d. The feet are the describing polyline. It is **closed**: segment i runs
/// from point i to point (i + 1) % n, the last one back to point 0, and spans the plane through
/// itself along d, without end in either direction. The normal of segment i is e x d at unit length
/// (e the vector along the segment): with d towards the viewer it points to the **right** of the
/// running direction, so out of an outline that runs counter-clockwise.
///
/// **Use.** `SetZeroPlane` first, `AddPoint` once a point, then any question. Points keep the foot
/// that they got: a zero plane that is set later moves none of them and turns no normal.
///
/// **Positions** along the describing polyline are arc lengths from point 0, clamped to
/// [0, length] (NaN counts as 0). At a vertex the segment that starts there answers, of several
/// points at one place the last; at the very end the last segment. A segment is found in log n:
/// arc lengths are kept as points come in.
///
/// **Degenerate input answers.** Without a direction (zero) all feet are the origin of coordinates.
/// A segment between equal points has a zero normal, unit vector and length. Fewer than two points
/// make no segments. An index beyond the points gives zeros. NaN and infinite coordinates spoil
/// the segments that touch them, and all positions from there on. Lengths are plain roots, good for
/// sizes of 1e-150 to 1e150.
///
/// Several threads may ask one object at once, also through the operations that are not `const`
/// here so that derived classes may change them; `Set...`, `AddPoint` and `Clear` want it alone.
/// Indices are 16 bits wide: more points than 65,536 take part in everything, but later segments
/// cannot be named and are reported as segment 65,535.
class NORVEK_MATH_API MPolyPlane
{
protected:
    /// Whether points, normals and heights are equally many and every segment's plane (its normal
    /// through its start) is less than one machine epsilon away from its end. That is absolute and
    /// as strict as can be: most outlines that are not axis-parallel fail by a rounding error.
    virtual bool _Sanity();

public:
    /// No direction, no points; everything zero.
    MPolyPlane() = default;

    /// Copies everything.
    MPolyPlane(const MPolyPlane&) = default;

    /// Copies everything.
    MPolyPlane& operator=(const MPolyPlane&) = default;

    virtual ~MPolyPlane();

    /// Sets the zero plane: the sweep direction, of any length, and a point of the plane. A
    /// direction of length 0 is kept as it is and makes no plane.
    virtual void SetZeroPlane(const MMPoint3d<double>& direction, const MMPoint3d<double>& origin);

    /// Sets how far above the zero plane the bottom lies; 0 by default.
    virtual void SetBottomHeight(double height);

    /// The sweep direction, of unit length.
    virtual MMPoint3d<double> GetDirection();

    /// The origin given with the zero plane.
    virtual MMPoint3d<double> GetOrigin();

    /// Appends a describing point: its foot on the zero plane and its height. The normals of the
    /// segments to and from it are brought up to date, the closing one included. Constant time.
    virtual void AddPoint(const MMPoint3d<double>& point);

    /// The foot of point i on the zero plane.
    virtual MMPoint3d<double> GetPoint(unsigned short index);

    /// The unit normal of the segment that starts at point i; zero for a segment without length.
    virtual MMPoint3d<double> GetNormal(unsigned short index);

    /// The plane of segment i, through `GetPoint` with `GetNormal`; no plane (zero normal) for a
    /// segment without length.
    virtual MMPlaneEq<double> GetPlane(unsigned short index);

    /// The unit vector along segment i; zero for a segment without length.
    virtual MMPoint3d<double> GetPolylineSegmentUnitVector(unsigned short index);

    /// Removes all points; zero plane and bottom stay.
    virtual void Clear();

    /// The number of describing points.
    virtual int GetNumPoints() const;

    /// The range of z that the surface covers between its bottom and its upper rim: over all
    /// points, moved down to the bottom (p + bottom d) and up to their heights (p + h d). Both 0
    /// without points.
    virtual void GetMinMaxZ(double& min, double& max);

    /// The number of segments: as many as points, the closing one included; none for 0 or 1 points.
    virtual int GetNumSegments() const;

    /// The number of segments less one: the index of the closing segment, or -1.
    virtual int GetLastSegment() const;

    /// The length of the closed polyline.
    virtual double GetLengthOfDescribingPolyline() const;

    /// Where segment i starts. One beyond the last is where the last one ends: indices are taken
    /// modulo the number of points.
    virtual MMPoint3d<double> GetPointOnDescribingPolyline(unsigned short index);

    /// The length of segment i.
    virtual double GetLengthOfDescribingSegment(unsigned short index) const;

    /// The position at which segment i ends; beyond the last segment the whole length.
    virtual double GetCumulativeLengthToEndOfDescribingSegment(unsigned short index) const;

    /// The segment at a position; `rest` is what remains of the position after the segments
    /// before it: the length from the segment's start. Without points both are 0.
    virtual unsigned short GetSegmentAtPositionAlongDescribingPolyline(double position,
                                                                       double& rest) const;

    /// The segment at a position; 0 without points.
    virtual unsigned short GetSegmentAtPositionAlongDescribingPolyline(double position) const;

    /// The point at a position; the origin of coordinates without points.
    virtual MMPoint3d<double> GetPointAtPositionAlongDescribingPolyline(double position);

    /// d x (height of point i - bottom height). Where the point lies above its bottom this points
    /// up, in the way of d, in spite of its name: subtract it from the point that was added to come
    /// to the bottom. The formula is meant.
    virtual MMPoint3d<double> GetVectorToBottom(unsigned short index);

    /// The same at a position, with the height interpolated along the segment.
    virtual MMPoint3d<double> GetVectorToBottom(double position);

    /// The normal of the segment at a position.
    virtual MMPoint3d<double> GetNormalAtPositionAlongDescribingPolyline(double position);

    /// The unit vector of the segment at a position.
    virtual MMPoint3d<double>
    GetPolylineSegmentUnitVectorAtPositionAlongDescribingPolyline(double position);

    /// Whether the foot of `point` lies in the closed polygon of the describing points, by counting
    /// crossings (even-odd). A foot on a vertex or a segment is inside; the test for lying on a
    /// segment is `MMLine2D::IsPointOnLineSegment` with a tolerance of one machine epsilon, which
    /// is a cosine: up to about 2e-8 radians as seen from the segment's start count as on it.
    /// Segments without length are passed over before vertices are compared, so that an outline of
    /// one point holds nothing, not even that point. Linear time, one comparison for most points.
    virtual bool IsInside(MMPoint3d<double> point) const;

    /// A quick test that rules out most triangles: true only when the triangle certainly misses
    /// every plane segment, by boxes and by sides that rounding cannot turn. When it is true,
    /// `TriangleIntersects` is false; the reverse need not hold.
    virtual bool TriangleIntersectRejection(MMPoint3d<double> a, MMPoint3d<double> b,
                                            MMPoint3d<double> c) const;

    /// Whether the triangle crosses the swept surface: an edge crosses a segment, as
    /// `LineIntersects`, or the line swept by a vertex passes through the inside of the triangle.
    /// A triangle that only touches does not cross, nor one that a segment parts with both its ends
    /// exactly on the boundary. Segments that `TriangleIntersectRejection`
    /// rules out are left out, so that the two never contradict each other.
    virtual bool TriangleIntersects(MMPoint3d<double> a, MMPoint3d<double> b,
                                    MMPoint3d<double> c) const;

    /// Whether the segment from a to b crosses the swept surface. Strict at both ends of both: one
    /// that ends on the surface, or passes through a vertex of the polyline, does not cross there.
    /// Parallel segments (a determinant of exactly 0) do not cross.
    virtual bool LineIntersects(MMPoint3d<double> a, MMPoint3d<double> b) const;

    /// The distance of `point` from the plane of segment i, positive on the side of its normal.
    /// `inside` tells whether the foot lies on the strip of the segment: between the two planes
    /// across it at its ends, both included. A segment without length gives 0 and false.
    virtual double DistanceToPlaneSegment(MMPoint3d<double> point, unsigned short index,
                                          bool& inside) const;

    /// Turns the zero plane to another direction about the same origin. Like `SetZeroPlane`, it
    /// leaves points that are there as they are.
    void SetDirection(const MMPoint3d<double>& direction);

protected:
    /// Whether the segments p1-p2 and q1-q2 cross when seen along the direction: both line
    /// parameters lie strictly between 0 and 1.
    bool _LineIntersects(MMPoint3d<double> p1, MMPoint3d<double> p2, MMPoint3d<double> q1,
                         MMPoint3d<double> q2) const;

    /// All feet, in order.
    const std::vector<MMPoint3d<double>>& _Points() const
    {
        return _points;
    }

    /// All normals, in order.
    const std::vector<MMPoint3d<double>>& _Normals() const
    {
        return _normals;
    }

    /// All heights, in order.
    const std::vector<double>& _Heights() const
    {
        return _heights;
    }

    /// The zero plane.
    const MMPlaneEq<double>& _ZeroPlane() const
    {
        return _zeroPlane;
    }

    /// The position at which segment `index` starts.
    double _StartOfSegment(std::size_t index) const
    {
        return _starts[index];
    }

    /// The segment at a position with all its digits, and the length from its start. There must be
    /// points.
    std::size_t _SegmentAt(double position, double& rest) const;

    /// The point that follows `index`; there must be points.
    std::size_t _Next(std::size_t index) const
    {
        return index + 1 < _points.size() ? index + 1 : 0;
    }

    /// An index as far as 16 bits hold it.
    static unsigned short _Short(std::size_t index)
    {
        return static_cast<unsigned short>(index < 65535 ? index : 65535);
    }

private:
    void _ComputeNormal(std::size_t index);
    void _IsInsideFindAxes(char& first, char& second) const;
    double _LengthOfSegment(std::size_t index) const;
    double _Margin() const;
    template <class Test>
    bool _HasSegment(MMPoint3d<double> a, MMPoint3d<double> b, MMPoint3d<double> c,
                     const Test& test) const;

    MMPoint3d<double> _direction;
    MMPoint3d<double> _origin;
    MMPlaneEq<double> _zeroPlane;
    std::vector<MMPoint3d<double>> _points;
    std::vector<MMPoint3d<double>> _normals;
    std::vector<double> _heights;
    double _bottomHeight = 0.0;
    // The positions of the points, and the box of the points, for quick answers.
    std::vector<double> _starts;
    M3DBoundingBox<double> _box;
};
