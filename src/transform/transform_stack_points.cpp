#include <norvek/transform/transform_matrix.h>
#include <norvek/transform/transform_stack.h>

#include <algorithm>
#include <typeinfo>

namespace
{

// Points in a block: 12 KiB, which stay in the first-level cache beside the points read and
// written while one element after the other goes over them.
constexpr std::size_t kBlockCount = 512;

// Kinds whose vector form is known to give what point by point gives. Others, those derived from
// these included, may have one that answers otherwise.
bool HasFaithfulVectorForm(const MMTransform& transform)
{
    return typeid(transform) == typeid(MMTransformMatrix) ||
           typeid(transform) == typeid(MMTransformStack);
}

} // namespace

bool MMTransformStack::_Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                                  bool isDirection) const
{
    out = in;
    return std::all_of(_transforms.rbegin(), _transforms.rend(),
                       [&out, isDirection](const MMTransform* transform) {
                           return transform->Transform(out, isDirection);
                       });
}

bool MMTransformStack::_InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                                         bool isDirection) const
{
    out = in;
    return std::all_of(_transforms.begin(), _transforms.end(),
                       [&out, isDirection](const MMTransform* transform) {
                           return transform->InverseTransform(out, isDirection);
                       });
}

// One element after the other over the whole block; false as soon as one fails for any point.
bool MMTransformStack::_ApplyToBlock(_Points& block) const
{
    const auto apply = [&block](const MMTransform* transform) {
        // The form with two vectors, because that in place does not tell of failures.
        if (HasFaithfulVectorForm(*transform))
            return transform->Transform(block, block);
        return std::all_of(block.begin(), block.end(), [transform](MMPoint3d<double>& point) {
            return transform->Transform(point, false);
        });
    };
    return std::all_of(_transforms.rbegin(), _transforms.rend(), apply);
}

// False when a point fails or throws, or when there is no memory for the block: `out` is untouched
// then, and point by point will tell which point it is and what it leaves behind.
bool MMTransformStack::_TransformBlock(MMPoint3d<double>* out, const MMPoint3d<double>* in,
                                       std::size_t count, _Points& block) const
{
    try {
        block.assign(in, in + count);
        if (!_ApplyToBlock(block))
            return false;
    } catch (...) {
        return false;
    }
    std::copy_n(block.begin(), count, out);
    return true;
}

bool MMTransformStack::Transform(std::vector<MMPoint3d<double>>& out,
                                 const std::vector<MMPoint3d<double>>& in) const
{
    if (typeid(*this) != typeid(MMTransformStack))
        return MMTransform::Transform(out, in);
    out.resize(in.size());
    _Points block;
    for (std::size_t done = 0; done < in.size(); done += kBlockCount) {
        const std::size_t count = std::min(kBlockCount, in.size() - done);
        if (_TransformBlock(&out[done], &in[done], count, block))
            continue;
        for (std::size_t i = done; i < done + count; ++i) {
            if (!_Transform(out[i], in[i], false))
                return false;
        }
    }
    return true;
}

// Always true, as in the base: a point that fails keeps its half-way value.
bool MMTransformStack::Transform(std::vector<MMPoint3d<double>>& points) const
{
    if (typeid(*this) != typeid(MMTransformStack))
        return MMTransform::Transform(points);
    _Points block;
    for (std::size_t done = 0; done < points.size(); done += kBlockCount) {
        const std::size_t count = std::min(kBlockCount, points.size() - done);
        if (_TransformBlock(&points[done], &points[done], count, block))
            continue;
        for (std::size_t i = done; i < done + count; ++i)
            _Transform(points[i], points[i], false);
    }
    return true;
}
