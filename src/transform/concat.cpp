#include <norvek/transform/concat.h>
#include <norvek/transform/transform_identity.h>
#include <norvek/transform/transform_matrix.h>
#include <norvek/transform/transform_stack.h>

#include <algorithm>
#include <cassert>
#include <memory>
#include <typeinfo>
#include <utility>

namespace
{

using Pieces = std::vector<std::unique_ptr<MMTransform>>;

// The exact class only: one derived from it may map otherwise.
template <class Kind>
const Kind* As(const MMTransform& transform)
{
    return typeid(transform) == typeid(Kind) ? static_cast<const Kind*>(&transform) : nullptr;
}

// The inverse counts as well: that of a uniform scale may keep an old translation.
bool HasTranslation(const MMTransformMatrix& m)
{
    for (unsigned short row = 0; row < 3; ++row) {
        if (m.GetElement(row, 3, false) != 0.0 || m.GetElement(row, 3, true) != 0.0)
            return true;
    }
    return false;
}

// An identity without an inverse, made by raw setters, stays: it fails backward.
bool CanBeDropped(const MMTransformMatrix& matrix)
{
    return matrix.IsIdentity() && matrix.IsInversible();
}

// Replaces `first` by first * second, when that is the same map as the two one after the other.
//
// A direction passes an affine matrix without its translation, but in the product with a projective
// one the translation stands in columns that directions use: forward when the projective matrix
// acts first, backward when it acts last. With two projective matrices the corner elements go
// astray in the same way, and the chain throws for points that are at infinity in between while the
// product maps them.
bool Merge(MMTransformMatrix& first, const MMTransformMatrix& second)
{
    const bool projective = first.IsHomogeneous() || second.IsHomogeneous();
    if (projective && (first.IsHomogeneous() == second.IsHomogeneous() ||
                       HasTranslation(first.IsHomogeneous() ? second : first)))
        return false;
    // A product keeps the invertible flag of the matrix that it changes, so the one without an
    // inverse is the one to change.
    MMTransformMatrix product = first.IsInversible() ? second : first;
    if (first.IsInversible())
        product.PreMultiply(first);
    else
        product *= second;
    // A flag set by hand, a bottom row that cancels, or one that overflows.
    if (product.IsHomogeneous() != projective)
        return false;
    first = product;
    return true;
}

void AddMatrix(Pieces& pieces, const MMTransformMatrix& matrix)
{
    if (CanBeDropped(matrix))
        return;
    if (!pieces.empty() && As<MMTransformMatrix>(*pieces.back()) != nullptr) {
        auto& last = static_cast<MMTransformMatrix&>(*pieces.back());
        if (Merge(last, matrix)) {
            // The two may have cancelled; their neighbours then meet.
            if (CanBeDropped(last))
                pieces.pop_back();
            return;
        }
    }
    pieces.push_back(std::make_unique<MMTransformMatrix>(matrix));
}

void Add(Pieces& pieces, const MMTransform& transform)
{
    if (As<MMTransformIdentity>(transform) != nullptr)
        return;
    if (const auto* const stack = As<MMTransformStack>(transform)) {
        for (const MMTransform* const element : stack->_GetTransforms())
            Add(pieces, *element);
    } else if (const auto* const matrix = As<MMTransformMatrix>(transform)) {
        AddMatrix(pieces, *matrix);
    } else {
        pieces.push_back(std::unique_ptr<MMTransform>(transform.Clone()));
    }
}

std::unique_ptr<MMTransform> Compose(Pieces& pieces)
{
    if (pieces.empty())
        return std::make_unique<MMTransformMatrix>();
    if (pieces.size() == 1 && As<MMTransformMatrix>(*pieces.front()) != nullptr)
        return std::move(pieces.front());
    auto stack = std::make_unique<MMTransformStack>();
    for (std::unique_ptr<MMTransform>& piece : pieces)
        stack->PostMultiplyUseTransformation(piece.release());
    return stack;
}

} // namespace

// The elements of a list are not changed, whatever their pointers would allow.
MMTransform* Concat(const MMTransform& a, const MMTransform& b)
{
    return Concat({const_cast<MMTransform*>(&a), const_cast<MMTransform*>(&b)}, nullptr);
}

MMTransform* Concat(const std::vector<MMTransform*>& transforms, MMTransform** created)
{
    assert(std::find(transforms.begin(), transforms.end(), nullptr) == transforms.end());
    MMTransform* result = nullptr;
    if (transforms.size() == 1) {
        result = transforms.front();
    } else {
        Pieces pieces;
        for (const MMTransform* const transform : transforms)
            Add(pieces, *transform);
        result = Compose(pieces).release();
    }
    if (created != nullptr)
        *created = transforms.size() == 1 ? nullptr : result;
    return result;
}
