#pragma once

#include <norvek/foundation/export.h>

#include <cstdint>
#include <string>

/// Types of the kernel whose names are common words, and the names of its statuses.
namespace Nurbs
{

/// A point or a vector in space, by coordinate or by index. Not initialised by default; `Point p{}`
/// is the origin, and `Point p{{x, y, z}}` has the given coordinates.
union Point
{
    /// The coordinates by name: `point.x`, `point.y`, `point.z`.
    __extension__ struct
    {
        double x; ///< Along the first axis.
        double y; ///< Along the second axis.
        double z; ///< Along the third axis.
    };
    /// x, y and z by index.
    double coordinates[3];
};

/// The errors of a status, in its low six bits; at most one at a time. Numbers that are not listed
/// have no text of their own.
enum Error : std::int32_t
{
    kNoError = 0,               ///< All went well, but for warnings.
    kMemoryError = 1,           ///< No memory, or the caller's storage is too small.
    kDerivativesError = 2,      ///< A number of derivatives other than 0, 1 and 2; has no text.
    kMeasurementPointError = 5, ///< No points, too many, or one that is not finite.
    kParametrisationError = 6,  ///< The points have no extent, or one too large for a double.
    kCloseStatusErrorU = 7,     ///< Of a surface's direction u; not used by this library.
    kCloseStatusErrorV = 8,     ///< Of a surface's direction v; not used by this library.
    kOrderErrorU = 9,           ///< The order of a curve, or of a surface in u, is below 1.
    kOrderErrorV = 10,          ///< The order of a surface in v is below 1.
    kControlPointsErrorU = 11,  ///< An array is missing, or the order exceeds the count in u.
    kControlPointsErrorV = 12,  ///< The same in v.
    kLeastSquareFitError = 16,  ///< The fit's system is short of rank.
    kVanishingWeightError = 16, ///< The same number, from the evaluators: no weight to divide by.
    kErrorMask = 63             ///< The bits of a status that hold the error.
};

/// The warnings of a status: what a fit had to repair. Any number of them may be set at once.
enum Warning : std::int32_t
{
    kParametrisationWarning = 0x40, ///< The percentage of the parametrisation.
    kCloseStatusWarningU = 0x80,    ///< The close status.
    kCloseStatusWarningV = 0x100,   ///< That of direction v; not raised by this library.
    kOrderWarningU = 0x200,         ///< The order.
    kOrderWarningV = 0x400,         ///< That in v; not raised by this library.
    kControlPointsWarningU = 0x800, ///< The number of control points.
    kControlPointsWarningV = 0x1000 ///< That in v; not raised by this library.
};

} // namespace Nurbs

/// A homogeneous control point, stored weighted: (w X, w Y, w Z, w) is the point (X, Y, Z) with
/// weight w. A curve whose weights are all 1 is not rational. Not initialised by default; `Point4D
/// p{}` is all zeros, and `Point4D p{{x, y, z, w}}` has the given values.
union Point4D
{
    /// The values by name: `point.x`, `point.y`, `point.z`, `point.w`.
    __extension__ struct
    {
        double x; ///< w times the first coordinate.
        double y; ///< w times the second coordinate.
        double z; ///< w times the third coordinate.
        double w; ///< The weight.
    };
    /// x, y, z and w by index.
    double coordinates[4];
};

/// A pair of parameters of a surface. Not initialised by default.
union Point2D
{
    /// The parameters by name: `parameters.u`, `parameters.v`.
    __extension__ struct
    {
        double u; ///< The parameter of the first direction.
        double v; ///< The parameter of the second direction.
    };
    /// u and v by index.
    double coordinates[2];
};

/// A rational B-spline curve C(t) = A(t) / w(t), where (A, w)(t) is the sum of N_j(t) P_j over n
/// homogeneous control points P_j and the B-splines N_j of order k.
///
/// A plain record that owns nothing: the arrays belong to whoever set them.
struct NURBSCurv
{
    /// k, the degree plus one. At least 1; there is no upper limit.
    int order = 0;
    /// n, at least k.
    int numControlPoints = 0;
    /// n + k values that do not descend. Knot j and the k knots after it carry N_j.
    double* knots = nullptr;
    /// knots[k - 1]. For the reader: evaluation takes it from the knots.
    double startParameter = 0.0;
    /// knots[n]. For the reader, too.
    double endParameter = 0.0;
    /// n control points.
    Point4D* controlPoints = nullptr;
};

/// A rational B-spline surface: the tensor product of B-splines in u and in v. What `NURBSCurv`
/// says of order, count, knots and ends holds in each direction.
struct NURBSSurf
{
    /// The order in u.
    int orderU = 0;
    /// The number of control points in u, nu.
    int numControlPointsU = 0;
    /// nu + order in u values that do not descend.
    double* knotsU = nullptr;
    /// knotsU[orderU - 1].
    double startParameterU = 0.0;
    /// knotsU[nu].
    double endParameterU = 0.0;
    /// The order in v.
    int orderV = 0;
    /// The number of control points in v, nv.
    int numControlPointsV = 0;
    /// nv + order in v values that do not descend.
    double* knotsV = nullptr;
    /// knotsV[orderV - 1].
    double startParameterV = 0.0;
    /// knotsV[nv].
    double endParameterV = 0.0;
    /// nu * nv control points, all those of the first u first: (i, j) stands at i * nv + j.
    Point4D* controlPoints = nullptr;
};

