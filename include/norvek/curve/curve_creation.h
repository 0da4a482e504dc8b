#pragma once

#include <norvek/curve/nurbs.h>

#include <cstdint>

/// What a fit may use. A plain record of integers.
struct spd_Comm
{
    /// For the caller's use; neither read nor written.
    int reserved = 0;
    /// W, which bounds the input: at most W / 10 points, and a number of control points of at most
    /// floor(sqrt(W)), and at most W / number of points.
    int workSize = 0;
    /// How many knots the curve's storage holds; 0 or less when the caller does not say.
    int knotCapacity = 0;
    /// How many control points the curve's storage holds; 0 or less when the caller does not say.
    int controlPointCapacity = 0;
};

/// Fits a B-spline curve of weights 1 through measured points, in the least-squares sense.
///
/// `points` are x, y, z of `numPoints` points in turn. `options` are at least five integers, of
/// which two are read:
///
/// - index 1, the exponent of the parametrisation in percent: 0 uniform, 50 centripetal, 100 chord
///   length. Outside 0 to 100 it becomes 50, with warning 0x40.
/// - index 4, the close status: 0 open, 1 periodic, 2 unclamped knots with an open fit. Anything
///   else becomes 0, with warning 0x80.
///
/// On entry `curve` has the order k and the number n of control points
/// that are wanted, and storage for knots and control points.
///
/// **Repairs.** An order outside 2 to 20 becomes 4 (0x200). Then n is accepted when k <= n,
/// n <= floor(sqrt(W)), n <= 2000, n <= numPoints and n * numPoints <= W. If not (0x800): below 1
/// it becomes half the number of points, at least 4, and k becomes 4; it is cut to numPoints, then
/// to W / numPoints; and k is cut to n, down to 1. A repaired n may exceed floor(sqrt(W)) and 2000:
/// only an accepted one is held to them. `options` and `curve` are left with the values used.
///
/// **Parameters.** Each is the one before plus d^(percentage / 100), d the distance between the
/// two points; points closer than the root of 1e-11 share a parameter. All are divided by the last.
///
/// **Knots.** Open: k times 0, j / (n - k + 1) for j = 1 to n - k, k times 1. Closed (1 and 2):
/// (i - k + 1) / (n - k + 1) for i = 0 to n + k - 1. The ends are knots[k - 1] = 0 and knots[n]
/// = 1.
///
/// **Control points** minimise the sum of squared distances between the points and the curve at
/// their parameters, by a Householder factorisation of the matrix of basis values: linear in the
/// points, for a band that runs along the diagonal. The periodic fit has n - k + 1 free control
/// points; the last k - 1 repeat the first, and the curve closes with k - 2 continuous derivatives.
///
/// **Storage.** The caller supplies room for the values *used*: n control points and n + k knots.
/// Where the input is in order, these are those asked for. Two repairs need more: an order outside
/// 2 to 20 needs n + 4 knots; n below 1 needs max(4, numPoints / 2) control points and 4 knots
/// more. Record and arrays do not tell their size, so callers who cannot rule these repairs out
/// set the capacities in `comm`: a curve that does not fit is refused with 1, before anything but
/// the repaired options, order and count is written.
///
/// **Result.** 0 when all went well, the sum of the warnings, or an error alone:
///
/// - 5: no points, more than W / 10, one that is not finite, or a pointer that is null (options,
///   curve, its two arrays and `comm` included). Nothing is written, not even repairs.
/// - 6: the parameters add up to 1e-11 or less (a single point, coincident points, any number of
///   steps below the root of 1e-11) or overflow. Options, order and count are written.
/// - 16: the system is short of rank to working precision, or so near to it that rounding would
///   move the curve by more than 1e-8 of the points' extent; or there is no memory. Knots are
///   written, control points are at the origin with weight 1. Spans that no parameter falls into
///   make such a system, and so do as many control points as evenly spread points: from order 4 on
///   as the number grows (100 at order 4, 40 at order 8).
/// - 1: the stated capacities are too small.
///
/// Never throws. Time and memory grow linearly with the points: order^2 operations and 8 bytes for
/// each, and 48 bytes more where a system near to being short of rank has to be looked at again.
/// The periodic fit is not banded and takes the square of the free control points for each point,
/// and 16 bytes times their number.
NORVEK_MATH_API int spd_create_curve(std::int32_t numPoints, double* points, int* options,
                                     NURBSCurv* curve, spd_Comm* comm);
