#pragma once

#include <norvek/transform/transform.h>
#include <norvek/transform/transform_matrix_data.h>

#include <cassert>

class MMOrthoTransform;

/// The 4x4 matrix transform: p' = M p with points as columns, the translation in the last column.
///
/// It carries its inverse and its kind, so that inverting is a swap and the common kinds are
/// inverted in closed form. All makers and loaders end with the same *closing step*: the
/// homogeneous flag, the kind and the inverse are computed anew, and the invertible flag says
/// whether there is an inverse.
///
/// Invariant after every operation except the raw setters (`SetElement`, `AccessElement`,
/// `SetHomogeneous`): the kind fits the matrix, and M M^-1 = 1 when `IsInversible()`. Five cases
/// break it on purpose, all described at their place: `Scale1D` after a translation keeps old
/// entries of the inverse, `ScaleTranslation` and `MakeRotation(m)` do not reclassify, products do
/// not recompute the invertible flag, and small matrices without translation pass for `OrthoGonal`.
///
/// Laws: (a * b)(p) = a(b(p)); a * (b * c) = (a * b) * c to rounding; `Invert` twice gives the old
/// matrix bit for bit. Not a law: a * b = b * a.
///
/// A position is (M p) with the translation; a direction leaves out the translation column and,
/// for the homogeneous coordinate w, element (3, 3). With the homogeneous flag set the result is
/// divided by w; w exactly 0 throws `MMTransformException` of kind `HomogeneousDivideByZero` and
/// writes nothing. An affine matrix whose flag was set by hand therefore throws for every
/// direction, whose w is 0. Each sum runs from the left: ((m00 x + m01 y) + m02 z) + m03.
///
/// NaN and infinity are carried through; they never hang or fail a computation.
class NORVEK_MATH_API MMTransformMatrix : public MMTransform, protected MMTransformMatrixData
{
public:
    /// @cond the overloads of one point, documented in the base
    using MMTransform::Transform;
    /// @endcond

    /// The identity, invertible and not homogeneous.
    MMTransformMatrix();

    /// Copies matrix, inverse, flags and kind.
    MMTransformMatrix(const MMTransformMatrix&) = default;

    /// Copies matrix, inverse, flags and kind.
    MMTransformMatrix& operator=(const MMTransformMatrix&) = default;

    ~MMTransformMatrix() override = default;

    /// A new matrix with the same matrix, inverse, flags and kind, owned by the caller.
    [[nodiscard]] MMTransformMatrix* Clone() const override;

    /// Takes over matrix, inverse, flags and kind.
    void Copy(const MMTransformMatrix& other);

    /// @name Loaders
    /// Rows from the top, element by element; closing step. The array may be storage of this very
    /// matrix. The forms of 12 take rows 0 to 2 and set the bottom row to (0, 0, 0, 1).
    /// @{
    /// Loads all 16 elements.
    void MakeFromDouble16(const double* rows);

    /// Loads all 16 elements.
    void MakeFromFloat16(const float* rows);

    /// Loads rows 0 to 2.
    void MakeFromDouble12(const double* rows);

    /// Loads rows 0 to 2.
    void MakeFromFloat12(const float* rows);
    /// @}

    /// @name Makers
    /// Each replaces the matrix and, unless said otherwise, ends with the closing step and returns
    /// true. A singular result is no failure of the maker: `IsInversible` is false then. Arguments
    /// may lie in this very matrix. Euler angles are in degrees, the axis-angle form takes radians.
    /// @{

    /// Unit matrix and unit inverse.
    bool MakeIdentity();

    /// Moves by `translation`.
    bool MakeTranslation(const MMPoint3d<double>& translation);

    /// diag(s, s, s, 1). A scale within ten machine epsilons of 1 is a `Translation`, its inverse
    /// the unit matrix. `ComputeInverse` tells which entries of an old inverse stay.
    bool MakeScale1D(double scale);

    /// diag(sx, sy, sz, 1).
    bool MakeScale3D(const double& sx, const double& sy, const double& sz);

    /// diag(x, y, z, 1).
    bool MakeScale3D(const MMPoint3d<double>& scale);

