#pragma once

#include <norvek/polyplane/poly_plane.h>

#include <limits>
#include <memory>

/// A poly-plane cut off at a top and a bottom level: the closed polygon swept between two heights.
///
/// It stands wherever an `MPolyPlane` is expected, but is one by name only: the outline lies in an
/// **inner poly-plane**, and the operations overridden here ask that one. All others act on the
/// prism's own fields, whose outline is always empty: lengths are 0, positions give zeros,
/// `GetNumSegments` is 0, and `SetZeroPlane` and `SetBottomHeight` do **not** reach the inner one.
/// Set the inner zero plane before the prism is made, or its direction by `SetDirection`.
///
/// **Levels** are counted along the inner direction d: a point p is at level d . p, measured from
/// the origin of coordinates and not from the zero plane.
///
/// **Sharing.** Copies, made either way, share the inner poly-plane, each with its own levels: a
/// point added through one is in all of them. The last holder destroys it.
class NORVEK_MATH_API MPolyPlanePrism : public MPolyPlane
{
public:
    /// Around a new empty poly-plane, with levels that hold everything.
    MPolyPlanePrism();

    /// Around a poly-plane that the prism takes over: made by `new`, destroyed by the last prism
    /// that holds it. A null pointer stands for a new empty one.
    explicit MPolyPlanePrism(MPolyPlane* polyPlane);

    /// Shares the inner poly-plane and copies the levels.
    MPolyPlanePrism(const MPolyPlanePrism&) = default;

    /// Shares the inner poly-plane of the other and copies its levels.
    MPolyPlanePrism& operator=(const MPolyPlanePrism&) = default;

    ~MPolyPlanePrism() override;

    /// The direction of the inner poly-plane.
    MMPoint3d<double> GetDirection() override;

    /// Adds to the inner poly-plane.
    void AddPoint(const MMPoint3d<double>& point) override;

    /// A foot of the inner poly-plane.
    MMPoint3d<double> GetPoint(unsigned short index) override;

    /// A normal of the inner poly-plane.
    MMPoint3d<double> GetNormal(unsigned short index) override;

    /// A plane of the inner poly-plane.
    MMPlaneEq<double> GetPlane(unsigned short index) override;

    /// A unit vector of the inner poly-plane.
    MMPoint3d<double> GetPolylineSegmentUnitVector(unsigned short index) override;

    /// Empties the inner poly-plane; the levels stay.
    void Clear() override;

    /// The number of points of the inner poly-plane.
    int GetNumPoints() const override;

    /// The range of the inner poly-plane, widened: with dz the z of the direction, bottom dz is
    /// added to the lower limit and top dz to the upper one (exchanged unless dz > 0). They are
    /// added, not compared; levels left as wide as they start make the range as wide.
    void GetMinMaxZ(double& min, double& max) override;

    /// Whether the level of `point` lies between bottom and top, both included, and the inner
    /// poly-plane holds it. A NaN level is not outside.
    bool IsInside(MMPoint3d<double> point) const override;

    /// Always false.
    bool TriangleIntersectRejection(MMPoint3d<double> a, MMPoint3d<double> b,
                                    MMPoint3d<double> c) const override;

    /// Always false.
    bool TriangleIntersects(MMPoint3d<double> a, MMPoint3d<double> b,
                            MMPoint3d<double> c) const override;

    /// Always false.
    bool LineIntersects(MMPoint3d<double> a, MMPoint3d<double> b) const override;

    /// Always 0, and never inside.
    double DistanceToPlaneSegment(MMPoint3d<double> point, unsigned short index,
                                  bool& inside) const override;

    /// Gives the inner poly-plane a zero plane of this direction through (0, 0, 0).
    virtual void SetDirection(MMPoint3d<double> direction);

    /// Sets both levels as they are: with top below bottom nothing is inside.
    void SetTopBottomPlanes(double top, double bottom);

    /// Sets the levels of two points, the higher one as top.
    void SetTopBottomPlanes(MMPoint3d<double> a, MMPoint3d<double> b);

    /// The level up to which the prism reaches; the largest double at first.
    [[nodiscard]] double GetTop() const
    {
        return _top;
    }

    /// The level from which the prism reaches; the largest double, negated, at first.
    [[nodiscard]] double GetBottom() const
    {
        return _bottom;
    }

private:
    std::shared_ptr<MPolyPlane> _inner;
    double _top = std::numeric_limits<double>::max();
    double _bottom = -std::numeric_limits<double>::max();
};
