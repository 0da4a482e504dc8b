#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <vector>

/// A parametric curve C(t) in space over a range of parameters, fitted through measured points.
///
/// A derived class supplies the fit, the evaluation and `_SegmentMinimal`; projection, distance and
/// division are built on these, and on `_FindNearest` and `_ChordDeviation`, which a class that
/// knows more of its curve replaces by exact ones.
///
/// The range is where projection and division look, and what the first and the last point belong
/// to. It does not limit evaluation. A closed loop ends where it starts; its range is one turn.
///
/// An operation that fails leaves its outputs as they were. Operations that do not fit or set are
/// `const`; any number of threads may run them on one curve.
class NORVEK_MATH_API M3dCurve
{
public:
    /// What an operation comes to.
    enum error
    {
        kSuccess = 0, ///< All went well.
        kFailure = 1  ///< Nothing could be computed.
    };

    virtual ~M3dCurve();

    /// Fits the curve to `points`, as a closed loop when `isClosed`. For a loop the last point
    /// should repeat the first, as it belongs to the same parameter.
    ///
    /// Without points the object stays as it was and the result is failure; the closed-loop flag
    /// is stored in all other cases, before the fit and whatever comes of it.
    virtual error Fit(const std::vector<MMPoint3d<double>>& points, bool isClosed);

    /// The point at `t`.
    virtual error EvaluatePosition(MMPoint3d<double>& position, double t) const = 0;

    /// The point and the first derivative at `t`.
    virtual error EvaluateSpeed(MMPoint3d<double>& position, MMPoint3d<double>& speed,
                                double t) const = 0;

    /// The point and the first and second derivatives at `t`.
    virtual error EvaluateAcceleration(MMPoint3d<double>& position, MMPoint3d<double>& speed,
                                       MMPoint3d<double>& acceleration, double t) const = 0;

    /// Divides the curve: ascending parameters, both ends of the range included, such that no point
    /// of the curve between two of them is farther than `tolerance` from their chord.
    ///
    /// Intervals are halved until `_ChordDeviation` is content; with `keepMinimal` they begin as
    /// those of `_SegmentMinimal`, which all stay among the parameters. Failure, and `parameters`
    /// as they were, for a tolerance that is not above 0, a range that descends or is not finite, a
    /// curve without points, and where more than 2^20 intervals would be needed.
    virtual error Segment(std::vector<double>& parameters, double tolerance,
                          bool keepMinimal) const;

    /// The points at the parameters of `Segment` without `keepMinimal`: the corners of a polygon
    /// within `tolerance` of the curve.
    virtual error Segment(std::vector<MMPoint3d<double>>& points, double tolerance) const;

    /// The parameter in the range whose point is nearest to `point`.
    ///
    /// Without `fromHere` it is the globally nearest one, found by `_FindNearest`, to rounding
    /// whatever the tolerance: branches are told apart by their distances. With it, `t` on entry is
    /// a start, and the iteration stays on its branch: it walks to where the distance falls, by at
    /// most a quarter of a mean interval of `_SegmentMinimal` at a time, until a step moves the
    /// point by no more than `tolerance`, a length, or by rounding only where that is 0, below or
    /// NaN. A start outside is
    /// moved into the range; on a closed loop it is taken round, and the walk crosses the seam.
    ///
    /// Failure for a point, a start or a range that is not finite and for a curve without points.
    virtual error ProjectPoint(double& t, MMPoint3d<double> point, double tolerance,
                               bool fromHere) const;

private:
    /// A check of the object; true.
    virtual bool Sanity() const;

protected:
    /// The parameters that a division has to keep, ascending and within the range, both ends of it
    /// included: the places where the curve may bend.
    virtual error _SegmentMinimal(std::vector<double>& parameters) const = 0;

    /// Fits the curve to one point or more.
    virtual error _Fit(const std::vector<MMPoint3d<double>>& points) = 0;

    /// The parameter in the range whose point is nearest to `point`; false when there is none. On
    /// equal distances the one that was found first.
    ///
    /// This one evaluates 32 points between every two of `_SegmentMinimal` and descends from all
    /// that are nearer than their neighbours: right for curves that do not turn faster than that.
    virtual bool _FindNearest(double& t, const MMPoint3d<double>& point) const;

    /// How far the curve leaves its chord between two parameters at most; NaN without a curve. This
    /// one looks at 32 points.
    [[nodiscard]] virtual double _ChordDeviation(double from, double to) const;

    /// Moves a parameter below the minimum to the minimum and one above the maximum to the maximum,
    /// and returns whether it did. On a closed loop it does neither.
    bool _ParameterRangeAdjust(double& t) const;

public:
    /// The point at the minimum parameter; the origin when the curve has no points.
    [[nodiscard]] MMPoint3d<double> GetFirstPoint() const;

    /// The point at the maximum parameter; the origin when the curve has no points.
    [[nodiscard]] MMPoint3d<double> GetLastPoint() const;

    /// The distance from `point` to the curve, to the point that `ProjectPoint` finds; infinite
    /// when it finds none.
    [[nodiscard]] double Distance(MMPoint3d<double> point, double tolerance) const;

    /// The same, and the parameter of that point, which is left alone where there is none.
    double Distance(MMPoint3d<double> point, double tolerance, double& t) const;

    /// The points at the parameters, one for each; the origin where the curve has none.
    error ParametersToPoints(std::vector<MMPoint3d<double>>& points,
                             const std::vector<double>& parameters) const;

    /// The parameters of the globally nearest points, one for each. Failure, and `parameters` as
    /// they were, when one of them has none.
    error PointsToParameters(std::vector<double>& parameters,
                             const std::vector<MMPoint3d<double>>& points) const;

    /// Whether the last fit was that of a closed loop; false at first.
    [[nodiscard]] bool IsClosedLoop() const
    {
        return _isClosedLoop;
    }

    /// Where the range begins; 0 at first.
    [[nodiscard]] double GetMinParameter() const
    {
        return _minParameter;
    }

    /// Where the range ends; 1 at first.
    [[nodiscard]] double GetMaxParameter() const
    {
        return _maxParameter;
    }

    /// Sets where the range begins. A fit does not change it, nor does it scale the curve.
    void SetMinParameter(double parameter)
    {
        _minParameter = parameter;
    }

    /// Sets where the range ends. A fit does not change it, nor does it scale the curve.
    void SetMaxParameter(double parameter)
    {
        _maxParameter = parameter;
    }

protected:
    /// An open curve over 0 to 1.
    M3dCurve() = default;

    /// Copies flag and range.
    M3dCurve(const M3dCurve&) = default;

    /// Copies flag and range.
    M3dCurve& operator=(const M3dCurve&) = default;

private:
    [[nodiscard]] double _ProjectPoint(double t, const MMPoint3d<double>& point,
                                       double tolerance) const;
    [[nodiscard]] double _WithinRange(double t) const;
    [[nodiscard]] bool _HasRange() const;

    bool _isClosedLoop = false;
    double _minParameter = 0.0;
    double _maxParameter = 1.0;
};
