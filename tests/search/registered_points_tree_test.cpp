#include "support/random.h"

#include <norvek/search/registered_points_tree.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <tuple>

namespace
{

using Costs = MDataArray2D<MRegistrationCostInfo>;
using Transforms = MDataArray2D<MMTransformMatrix>;

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

TEST(RegistrationCostInfo, OutliersDecideBeforeTheResidual)
{
    EXPECT_TRUE(Cost(3, 10.0) < Cost(4, 0.1) && Cost(3, 1.0) < Cost(3, 2.0));
    EXPECT_TRUE(Cost(0x80000000U, 0.0) > Cost(1, 1e300) && !(Cost(3, 1.0) > Cost(3, 2.0)));
    EXPECT_TRUE(Cost(3, 1.0, 10) == Cost(3, 1.0, 20) && Cost(~0U, 1.0) < MRegistrationCostInfo());
    EXPECT_FALSE(Cost(3, NAN) == Cost(3, NAN) || Cost(3, NAN) < Cost(3, 1.0));
    MRegistrationCostInfo info;
    EXPECT_TRUE(info.GetInfiniteCost() && info.GetOverlapPercentage() == -4294967294.0);
    EXPECT_FALSE(Cost(~0U, 1.0).GetInfiniteCost() || Cost(7, info.cost).GetInfiniteCost());
    info.SetNoCost();
    EXPECT_TRUE(!info.GetInfiniteCost() && info.GetOverlapPercentage() == 1.0);
    info.SetInfoInliers(75, 100, 2.0);
    EXPECT_TRUE(info.outliers == 25 && info.GetOverlapPercentage() == 0.75);
    // Its own members, in either place.
    info.SetInfo(info.total, info.outliers, 1.0);
    EXPECT_TRUE(info.outliers == 100 && info.total == 25);
    EXPECT_TRUE(std::isnan(Cost(0, 0.0, 0).GetOverlapPercentage()));
}

TEST(DataArray2D, RowsRunFastest)
{
    MDataArray2D<int> table(2, 3, 7);
    table(1, 2) = 5;
    EXPECT_EQ(&table(1, 2) - &table(0, 0), 5);
    table.Resize(3, 1, table(1, 2));
    EXPECT_TRUE(table(2, 0) == 5 && table.GetNumRows() == 3 && table.GetNumColumns() == 1);
    constexpr std::size_t half = std::size_t{1} << (sizeof(std::size_t) * 4);
    EXPECT_THROW(MDataArray2D<int>(half, half), std::length_error);
}

// Each edge is the least of all from the tree to the outside, by what the order is meant to be.
TEST(RegisteredPointsTree, EdgesAreThoseOfAllPairsCompared)
{
    norvek_test::Random random(601);
    for (int round = 0; round < 300; ++round) {
        const auto n = static_cast<std::uint32_t>(random.Integer(2, 12));
        Costs costs(n, n);
        Transforms pairwise(n, n);
        const std::vector<MMTransformMatrix> absolute(n, Shift(-1.0));
        for (std::uint32_t k = 0; k < n * n; ++k) {
            const int kind = random.Integer(0, 9);
            if (kind < 9 - 4 * (round % 2))
                costs(k % n, k / n) = Cost(static_cast<unsigned int>(random.Integer(0, 2)),
                                           kind == 0 ? NAN : std::floor(random.Uniform(0, 3)));
            pairwise(k % n, k / n) = Shift(k);
        }
        MRegistered3DPointsTree tree;
        ASSERT_TRUE(tree.Build(costs, pairwise, absolute));
        std::vector<std::vector<std::uint32_t>> children(n);
        std::vector<bool> isIn(n);
        isIn[0] = true;
        for (;;) {
            std::vector<std::tuple<unsigned int, double, std::uint32_t, std::uint32_t>> edges;
            for (std::uint32_t k = 0; k < n * n; ++k) {
                const MRegistrationCostInfo& c = costs(k / n, k % n);
                if (isIn[k / n] && !isIn[k % n] && !c.GetInfiniteCost())
                    edges.emplace_back(c.outliers, std::isnan(c.cost) ? INFINITY : c.cost, k / n,
                                       k % n);
            }
            if (edges.empty())
                break;
            const auto [outliers, cost, i, j] = *std::min_element(edges.begin(), edges.end());
            isIn[j] = true;
            children[i].push_back(j);
            const MRegistered3DPointsTree::Node& node = tree.GetNode(j);
            EXPECT_TRUE(node.parent == i && node.cost.outliers == outliers);
            EXPECT_TRUE(node.relativeTransform._Equal(Shift(i + n * j)));
        }
        for (std::uint32_t i = 0; i < n; ++i) {
            EXPECT_EQ(tree.IsInTree(i), isIn[i]);
            EXPECT_EQ(tree.GetNode(i).children, children[i]);
            EXPECT_TRUE(tree.GetNode(i).worldTransform._Equal(absolute[i]));
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
    EXPECT_TRUE(tree.GetNode(1).worldTransform._Equal(a * b));
    EXPECT_TRUE(tree.GetNode(3).worldTransform._Equal(Shift(7.0)));
    // The root moves with its relative transform, each time anew, and takes the others along.
    tree.SetRelativeTransform(0, Shift(3.0));
    tree.UpdateWcsTransforms();
    tree.UpdateWcsTransforms();
    EXPECT_TRUE(tree.GetNode(0).worldTransform._Equal(Shift(6.0)));
    EXPECT_TRUE(tree.GetNode(1).worldTransform._Equal((Shift(6.0) * a) * b));
    EXPECT_EQ(tree.AddNode(1, a, Cost(1, 2.0)), 4U);
    EXPECT_TRUE(tree.GetNode(4).worldTransform._Equal(((Shift(6.0) * a) * b) * a));

    EXPECT_THROW(tree.AddNode(3, a, Cost(1, 2.0)), std::out_of_range);
    EXPECT_FALSE(tree.Build(Costs(1, 1), Transforms(1, 1), {Shift(1.0)}));
    const std::vector<MMTransformMatrix> two(2);
    for (const auto& [i, j] : {std::pair{1U, 2U}, {2U, 1U}}) {
        EXPECT_THROW(tree.Build(Costs(i, j), Transforms(2, 2), two), std::out_of_range);
        EXPECT_THROW(tree.Build(Costs(2, 2), Transforms(i, j), two), std::out_of_range);
    }
    try {
        static_cast<void>(tree.GetNode(5));
        ADD_FAILURE();
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
    }
    // Refusals leave the tree.
    EXPECT_EQ(tree.GetNode(1).parent, 2U);
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
}

} // namespace
