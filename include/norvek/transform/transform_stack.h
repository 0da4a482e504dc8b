#pragma once

#include <norvek/transform/transform.h>

#include <deque>
#include <memory>

/// A chain of transforms, applied one after the other, that is a transform itself. It composes
/// kinds that are not matrices with matrices.
///
/// The sequence [T0, T1, ..., Tn-1] is the product T0 T1 ... Tn-1: **the last element acts first**,
/// the first element acts last. The inverse runs from the first to the last. The empty stack is the
/// identity.
///
/// **Ownership.** The stack owns its elements. Copy construction, `Clone` and `PostAddStack` clone
/// them. Assignment shares them, on purpose: both stacks then hold the same objects, a change of
/// one shows in both, and each object is destroyed once, by the last stack that lets go of it. A
/// stack lets go of its elements from the first to the last.
///
/// A pointer handed in must not be null, must come from `new` or `Clone`, and must belong to no one
/// else. It belongs to the stack from then on; when the call throws `std::bad_alloc` the object is
/// destroyed. A pointer that this very stack holds already is held once more, not owned twice.
/// Pointers handed out stay the stack's. No stack may come to hold itself, at any depth: assignment
/// and taking over see to it, with pointers it is the caller's to avoid.
///
/// **Failure.** When an element fails (false) or throws, the point forms on `MMPoint3d<double>`
/// leave the point half-way: its image under the elements that came before.
///
/// Laws: a copy gives the same bits; an inverted stack maps back to rounding. The latter is no law
/// where an object is held twice (it is inverted twice), nor for the other holder of the elements,
/// which sees them inverted in the old order.
///
/// Nested stacks call each other, so that the call stack limits their depth. Distinct stacks may be
/// used from distinct threads, even when they share elements, as long as no element is changed;
/// const operations on one stack as well.
class NORVEK_MATH_API MMTransformStack : public MMTransform
{
public:
    /// @cond the overloads of one point, documented in the base
    using MMTransform::Transform;
    /// @endcond

    /// The empty stack.
    MMTransformStack() = default;

    /// Clones of all elements of `other`.
    MMTransformStack(const MMTransformStack& other);

    /// Shares the elements of `other` and lets go of those held before. For an independent stack
    /// use the copy constructor or `Clone`. An element that is or holds this very stack is cloned,
    /// because no stack can hold itself. `other` may be an element of this stack. Nothing changes
    /// when an exception is thrown.
    MMTransformStack& operator=(const MMTransformStack& other);

    /// Lets go of all elements, from the first to the last.
    ~MMTransformStack() override;

    /// A new stack with clones of all elements, owned by the caller.
    [[nodiscard]] MMTransform* Clone() const override;

    /// @name Changes
    /// Except for the pointers taken, nothing changes when an exception is thrown. The forms that
    /// take a pointer search it among the elements, in linear time.
    /// @{

    /// Lets go of the first element and puts `transform` in its place; the stack takes ownership.
    /// With the present first element nothing changes. The stack must not be empty.
    void SetFirst(MMTransform* transform);

    /// The same with a clone, which is made first: the argument may be an element.
    void SetFirst(const MMTransform& transform);

    /// As `SetFirst` for the last element.
    void SetLast(MMTransform* transform);

    /// The same with a clone, which is made first: the argument may be an element.
    void SetLast(const MMTransform& transform);

    /// Puts a clone at the front: it acts after all others, this = transform * this. The argument
    /// may be this stack, which is then nested as one element.
    void PreMultiply(const MMTransform& transform);

    /// Puts a clone at the back: it acts before all others, this = this * transform.
    void PostMultiply(const MMTransform& transform);

    /// As `PreMultiply`, with the transform itself; the stack takes ownership.
    void PreMultiplyUseTransformation(MMTransform* transform);

    /// As `PostMultiply`, with the transform itself; the stack takes ownership.
    void PostMultiplyUseTransformation(MMTransform* transform);

    /// Appends clones of all elements of `other`, in order. Adding a stack to itself doubles it.
    void PostAddStack(const MMTransformStack& other);

    /// Appends the elements of `other` themselves, in order, and leaves `other` empty, its storage
    /// released. Nothing changes when `other` is this stack, or holds it.
    void PostAddStackTakeOverTransformations(MMTransformStack& other);

    /// Lets go of all elements, from the first to the last: the empty stack.
    void MakeIdentity();

    /// Inverts each element and turns their order round. It goes in pairs from the outside: element
    /// i, then n - 1 - i, then the two change places; the middle one of an odd number comes last.
    ///
    /// False at the first element without an inverse, and the stack then is half inverted: the
    /// pairs before are done, and when the second of a pair fails the first is inverted but in its
    /// old place. Elements shared with another stack are inverted for both, the order changes only
    /// here.
    bool Invert() override;
    /// @}

    /// @name Reading
    /// @{

    /// The number of elements, modulo 65,536. The transforms go by the true number.
    [[nodiscard]] unsigned short GetNrTransforms() const;

    /// The element that acts last. The stack must not be empty, and keeps ownership.
    [[nodiscard]] MMTransform* GetFirst() const;

    /// The element that acts first. The stack must not be empty, and keeps ownership.
    [[nodiscard]] MMTransform* GetLast() const;

    /// The element at `index`, from 0, unchecked in release builds. The stack keeps ownership.
    [[nodiscard]] MMTransform* operator[](int index) const;

    /// The elements in order. The stack keeps ownership; valid until it changes.
    [[nodiscard]] const std::deque<MMTransform*>& _GetTransforms() const
    {
        return _transforms;
    }

    /// False, and nothing is written: a stack has no matrix. `Concat` with an identity makes one of
    /// a stack of matrices.
    bool ConvertToFloat16(float* matrix) const override;

    /// True when every element reports the identity; true for the empty stack.
    [[nodiscard]] bool IsIdentity() const override;

    /// As many elements, and each equal to its counterpart by the library's `AreEqual`.
    [[nodiscard]] bool _Equal(const MMTransformStack& other) const;
    /// @}

    /// @name Computing
    /// As in `MMTransform`, with the bits, the failures and the exceptions of one point at a time;
    /// a point that fails is left half-way. The elements are applied one by one to blocks of
    /// points, so that an element may be asked in another order than point by point, and again for
    /// a block in which a point failed.
    /// @{
    bool Transform(std::vector<MMPoint3d<double>>& out,
                   const std::vector<MMPoint3d<double>>& in) const override;
    bool Transform(std::vector<MMPoint3d<double>>& points) const override;
    /// @}

protected:
    /// Applies the elements from the last to the first; false at the first that fails, with `out`
    /// half-way.
    bool _Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                    bool isDirection) const override;

    /// Applies the inverses from the first to the last, under the same rules.
    bool _InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                           bool isDirection) const override;

private:
    using _Points = std::vector<MMPoint3d<double>>;
    using _Owner = std::shared_ptr<MMTransform>;

    [[nodiscard]] _Owner _Own(MMTransform* transform) const;
    void _Replace(std::size_t index, _Owner owner);
    void _Prepend(const _Owner& owner);
    template <class Owners>
    void _Append(const Owners& owners);

    bool _ApplyToBlock(_Points& block) const;
    bool _TransformBlock(MMPoint3d<double>* out, const MMPoint3d<double>* in, std::size_t count,
                         _Points& block) const;

    // Element i of both is the same object; the second keeps it alive.
    std::deque<MMTransform*> _transforms;
    std::deque<_Owner> _owners;
};
