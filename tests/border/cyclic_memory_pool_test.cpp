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

// The documented hand-out order over record numbers instead of memory.
struct PoolModel
{
    std::uint32_t perBlock;
    std::vector<bool> isFree;
    std::deque<std::size_t> freeList;
    std::size_t cursor = 0;
    std::uint32_t live = 0;

    std::size_t Allocate()
    {
        ++live;
        if (freeList.empty() && cursor == isFree.size()) {
            if (isFree.size() >= perBlock + live) {
                for (std::size_t r = 0; r < isFree.size(); ++r) {
                    if (isFree[r])
                        freeList.push_back(r);
                }
            } else {
                isFree.resize(isFree.size() + perBlock, false);
            }
        }
        const std::size_t record = freeList.empty() ? cursor++ : freeList.front();
        if (!freeList.empty())
            freeList.pop_front();
        isFree[record] = false;
        return record;
    }
};

TYPED_TEST(Pool, HandsOutInTheDocumentedOrder)
{
    norvek_test::Random random(701);
    MCyclicMemoryPool<TypeParam> pool;
    const std::uint32_t perBlock = pool.GetPointsPerBlock();
    EXPECT_EQ(perBlock, sizeof(TypeParam{}.x) == 4 ? 146U : 113U);
    PoolModel model{perBlock, {}, {}};
    std::map<std::size_t, TypeParam*> memory;
    std::map<std::size_t, TypeParam*> live;
    for (int step = 0; step < 20000; ++step) {
        if (live.empty() || random.Integer(0, 9) < (step / 1500 % 3 == 2 ? 1 : 7)) {
            const std::size_t record = model.Allocate();
            TypeParam* const point = pool.Allocate();
            ASSERT_EQ(memory.emplace(record, point).first->second, point);
            ASSERT_TRUE(live.emplace(record, point).second);
            ASSERT_EQ(point->freeFlag, 0U);
            *point = TypeParam{};
        } else {
            const auto victim =
                std::next(live.begin(), random.Integer(0, static_cast<int>(live.size()) - 1));
            pool.Free(victim->second);
            model.isFree[victim->first] = true;
            if (--model.live == 0) {
                model = {perBlock, {}, {}};
                memory.clear();
            } else {
                pool.Free(victim->second); // a second time, to no effect
            }
            live.erase(victim);
        }
        ASSERT_EQ(pool.GetLiveCount(), model.live);
        ASSERT_EQ(pool.GetBlocksAllocated() * perBlock, model.isFree.size());
        ASSERT_EQ(pool.GetBlocksInUse(), pool.GetBlocksAllocated());
    }
    pool.Free(nullptr);
    pool.Clear(true);
    EXPECT_EQ(pool.GetLiveCount(), model.live);
}

// The record to come counts as live already, so a block's worth of free records is not enough.
TYPED_TEST(Pool, RebuildsItsListOnlyForMoreThanABlock)
{
    MCyclicMemoryPool<TypeParam> pool;
    const std::uint32_t perBlock = pool.GetPointsPerBlock();
    for (const std::uint32_t numFree : {perBlock, perBlock + 1}) {
        std::vector<TypeParam*> records(std::size_t{2} * perBlock);
        for (TypeParam*& record : records)
            record = pool.Allocate();
        for (std::uint32_t i = 0; i < numFree; ++i)
            pool.Free(records[2 * perBlock - 1 - i]);
        EXPECT_EQ(pool.Allocate() == records[2 * perBlock - numFree], numFree > perBlock);
        pool.Clear(false);
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
