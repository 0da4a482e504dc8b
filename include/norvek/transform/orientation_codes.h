#pragma once

#include <norvek/foundation/export.h>

/// @file
/// Orientation codes: three letters that name, for the x, y and z axis of a data set in this
/// order, the direction in which the axis points (not the side that it comes from).
///
/// | pair | home axis | positive | negative |
/// |---|---|---|---|
/// | `R` `L` (right, left) | x | `R` | `L` |
/// | `B` `T` (bottom, top) | y | `B` | `T` |
/// | `P` `A` (posterior, anterior) | z | `P` | `A` |
///
/// `X` stands for an unknown direction, and is what any other character is taken for. A code is a
/// string of wide characters of which the first three count; more may follow. A string with fewer
/// than three characters, and null, is no code: every predicate is false for it, and nothing is
/// read past its end.
///
/// *Handedness* is counted in the frame of R, B and P, which is right-handed by agreement: a
/// complete valid code in upper case is right-handed when the determinant of its three directions
/// in that frame is 1. The agreement is not anatomy: in a body, right x bottom points to the front,
/// so that a matrix made of a body's own directions has the opposite determinant.
///
/// *Case.* Validity, completeness and the axial test accept both cases, the handedness tests see
/// only capital letters, and comparisons of letters with each other distinguish the cases; each
/// function says which. Convert codes to upper case first and the distinctions vanish. Converting
/// touches a to z only, whatever the locale.
///
/// Laws for codes in upper case: the opposite of an opposite of a direction is the direction; a
/// complete valid code is right-handed or becomes so with its y letter replaced by the opposite;
/// what `MAAK_RECHTSHANDIG` accepted is valid, complete and right-handed. Not a law: that a
/// right-handed code is valid (`XXX` and `rbp` count as right-handed).
///
/// Nothing is thrown, and every function may run on several threads at once.

/// The opposite direction, always in upper case: A-P, L-R, T-B, in either case of `letter`; `X` for
/// every other character, `X` included.
[[nodiscard]] NORVEK_MATH_API wchar_t GetOpposite(wchar_t letter);

/// Writes the opposite of `in` to `out`. Where it is `X`, `in` is set to `X` as well. The two may
/// be the same letter, which then becomes its opposite.
NORVEK_MATH_API void GetOpposite(wchar_t& out, wchar_t& in);

/// Whether the three letters are directions or `X`, in either case, and no axis is named twice.
///
/// `X` may stand any number of times: `XXX` is valid. An axis named twice is found by comparing a
/// letter as written with the later ones as written, and with their opposites in upper case. So
/// `RRA` and `RAL` are not valid, but a letter repeated in the other case is no repeat (`RrA` is
/// valid), and an opposite is found only behind a capital letter (`Rla` is not valid, `rLA` is).
[[nodiscard]] NORVEK_MATH_API bool IsOrientationValid(const wchar_t* code);

/// Whether the three letters are directions, in either case, and no letter stands twice as written.
/// Opposites are not looked for: `RLA` is complete, though not valid.
[[nodiscard]] NORVEK_MATH_API bool IsOrientationComplete(const wchar_t* code);

/// Whether the code is valid and its slices lie across the body: z is `B` or `T`, or z is `X` and
/// neither x nor y is `B` or `T`. Either case of all letters counts.
[[nodiscard]] NORVEK_MATH_API bool IsOrientationAxial(const wchar_t* code);

/// Whether the axes form a right-handed frame, counted on capital letters.
///
/// With k the number of letters that are not on their home axis and n the number of negative
/// letters, false for k = 1 (no permutation moves one axis only), and otherwise true when n, plus 1
/// for k = 2 (two axes exchanged), is even. Validity is not asked for: whatever is no capital
/// direction letter counts as off its home axis and positive, so `XXX` and `rbp` are right-handed.
[[nodiscard]] NORVEK_MATH_API bool IsOrientationRightHanded(const wchar_t* code);

/// Whether the number of letters that are not on their home axis is other than 1, so that
/// `IsOrientationRightHanded` has an answer. Counted on capital letters.
[[nodiscard]] NORVEK_MATH_API bool IsOrientationRightHandedValid(const wchar_t* code);

/// Repairs a code in place into a right-handed one, by turning the y axis round where needed: never
/// x or z.
///
/// First every letter that is in conflict with the x letter, then with the y letter, becomes `X`:
/// those equal to it as written and those equal to its opposite in upper case. A letter that is no
/// direction becomes `X` itself. True when three directions are left, in either case. On false the
/// code keeps the letters cleared so far: `RRP` becomes `RXP`, `QRQ` becomes `XRQ`. Null or fewer
/// than three letters: false, and nothing is written.
///
/// Handedness is that of `IsOrientationRightHanded`. In mixed case it may not be reached, and the
/// result is true all the same: `RBp` becomes `RTp`.
NORVEK_MATH_API bool MAAK_RECHTSHANDIG(wchar_t* code);

/// Copies `in` with its terminating zero to `out`, and turns the y axis round when `mirror` is not
/// zero: the y letter becomes its opposite, `X` where it has none.
///
/// Returns 1 when `out` is right-handed (`IsOrientationRightHanded`), otherwise 0. `out` has room
/// for the whole string and may overlap `in`. A string without a y letter is copied as it is; null
/// as `in` leaves an empty string in `out`; null as `out` gives 0.
NORVEK_MATH_API unsigned char ORIENTATIE_MET_SPIEGEL(wchar_t* out, const wchar_t* in,
                                                     unsigned char mirror);
