#include "platform/memory.h"

#include <norvek/transform/transform_allocator.h>

// The memory service is the one library-wide allocator: it keeps no state of its own, so there is
// no object to create when the library loads and none to destroy while transforms still live.

void* MMTransformAllocator::operator new(std::size_t size)
{
    return Norvek::Math::Platform::AllocateOrThrow(size);
}

void MMTransformAllocator::operator delete(void* block) noexcept
{
    Norvek::Math::Platform::Release(block);
}
