#include "support/random.h"

#include <norvek/search/kd_tree_point_locator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{

using norvek_test::Random;
using Point = MMPoint3d<double>;
using Cloud = std::vector<Point>;
using Members = std::vector<std::uint32_t>;

constexpr double kEverywhere = MClosestPointInfo::kInfiniteDistance;

constexpr double Point::*kAxes[] = {&Point::x, &Point::y, &Point::z};

// Compares with every point, in the order of the described search: the tree by full sorts.
struct PlainSearch
{
    const Cloud& cloud;
    const Point& query;
    std::size_t bucket;
    double best;
    int found = -1;

    void Visit(Members members)
    {
        // Ties go to the lower axis.
        double Point::*axis = nullptr;
        double extent = -1.0;
        std::vector<double> sorted;
        for (double Point::*const candidate : kAxes) {
            std::vector<double> c;
            for (const std::uint32_t index : members)
                c.push_back(cloud[index].*candidate);
            std::sort(c.begin(), c.end());
            if (c.back() - c.front() > extent) {
                extent = c.back() - c.front();
                axis = candidate;
                sorted = c;
            }
        }
        if (members.size() <= bucket || extent == 0.0) {
            for (const std::uint32_t index : members) {
                const double squared = (query - cloud[index]).LengthSquared();
                found = squared < best ? static_cast<int>(index) : found;
                best = std::min(squared, best);
            }
            return;
        }
        // The run of the middle number goes right; left when there is nothing below it.
        auto [cut, end] =
            std::equal_range(sorted.begin(), sorted.end(), sorted[(members.size() + 1) / 2]);
        cut = cut != sorted.begin() ? cut : end;
        const auto right = std::stable_partition(
            members.begin(), members.end(),
            [&, value = *cut](std::uint32_t index) { return cloud[index].*axis < value; });
        const bool goesLeft = (*(cut - 1) + *cut) * 0.5 > query.*axis;
        const Members left(members.begin(), right);
        members.erase(members.begin(), right);
        Visit(goesLeft ? left : members);
        Visit(goesLeft ? members : left);
    }
};

// Uniform, clustered, gridded, collinear, duplicated, offset, geometric, flat, skewed, and one
// whose every fourth point misleads those who look at no others.
std::vector<Cloud> Clouds(Random& random, int count)
{
    std::vector<Cloud> clouds(10);
    for (int i = 0; i < count; ++i) {
        const Point p = random.Point(1.0);
        clouds[0].push_back(p);
        clouds[1].push_back(p * p.x * p.y * p.z + Point(i % 7, i % 5, 0));
        clouds[2].emplace_back(random.Integer(0, 9), random.Integer(0, 9), random.Integer(0, 9));
        clouds[3].push_back(Point(1, 2, 3) * random.Integer(0, 2 * count));
        clouds[4].push_back(Point(1, 2, 3) * random.Integer(0, 3));
        clouds[5].push_back(p + Point(1e6, -1e6, 1e6));
        clouds[6].push_back(Point(1, 1, -1) * std::ldexp(1.0, i % 200 - 100));
        clouds[7].emplace_back(p.x, 0.0, -0.0);
        clouds[8].emplace_back(i == 0 ? -5.0 : 0.0, i < 5 ? -3.0 : 1.0, random.Integer(0, 2));
        clouds[9].push_back(p + Point(i % 4 == 0 ? 9.0 : 0.0, 0.0, 0.0));
    }
    return clouds;
}