    /// The frame that takes local (a, b, c) to origin + a xAxis + b yAxis + c zAxis. The axes are
    /// its columns exactly as passed, not normalised.
    bool MakeTransformation(const MMPoint3d<double>& origin, const MMPoint3d<double>& xAxis,
                            const MMPoint3d<double>& yAxis, const MMPoint3d<double>& zAxis);

    /// Rz(az) Ry(ay) Rx(ax), in degrees: turns about the fixed x axis first, then y, then z.
    bool MakeRotationXYZ(double ax, double ay, double az);

    /// Rx(ax) Ry(ay) Rz(az), in degrees: turns about z first. The arguments keep the order x, y, z.
    bool MakeRotationZYX(double ax, double ay, double az);

    /// The rotation of `MakeRotationXYZ` about `center` instead of the origin.
    bool MakeRotationXYZ(const MMPoint3d<double>& center, double ax, double ay, double az);

    /// The rotation of `MakeRotationZYX` about `center` instead of the origin.
    bool MakeRotationZYX(const MMPoint3d<double>& center, double ax, double ay, double az);

    /// Applies the rotation of `MakeRotationXYZ` after the present transform.
    bool DoRotationXYZ(double ax, double ay, double az);

    /// Applies the rotation of `MakeRotationZYX` after the present transform.
    bool DoRotationZYX(double ax, double ay, double az);

    /// The right-handed rotation by `angle` radians about the line through `center` along `axis`
    /// (Rodrigues' formula). The axis may have any length that a normal double can hold; with one
    /// beyond or below the result is no rotation. False, and unchanged, for a zero axis.
    ///
    /// The bottom row stays as it was. On a matrix with a bottom row other than (0, 0, 0, 1) the
    /// centre is sent through as a direction, divided by its w; w = 0 throws
    /// `HomogeneousDivideByZero` and leaves the matrix unchanged.
    bool MakeRotation(const MMPoint3d<double>& center, const MMPoint3d<double>& axis, double angle);

    /// Adds the translation of `rigid`, rounded to single precision (required behaviour), by
    /// `AddTranslation`; then replaces the 3x3 part by its R and the bottom row by (0, 0, 0, 1). So
    /// the old translation takes part: only an identity becomes `rigid` itself.
    bool Make(const MMOrthoTransform& rigid);

    /// The rotation part of `other`: its rows divided by their lengths, translation 0, bottom row
    /// (0, 0, 0, 1). The columns of the inverse are multiplied by the same lengths.
    ///
    /// Each length is rounded to single precision (required behaviour): rows of a scaled matrix get
    /// unit length to about 6e-8 only. Kind, flags and the inverse's translation column are those
    /// of `other`; nothing is reclassified. A zero row divides by zero.
    bool MakeRotation(const MMTransformMatrix& other);

    /// Rotation about the origin that turns direction `from` onto direction `to` within their
    /// plane, by the smaller angle; the lengths play no part.
    ///
    /// Opposite directions turn half way round, about the part of `normal` that is perpendicular to
    /// them, or when there is none (a zero `normal` means none is given) about a perpendicular that
    /// depends on `from` alone. False, and unchanged, when `from` or `to` is not finite or not
    /// longer than one machine epsilon.
    bool MakeRotationInPlane(MMPoint3d<double> from, MMPoint3d<double> to,
                             const MMPoint3d<double>& normal);

    /// The rigid frame at `origin` whose x axis points to `point`: (0, 0, 0) goes to `origin` and
    /// (1, 0, 0) to the unit direction from there. The turn is that of `MakeRotationInPlane`
    /// without a normal. Without a direction (the points coincide to one machine epsilon, or their
    /// difference is not finite) the frame is not turned.
    bool MakeNewXAxis(const MMPoint3d<double>& origin, const MMPoint3d<double>& point);

    /// The same for the y axis.
    bool MakeNewYAxis(const MMPoint3d<double>& origin, const MMPoint3d<double>& point);

    /// The same for the z axis.
    bool MakeNewZAxis(const MMPoint3d<double>& origin, const MMPoint3d<double>& point);

    /// Maps the box x in [a1, a2], y in [a3, a4], z in [a5, a6] to [-1, 1] on each axis: the centre
    /// goes to 0, x keeps its sense and y and z are turned round (the difference is meant). Equal
    /// scales on all axes leave entries of an old inverse, see `ComputeInverse`. False, and
    /// unchanged, when two limits of an axis are equal.
    bool MakeOrthoGraphicProjection(double a1, double a2, double a3, double a4, double a5,
                                    double a6);

