#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point2d.h>

/// A line in the plane through two points, or the segment between them.
///
/// Lengths do not overflow or underflow on the way to a result that a double can hold. Two equal
/// points are allowed: the direction is zero then. Tolerances are the caller's, and what each is
/// compared with is stated with the query: lengths, sines, cosines or raw determinants. A query
/// that fails leaves its output as it was, unless stated; an output may be one of the line's own
/// points.
///
/// What looks true and is not: two vertical lines that run in opposite directions are not parallel;
/// a line is not coincident with one that starts at the same point, itself included; the first
/// point does not lie on the line by `IsPointOnLine`. (All for tolerances below 1.)
class NORVEK_MATH_API MMLine2D
{
public:
    /// Both points at the origin.
    MMLine2D() = default;

    /// The line from `first` to `second`.
    MMLine2D(const MMPoint2d<double>& first, const MMPoint2d<double>& second)
        : _first(first),
          _second(second)
    {}

    /// Moves the first point; the second stays.
    void SetFirstPoint(const MMPoint2d<double>& point)
    {
        _first = point;
    }

    /// Moves the second point; the first stays.
    void SetSecondPoint(const MMPoint2d<double>& point)
    {
        _second = point;
    }

    /// Where the segment starts; writing through the reference is allowed.
    [[nodiscard]] MMPoint2d<double>& GetFirstPoint()
    {
        return _first;
    }

    /// Where the segment starts.
    [[nodiscard]] const MMPoint2d<double>& GetFirstPoint() const
    {
        return _first;
    }

    /// Where the segment ends; writing through the reference is allowed.
    [[nodiscard]] MMPoint2d<double>& GetSecondPoint()
    {
        return _second;
    }

    /// Where the segment ends.
    [[nodiscard]] const MMPoint2d<double>& GetSecondPoint() const
    {
        return _second;
    }

    /// The unit direction from the first point to the second; zero when they coincide.
    [[nodiscard]] MMPoint2d<double> GetDirection() const;

    /// The distance between the points.
    [[nodiscard]] double GetLength() const;

    /// The equation a x + b y + c = 0, scaled by case: a vertical line (|dx| < `tolerance`) has b =
    /// 0 and c = 1, or a = 1 and c = 0 through the origin; a sloping one has b = -1; a horizontal
    /// one
    /// (|dy| < `tolerance`) has a = 0 and c = 1, or b = 1 and c = 0 through the origin.
    void GetLineEquation(double& a, double& b, double& c, double tolerance) const;

    /// Writes the foot of the perpendicular from `point`, which may be `out`. On a line shorter
    /// than one machine epsilon `out` is left as it was.
    void Project(MMPoint2d<double>& out, const MMPoint2d<double>& point) const;

    /// The distance from the line, 0 or more; from the first point when the line is shorter than
    /// one machine epsilon.
    [[nodiscard]] double GetDistance(const MMPoint2d<double>& point) const;

    /// The distance, negative where the equation of `GetLineEquation` (with one machine epsilon) is
    /// negative. The sign follows the cases of that equation, not the direction of the line: it
    /// does not change when the points are exchanged, and can change as the line turns.
    [[nodiscard]] double GetSignedDistance(const MMPoint2d<double>& point) const;

    /// True when the unit directions, one turned round if their x components have opposite signs,
    /// differ by a vector shorter than `tolerance`. Only the x components decide about turning:
    /// vertical lines in opposite directions are not parallel.
    [[nodiscard]] bool IsParallel(const MMLine2D& other, double tolerance) const;

    /// True when `other` is parallel, and so is the line from this first point to that of `other`.
    [[nodiscard]] bool IsCoincident(const MMLine2D& other, double tolerance) const;

    /// True when the line from the first point to `point` is parallel to this one.
    [[nodiscard]] bool IsPointOnLine(const MMPoint2d<double>& point, double tolerance) const;

    /// True when `point` is nearer to the first point than the second is, and the cosine of the
    /// angle between the directions to the two is at least 1 - `tolerance`. The second point itself
    /// is excluded, the first for tolerances below 1. Sensitive to the last bit.
    [[nodiscard]] bool IsPointOnLineSegment(const MMPoint2d<double>& point, double tolerance) const;

    /// Meets two infinite lines. False when the magnitude of the cross product of their (unscaled)
    /// directions is below `tolerance`. NaN coordinates are not refused: true with a NaN point.
    bool GetIntersectionPoint(MMPoint2d<double>& out, const MMLine2D& other,
                              double tolerance) const;

    /// Meets two segments: true when the distances of the lines' intersection from both segments
    /// add up to less than twice the tolerance. `out` is that intersection, written also when it
    /// lies too far off; it is left as it was when the cross product of the directions is below
    /// `tolerance`.
    bool GetIntersectionSegmentSegment(MMPoint2d<double>& out, const MMLine2D& other,
                                       double tolerance) const;

    /// True when an end of the segment lies in the closed rectangle, or the segment meets one of
    /// the rectangle's edges by `GetIntersectionSegmentSegment`.
    [[nodiscard]] bool DoesSegmentLieOnRect(double xmin, double ymin, double xmax, double ymax,
                                            double tolerance) const;

private:
    MMPoint2d<double> _first;
    MMPoint2d<double> _second;
};
