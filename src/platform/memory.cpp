#include "platform/memory.h"

#include <new>

namespace Norvek::Math::Platform
{

void* AllocateOrThrow(std::size_t size)
{
    return ::operator new(size);
}

void Release(void* block) noexcept
{
    ::operator delete(block);
}

void* AllocateSharedBlock(std::size_t size)
{
    return ::operator new(size);
}

void ReleaseSharedBlocks(void* first, void* last) noexcept
{
    for (void* block = first; block != nullptr;) {
        void* const next = block == last ? nullptr : *static_cast<void**>(block);
        ::operator delete(block);
        block = next;
    }
}

} // namespace Norvek::Math::Platform
