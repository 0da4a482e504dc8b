#pragma once

#include <norvek/foundation/export.h>

#include <cstdint>

/// @file
/// The older rotation routines: single-precision points, integer grid points and 3x3 matrices,
/// turned about the coordinate axes by angles in degrees. New code uses the transforms in double
/// precision; these keep their arithmetic to the bit.
///
/// A point is `float[3]` or three references, a matrix `float[3][3]` row by row, applied to points
/// as columns. An axis is 0 (x), 1 (y) or 2 (z); any other index is a precondition violation. With
/// c and s the cosine and sine of the angle, the rotations are
///
///     Rx = | 1  0  0 |    Ry = |  c  0  s |    Rz = | c -s  0 |
///          | 0  c -s |         |  0  1  0 |         | s  c  0 |
///          | 0  s  c |         | -s  0  c |         | 0  0  1 |
///
/// and three angles stand for Rx(ax) Ry(ay) Rz(az): about z first, then y, then x. (In degrees and
/// double precision that is `MMTransformMatrix::MakeRotationZYX`.)
///
/// Each step is rounded to single precision, in the order stated. Radians are
/// degrees * 3.14159265359 / 180.0 in double, stored as a float; `FILL_TRANSFORM` alone multiplies
/// by the float 0.017453292. The two differ in the last bit for about one angle in ten. Neither
/// takes a quarter turn to exactly pi / 2: the cosine of 90 degrees is -4.4e-8.
///
/// Arguments are read before anything is written, so they may overlap. NaN and infinite angles give
/// NaN. No routine keeps state: all of them may run on several threads at once.

/// m = Rx(angles[0]) Ry(angles[1]) Rz(angles[2]): the unit matrix, turned as by `ROTEER_ENKEL`
/// about z, then y, then x.
NORVEK_MATH_API void ANGLES_TO_MATRIX(float (*m)[3], float* angles);

/// m = the rotation by `degrees` about one axis: Rx, Ry or Rz. Converts with 0.017453292.
NORVEK_MATH_API void FILL_TRANSFORM(float (*m)[3], std::int32_t axis, float degrees);

/// out = a b. Each element is summed as ((0 + a[i][0] b[0][j]) + a[i][1] b[1][j]) + a[i][2]
/// b[2][j].
NORVEK_MATH_API void MATRIX_MATRIX(float (*out)[3], const float (*a)[3], const float (*b)[3]);

/// out = m v, summed in the same way.
NORVEK_MATH_API void MATRIX_VECTOR(float* out, const float (*m)[3], const float* v);

/// Turns a point: p = Rx(ax) Ry(ay) Rz(az) p, angles in degrees, one turn after the other.
NORVEK_MATH_API void ROTEER_3D(float& x, float& y, float& z, float ax, float ay, float az);

/// Turns a grid point in the same way and rounds each result half away from zero: 0.5 is added, or
/// subtracted from a negative number, in double precision, and the fraction is dropped. Results out
/// of range saturate, NaN gives 0.
NORVEK_MATH_API void ROTEER_3D(short& x, short& y, short& z, float ax, float ay, float az);

/// The same for 32-bit coordinates. Those beyond 2^24 lose digits in the float arithmetic.
NORVEK_MATH_API void ROTEER_3D(std::int32_t& x, std::int32_t& y, std::int32_t& z, float ax,
                               float ay, float az);

/// Turns p by `degrees` about the line through `centre` parallel to the axis. The coordinate along
/// the axis is not touched.
NORVEK_MATH_API void ROTEER_ENKEL(float* p, std::int32_t axis, float degrees, float* centre);

/// Turns p by `degrees` about the axis through the origin.
NORVEK_MATH_API void ROTEER_ENKEL(float* p, std::int32_t axis, float degrees);

/// m = R m, with R the rotation by `degrees` about the axis.
NORVEK_MATH_API void ROTEER_ENKEL(float (*m)[3], std::int32_t axis, float degrees);

/// The angle in degrees, in [-180, 180], of the turn about `axis` that brings v onto the positive
/// side of the axis `target`, as far as a turn can: of the two components that it changes, that of
/// `target` becomes positive and the other zero.
///
/// `ROTEER_ENKEL(v, axis, angle)` makes the turn. `target` is another axis than `axis`. A vector
/// along `axis` has nothing to align and gives 0.
[[nodiscard]] NORVEK_MATH_API float GET_ALIGN_ROTATION(const float* v, std::int32_t axis,
                                                       std::int32_t target);

/// The same for the axis `target` of a matrix, its column of that number: the turn about `axis`
/// that brings it closest to the coordinate axis of the same number.
[[nodiscard]] NORVEK_MATH_API float GET_ALIGN_ROTATION(const float (*m)[3], std::int32_t axis,
                                                       std::int32_t target);

/// The three angles whose rotation takes m to the unit matrix: Rx(ax) Ry(ay) Rz(az) m = 1, with m a
/// rotation to single precision. The z turn clears element (1, 0), then the y turn (2, 0), then the
/// x turn (2, 1), each measured on the matrix that the turns before it left.
NORVEK_MATH_API void GET_ALIGN_ROTATIONS(const float (*m)[3], float& ax, float& ay, float& az);

/// Replaces three angles by those of the inverse rotation, each in [-180, 180].
///
/// The matrix of the new angles times that of the old ones is the unit matrix to 2e-6 in every
/// element, for all finite angles and at gimbal lock as well (worst seen over 10^8
/// triples: 4.5e-7). The new angles are in general not the negative old ones, because the
/// order of the turns is the same for both.
NORVEK_MATH_API void ROTEER_INVERSE(float& ax, float& ay, float& az);
