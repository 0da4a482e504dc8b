#pragma once

#include <norvek/transform/transform.h>

/// True when two transforms are known to be equal: the equality behind `MMTransformStack::_Equal`.
///
/// - An `MMTransformMatrix` or `MMTransformIdentity` with another: element by element, by
///   `MMTransformMatrix::_Equal`.
/// - Two stacks: their lengths, and each element with its counterpart, by this equality.
/// - Another kind with its own kind: the elements of `ConvertToDouble16`, under the same tolerance.
/// - Two different kinds are never equal.
///
/// An identity counts as the unit matrix. A kind is the exact class: a class derived from one of
/// those above may map otherwise and is a kind of its own. Where a kind has no matrix there is
/// nothing to look at, so that an object is equal to itself only, and not to its clone.
///
/// It compares how transforms are made, not what they do: a stack of one matrix is not equal to
/// that matrix, nor an empty stack to an identity. A NaN element equals nothing, itself included.
/// Symmetric; transitive only as far as the tolerance (1.49e-6, absolute) is. Linear in the number
/// of elements.
[[nodiscard]] NORVEK_MATH_API bool AreEqual(const MMTransform& a, const MMTransform& b);