    /// Perspective from the eye (0, 0, a7): the window x in [a1, a2], y in [a3, a4] of the near
    /// plane z = a6 goes to [-1, 1], with y turned round, the near plane to z = -1 and the far
    /// plane z = a5 to z = 1. False, and unchanged, when two limits of an axis are equal.
    bool MakePerspectiveProjection(double a1, double a2, double a3, double a4, double a5, double a6,
                                   double a7);
    /// @}

    /// @name Changes
    /// @{

    /// Replaces the 3x3 part by an orthonormal one; translation and bottom row stay; closing step.
    ///
    /// Gram-Schmidt: the x axis keeps its direction, y loses its part along x, z follows from them
    /// and keeps the handedness of the part. False, and unchanged, when the part has no full rank:
    /// when a column is zero or not finite, or after scaling to unit length lies within ten machine
    /// epsilons of the span of those before it.
    bool MakeOrthoNormal();

    /// Sets the translation alone, so that `center` is a fixed point; closing step. False, and
    /// unchanged, when a projective bottom row sends `center` to infinity (w exactly 0).
    bool SetRotationCenter(const MMPoint3d<double>& center);

    /// Applies a translation after the present transform: a full product T * this, and the kind
    /// anew. The array forms read three values.
    void AddTranslation(const MMPoint3d<double>& translation);
    void AddTranslation(const MMPoint3d<float>& translation);
    void AddTranslation(const double* translation);
    void AddTranslation(const float* translation);

    /// Replaces the translation: sets the translation columns of matrix and inverse to zero, then
    /// `AddTranslation`.
    void FillInTranslation(const MMPoint3d<double>& translation);
    void FillInTranslation(const MMPoint3d<float>& translation);
    void FillInTranslation(const double* translation);
    void FillInTranslation(const float* translation);

    /// Multiplies the translation columns of matrix and inverse. The kind is not computed anew: a
    /// translation scaled to 0 still is a `Translation`.
    void ScaleTranslation(double factor);

    /// this = this * other: `other`, which may be this matrix, applies first. The inverses are
    /// multiplied the other way round, the kind is computed anew. The invertible flag stays: an
    /// invertible times a singular matrix reports invertible; `ComputeInverse` tells.
    MMTransformMatrix& operator*=(const MMTransformMatrix& other);

    /// this = other * this, under the same rules.
    MMTransformMatrix& PreMultiply(const MMTransformMatrix& other);

    /// Swaps matrix and inverse; flags and kind stay. False, and unchanged, when not invertible.
    bool Invert() override;

    /// Computes the inverse by kind and stores and returns whether there is one; without one the
    /// old inverse stays.
    ///
    /// The kinds are inverted in closed form, `General` by Gauss-Jordan elimination with partial
    /// pivoting. Only exact zeros fail, no tolerance is used: near singularity is the caller's to
    /// judge. The inverse is right where the kind is; `MMTransformMatrixClass::OrthoGonal` tells of
    /// small matrices for which it is not. `Scale1D` writes neither the translation column nor the
    /// first three elements of the bottom row of the inverse: they keep what the inverse held
    /// before (after a translation they are stale, and `InverseTransform` adds them).
    virtual bool ComputeInverse();

    /// Transposes the whole 4x4 matrix; closing step.
    virtual void Transpose();

    /// Computes the homogeneous flag from the bottom row, then the kind, but not the inverse.
    void VerifyAndSetClass();

    /// Writes one element, of the inverse with `ofInverse`. Nothing else is updated: follow with
    /// `VerifyAndSetClass` and `ComputeInverse`. Indices are 0 to 3, unchecked in release builds.
    void SetElement(unsigned short row, unsigned short col, double value, bool ofInverse)
    {
        AccessElement(row, col, ofInverse) = value;
    }

    /// A writable reference to one element, under the rules of `SetElement`.
    double& AccessElement(unsigned short row, unsigned short col, bool ofInverse)
    {
        assert(row < 4 && col < 4);
        return ofInverse ? _inverse[row][col] : _matrix[row][col];
    }

    /// Sets the homogeneous flag by hand.
    void SetHomogeneous(bool homogeneous)
    {
        _homogeneous = homogeneous;
    }
    /// @}

