#include "support/random.h"

#include <norvek/border/cyclic_memory_pool.h>

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <set>

namespace
{

template <class Point>
class Pool : public ::testing::Test
{};

using Points = ::testing::Types<M3dBorderPoint<std::int32_t, void*>, M3dBorderPoint<float, float>,
                                M3dBorderPoint<double, void*>, M3dBorderPoint<double, MStlPoint*>>;
TYPED_TEST_SUITE(Pool, Points);

// The described hand-out order over record numbers instead of memory: record r lies in block
// r / perBlock.
struct PoolModel
{
    std::uint32_t perBlock;
    std::vector<bool> isFree;
    std::deque<std::size_t> freeList;
    std::size_t cursor = 0;
    std::uint32_t live = 0;
    std::uint32_t blocks = 0;

    std::size_t Allocate()
    {
        ++live;
        if (freeList.empty() && cursor == isFree.size() && perBlock * blocks >= perBlock + live) {
            for (std::size_t r = 0; r < isFree.size(); ++r) {
                if (isFree[r])
                    freeList.push_back(r);
            }
        }
        std::size_t record = cursor;
        if (!freeList.empty()) {
            record = freeList.front();
            freeList.pop_front();
        } else {
            if (cursor == isFree.size()) {
                ++blocks;
                isFree.resize(std::size_t{perBlock} * blocks, false);
            }
            ++cursor;
        }
        isFree[record] = false;
        return record;
    }

    void Free(std::size_t record)
    {
        isFree[record] = true;
        if (--live == 0)
            *this = PoolModel{perBlock, {}, {}, 0, 0, 0};
    }
};

TYPED_TEST(Pool, HandsOutInTheDescribedOrder)
{
    norvek_test::Random random(701);
    MCyclicMemoryPool<TypeParam> pool;
    PoolModel model{pool.GetPointsPerBlock(), {}, {}, 0, 0, 0};
    EXPECT_EQ(model.perBlock, sizeof(TypeParam{}.x) == 4 ? 146U : 113U);
    std::map<std::size_t, TypeParam*> memory;
    std::map<std::size_t, TypeParam*> live;
    bool wasCleared = true;
    for (int phase = 0; phase < 60; ++phase) {
        const bool grows = phase % 3 != 2;
        for (int step = random.Integer(0, 400); step > 0; --step) {
            if (grows || live.empty()) {
                const std::size_t record = model.Allocate();
                TypeParam* const point = pool.Allocate();
                EXPECT_EQ(point->freeFlag, 0U);
                EXPECT_TRUE(live.emplace(record, point).second);
                const auto known = memory.emplace(record, point);
                EXPECT_EQ(known.first->second, point);
                // The link of the free list may lie over x and y, but not over these.
                *point = TypeParam{};
            } else {
                auto victim = live.begin();
                std::advance(victim, random.Integer(0, static_cast<int>(live.size()) - 1));
                model.Free(victim->first);
                pool.Free(victim->second);
                if (model.live > 0) {
                    EXPECT_EQ(victim->second->freeFlag, 1U);
                    pool.Free(victim->second);
                }
                live.erase(victim);
                wasCleared = live.empty();
            }
            if (wasCleared && live.empty())
                memory.clear();
            ASSERT_EQ(pool.GetLiveCount(), model.live);
            ASSERT_EQ(pool.GetBlocksAllocated(), model.blocks);
            ASSERT_EQ(pool.GetBlocksInUse(), model.blocks);
        }
    }
    pool.Free(nullptr);
    pool.Clear(true);
    EXPECT_EQ(pool.GetLiveCount(), model.live);
    pool.Clear(false);
    EXPECT_EQ(pool.GetLiveCount() + pool.GetBlocksAllocated(), 0U);
}

// The record to come counts as live already, so a block's worth of free records is not enough.
TYPED_TEST(Pool, RebuildsItsListOnlyForMoreThanABlock)
{
    MCyclicMemoryPool<TypeParam> pool;
    const std::uint32_t perBlock = pool.GetPointsPerBlock();
    for (const std::uint32_t numFree : {perBlock, perBlock + 1}) {
        std::vector<TypeParam*> records;
        for (std::uint32_t i = 0; i < 2 * perBlock; ++i)
            records.push_back(pool.Allocate());
        EXPECT_EQ(pool.GetBlocksAllocated(), 2U);
        for (std::uint32_t i = 0; i < numFree; ++i)
            pool.Free(records[2 * perBlock - 1 - i]);
        TypeParam* const next = pool.Allocate();
        EXPECT_EQ(pool.GetBlocksAllocated(), numFree == perBlock ? 3U : 2U);
        EXPECT_EQ(next == records[2 * perBlock - numFree], numFree > perBlock);
        pool.Clear(false);
    }
}

// A pool that keeps its blocks for the next round.
class KeepingPool : public MCyclicMemoryPool<M3dBorderPoint<float, float>>
{
public:
    void Clear(bool onlyIfEmpty) override
    {
        if (onlyIfEmpty && _liveCount != 0)
            return;
        _cursor = _blockEnd = _freeList = nullptr;
        _liveCount = _blocksInUse = 0;
    }
};

TEST(PoolWithKeptBlocks, EntersThemAgainBeforeItGrows)
{
    KeepingPool pool;
    std::set<void*> before;
    std::set<void*> after;
    for (int i = 0; i < 300; ++i)
        before.insert(pool.Allocate());
    for (void* const record : before)
        pool.Free(static_cast<M3dBorderPoint<float, float>*>(record));
    EXPECT_EQ(pool.GetBlocksInUse(), 0U);
    for (int i = 0; i < 300; ++i)
        after.insert(pool.Allocate());
    EXPECT_EQ(after, before);
    EXPECT_EQ(pool.GetBlocksAllocated(), 3U);
}

} // namespace
