#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <vector>

/// A sphere: centre and radius.
///
/// Spheres are equal when centre and radius are exactly equal (NaN makes them unequal), and are
/// ordered by their radii alone: two spheres may be neither less nor greater and yet unequal.
///
/// All fits return false and leave the sphere unchanged when they find none.
class NORVEK_MATH_API MMSphere
{
public:
    /// The point sphere at the origin.
    MMSphere() = default;

    /// Copies centre and radius.
    MMSphere(const MMSphere&) = default;

    /// Copies centre and radius.
    MMSphere& operator=(const MMSphere&) = default;

    /// Releases nothing.
    virtual ~MMSphere();

    /// Sets the centre.
    void SetCenter(const MMPoint3d<double>& center)
    {
        _center = center;
    }

    /// Sets the radius, as it is.
    void SetRadius(double radius)
    {
        _radius = radius;
    }

    /// The centre.
    [[nodiscard]] const MMPoint3d<double>& GetCenter() const
    {
        return _center;
    }

    /// The radius.
    [[nodiscard]] double GetRadius() const
    {
        return _radius;
    }

    /// Exactly equal centre and radius.
    bool operator==(const MMSphere& other) const
    {
        return _center == other._center && _radius == other._radius;
    }

    /// Not `==`.
    bool operator!=(const MMSphere& other) const
    {
        return !(*this == other);
    }

    /// A smaller radius.
    bool operator<(const MMSphere& other) const
    {
        return _radius < other._radius;
    }

    /// A smaller or equal radius.
    bool operator<=(const MMSphere& other) const
    {
        return _radius <= other._radius;
    }

    /// A larger radius.
    bool operator>(const MMSphere& other) const
    {
        return _radius > other._radius;
    }

    /// A larger or equal radius.
    bool operator>=(const MMSphere& other) const
    {
        return _radius >= other._radius;
    }

    /// The sphere through four points, by determinants. False when the determinant of the points'
    /// coordinates (six times the volume of their tetrahedron) or the squared radius is below
    /// 2^-11.5: these limits are absolute, so that a small object must be scaled up first. They do
    /// not refuse NaN: coordinates that are not finite, or whose powers overflow, may give true
    /// with a centre and a radius that are not numbers.
    bool Fit4Points(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2,
                    const MMPoint3d<double>& p3, const MMPoint3d<double>& p4);

    /// The same as `Fit4Points`.
    bool Compute(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2,
                 const MMPoint3d<double>& p3, const MMPoint3d<double>& p4);

    /// The sphere about `center` that reaches the farthest of the points. False without points, and
    /// for coordinates that are not finite.
    bool Compute(const std::vector<MMPoint3d<double>>& points, const MMPoint3d<double>& center);

    /// The smallest sphere through three points, whose great circle is the circle through them.
    /// False when they lie on a line, to one part in 2^40 of their distances, and when they or the
    /// sphere are not finite.
    bool Fit(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2, const MMPoint3d<double>& p3);

    /// The same for an array of three points.
    bool Fit(const MMPoint3d<double> points[3]);

    /// The smallest sphere that holds all points, to rounding; each point's computed distance from
    /// the centre is at most the radius. False without points, and for coordinates that are not
    /// finite.
    ///
    /// Starts from the centroid and exchanges a support of at most four points for one with a
    /// larger sphere until no point lies outside (an LP-type problem; E. Welzl, "Smallest enclosing
    /// disks", 1991). A few passes over the points; linear in their number.
    bool CapturePoints(const std::vector<MMPoint3d<double>>& points);

private:
    MMPoint3d<double> _center;
    double _radius = 0.0;
};
