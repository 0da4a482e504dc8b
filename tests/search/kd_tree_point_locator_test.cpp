#include "support/random.h"

#include <norvek/search/kd_tree_point_locator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>

namespace
{

using norvek_test::Random;
using Point = MMPoint3d<double>;
using Cloud = std::vector<Point>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kEverywhere = MClosestPointInfo::kInfiniteDistance;

double At(const Point& p, int axis)
{
    return axis == 0 ? p.x : axis == 1 ? p.y : p.z;
}

// The tree by full sorts, and the search by a ball and the sides of cells, without short cuts.
class PlainTree
{
public:
    explicit PlainTree(const Cloud& cloud) : _cloud(cloud)
    {
        std::vector<std::uint32_t> all(cloud.size());
        std::iota(all.begin(), all.end(), 0U);
        _root = Build(all);
    }

    // The index and the square of the distance; -1 when there is none.
    std::pair<int, double> Find(const Point& q, double radius)
    {
        const bool isEverywhere = radius == kEverywhere;
        _found = -1;
        _best = isEverywhere ? kEverywhere : radius * radius;
        double low[3];
        double high[3];
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = isEverywhere ? -kInfinity : At(q, axis) - radius;
            high[axis] = isEverywhere ? kInfinity : At(q, axis) + radius;
        }
        Search(*_root, q, low, high);
        return {_found, _best};
    }

private:
    struct Node
    {
        int axis = 999;
        double split = 0.0;
        std::vector<std::uint32_t> bucket;
        std::unique_ptr<Node> left;
        std::unique_ptr<Node> right;
    };

    std::unique_ptr<Node> Build(std::vector<std::uint32_t> members)
    {
        auto node = std::make_unique<Node>();
        int axis = 0;
        double extent = -1.0;
        for (int i = 0; i < 3 && !members.empty(); ++i) {
            const auto [low, high] =
                std::minmax_element(members.begin(), members.end(), [&](auto a, auto b) {
                    return At(_cloud[a], i) < At(_cloud[b], i);
                });
            if (At(_cloud[*high], i) - At(_cloud[*low], i) > extent) {
                extent = At(_cloud[*high], i) - At(_cloud[*low], i);
                axis = i;
            }
        }
        if (members.size() <= 10 || extent == 0.0) {
            std::sort(members.begin(), members.end());
            node->bucket = members;
            return node;
        }
        std::sort(members.begin(), members.end(),
                  [&](auto a, auto b) { return At(_cloud[a], axis) < At(_cloud[b], axis); });
        const auto c = [&](std::size_t i) {
            return At(_cloud[members[i]], axis);
        };
        const std::size_t m = (members.size() + 1) / 2;
        std::size_t k = m;
        if (c(m - 1) == c(m)) {
            std::size_t low = m;
            while (low > 0 && c(low - 1) == c(m))
                --low;
            std::size_t high = m + 1;
            while (high < members.size() && c(high) == c(m))
                ++high;
            k = low > 0 ? low : high;
        }
        node->axis = axis;
        node->split = (c(k - 1) + c(k)) * 0.5;
        const auto cut = members.begin() + static_cast<std::ptrdiff_t>(k);
        node->left = Build({members.begin(), cut});
        node->right = Build({cut, members.end()});
        return node;
    }

    bool Search(const Node& node, const Point& q, double (&low)[3], double (&high)[3])
    {
        if (node.left) {
            const bool goesLeft = node.split > At(q, node.axis);
            double& nearSide = goesLeft ? high[node.axis] : low[node.axis];
            double& farSide = goesLeft ? low[node.axis] : high[node.axis];
            const double nearBefore = std::exchange(nearSide, node.split);
            const bool done = Search(goesLeft ? *node.left : *node.right, q, low, high);
            nearSide = nearBefore;
            if (done)
                return true;
            const double farBefore = std::exchange(farSide, node.split);
            const double radius = std::sqrt(_best);
            bool overlaps = true;
            for (int i = 0; i < 3; ++i)
                overlaps = overlaps && low[i] <= At(q, i) + radius && At(q, i) - radius <= high[i];
            const bool farDone =
                overlaps && Search(goesLeft ? *node.right : *node.left, q, low, high);
            farSide = farBefore;
            if (farDone)
                return true;
        }
        for (const std::uint32_t index : node.bucket) {
            const Point d = q - _cloud[index];
            if (d.x * d.x + d.y * d.y + d.z * d.z < _best) {
                _best = d.x * d.x + d.y * d.y + d.z * d.z;
                _found = static_cast<int>(index);
            }
        }
        const double radius = std::sqrt(_best);
        bool isInside = _found >= 0;
        for (int i = 0; i < 3; ++i)
            isInside = isInside && At(q, i) - low[i] > radius && high[i] - At(q, i) > radius;
        return isInside;
    }

