#pragma once

#include <norvek/transform/transform.h>

#include <vector>

/// The composition of two transforms: like a product it maps a point by `b` first, then by `a`.
///
/// Always a new object, which the caller has to delete; both arguments stay the caller's and may be
/// the same. It is what the form below gives for the list {a, b}.
[[nodiscard]] NORVEK_MATH_API MMTransform* Concat(const MMTransform& a, const MMTransform& b);

/// The composition of a list [T0, T1, ..., Tn-1]: the product T0 T1 ... Tn-1, in which the last
/// element acts first.
///
/// | list | result |
/// |---|---|
/// | one element | that element as it is, also when it is a stack |
/// | empty, or nothing but identities | a new `MMTransformMatrix`, the identity |
/// | matrices that all merge | a new `MMTransformMatrix`, their product |
/// | others | a new `MMTransformStack` of the merged pieces, in order |
///
/// Stacks are opened, at any depth; identities are dropped; neighbouring matrices are multiplied
/// from the left, by the rules of `operator*`. What remains is cloned, so that the result shares
/// nothing with the list. `MMTransformMatrix`, `MMTransformIdentity` and `MMTransformStack` are
/// treated so; classes derived from them may map otherwise, and are pieces like any other kind.
///
/// The result is the same map as the list, to rounding and but for products that overflow, forward
/// and back, for positions and for directions. Two consequences:
/// - A product is invertible when both factors are, where that of `operator*` goes by the first.
/// - A matrix with a projective bottom row is multiplied only with an affine one without
///   translation. With another the product would move directions, or would map points that the
///   chain throws for. Such neighbours stay two pieces; who wants their product uses `operator*`.
///
/// `created`, when not null, receives the object that the caller has to delete: the result, or null
/// when the result is the list's only element. The elements stay the caller's, are not changed and
/// must not be null. When an exception is thrown, `created` is untouched and nothing leaks.
[[nodiscard]] NORVEK_MATH_API MMTransform* Concat(const std::vector<MMTransform*>& transforms,
                                                  MMTransform** created);
