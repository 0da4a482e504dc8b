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
/// The result maps positions as the list does, to rounding, forward and back, and directions too
/// where all matrices are affine. With a projective bottom row it is the product that counts:
/// directions go by its columns, and a point at infinity half-way, for which the chain throws, is
/// mapped. A product is invertible when both factors are, where that of `operator*` goes by the
/// first.
///
/// `created`, when not null, receives the object that the caller has to delete: the result, or null
/// when the result is the list's only element. The elements stay the caller's, are not changed and
/// must not be null. When an exception is thrown, `created` is untouched and nothing leaks.
[[nodiscard]] NORVEK_MATH_API MMTransform* Concat(const std::vector<MMTransform*>& transforms,
                                                  MMTransform** created);
