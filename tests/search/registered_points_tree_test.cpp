#include "support/random.h"

#include <norvek/search/registered_points_tree.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <tuple>

namespace
{

using Costs = MDataArray2D<MRegistrationCostInfo>;
using Transforms = MDataArray2D<MMTransformMatrix>;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

MRegistrationCostInfo Cost(unsigned int outliers, double cost, unsigned int total = 100)
{
    MRegistrationCostInfo info;
    info.SetInfo(outliers, total, cost);
    return info;
}

MMTransformMatrix Shift(double x, double turn = 0.0)
{
    MMTransformMatrix matrix;
    matrix.MakeRotationXYZ(turn, 2.0 * turn, 3.0 * turn);
    matrix.AddTranslation(MMPoint3d<double>(x, 0.0, 0.0));
    return matrix;
}

bool IsSame(const MMTransformMatrix& a, const MMTransformMatrix& b)
{
    bool isSame = true;
    for (unsigned short k = 0; k < 16; ++k)
        isSame = isSame && a.GetElement(k / 4, k % 4, false) == b.GetElement(k / 4, k % 4, false);
    return isSame;
}

TEST(RegistrationCostInfo, OutliersDecideBeforeTheResidual)
{
    EXPECT_LT(Cost(3, 10.0), Cost(4, 0.1));
    EXPECT_LT(Cost(3, 1.0), Cost(3, 2.0));
    EXPECT_GT(Cost(0x80000000U, 0.0), Cost(1, 1e300));
    EXPECT_EQ(Cost(3, 1.0, 10), Cost(3, 1.0, 20));
    EXPECT_LT(Cost(0xFFFFFFFFU, 1.0), MRegistrationCostInfo());
    const MRegistrationCostInfo nan = Cost(3, kNan);
    EXPECT_FALSE(nan == nan || nan < Cost(3, 1.0) || nan > Cost(3, 1.0));
}

TEST(RegistrationCostInfo, CountsAndFractions)
{
    MRegistrationCostInfo info;
    EXPECT_TRUE(info.GetInfiniteCost());
    EXPECT_EQ(info.GetOverlapPercentage(), -4294967294.0);
    info.SetNoCost();
    EXPECT_FALSE(info.GetInfiniteCost());
    EXPECT_EQ(info.GetOverlapPercentage(), 1.0);
    info.SetInfoInliers(75, 100, 2.0);
    EXPECT_EQ(info.outliers, 25U);
    EXPECT_EQ(info.GetOverlapPercentage(), 0.75);
    // Its own members, in either place.
    info.SetInfoInliers(info.outliers, info.total, info.cost);
    EXPECT_EQ(info, Cost(75, 2.0));
    info.SetInfo(info.total, info.outliers, 1.0);
    EXPECT_TRUE(info.outliers == 100 && info.total == 75);
    EXPECT_FALSE(Cost(0xFFFFFFFFU, 1.0).GetInfiniteCost());
    EXPECT_FALSE(Cost(7, MRegistrationCostInfo::kInfiniteCost).GetInfiniteCost());
    EXPECT_TRUE(std::isnan(Cost(0, 0.0, 0).GetOverlapPercentage()));
    info.SetInfiniteCost();
    EXPECT_TRUE(info.GetInfiniteCost() && info.total == 1);
}

TEST(DataArray2D, RowsRunFastest)
{
    MDataArray2D<int> table(2, 3, 7);
    table(1, 2) = 5;
    EXPECT_EQ(&table(1, 2) - &table(0, 0), 5);
    const MDataArray2D<int> copy = table;
    table.Resize(3, 1, table(1, 2));
    EXPECT_TRUE(table(2, 0) == 5 && table.GetNumColumns() == 1 && copy(1, 2) == 5);
    EXPECT_EQ(MDataArray2D<int>(std::move(table)).GetNumRows(), 3U);
    constexpr std::size_t half = std::size_t{1} << (sizeof(std::size_t) * 4);
    EXPECT_THROW(MDataArray2D<int>(half, half), std::length_error);
}

// All edges from the tree to the outside, compared by what the order is meant to be.
TEST(RegisteredPointsTree, EdgesAreThoseOfAllPairsCompared)
{
    norvek_test::Random random(601);
    for (int round = 0; round < 300; ++round) {
        const auto n = static_cast<std::uint32_t>(random.Integer(2, 12));
        Costs costs(n, n);
        Transforms pairwise(n, n);
        std::vector<MMTransformMatrix> absolute;
        for (std::uint32_t k = 0; k < n * n; ++k) {
            const int kind = random.Integer(0, 9);
            if (kind < 8)
                costs(k % n, k / n) = Cost(static_cast<unsigned int>(random.Integer(0, 2)),
                                           kind == 0 ? kNan : random.Integer(0, 2));
            else if (round % 2 == 0)
                costs(k % n, k / n) = Cost(0xFFFFFFFFU, 0.0);
            pairwise(k % n, k / n) = Shift(k);
        }
        for (std::uint32_t i = 0; i < n; ++i)
            absolute.push_back(Shift(-1.0 - i));
        MRegistered3DPointsTree tree;
        ASSERT_TRUE(tree.Build(costs, pairwise, absolute));
        EXPECT_EQ(tree.GetRoot(), 0U);

        std::vector<std::vector<std::uint32_t>> children(n);
        std::vector<bool> isIn(n);
        isIn[0] = true;
        for (;;) {
            using Key = std::tuple<unsigned int, bool, double, std::uint32_t, std::uint32_t>;
            std::vector<Key> keys;
            for (std::uint32_t k = 0; k < n * n; ++k) {
                const MRegistrationCostInfo& c = costs(k / n, k % n);
                const bool isNan = std::isnan(c.cost);
                if (isIn[k / n] && !isIn[k % n] && !c.GetInfiniteCost())
                    keys.emplace_back(c.outliers, isNan, isNan ? 0.0 : c.cost, k / n, k % n);
            }
            if (keys.empty())
                break;
            const auto [outliers, isNan, cost, i, j] = *std::min_element(keys.begin(), keys.end());
            isIn[j] = true;
            children[i].push_back(j);
            const MRegistered3DPointsTree::Node& node = tree.GetNode(j);
            EXPECT_EQ(node.parent, i);
            EXPECT_EQ(node.cost.outliers, outliers);
            EXPECT_TRUE(isNan ? std::isnan(node.cost.cost) : node.cost.cost == cost);
            EXPECT_TRUE(IsSame(node.relativeTransform, Shift(i + n * j)));
        }
        for (std::uint32_t i = 0; i < n; ++i) {
            EXPECT_EQ(tree.IsInTree(i), isIn[i]);
            EXPECT_EQ(tree.GetNode(i).children, children[i]);
            EXPECT_TRUE(IsSame(tree.GetNode(i).worldTransform, absolute[i]));
        }
    }
}

TEST(RegisteredPointsTree, WorldTransformsAreProductsFromTheRoot)
{
    Costs costs(4, 4);
    Transforms pairwise(4, 4);
    const MMTransformMatrix a = Shift(1.0, 10.0);
    const MMTransformMatrix b = Shift(2.0, 20.0);
    pairwise(0, 2) = a;
    pairwise(2, 1) = b;
    costs(0, 2).SetNoCost();
    costs(2, 1).SetNoCost();
    MRegistered3DPointsTree tree;
    tree.UpdateWcsTransforms();
    ASSERT_TRUE(tree.Build(costs, pairwise, {Shift(0.0), Shift(5.0), Shift(6.0), Shift(7.0)}));
    tree.UpdateWcsTransforms();
    EXPECT_TRUE(IsSame(tree.GetNode(1).worldTransform, a * b));
    EXPECT_TRUE(IsSame(tree.GetNode(3).worldTransform, Shift(7.0)));
    EXPECT_FALSE(tree.IsInTree(3));
    // The root moves with its relative transform, each time anew, and takes the others along.
    tree.SetRelativeTransform(0, Shift(3.0));
    tree.UpdateWcsTransforms();
    tree.UpdateWcsTransforms();
    EXPECT_TRUE(IsSame(tree.GetNode(0).worldTransform, Shift(6.0)));
    EXPECT_TRUE(IsSame(tree.GetNode(1).worldTransform, (Shift(6.0) * a) * b));
    EXPECT_EQ(tree.AddNode(1, a, Cost(1, 2.0)), 4U);
    EXPECT_TRUE(IsSame(tree.GetNode(4).worldTransform, ((Shift(6.0) * a) * b) * a));
    EXPECT_THROW(tree.AddNode(3, a, Cost(1, 2.0)), std::out_of_range);
}

TEST(RegisteredPointsTree, RefusalsLeaveTheTree)
{
    MRegistered3DPointsTree tree;
    const std::vector<MMTransformMatrix> two(2);
    ASSERT_TRUE(tree.Build(Costs(2, 2, Cost(1, 1.0)), Transforms(2, 2), two));
    EXPECT_FALSE(tree.Build(Costs(1, 1), Transforms(1, 1), {Shift(1.0)}));
    EXPECT_FALSE(tree.Build(Costs(), Transforms(), {}));
    for (const auto& [i, j] : {std::pair{1U, 2U}, {2U, 1U}, {3U, 3U}, {1U, 4U}, {0U, 0U}}) {
        EXPECT_THROW(tree.Build(Costs(i, j), Transforms(2, 2), two), std::out_of_range);
        EXPECT_THROW(tree.Build(Costs(2, 2), Transforms(i, j), two), std::out_of_range);
    }
    EXPECT_THROW(tree.SetWorldTransform(2, Shift(1.0)), std::out_of_range);
    EXPECT_THROW(tree.SetRelativeTransform(2, Shift(1.0)), std::out_of_range);
    try {
        static_cast<void>(tree.GetNode(2));
        ADD_FAILURE();
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
    }
    EXPECT_EQ(tree.GetNode(1).parent, 0U);
}

TEST(RegisteredPointsTree, AChainOfAHundredThousandScansTakesNoStack)
{
    MRegistered3DPointsTree tree;
    tree.AddNode(MRegistered3DPointsTree::kNoIndex, Shift(0.5), MRegistrationCostInfo());
    for (std::uint32_t i = 0; i < 100000; ++i)
        tree.AddNode(i, Shift(1.0), Cost(0, 0.0));
    tree.SetWorldTransform(0, Shift(2.0));
    tree.UpdateWcsTransforms();
    EXPECT_EQ(tree.GetNode(100000).worldTransform.GetElement(0, 3, false), 100002.0);
    const MRegistered3DPointsTree copy = tree;
    EXPECT_EQ(copy.GetNode(7).children.front(), 8U);
}

} // namespace