    const Cloud& _cloud;
    std::unique_ptr<Node> _root;
    int _found = -1;
    double _best = 0.0;
};

// Uniform, clustered, gridded, collinear, duplicated, offset, geometric, flat and skewed.
std::vector<Cloud> Clouds(Random& random, int count)
{
    std::vector<Cloud> clouds(9);
    for (int i = 0; i < count; ++i) {
        const Point p = random.Point(1.0);
        clouds[0].push_back(p);
        clouds[1].push_back(p * p.x * p.y * p.z + Point(i % 7, i % 5, 0));
        clouds[2].emplace_back(random.Integer(0, 9), random.Integer(0, 9), random.Integer(0, 9));
        clouds[3].push_back(Point(1, 2, 3) * p.x);
        clouds[4].push_back(Point(1, 2, 3) * random.Integer(0, 3));
        clouds[5].push_back(p + Point(1e6, -1e6, 1e6));
        clouds[6].push_back(Point(1, 1, -1) * std::ldexp(1.0, i % 200 - 100));
        clouds[7].emplace_back(p.x, 0.0, -0.0);
        clouds[8].emplace_back(i == 0 ? -5.0 : 0.0, i < 5 ? -3.0 : 1.0, random.Integer(0, 2));
    }
    return clouds;
}

TEST(KdTree, FindsWhatTheDescribedSearchAndABruteForceFind)
{
    Random random(701);
    for (const int count : {1, 10, 11, 60, 700}) {
        for (const Cloud& cloud : Clouds(random, count)) {
            PlainTree plain(cloud);
            MKDTreePointLocator locator;
            locator.BuildLocator(cloud);
            for (int i = 0; i < 150; ++i) {
                const Point& some = cloud[static_cast<std::size_t>(random.Integer(0, count - 1))];
                const Point& other = cloud[static_cast<std::size_t>(random.Integer(0, count - 1))];
                // On a point, half-way between two, beside one, and far away.
                const Point queries[]{some, (some + other) * 0.5, some + random.Point(0.1),
                                      random.Point(30.0)};
                const Point& query = queries[i % 4];
                const double radius =
                    i % 3 == 0 ? kEverywhere : std::abs(random.LogUniform(1e-3, 40));
                double nearest = kEverywhere;
                for (const Point& p : cloud)
                    nearest = std::min(nearest, (query - p).LengthSquared());
                MClosestPointInfo info;
                info.SetQueryPoint(query);
                info.SetDistance(radius);
                const bool isFound = locator.FindClosestPointWithinRadius(info);
                ASSERT_EQ(isFound, nearest < radius * radius);
                if (!isFound) {
                    EXPECT_TRUE(info.GetFoundIndex() == -1 && info.GetDistance() == radius);
                    continue;
                }
                EXPECT_EQ(info.GetDistance(), std::sqrt(nearest));
                EXPECT_EQ(info.GetClosestPoint(),
                          cloud[static_cast<std::size_t>(info.GetFoundIndex())]);
                const auto [index, squared] = plain.Find(query, radius);
                EXPECT_TRUE(index == info.GetFoundIndex() || squared > nearest) << count << query;
            }
        }
    }
}

TEST(KdTree, FindsSeveralAndAllWithinARadius)
{
    Random random(702);
    std::vector<MFoundPoint> found;
    for (const Cloud& cloud : Clouds(random, 500)) {
        MKDTreePointLocator locator;
        locator.BuildLocator(cloud);
        for (int i = 0; i < 60; ++i) {
            const Point query = i % 2 == 0 ? cloud[static_cast<std::size_t>(i)] : random.Point(2.0);
            std::vector<MFoundPoint> all;
            for (std::uint32_t k = 0; k < cloud.size(); ++k)
                all.push_back({k, (query - cloud[k]).LengthSquared()});
            std::stable_sort(all.begin(), all.end(),
                             [](const auto& a, const auto& b) { return a.distance < b.distance; });
            for (MFoundPoint& point : all)
                point.distance = std::sqrt(point.distance);
            for (const std::uint32_t count : {1U, 8U, 40U, 900U}) {
                EXPECT_TRUE(locator.FindClosestPoints(query, count, found));
                const auto last = all.begin() + std::min<std::ptrdiff_t>(count, 500);
                EXPECT_EQ(found, std::vector<MFoundPoint>(all.begin(), last));
            }
            // The sphere itself belongs to the ball.
            const double radius = all[static_cast<std::size_t>(i)].distance;
            EXPECT_TRUE(locator.FindPointsWithinRadius(query, radius, found));
            const auto last = std::find_if(all.begin(), all.end(), [&](const MFoundPoint& point) {
                return point.distance > radius;
            });
            EXPECT_TRUE(std::is_permutation(found.begin(), found.end(), all.begin(), last));
        }
    }
}

