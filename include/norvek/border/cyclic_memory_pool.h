#pragma once

#include <norvek/border/border_point.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

/// Hands out fixed-size point records from large blocks and recycles those that come back.
///
/// A block holds 146 records of 32-bit coordinates or 113 of `double` ones. Records are handed out
/// in a fixed order: first the recycled ones, in the order of the list below, then the never-used
/// ones of the current block, then those of the next block. Freeing a record only flags it
/// (constant time). Flagged records become available again when the current block is exhausted and
/// more than a block's worth of records is free: then one pass over all blocks lists them, in block
/// order. When the last live record is freed all blocks go back to the memory service at once, so
/// nothing of a freed record may be read afterwards.
///
/// Invariant: live records <= records per block x blocks allocated, and blocks in use <= blocks
/// allocated. An empty pool holds no block.
///
/// A pool has no lock: contours that share one are one object to the rules for threads.
template <class Point>
class NORVEK_MATH_API MCyclicMemoryPool
{
public:
    /// An empty pool, without a block.
    MCyclicMemoryPool();

    /// A pool is shared, never copied.
    MCyclicMemoryPool(const MCyclicMemoryPool&) = delete;
    MCyclicMemoryPool& operator=(const MCyclicMemoryPool&) = delete;

    /// Returns all blocks to the memory service and zeroes every count; records still in use are
    /// lost. With `onlyIfEmpty` nothing happens while a record is live.
    virtual void Clear(bool onlyIfEmpty);

    /// Clears, whether or not records are live.
    virtual ~MCyclicMemoryPool();

    /// A record with its free flag cleared and no other field set; never null. Constant time but
    /// for the pass that collects freed records, whose cost is spread over a block's worth of
    /// allocations at least in proportion to the records that it gains. Throws `std::bad_alloc`
    /// when there is no memory for a block; the pool is then as before.
    Point* Allocate()
    {
        ++_liveCount;
        if (_freeList == nullptr) {
            if (_cursor == _blockEnd)
                _MakeRecordAvailable();
            if (_freeList == nullptr)
                return _TakeNeverUsed();
        }
        return _TakeRecycled();
    }

    /// Gives a record of this pool back. Null is ignored, and so is a record that is free already;
    /// the last live record clears the pool.
    void Free(Point* record)
    {
        if (record == nullptr || record->freeFlag != 0)
            return;
        record->freeFlag = 1;
        if (--_liveCount == 0)
            Clear(false);
    }

    /// Records a block holds: 146 or 113.
    [[nodiscard]] std::uint32_t GetPointsPerBlock() const
    {
        return _pointsPerBlock;
    }

    /// Records handed out and not yet freed.
    [[nodiscard]] std::uint32_t GetLiveCount() const
    {
        return _liveCount;
    }

    /// Blocks held.
    [[nodiscard]] std::uint32_t GetBlocksAllocated() const
    {
        return _blocksAllocated;
    }

    /// Blocks that the cursor has entered since the last `Clear`.
    [[nodiscard]] std::uint32_t GetBlocksInUse() const
    {
        return _blocksInUse;
    }

protected:
    static_assert(std::is_trivially_copyable_v<Point> && std::is_trivially_destructible_v<Point>);

    /// Records in a block.
    std::uint32_t _pointsPerBlock;
    /// The blocks held.
    std::vector<Point*> _blocks;
    /// The next never-used record of the current block.
    Point* _cursor = nullptr;
    /// One past the last record of the current block.
    Point* _blockEnd = nullptr;
    /// The first recycled record; the others follow through their first words.
    Point* _freeList = nullptr;
    /// Records handed out and not yet freed.
    std::uint32_t _liveCount = 0;
    /// Blocks held.
    std::uint32_t _blocksAllocated = 0;
    /// Blocks entered since the last clearing.
    std::uint32_t _blocksInUse = 0;

private:
    // The link of the free list lies in the first word of the record, over its coordinates. It is
    // copied byte by byte, so that no field is read as another type.
    static_assert(offsetof(Point, freeFlag) >= sizeof(Point*));

    static Point* _GetLink(const Point* record)
    {
        void* link = nullptr;
        std::memcpy(&link, static_cast<const void*>(record), sizeof link);
        return static_cast<Point*>(link);
    }

    static void _SetLink(Point* record, void* link)
    {
        std::memcpy(static_cast<void*>(record), &link, sizeof link);
    }

    Point* _TakeRecycled()
    {
        Point* const record = _freeList;
        _freeList = _GetLink(record);
        record->freeFlag = 0;
        return record;
    }

    Point* _TakeNeverUsed()
    {
        Point* const record = _cursor++;
        record->freeFlag = 0;
        return record;
    }

    void _MakeRecordAvailable();
    void _EnterBlock(Point* block);
    void _RebuildFreeList();
    void _Grow();
};

extern template class NORVEK_MATH_API MCyclicMemoryPool<M3dBorderPoint<std::int32_t, void*>>;
extern template class NORVEK_MATH_API MCyclicMemoryPool<M3dBorderPoint<float, float>>;
extern template class NORVEK_MATH_API MCyclicMemoryPool<M3dBorderPoint<double, void*>>;
extern template class NORVEK_MATH_API MCyclicMemoryPool<M3dBorderPoint<double, MStlPoint*>>;
