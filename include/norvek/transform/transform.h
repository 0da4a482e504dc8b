#pragma once

#include <norvek/foundation/point3d.h>
#include <norvek/transform/transform_allocator.h>

#include <vector>

template <class T>
struct M3DBoundingBox;

/// The abstract point transform: anything that maps a point in space to a point in space and can,
/// as a rule, map it back. Every geometric class that can be moved accepts one.
///
/// A kind of transform implements the two protected operations `_Transform` and
/// `_InverseTransform`; all other point operations are built on them, here, once.
///
/// **The flag `isDirection`.** With false the argument is a position. With true it is a direction,
/// that is a difference of positions, and no translation applies to it.
///
/// **Precision.** All arithmetic is double. The single-precision forms widen, transform and round
/// the result to the nearest float.
///
/// **Failure.** The operations return false when the point has no image (a singular matrix has no
/// inverse). The forms that convert then still write their output: they start from a result of
/// (0, 0, 0) and write whatever it became. Only the two forms on `MMPoint3d<double>` forward
/// directly, so that a failure leaves their output as the transform left it (as a rule untouched).
/// A point at infinity throws `MMTransformException` of kind `HomogeneousDivideByZero`; nothing is
/// written then.
///
/// Distinct objects may be used from distinct threads; const operations on one object as well.
class NORVEK_MATH_API MMTransform : public MMTransformAllocator
{
public:
    virtual ~MMTransform() = default;

    /// A new transform of the same kind and state, owned by the caller.
    [[nodiscard]] virtual MMTransform* Clone() const = 0;

    /// Writes the transform as a 4x4 matrix, row by row, into 16 floats. False when the kind has no
    /// matrix.
    virtual bool ConvertToFloat16(float* matrix) const = 0;

    /// The same in double. Unless a kind does better, the values are those of `ConvertToFloat16`,
    /// widened; when that fails its 16 values (zeros where it wrote none) are written all the same.
    virtual bool ConvertToDouble16(double* matrix) const;

    /// Transforms every element of `in`, as a position, into the same element of `out`.
    ///
    /// `out` is resized, never cleared; it may be `in` itself. Stops after the first point that
    /// fails and returns false; the elements from there on keep what the resize left in them (the
    /// old value, or zero for new elements). Linear in the number of points.
    virtual bool Transform(std::vector<MMPoint3d<double>>& out,
                           const std::vector<MMPoint3d<double>>& in) const;

    /// Transforms every element in place, as a position. Always true: a point that fails is passed
    /// over.
    virtual bool Transform(std::vector<MMPoint3d<double>>& points) const;

    /// The image of `point`, rounded to float. Throws `MMTransformException` of kind
    /// `TransformFailed` when there is none.
    virtual MMPoint3d<float> operator()(const MMPoint3d<float>& point, bool isDirection);

    /// The image of `point`. Throws `MMTransformException` of kind `TransformFailed` when there is
    /// none.
    virtual MMPoint3d<double> operator()(const MMPoint3d<double>& point, bool isDirection);

    /// Turns the transform into its inverse. False, and nothing changes, when there is none.
    virtual bool Invert() = 0;

    /// True when the transform is known to leave every point where it is.
    [[nodiscard]] virtual bool IsIdentity() const = 0;

    /// @name Forward, one point
    /// In place on three coordinates, a point or an array of three, or from one to the other. Input
    /// and output may be the same.
    /// @{
    bool Transform(float& x, float& y, float& z, bool isDirection) const;
    bool Transform(double& x, double& y, double& z, bool isDirection) const;
    bool Transform(MMPoint3d<float>& out, const MMPoint3d<float>& in, bool isDirection) const;
    bool Transform(MMPoint3d<float>& point, bool isDirection) const;
    bool Transform(float* out, float x, float y, float z, bool isDirection) const;
    bool Transform(float* out, const float* in, bool isDirection) const;
    bool Transform(float* point, bool isDirection) const;
    bool Transform(double* out, double x, double y, double z, bool isDirection) const;
    bool Transform(double* out, const double* in, bool isDirection) const;
    bool Transform(double* point, bool isDirection) const;

    /// Forwards directly: a failure does not write zeros.
    bool Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in, bool isDirection) const
    {
        return _Transform(out, in, isDirection);
    }

    /// Forwards directly, with the point as input and output: a failure does not write zeros.
    bool Transform(MMPoint3d<double>& point, bool isDirection) const
    {
        return _Transform(point, point, isDirection);
    }
    /// @}

    /// @name Backward, one point
    /// The same forms through the inverse. False when the transform has no inverse.
    /// @{
    bool InverseTransform(float& x, float& y, float& z, bool isDirection) const;
    bool InverseTransform(double& x, double& y, double& z, bool isDirection) const;
    bool InverseTransform(MMPoint3d<float>& out, const MMPoint3d<float>& in,
                          bool isDirection) const;
    bool InverseTransform(MMPoint3d<float>& point, bool isDirection) const;
    bool InverseTransform(float* out, float x, float y, float z, bool isDirection) const;
    bool InverseTransform(float* out, const float* in, bool isDirection) const;
    bool InverseTransform(float* point, bool isDirection) const;
    bool InverseTransform(double* out, double x, double y, double z, bool isDirection) const;
    bool InverseTransform(double* out, const double* in, bool isDirection) const;
    bool InverseTransform(double* point, bool isDirection) const;

    /// Forwards directly: a failure does not write zeros.
    bool InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                          bool isDirection) const
    {
        return _InverseTransform(out, in, isDirection);
    }

    /// Forwards directly, with the point as input and output: a failure does not write zeros.
    bool InverseTransform(MMPoint3d<double>& point, bool isDirection) const
    {
        return _InverseTransform(point, point, isDirection);
    }
    /// @}

    /// The axis-aligned box of the eight transformed corners of a box, in single precision; a
    /// rotation therefore enlarges it.
    ///
    /// Each corner is rounded to float before it counts. The result grows from the extreme finite
    /// floats by strict comparisons, so that a NaN coordinate takes no part. When a corner fails
    /// (false) or throws, none of the six outputs is written.
    bool TransformBoundingBox(float& outMinX, float& outMaxX, float& outMinY, float& outMaxY,
                              float& outMinZ, float& outMaxZ, float minX, float maxX, float minY,
                              float maxY, float minZ, float maxZ) const;

    /// The same, in place. An empty box is not special: its limits are corners like any other.
    bool TransformBoundingBox(M3DBoundingBox<float>& box) const;

protected:
    /// Nothing to construct.
    MMTransform() = default;
    /// Nothing to copy.
    MMTransform(const MMTransform&) = default;
    /// Nothing to copy.
    MMTransform& operator=(const MMTransform&) = default;

    /// Maps `in` to `out`, which may be the same object. False, with `out` untouched, when `in` has
    /// no image.
    virtual bool _Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                            bool isDirection) const = 0;

    /// Maps `in` back to `out`, under the same rules.
    virtual bool _InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                                   bool isDirection) const = 0;

private:
    using _Operation = bool (MMTransform::*)(MMPoint3d<double>&, const MMPoint3d<double>&,
                                             bool) const;

    template <_Operation operation, class T>
    bool _Convert(T& outX, T& outY, T& outZ, T x, T y, T z, bool isDirection) const;
};
