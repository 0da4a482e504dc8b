#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <vector>

/// A sphere, centre and radius.
///
/// `==` compares centre and radius exactly (a NaN makes them unequal), while `<` and its like
/// compare the radii alone: neither of two spheres need be less, without their being equal. The
/// order suits sorting by size and nothing else.
///
/// Every fit returns false, and leaves the sphere as it was, when there is no answer.
class NORVEK_MATH_API MMSphere
{
public:
    /// Centre at the origin, radius 0.
    MMSphere() = default;

    /// The sphere around `centre`.
    MMSphere(const MMPoint3d<double>& centre, double radius) : _centre(centre), _radius(radius)
    {}

    MMSphere(const MMSphere&) = default;
    MMSphere& operator=(const MMSphere&) = default;
    virtual ~MMSphere() = default;

    /// Moves the centre.
    void SetCentre(const MMPoint3d<double>& centre)
    {
        _centre = centre;
    }

    /// Sets the radius; it is not checked.
    void SetRadius(double radius)
    {
        _radius = radius;
    }

    /// The sphere through four points, by determinants.
    ///
    /// False when the determinant of the tetrahedron (six times its volume) is below 2^-11.5 in
    /// magnitude, so for nearly coplanar points and for any small tetrahedron, or when the squared
    /// radius is below 2^-11.5. Both limits are absolute.
    bool Fit4Points(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2,
                    const MMPoint3d<double>& p3, const MMPoint3d<double>& p4);

    /// The smallest sphere through three points: their circle is a great circle. False for
    /// collinear or coincident points.
    bool Fit(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2, const MMPoint3d<double>& p3);

    /// The same for an array of three.
    bool Fit(const MMPoint3d<double>* points);

    /// The same as `Fit4Points`.
    bool Compute(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2,
                 const MMPoint3d<double>& p3, const MMPoint3d<double>& p4);

    /// A sphere that holds all points, found by starting with `start` as its centre and shrinking.
    ///
    /// Every point is at most the radius away from the centre, as computed by `Length`. The radius
    /// is that of the smallest sphere but for rounding, and never above that of the sphere around
    /// `start`. False for no points and for non-finite ones. Cost: some ten passes over the points.
    bool Compute(const std::vector<MMPoint3d<double>>& points, const MMPoint3d<double>& start);

    /// The same, started from the centroid of the points.
    bool CapturePoints(const std::vector<MMPoint3d<double>>& points);

    /// The centre.
    [[nodiscard]] const MMPoint3d<double>& GetCentre() const
    {
        return _centre;
    }

    /// The radius.
    [[nodiscard]] double GetRadius() const
    {
        return _radius;
    }

    /// Exact equality of centre and radius.
    bool operator==(const MMSphere& other) const
    {
        return _centre == other._centre && _radius == other._radius;
    }

    /// The negation of `==`.
    bool operator!=(const MMSphere& other) const
    {
        return !(*this == other);
    }

    /// @name Comparisons of the radii
    /// @{
    bool operator<(const MMSphere& other) const
    {
        return _radius < other._radius;
    }
    bool operator<=(const MMSphere& other) const
    {
        return _radius <= other._radius;
    }
    bool operator>(const MMSphere& other) const
    {
        return _radius > other._radius;
    }
    bool operator>=(const MMSphere& other) const
    {
        return _radius >= other._radius;
    }
    /// @}

private:
    MMPoint3d<double> _centre;
    double _radius = 0.0;
};