TEST(KdTree, HostilePointsQueriesAndRadii)
{
    MKDTreePointLocator locator;
    MClosestPointInfo info;
    std::vector<MFoundPoint> found;
    EXPECT_FALSE(locator.FindClosestPoint(info));
    EXPECT_EQ(info.GetDistance(), kEverywhere);
    EXPECT_FALSE(locator.FindClosestPoints({}, 3, found) ||
                 locator.FindPointsWithinRadius({}, 1.0, found));

    Cloud cloud(40, Point(kNan, 1.0, 2.0));
    for (std::size_t i = 0; i < cloud.size(); i += 2)
        cloud[i] = Point(i % 4 == 0 ? kInfinity : 1.7e308, 0.0, static_cast<double>(i));
    cloud[17] = Point(1.0, 2.0, 3.0);
    locator.BuildLocator(cloud);
    EXPECT_TRUE(locator.FindClosestPoint(info));
    EXPECT_EQ(info.GetFoundIndex(), 17);
    for (const double odd : {kNan, kInfinity, -kInfinity}) {
        info.SetQueryPoint({0.0, odd, 0.0});
        EXPECT_FALSE(locator.FindClosestPoint(info));
        EXPECT_EQ(info.GetFoundIndex(), -1);
        EXPECT_FALSE(locator.FindPointsWithinRadius({odd, 0.0, 0.0}, 1.0, found));
    }
    // Strictly within: not at the radius, nor at 0 where the square of the radius vanishes.
    info.SetQueryPoint({1.0, 2.0, 1.0});
    for (const double radius : {2.0, 0.0, -5.0, kNan, 1e-200}) {
        info.SetDistance(radius);
        info.SetQueryPoint(radius == 2.0 ? Point(1.0, 2.0, 1.0) : Point(1.0, 2.0, 3.0));
        EXPECT_FALSE(locator.FindClosestPointWithinRadius(info)) << radius;
        EXPECT_TRUE(locator.FindPointsWithinRadius({1.0, 2.0, 3.0}, 0.0, found));
    }
    EXPECT_FALSE(locator.FindPointsWithinRadius({1.0, 2.0, 3.0}, -1.0, found));
    EXPECT_TRUE(locator.FindPointsWithinRadius({1.0, 2.0, 3.0}, kInfinity, found));

    // The answer may overwrite the query.
    MMPoint3d<double> both(1.0, 2.0, 2.5);
    info.PointQueryAt(&both);
    info.PointClosestAt(&both);
    EXPECT_TRUE(locator.FindClosestPoint(info));
    EXPECT_EQ(both, Point(1.0, 2.0, 3.0));
    EXPECT_EQ(info.GetDistance(), 0.5);

    MKDTreePointLocator copy = locator;
    locator.SetDefaults();
    EXPECT_FALSE(locator.FindClosestPoint(info));
    EXPECT_TRUE(copy.FindClosestPoint(info));
}

TEST(KdTree, ManyEqualPointsAndLongLines)
{
    Cloud cloud(100000, Point(3.0, 4.0, 0.0));
    MKDTreePointLocator locator;
    locator.BuildLocator(cloud);
    MClosestPointInfo info;
    info.SetQueryPoint({});
    EXPECT_TRUE(locator.FindClosestPoint(info) && info.GetFoundIndex() == 0);
    EXPECT_EQ(info.GetDistance(), 5.0);
    for (std::size_t i = 0; i < cloud.size(); ++i)
        cloud[i] = Point(1.0, 0.0, 0.0) * std::ldexp(static_cast<double>(i % 100), -int(i / 100));
    locator.BuildLocator(cloud);
    for (std::size_t i = 0; i < cloud.size(); i += 997) {
        info.SetQueryPoint(cloud[i]);
        EXPECT_TRUE(locator.FindClosestPoint(info) && info.GetDistance() == 0.0);
    }
}

} // namespace
