#include "platform/memory.h"

#include <norvek/border/cyclic_memory_pool.h>

#include <cstddef>

namespace
{

// Either way a block of packed records on a platform of 32-bit pointers is just under 4,096 bytes.
constexpr std::uint32_t kPointsPerBlockOf32Bits = 146;
constexpr std::uint32_t kPointsPerBlockOf64Bits = 113;

} // namespace

template <class Point>
MCyclicMemoryPool<Point>::MCyclicMemoryPool()
    : _pointsPerBlock(sizeof(typename Point::CoordinateType) == 4 ? kPointsPerBlockOf32Bits
                                                                  : kPointsPerBlockOf64Bits)
{}

template <class Point>
MCyclicMemoryPool<Point>::~MCyclicMemoryPool()
{
    MCyclicMemoryPool::Clear(false);
}

template <class Point>
void MCyclicMemoryPool<Point>::Clear(bool onlyIfEmpty)
{
    if (onlyIfEmpty && _liveCount != 0)
        return;
    if (_blocksAllocated > 0) {
        for (std::uint32_t i = 0; i + 1 < _blocksAllocated; ++i)
            _SetLink(_blocks[i], _blocks[i + 1]);
        Norvek::Math::Platform::ReleaseSharedBlocks(_blocks[0], _blocks[_blocksAllocated - 1]);
    }
    _blocks.clear();
    _cursor = nullptr;
    _blockEnd = nullptr;
    _freeList = nullptr;
    _liveCount = 0;
    _blocksAllocated = 0;
    _blocksInUse = 0;
}

// Called with the record to come already counted as live, which is why a rebuild of the list needs
// one free record more than a block holds.
template <class Point>
void MCyclicMemoryPool<Point>::_MakeRecordAvailable()
{
    // A derived pool may keep its blocks when it clears; they are entered again before any growth.
    if (_blocksInUse < _blocksAllocated) {
        _EnterBlock(_blocks[_blocksInUse]);
        ++_blocksInUse;
        return;
    }
    const std::uint64_t capacity = std::uint64_t{_pointsPerBlock} * _blocksAllocated;
    if (capacity >= std::uint64_t{_pointsPerBlock} + _liveCount)
        _RebuildFreeList();
    if (_freeList != nullptr)
        return;
    try {
        _Grow();
    } catch (...) {
        --_liveCount;
        throw;
    }
}

template <class Point>
void MCyclicMemoryPool<Point>::_EnterBlock(Point* block)
{
    _cursor = block;
    _blockEnd = block + _pointsPerBlock;
}

// All blocks have been entered and the last one is exhausted, so every record has been handed out
// at least once and its flag can be read.
template <class Point>
void MCyclicMemoryPool<Point>::_RebuildFreeList()
{
    Point* last = nullptr;
    for (std::uint32_t i = 0; i < _blocksAllocated; ++i) {
        Point* const block = _blocks[i];
        for (Point* record = block; record != block + _pointsPerBlock; ++record) {
            if (record->freeFlag != 1)
                continue;
            if (last == nullptr)
                _freeList = record;
            else
                _SetLink(last, record);
            last = record;
        }
    }
    if (last != nullptr)
        _SetLink(last, nullptr);
}

// The counts rise after the block is there, so that a failure leaves no slot without a block below
// the count.
template <class Point>
void MCyclicMemoryPool<Point>::_Grow()
{
    _blocks.resize(std::size_t{_blocksAllocated} + 1);
    void* const block =
        Norvek::Math::Platform::AllocateSharedBlock(_pointsPerBlock * sizeof(Point));
    _blocks.back() = static_cast<Point*>(block);
    ++_blocksAllocated;
    ++_blocksInUse;
    _EnterBlock(_blocks.back());
}

template class MCyclicMemoryPool<M3dBorderPoint<std::int32_t, void*>>;
template class MCyclicMemoryPool<M3dBorderPoint<float, float>>;
template class MCyclicMemoryPool<M3dBorderPoint<double, void*>>;
template class MCyclicMemoryPool<M3dBorderPoint<double, MStlPoint*>>;