    /// @name Reading
    /// @{

    /// One element, of the inverse with `ofInverse`. Indices 0 to 3, unchecked in release builds.
    [[nodiscard]] double GetElement(unsigned short row, unsigned short col, bool ofInverse) const
    {
        assert(row < 4 && col < 4);
        return ofInverse ? _inverse[row][col] : _matrix[row][col];
    }

    /// The first three elements of a row (0 to 3). `T` is float or double.
    template <class T>
    void GetRow(MMPoint3d<T>& out, unsigned short row) const
    {
        assert(row < 4);
        const double* const r = _matrix[row];
        out = MMPoint3d<T>(static_cast<T>(r[0]), static_cast<T>(r[1]), static_cast<T>(r[2]));
    }

    /// Rows 0 to 2 of a column (0 to 3). `T` is float or double.
    template <class T>
    void GetColumn(MMPoint3d<T>& out, unsigned short col) const
    {
        assert(col < 4);
        out = MMPoint3d<T>(static_cast<T>(_matrix[0][col]), static_cast<T>(_matrix[1][col]),
                           static_cast<T>(_matrix[2][col]));
    }

    /// Elements (0, 3), (1, 3), (2, 3).
    void GetTranslation(float* out) const;
    void GetTranslation(double* out) const;

    /// The 3x3 parts of the matrix and of the inverse, [row][column], rounded to float.
    void FillIn3x3(float (*matrix)[3], float (*inverse)[3]) const;

    /// Writes the 16 elements row by row; true.
    bool ConvertToFloat16(float* matrix) const override;
    bool ConvertToDouble16(double* matrix) const override;

    /// The homogeneous flag: the bottom row takes part.
    [[nodiscard]] bool IsHomogeneous() const
    {
        return _homogeneous;
    }

    /// The invertible flag, the outcome of the last computation of the inverse.
    [[nodiscard]] bool IsInversible() const
    {
        return _invertible;
    }

    /// The cached kind is `Identity`. Virtual, and asked by every point transform.
    [[nodiscard]] bool IsIdentity() const override;

    /// The cached kind is `Translation` or `Identity`.
    [[nodiscard]] bool IsTranslation() const;

    /// The cached kind is `Scale1D` or `Identity`.
    [[nodiscard]] bool IsScale1D() const;

    /// The cached kind is `Scale3D`, `Scale1D` or `Identity`.
    [[nodiscard]] bool IsScale3D() const;

    /// The cached kind is `OrthoNormal`, `Translation` or `Identity`.
    [[nodiscard]] bool IsOrthoNormal() const;

    /// The cached kind is `OrthoGonal`, `OrthoNormal`, `Identity`, `Translation` or `Scale1D`.
    [[nodiscard]] bool IsOrthoGonal() const;

    /// Element (2, 2) > 0: seen along z, figures in the xy plane keep their turning sense.
    [[nodiscard]] bool Keeps2DOrientation() const;

    /// All 16 matrix elements differ by less than a hundred square roots of the machine epsilon
    /// (1.49e-6, absolute). Inverse, flags and kind take no part; NaN equals nothing.
    [[nodiscard]] bool _Equal(const MMTransformMatrix& other) const;
    /// @}

    /// @name Computing
    /// @{

    /// As in `MMTransform`, with the bits of one point at a time. Does not fail; throws
    /// `HomogeneousDivideByZero` at the first point whose w is 0, with those before it transformed.
    bool Transform(std::vector<MMPoint3d<double>>& out,
                   const std::vector<MMPoint3d<double>>& in) const override;
    bool Transform(std::vector<MMPoint3d<double>>& points) const override;

    /// Element (0, 0) of a `Scale1D` or `Identity`; throws `NotScale1D` for every other kind.
    [[nodiscard]] double GetScale() const;

    /// The determinant of the 3x3 part by the six-term rule: the three products along the main
    /// diagonals less the three along the others.
    [[nodiscard]] double Determinant() const;

    /// One coordinate of the image, without the homogeneous division and without the short cut for
    /// the identity.
    [[nodiscard]] double TransformX(double x, double y, double z, bool isDirection) const;
    [[nodiscard]] double TransformY(double x, double y, double z, bool isDirection) const;
    [[nodiscard]] double TransformZ(double x, double y, double z, bool isDirection) const;