TEST(KdTree, FindsWhatTheDescribedSearchAndABruteForceFind)
{
    Random random(701);
    std::vector<MFoundPoint> found;
    for (const int count : {1, 10, 11, 60, 700}) {
        for (const Cloud& cloud : Clouds(random, count)) {
            MKDTreePointLocator locator;
            const std::uint32_t bucket = count == 60 ? 3 : 10;
            locator.SetBucketSize(bucket);
            locator.BuildLocator(cloud);
            Members members(cloud.size());
            std::iota(members.begin(), members.end(), 0U);
            for (std::size_t i = 0; i < 100; ++i) {
                const Point& some = cloud[static_cast<std::size_t>(random.Integer(0, count - 1))];
                const Point& other = cloud[static_cast<std::size_t>(random.Integer(0, count - 1))];
                // On a point, half-way between two, beside one, and far away.
                const Point queries[]{some, (some + other) * 0.5, some + random.Point(0.1),
                                      random.Point(30.0)};
                const Point& query = queries[i % 4];
                const double radius =
                    i % 3 == 0 ? kEverywhere : std::abs(random.LogUniform(1e-3, 40));
                PlainSearch plain{cloud, query, bucket, i % 3 == 0 ? kEverywhere : radius * radius};
                plain.Visit(members);
                MClosestPointInfo info;
                info.SetQueryPoint(query);
                info.SetDistance(radius);
                const bool isFound = locator.FindClosestPointWithinRadius(info);
                ASSERT_EQ(info.GetFoundIndex(), plain.found) << count << query;
                EXPECT_EQ(isFound, info.GetFoundIndex() >= 0);
                EXPECT_EQ(info.GetDistance(), isFound ? std::sqrt(plain.best) : radius);
                EXPECT_TRUE(!isFound || info.GetClosestPoint() ==
                                            cloud[static_cast<std::size_t>(info.GetFoundIndex())]);

                std::vector<MFoundPoint> all;
                for (std::uint32_t k = 0; k < cloud.size(); ++k)
                    all.push_back({k, (query - cloud[k]).LengthSquared()});
                std::stable_sort(all.begin(), all.end(), [](const auto& a, const auto& b) {
                    return a.distance < b.distance;
                });
                for (MFoundPoint& point : all)
                    point.distance = std::sqrt(point.distance);
                for (const std::uint32_t wanted : {1U, 8U, 40U, 900U}) {
                    EXPECT_TRUE(locator.FindClosestPoints(query, wanted, found));
                    const auto last = all.begin() + std::min<std::ptrdiff_t>(wanted, count);
                    EXPECT_EQ(found, std::vector<MFoundPoint>(all.begin(), last));
                }
                // The sphere itself belongs to the ball.
                const double ball = all[i % all.size()].distance;
                EXPECT_TRUE(locator.FindPointsWithinRadius(query, ball, found));
                const auto last = std::find_if(all.begin(), all.end(), [&](const auto& point) {
                    return point.distance > ball;
                });
                EXPECT_TRUE(std::is_permutation(found.begin(), found.end(), all.begin(), last));
            }
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

    // Not finite in each coordinate, and so far apart that sums overflow.
    Cloud cloud(60, Point(1.0, 2.0, NAN));
    for (std::size_t i = 0; i < cloud.size(); i += 2)
        cloud[i] = Point(i % 4 == 0 ? 1.6e308 : 1.7e308, i % 10 == 0 ? INFINITY : 0.0,
                         i % 6 == 0 ? INFINITY : static_cast<double>(i));
    cloud[17] = Point(1.0, 2.0, 3.0);
    locator.BuildLocator(cloud);
    for (const int index : {17, 14}) {
        info.SetQueryPoint(index == 17 ? Point() : cloud[14]);
        EXPECT_TRUE(locator.FindClosestPoint(info) && info.GetFoundIndex() == index);
    }
    for (const double odd : {NAN, INFINITY, -INFINITY}) {
        info.SetQueryPoint({0.0, odd, 0.0});
        EXPECT_FALSE(locator.FindClosestPoint(info) || info.GetFoundIndex() != -1);
        EXPECT_FALSE(locator.FindPointsWithinRadius({odd, 0.0, 0.0}, 1.0, found));
    }
    // Strictly within: not at the radius, nor at 0 where the square of the radius vanishes.
    for (const double radius : {2.0, 0.0, -5.0, double{NAN}, 1e-200}) {
        info.SetDistance(radius);
        info.SetQueryPoint({1.0, 2.0, radius == 2.0 ? 1.0 : 3.0});
        EXPECT_FALSE(locator.FindClosestPointWithinRadius(info)) << radius;
    }
    EXPECT_TRUE(locator.FindPointsWithinRadius({1.0, 2.0, 3.0}, 0.0, found));

    // The answer may overwrite the query.
    Point both(1.0, 2.0, 2.5);
    info.PointQueryAt(&both);
    info.PointClosestAt(&both);
    EXPECT_TRUE(locator.FindClosestPoint(info));
    EXPECT_TRUE(both == cloud[17] && info.GetDistance() == 0.5);

    locator.SetBucketSize(3);
    locator.SetDefaults();
    EXPECT_TRUE(locator.GetBucketSize() == 10 && locator.GetNumPoints() == 0);
    EXPECT_FALSE(locator.FindClosestPoint(info));
}

} // namespace