/// Turns a status into text. True when it holds an error, warnings or not.
///
/// Error and warnings are gone through in ascending order, and every text **replaces** the message:
/// what remains is the text of the highest warning, or of the error when there is no warning. That
/// is meant. Who wants all texts asks for one bit at a time. A status of 0 leaves `message` as it
/// is; 0x40 alone gives false and a text. Bits above 0x1000 mean nothing.
NORVEK_MATH_API bool NURBS_ERROR_HANDLING(std::wstring& message, std::int32_t status);

/// Evaluates the curve at `t`: the point into `result[0]`, and its first and second derivatives
/// with respect to t into `result[1]` and `result[2]` when `derivatives` is 1 or 2.
///
/// The knot span of t is i, the smallest with k <= i < n and t < knots[i], or n when there is none;
/// only its control points i - k to i - 1 are read. There is no clamping: outside the ends, and for
/// NaN, the polynomial of the first or last span goes on. With A, A', A'' and w, w', w'' the sums
/// over the basis in ascending order,
///
///     C = A / w,   C' = (A' - w' C) / w,   C'' = (A'' - 2 w' C' - w'' C) / w
///
/// by true division, and `bc_eval_b_code_sub` says what the basis is. Non-rational curves take the
/// same way: their w is 1 to rounding only.
///
/// 0 on success. Otherwise a status, and `result` is not written: 2 for another number of
/// derivatives, 9 for an order below 1, 11 for a missing array or fewer control points than the
/// order has, 16 when |w| <= 1e-11. Knots that descend give values without meaning, never a read
/// out of bounds; values that are not finite go through the arithmetic.
///
/// Order 4 takes tens of nanoseconds; the work grows as k^2, and the search for the span as log n
/// at most. Nothing is kept between calls, and nothing is allocated up to order 20. Above that
/// work arrays come from the heap; without memory the status is 1.
NORVEK_MATH_API int nurbs_curv_eval(int derivatives, const NURBSCurv& curve, double t,
                                    Nurbs::Point* result);

/// The same over the parts of a curve; the arrays are only read.
NORVEK_MATH_API int nurbs_curv_eval(int derivatives, int order, std::int32_t numControlPoints,
                                    double* knots, Point4D* controlPoints, double t,
                                    Nurbs::Point* result);

/// Evaluates the surface at (u, v): S into `result[0]`; with `derivatives` 1 or 2 also S_u and S_v
/// into `result[1]` and `result[2]`; with 2 also S_uu, S_uv and S_vv into `result[3]` to
/// `result[5]`. The surface is only read.
///
/// In each direction spans and basis are those of a curve. The homogeneous sums run over v within
/// u: every row of control points is summed with the basis in v, and the sums with that in u. Then
///
///     S    = A / w,                          S_u  = (A_u - w_u S) / w,   S_v likewise,
///     S_uu = (A_uu - 2 w_u S_u - w_uu S) / w,                            S_vv likewise,
///     S_uv = (A_uv - w_u S_v - w_v S_u - w_uv S) / w
///
/// Statuses are those of a curve, with 10 and 12 for the order and the control points in v. A
/// missing surface, grid or result is 11. On any of them `result` is not written.
NORVEK_MATH_API int nurbs_surf_eval(int derivatives, NURBSSurf* surface, Point2D parameters,
                                    Nurbs::Point* result);

/// The k B-splines of order k that do not vanish on a knot span, at `t`: `N[r]` is that of control
/// point span - k + r. `N1` and `N2` receive first and second derivatives; each may be null.
///
/// `span` counts as in the search: it lies between knots[span - 1] and knots[span], and the knots
/// span - k to span + k - 1 are read, less the outer two, which no value depends on. t may lie
/// outside: it is the span's polynomials that are evaluated. With B[r] of order j in ascending
/// order from B = {1}, and its knots from[r] = knots[span - j + r] and to[r] = knots[span + r],
///
///     Q[r] = B[r] / (to[r] - from[r]),      0 when |to[r] - from[r]| <= 1e-11
///     next[r] = (t - from[r - 1]) Q[r - 1] + (to[r] - t) Q[r],      Q[-1] = Q[j] = 0
///
/// is the step from j to j + 1 (Cox and de Boor). The bound is absolute, so that curves over a
/// parameter range near 1e-11 lose their basis. With the Q of order k - 1 and of order k - 2,
///
///     N'[r]  = (k - 1) (Q[r - 1] - Q[r])
///     N''[r] = (k - 1) (Q'[r - 1] - Q'[r]),
///
/// where Q' are the quotients, with the same guard, of (k - 2) (Q[r - 1] - Q[r]) of order k - 2.
/// Orders below 2 and below 3 have derivatives of 0.
///
/// 0 on success, 9 for an order below 1, 11 for missing knots, missing `N` or a span below the
/// order; nothing is written then. No memory is taken at any order.
NORVEK_MATH_API int bc_eval_b_code_sub(double t, int order, double* knots, std::int32_t span,
                                       double* N, double* N1, double* N2);
