#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <cassert>
#include <vector>

/// The rigid transform p' = R p + t: a rotation R (3x3) and a translation t, kept by value.
///
/// It is the compact form in which motions are computed, kept and compared. It is no `MMTransform`;
/// `MMTransformMatrix::Make` turns it into one. There is no inverse stored and no flag.
///
/// R is meant to be orthonormal, but nothing enforces it: `Verify` tests. Every sum runs from the
/// left, ((r0 x + r1 y) + r2 z) + t. NaN and infinity are carried through.
///
/// Laws: `a.Concatenate(b)` makes a(p) the old b(a(p)), to rounding; Transform(p) - t = Rotate(p),
/// to rounding; with R orthonormal (`Verify`) InverseTransform undoes Transform, to rounding.
///
/// Not laws: `InverseTransform` of another R is no inverse, it gives R'R p; a chain of
/// `Concatenate` does not stay orthonormal for ever, rounding errors add up; `==` is no
/// equivalence, it compares with a tolerance and is not transitive, and a transform that holds NaN
/// or infinity does not equal itself.
///
/// Arguments may lie in the object itself (`t.Concatenate(t)`, a point at `Translation()`) and
/// outputs may be inputs: each operation reads all of them before it writes.
class NORVEK_MATH_API MMOrthoTransform
{
public:
    /// The identity.
    MMOrthoTransform() = default;

    /// Copies all twelve values.
    MMOrthoTransform(const MMOrthoTransform&) = default;

    /// Copies all twelve values.
    MMOrthoTransform& operator=(const MMOrthoTransform&) = default;

    /// Takes over all twelve values.
    virtual void Copy(const MMOrthoTransform& other);

    /// Reads the 3x4 matrix [R | t] row by row: R00, R01, R02, tx, R10, ... Nothing is checked.
    virtual void SetFrom12Elements(const double* elements);

    virtual ~MMOrthoTransform();

    /// @name Changes
    /// @{

    /// R = 1, t = 0.
    void MakeIdentity();

    /// Sets t and the three rows of R, unchecked. Rows here, while the axes that
    /// `MMTransformMatrix::MakeTransformation` takes are columns.
    void MakeTransformation(MMPoint3d<double> translation, MMPoint3d<double> row0,
                            MMPoint3d<double> row1, MMPoint3d<double> row2);

    /// The right-handed rotation by `angle` radians about the line through `center` along `axis`
    /// (Rodrigues' formula); `center` stays where it is.
    ///
    /// With `normalise` the axis is first divided by its length, which neither overflows nor
    /// underflows on the way; an axis whose length is not above 0 (zero or NaN) leaves the
    /// transform unchanged, and one whose length is beyond the doubles gives no rotation.
    /// Without `normalise` the axis must have unit length; any other gives an R that is not rigid,
    /// without a sign of it.
    void MakeRotation(const MMPoint3d<double>& center, const MMPoint3d<double>& axis,
                      const double& angle, const bool& normalise);

    /// Sets t and keeps R.
    void SetTranslation(MMPoint3d<double> translation);

    /// Keeps R and sets t = c - R c, so that R turns about `center`.
    void SetRotationCenter(MMPoint3d<double> center);

    /// Moves by `offset` after the transform: t = t + offset.
    ///
    /// This is the product with [1 | offset], zeros multiplied and all: an infinite element of R or
    /// t turns the others of its column to NaN.
    void Translate(MMPoint3d<double> offset);

    /// Applies `other` after this transform: R = R' R and t = R' t + t', with R' and t' of `other`.
    /// `other` may be this transform.
    void Concatenate(const MMOrthoTransform& other);

    /// The three values of t, to read and to write in place. Valid as long as the object.
    double* Translation()
    {
        return _translation;
    }
    /// @}

    /// @name Reading
    /// @{

    /// The three values of t.
    [[nodiscard]] const double* Translation() const
    {
        return _translation;
    }

    /// One element of [R | t]. Rows are 0 to 2 and columns 0 to 3, unchecked in release builds.
    [[nodiscard]] double GetElement(unsigned short row, unsigned short col) const
    {
        assert(row < 3 && col < 4);
        return col < 3 ? _rotation[row][col] : _translation[row];
    }

    /// A row of R (0 to 2).
    void GetRow(MMPoint3d<double>& out, unsigned short row) const
    {
        assert(row < 3);
        out = {_rotation[row][0], _rotation[row][1], _rotation[row][2]};
    }

    /// The rows of R have unit length and are orthogonal to each other: no dot product differs by
    /// more than 1.1102230246251565e-12 from what it should be. The bound itself passes, NaN fails.
    /// The determinant is not looked at, so that a reflection passes as well.
    [[nodiscard]] bool Verify() const;

    /// Close to the identity: no element of R differs from the unit matrix by `rotationTolerance`
    /// or more, and no coordinate of t from 0 by `translationTolerance` or more. The bounds
    /// themselves fail, and so does NaN; with a tolerance of 0 not even the identity passes.
    [[nodiscard]] bool IsSmall(double rotationTolerance, double translationTolerance) const;

    /// Element (2, 2) > 0: seen along z, figures in the xy plane keep their turning sense.
    [[nodiscard]] bool Keeps2DOrientation() const;

    /// Every element of R differs by less than 1.4901161193847656e-07 and every coordinate of t by
    /// less than 1.4901161193847656e-06, ten and a hundred square roots of the machine epsilon. The
    /// bounds are absolute; NaN equals nothing.
    bool operator==(const MMOrthoTransform& other) const;
    /// @}

    /// @name Computing
    /// @{

    /// out = R p + t.
    void Transform(MMPoint3d<double>& out, MMPoint3d<double> point) const
    {
        out = {_TimesRow(0, point) + _translation[0], _TimesRow(1, point) + _translation[1],
               _TimesRow(2, point) + _translation[2]};
    }

    /// out = R' (p - t), with R' the transpose: the inverse when R is orthonormal, and to the
    /// extent that it is.
    void InverseTransform(MMPoint3d<double>& out, MMPoint3d<double> point) const
    {
        const MMPoint3d<double> p(point.x - _translation[0], point.y - _translation[1],
                                  point.z - _translation[2]);
        out = {_TimesColumn(0, p), _TimesColumn(1, p), _TimesColumn(2, p)};
    }

    /// out = R v: turns a direction, to which no translation applies.
    void Rotate(MMPoint3d<double>& out, MMPoint3d<double> direction) const
    {
        out = {_TimesRow(0, direction), _TimesRow(1, direction), _TimesRow(2, direction)};
    }

    /// Transforms every point of `in` into the same element of `out`, which is resized and may be
    /// `in` itself. The bits are those of one point at a time; two at a time are computed.
    void Transform(std::vector<MMPoint3d<double>>& out,
                   const std::vector<MMPoint3d<double>>& in) const;

    /// Transforms every point in place.
    void Transform(std::vector<MMPoint3d<double>>& points) const;
    /// @}

private:
    double _TimesRow(int row, const MMPoint3d<double>& p) const
    {
        const double(&r)[3] = _rotation[row];
        return r[0] * p.x + r[1] * p.y + r[2] * p.z;
    }

    double _TimesColumn(int col, const MMPoint3d<double>& p) const
    {
        return _rotation[0][col] * p.x + _rotation[1][col] * p.y + _rotation[2][col] * p.z;
    }

    double _rotation[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    double _translation[3] = {0.0, 0.0, 0.0};
};
