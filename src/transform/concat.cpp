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

// An identity without an inverse, made by raw setters, stays: it fails backward.
bool CanBeDropped(const MMTransformMatrix& matrix)
{
    return matrix.IsIdentity() && matrix.IsInversible();
}

// first * second. A product keeps the invertible flag of the matrix that it changes, so the one
// without an inverse is the one to change.
MMTransformMatrix Product(const MMTransformMatrix& first, const MMTransformMatrix& second)
{
    if (!first.IsInversible())
        return first * second;
    MMTransformMatrix product = second;
    product.PreMultiply(first);
    return product;
}

void AddMatrix(Pieces& pieces, const MMTransformMatrix& matrix)
{
    if (CanBeDropped(matrix))
        return;
    if (!pieces.empty() && As<MMTransformMatrix>(*pieces.back()) != nullptr) {
        auto& last = static_cast<MMTransformMatrix&>(*pieces.back());
        last = Product(last, matrix);
        // The two may have cancelled; their neighbours then meet.
        if (CanBeDropped(last))
            pieces.pop_back();
        return;
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
