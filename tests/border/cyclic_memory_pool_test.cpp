#include <norvek/border/cyclic_memory_pool.h>

#include <gtest/gtest.h>

#include <set>

namespace
{

template <class Point>
class Pool : public ::testing::Test
{};

using Points = ::testing::Types<M3dBorderPoint<std::int32_t, void*>, M3dBorderPoint<float, float>,
                                M3dBorderPoint<double, void*>, M3dBorderPoint<double, MStlPoint*>>;
TYPED_TEST_SUITE(Pool, Points);

// The record to come counts as live already, so a block's worth of free records is not enough.
TYPED_TEST(Pool, RecyclesInBlockOrderOnceMoreThanABlockIsFree)
{
    MCyclicMemoryPool<TypeParam> pool;
    const std::size_t perBlock = sizeof(TypeParam{}.x) == 4 ? 146 : 113;
    for (const std::size_t numFree : {perBlock, perBlock + 1}) {
        std::vector<TypeParam*> records;
        for (std::size_t i = 0; i < 2 * perBlock; ++i) {
            records.push_back(pool.Allocate());
            *records.back() = TypeParam{};
            EXPECT_EQ(pool.GetBlocksAllocated(), i < perBlock ? 1U : 2U);
            EXPECT_TRUE(i % perBlock == 0 || records[i] == records[i - 1] + 1);
        }
        // From behind, and a second time to no effect.
        for (std::size_t i = 2 * perBlock; i-- > 2 * perBlock - numFree;) {
            pool.Free(records[i]);
            pool.Free(records[i]);
        }
        pool.Free(nullptr);
        pool.Clear(true);
        EXPECT_EQ(pool.GetLiveCount(), 2 * perBlock - numFree);
        for (std::size_t i = 2 * perBlock - numFree; i < 2 * perBlock && numFree > perBlock; ++i) {
            TypeParam* const record = pool.Allocate();
            EXPECT_EQ(record, records[i]);
            EXPECT_EQ(record->freeFlag, 0U);
            // What is freed meanwhile waits for the next pass.
            pool.Free(i % 2 == 0 ? record : nullptr);
        }
        records.push_back(pool.Allocate());
        EXPECT_EQ(pool.GetBlocksAllocated(), 3U);
        for (TypeParam* const record : records)
            pool.Free(record);
        EXPECT_EQ(pool.GetLiveCount() + pool.GetBlocksAllocated() + pool.GetBlocksInUse(), 0U);
    }
}

class KeepingPool : public MCyclicMemoryPool<M3dBorderPoint<float, float>>
{
public:
    void Clear(bool) override
    {
        _cursor = _blockEnd = _freeList = nullptr;
        _liveCount = _blocksInUse = 0;
    }
};

TEST(PoolThatKeepsItsBlocks, EntersThemAgainBeforeItGrows)
{
    KeepingPool pool;
    std::set<void*> records;
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 300; ++i)
            records.insert(pool.Allocate());
        pool.Clear(false);
    }
    EXPECT_EQ(records.size(), 300U);
    EXPECT_EQ(pool.GetBlocksAllocated(), 3U);
}

} // namespace
