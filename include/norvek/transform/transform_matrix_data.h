#pragma once

#include <cstdint>

/// The structural kinds of a 4x4 matrix. Where kinds overlap, a matrix gets the first that fits in
/// the order Identity, Translation, Scale1D, Scale3D, OrthoNormal, OrthoGonal, General.
///
/// Exact tests compare with `==` (so -0 counts as 0), the others by |difference| < tolerance, which
/// NaN fails.
enum class MMTransformMatrixClass : std::int32_t
{
    /// Exactly the unit matrix.
    Identity,
    /// 3x3 part and bottom row those of the unit matrix within ten machine epsilons, any
    /// translation.
    Translation,
    /// None of the others.
    General,
    /// Columns of the 3x3 part of unit squared length and mutually orthogonal, within ten machine
    /// epsilons; any translation; bottom row exactly (0, 0, 0, 1). A mirrored rotation fits as
    /// well.
    OrthoNormal,
    /// Columns mutually orthogonal and of equal squared length within one machine epsilon;
    /// translation exactly 0, bottom row exactly (0, 0, 0, 1). The tolerance is absolute, so that
    /// the units matter: columns shorter than 1.49e-8 pass whatever their angles, singular ones
    /// included, and such a matrix reports invertible with an inverse that does not undo it.
    OrthoGonal,
    /// Exactly diag(s, s, s, 1).
    Scale1D,
    /// Exactly diag(sx, sy, sz, 1).
    Scale3D
};

/// The state of a matrix transform, set by the class below.
struct MMTransformMatrixData
{
    /// Row-major; the translation is column 3, the projective row is row 3. Aligned so that half a
    /// row is one load of a vector register.
    alignas(16) double _matrix[4][4];
    /// Same layout.
    alignas(16) double _inverse[4][4];
    /// The bottom row differs from (0, 0, 0, 1). While false the bottom row takes no part.
    bool _homogeneous;
    /// The last computation of the inverse succeeded.
    bool _invertible;
    /// The cached kind.
    MMTransformMatrixClass _class;
};
