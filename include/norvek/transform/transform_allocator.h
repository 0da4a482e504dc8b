#pragma once

#include <norvek/foundation/export.h>

#include <cstddef>

/// The base through which every transform is allocated: one library-wide allocator over the memory
/// service.
///
/// A transform created with `new`, a `Clone` included, therefore goes back with a plain `delete` of
/// the transform, which finds the operator below through the virtual destructor of `MMTransform`;
/// never hand such a pointer to the global `delete` or to `free`. Safe to use from several threads
/// at once.
class NORVEK_MATH_API MMTransformAllocator
{
public:
    /// A block of `size` bytes, aligned for any fundamental type; throws `std::bad_alloc`. A
    /// derived class that asks for more alignment brings its own operator.
    static void* operator new(std::size_t size);

    /// Gives a block back. Null is allowed.
    static void operator delete(void* block) noexcept;

protected:
    /// Nothing to construct.
    MMTransformAllocator() = default;
    /// Nothing to copy.
    MMTransformAllocator(const MMTransformAllocator&) = default;
    /// Nothing to copy.
    MMTransformAllocator& operator=(const MMTransformAllocator&) = default;
    ~MMTransformAllocator() = default;
};
