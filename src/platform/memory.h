#pragma once

#include <cstddef>

/// The memory services that the library stands on.
///
/// Both are safe to use from several threads at once and keep no state of their own: they rest on
/// the global heap.
namespace Norvek::Math::Platform
{

/// A block of `size` bytes aligned for any type; throws `std::bad_alloc` when there is none.
void* AllocateOrThrow(std::size_t size);

/// Returns a block of `AllocateOrThrow`. Null is allowed.
void Release(void* block) noexcept;

/// One block of `size` bytes for point records; throws `std::bad_alloc` when there is none.
void* AllocateSharedBlock(std::size_t size);

/// Returns a chain of blocks at once. The blocks are linked through their first word, from `first`
/// to `last`; the word of `last` is not read.
void ReleaseSharedBlocks(void* first, void* last) noexcept;

} // namespace Norvek::Math::Platform