    /// The same through the stored inverse, whether or not the matrix is invertible.
    [[nodiscard]] double InverseTransformX(double x, double y, double z, bool isDirection) const;
    [[nodiscard]] double InverseTransformY(double x, double y, double z, bool isDirection) const;
    [[nodiscard]] double InverseTransformZ(double x, double y, double z, bool isDirection) const;

    /// The angles in degrees that `MakeRotationXYZ` turns into the rotation part, each in
    /// [-180, 180] and ay in [-90, 90].
    ///
    /// The part may be scaled, each column by its own positive factor. The angles rebuild it to
    /// 1e-12 in every element, less as far as the columns themselves are not orthogonal. At gimbal
    /// lock (|cos ay| below a hundred machine epsilons) az is 0. False, with the outputs untouched,
    /// for a column that is zero or not finite, for columns whose unit vectors have a dot product
    /// of 1.49e-6 or more, and for a mirrored part.
    bool GetRotationXYZ(double& ax, double& ay, double& az) const;

    /// The angles in degrees that `MakeRotationZYX` turns into the rotation part, under the same
    /// rules; at gimbal lock az is 0 here as well.
    bool GetRotationZYX(double& ax, double& ay, double& az) const;
    /// @}

protected:
    bool _Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                    bool isDirection) const override;

    /// As `_Transform` on the inverse matrix; asks the invertible flag first.
    bool _InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                           bool isDirection) const override;

    /// @name Inverses
    /// On failure they leave the inverse as it is.
    /// @{

    /// Calls the one of the cached kind and stores its verdict.
    virtual bool _ComputeInverse();

    /// By Gauss-Jordan elimination; false on an exactly zero pivot.
    virtual bool _ComputeInverseGeneral();

    /// The unit matrix; true.
    virtual bool _ComputeInverseIdentity();

    /// The opposite translation; true.
    virtual bool _ComputeInverseTranslation();

    /// The transpose; true.
    virtual bool _ComputeInverseOrthoNormal();

    /// The transpose over the squared length of column 0; false when that is 0.
    virtual bool _ComputeInverseOrthoGonal();

    /// The reciprocal scale; false for 0. Leaves old translations, see `ComputeInverse`.
    virtual bool _ComputeInverseScale1D();

    /// The reciprocal diagonal; false when one of its elements is 0.
    virtual bool _ComputeInverseScale3D();
    /// @}

    /// @name Steps of the elimination
    /// They work on the matrix and the unit matrix side by side.
    /// @{

    /// The row from `column` down with the largest magnitude in `column`, the first of equals.
    static int _InvertPivot(const double (&work)[4][8], int column);
    static void _InvertSwapRows(double (&work)[4][8], int a, int b);
    /// Divides a row by its pivot; throws `SingularMatrix` when that is exactly 0.
    static void _InvertDivideRowToOne(double (&work)[4][8], int row);
    /// Subtracts the multiple of the pivot row that clears `row` in the pivot's column.
    static void _InvertSubtractRowFromRow(double (&work)[4][8], int row, int pivotRow);
    /// @}

    /// Turns rows (axis + 1) mod 3 and (axis + 2) mod 3, all four columns: the rotation about the
    /// axis applied after the present matrix. The inverse is not touched.
    void _Rotate(unsigned short axis, double degrees);

    /// The shared form of `MakeNewXAxis` and its like; `axis` is the unit axis.
    bool _MakeNewAxis(const MMPoint3d<double>& axis, const MMPoint3d<double>& origin,
                      const MMPoint3d<double>& point);

private:
    friend NORVEK_MATH_API MMTransformMatrix operator*(const MMTransformMatrix& a,
                                                       const MMTransformMatrix& b);

    MMTransformMatrix(const MMTransformMatrix& a, const MMTransformMatrix& b);

    bool _Close();
    bool _LoadRows(const double (&rows)[12]);
    bool _RotateAbout(const MMPoint3d<double>& center);
};

/// A copy of `a` times `b`: `b` applies first. The invertible flag is that of `a`.
[[nodiscard]] NORVEK_MATH_API MMTransformMatrix operator*(const MMTransformMatrix& a,
                                                          const MMTransformMatrix& b);
