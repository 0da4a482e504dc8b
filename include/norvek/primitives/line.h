#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <utility>

/// A line in space through two points.
///
/// Infinite for every query, except where a flag asks for the segment between the points. Two equal
/// points are allowed: the direction is zero then, and such a line is parallel to every other.
/// Lengths do not overflow or underflow on the way to a result that a double can hold. Tolerances
/// are the caller's; every comparison with one is strict, so that at tolerance 0 a line is not even
/// parallel to itself. A query that fails leaves its output as it was, unless stated.
class NORVEK_MATH_API MMLine
{
public:
    /// Both points at the origin.
    MMLine() = default;

    /// The line from `first` to `second`.
    MMLine(const MMPoint3d<double>& first, const MMPoint3d<double>& second)
        : _first(first),
          _second(second)
    {}

    /// Copies both points.
    MMLine(const MMLine&) = default;

    /// Copies both points.
    MMLine& operator=(const MMLine&) = default;

    virtual ~MMLine();

    /// Moves the first point; the second stays.
    void SetPointFirst(const MMPoint3d<double>& point)
    {
        _first = point;
    }

    /// Moves the second point; the first stays.
    void SetPointSecond(const MMPoint3d<double>& point)
    {
        _second = point;
    }

    /// Exchanges the points; the direction turns round.
    void SwapPoints()
    {
        std::swap(_first, _second);
    }

    /// Where the segment starts.
    [[nodiscard]] const MMPoint3d<double>& GetPointFirst() const
    {
        return _first;
    }

    /// Where the segment ends.
    [[nodiscard]] const MMPoint3d<double>& GetPointSecond() const
    {
        return _second;
    }

    /// Exact comparison of both points: the same line through other points is another value.
    bool operator==(const MMLine& other) const
    {
        return _first == other._first && _second == other._second;
    }

    /// The negation of `==`.
    bool operator!=(const MMLine& other) const
    {
        return !(*this == other);
    }

    /// The unit direction from the first point to the second; zero when they coincide.
    [[nodiscard]] MMPoint3d<double> GetDirection() const;

    /// The distance between the points.
    [[nodiscard]] double Length() const;

    /// True when the sine of the angle between the lines is below `tolerance`.
    [[nodiscard]] bool IsParallel(const MMLine& other, double tolerance) const;

    /// True when the squared distance of `point` from the line is below the squared tolerance; with
    /// `segment` the point must also lie in the closed ball that has the segment as its diameter.
    [[nodiscard]] bool IsPointOnLine(const MMPoint3d<double>& point, bool segment,
                                     double tolerance) const;

    /// The shortest connection of two lines: `out` runs from its foot on `other` to its foot on
    /// this line. False when the lines are parallel by `IsParallel`, or exactly so. A foot whose
    /// equation has a denominator of exactly 0 is left as `out` had it. `out` may be either line.
    bool GetCommonPerpendicularLine(const MMLine& other, MMLine& out, double tolerance) const;

    /// The point where the lines meet: the foot of the common perpendicular on `other`.
    ///
    /// False, with `out` untouched, when they are parallel (a sine below the fixed 0.001) or the
    /// perpendicular is longer than `tolerance`. With `segments` the point must lie on both
    /// segments by `IsPointOnLine`; when that fails, `out` is written all the same. Without, NaN
    /// coordinates are not refused: the answer can be true with a NaN point.
    bool GetIntersectionPoint(const MMLine& other, MMPoint3d<double>& out, double tolerance,
                              bool segments) const;

private:
    MMPoint3d<double> _first;
    MMPoint3d<double> _second;
};
