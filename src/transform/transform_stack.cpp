#include <norvek/transform/transform_equality.h>
#include <norvek/transform/transform_stack.h>

#include <algorithm>
#include <cassert>
#include <initializer_list>
#include <utility>

namespace
{

// Whether `transform` is the stack `wanted` or a stack that holds it, at any depth.
bool IsOrHolds(const MMTransform& transform, const MMTransformStack& wanted)
{
    const auto* const stack = dynamic_cast<const MMTransformStack*>(&transform);
    if (stack == nullptr)
        return false;
    if (stack == &wanted)
        return true;
    for (const MMTransform* const element : stack->_GetTransforms()) {
        if (IsOrHolds(*element, wanted))
            return true;
    }
    return false;
}

// A container leaves open in which order it destroys; the order from first to last is promised.
template <class Owners>
void LetGo(Owners& owners)
{
    for (auto& owner : owners)
        owner.reset();
}

} // namespace

MMTransformStack::MMTransformStack(const MMTransformStack& other) : MMTransform(other)
{
    PostAddStack(other);
}

// The old elements go last: `other` may be one of them, or owned by one.
MMTransformStack& MMTransformStack::operator=(const MMTransformStack& other)
{
    if (this == &other)
        return *this;
    std::deque<MMTransform*> transforms = other._transforms;
    std::deque<_Owner> owners = other._owners;
    for (std::size_t i = 0; i < owners.size(); ++i) {
        // Shared, it would make this stack hold itself: no transform would come to an end, and no
        // one would ever let go of it.
        if (IsOrHolds(*transforms[i], *this)) {
            owners[i].reset(transforms[i]->Clone());
            transforms[i] = owners[i].get();
        }
    }
    _transforms.swap(transforms);
    _owners.swap(owners);
    LetGo(owners);
    return *this;
}

MMTransformStack::~MMTransformStack()
{
    LetGo(_owners);
}

MMTransform* MMTransformStack::Clone() const
{
    return new MMTransformStack(*this);
}

// The shared owner of a pointer handed in: the one it has in this stack, else a new one, which
// destroys the object when there is no memory for it. Trusting the caller would save the search,
// but make a pointer that is put in twice be destroyed twice.
MMTransformStack::_Owner MMTransformStack::_Own(MMTransform* transform) const
{
    assert(transform != nullptr && transform != this);
    const auto found = std::find(_transforms.begin(), _transforms.end(), transform);
    if (found == _transforms.end())
        return _Owner(transform);
    return _owners[static_cast<std::size_t>(found - _transforms.begin())];
}

// The old element is let go at the end, when the new one is in place.
void MMTransformStack::_Replace(std::size_t index, _Owner owner)
{
    assert(index < _owners.size());
    _transforms[index] = owner.get();
    _owners[index].swap(owner);
}

// All or nothing, as the next one.
void MMTransformStack::_Prepend(const _Owner& owner)
{
    _transforms.push_front(owner.get());
    try {
        _owners.push_front(owner);
    } catch (...) {
        _transforms.pop_front();
        throw;
    }
}

template <class Owners>
void MMTransformStack::_Append(const Owners& owners)
{
    const std::size_t count = _owners.size();
    try {
        for (const _Owner& owner : owners) {
            _transforms.push_back(owner.get());
            _owners.push_back(owner);
        }
    } catch (...) {
        _transforms.resize(count);
        _owners.resize(count);
        throw;
    }
}

void MMTransformStack::SetFirst(MMTransform* transform)
{
    _Replace(0, _Own(transform));
}

void MMTransformStack::SetFirst(const MMTransform& transform)
{
    _Replace(0, _Owner(transform.Clone()));
}

void MMTransformStack::SetLast(MMTransform* transform)
{
    _Replace(_owners.size() - 1, _Own(transform));
}

void MMTransformStack::SetLast(const MMTransform& transform)
{
    _Replace(_owners.size() - 1, _Owner(transform.Clone()));
}

void MMTransformStack::PreMultiply(const MMTransform& transform)
{
    _Prepend(_Owner(transform.Clone()));
}

void MMTransformStack::PostMultiply(const MMTransform& transform)
{
    _Append(std::initializer_list<_Owner>{_Owner(transform.Clone())});
}

void MMTransformStack::PreMultiplyUseTransformation(MMTransform* transform)
{
    _Prepend(_Own(transform));
}

void MMTransformStack::PostMultiplyUseTransformation(MMTransform* transform)
{
    _Append(std::initializer_list<_Owner>{_Own(transform)});
}

// All clones are made before the first is added: `other` may be this stack, or hold it.
void MMTransformStack::PostAddStack(const MMTransformStack& other)
{
    std::vector<_Owner> clones;
    clones.reserve(other._transforms.size());
    for (const MMTransform* const transform : other._transforms)
        clones.emplace_back(transform->Clone());
    _Append(clones);
}

void MMTransformStack::PostAddStackTakeOverTransformations(MMTransformStack& other)
{
    if (IsOrHolds(other, *this))
        return;
    std::deque<MMTransform*> noTransforms;
    std::deque<_Owner> noOwners;
    _Append(other._owners);
    other._transforms.swap(noTransforms);
    other._owners.swap(noOwners);
}

void MMTransformStack::MakeIdentity()
{
    LetGo(_owners);
    _owners.clear();
    _transforms.clear();
}

// Inverted first and exchanged afterwards, so that a second one that fails leaves the first
// inverted in its old place: meant. An object that is held twice is inverted twice.
bool MMTransformStack::Invert()
{
    const std::size_t count = _transforms.size();
    for (std::size_t i = 0; i < count / 2; ++i) {
        const std::size_t opposite = count - 1 - i;
        if (!_transforms[i]->Invert() || !_transforms[opposite]->Invert())
            return false;
        std::swap(_transforms[i], _transforms[opposite]);
        _owners[i].swap(_owners[opposite]);
    }
    return count % 2 == 0 || _transforms[count / 2]->Invert();
}

// Wraps at 65,536: meant, callers know the narrow count. Nothing here counts by it.
unsigned short MMTransformStack::GetNrTransforms() const
{
    return static_cast<unsigned short>(_transforms.size());
}

MMTransform* MMTransformStack::GetFirst() const
{
    assert(!_transforms.empty());
    return _transforms.front();
}

MMTransform* MMTransformStack::GetLast() const
{
    assert(!_transforms.empty());
    return _transforms.back();
}

MMTransform* MMTransformStack::operator[](int index) const
{
    assert(index >= 0 && static_cast<std::size_t>(index) < _transforms.size());
    return _transforms[static_cast<std::size_t>(index)];
}

// Not even a stack of matrices only has one: callers tell stacks from matrices by this answer.
bool MMTransformStack::ConvertToFloat16(float* /*matrix*/) const
{
    return false;
}

bool MMTransformStack::IsIdentity() const
{
    return std::all_of(_transforms.begin(), _transforms.end(),
                       [](const MMTransform* transform) { return transform->IsIdentity(); });
}

bool MMTransformStack::_Equal(const MMTransformStack& other) const
{
    return std::equal(
        _transforms.begin(), _transforms.end(), other._transforms.begin(), other._transforms.end(),
        [](const MMTransform* mine, const MMTransform* its) { return AreEqual(*mine, *its); });
}
