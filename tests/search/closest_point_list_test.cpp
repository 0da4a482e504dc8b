#include <norvek/search/closest_point_list.h>
#include <norvek/transform/transform_matrix.h>

#include <gtest/gtest.h>

#include <cmath>

namespace
{

using Point = MMPoint3d<double>;

MClosestPointInfo Record(double distance, const Point& query = {}, const Point& closest = {})
{
    MClosestPointInfo info;
    info.SetDistance(distance);
    info.SetQueryPoint(query);
    info.SetClosestPoint(closest);
    return info;
}

TEST(ClosestPointInfo, CopiesPointAtTheirOwnStorage)
{
    Point query(1.0, 2.0, 3.0);
    Point closest(4.0, 6.0, 3.0);
    MClosestPointInfo original;
    original.PointQueryAt(&query);
    original.PointClosestAt(&closest);
    original.SetInputIndex(7);
    original.UpdateResidues();
    EXPECT_EQ(original.GetDistance(), 5.0);
    const MClosestPointInfo constructed(original);
    // What a record pointed at before stays as it was; the other may point into the new copy.
    MClosestPointInfo assigned;
    Point outside;
    assigned.PointQueryAt(&outside);
    assigned.PointClosestAt(&outside);
    assigned = original;
    MClosestPointInfo copied;
    original.PointClosestAt(const_cast<Point*>(&copied.GetQueryPoint()));
    original.SetClosestPoint(closest);
    copied.Copy(original);
    EXPECT_EQ(outside, Point());
    original.PointClosestAt(&closest);
    original.SetFoundIndex(3);
    original.SetDefaultsInput();
    original.SetDefaultsOutput();
    EXPECT_EQ(original.GetFoundIndex(), -1);
    EXPECT_EQ(query, Point(-1.0, -1.0, -1.0));
    EXPECT_EQ(closest, query);
    for (const MClosestPointInfo& copy : {constructed, assigned, copied}) {
        EXPECT_EQ(copy.GetQueryPoint(), Point(1.0, 2.0, 3.0));
        EXPECT_EQ(copy.GetClosestPoint(), Point(4.0, 6.0, 3.0));
        EXPECT_EQ(copy.GetInputIndex(), 7);
        EXPECT_TRUE(copy < original && original > copy && !(copy > assigned) && copy == assigned);
    }
    // Growing and sorting move records about.
    MClosestPointInfoVector records;
    for (int i = 0; i < 100; ++i)
        records.push_back(Record(i * 37 % 100, {double(i * 37 % 100), 0.0, 0.0}));
    records.SortByDistance(false);
    for (std::size_t i = 0; i < records.size(); ++i)
        EXPECT_EQ(records[i].GetQueryPoint().x, 99.0 - static_cast<double>(i));
}

TEST(ClosestPointInfoList, MediansAndSums)
{
    MClosestPointInfoList list;
    double largest = 7.0;
    double smallest = 7.0;
    EXPECT_EQ(list.GetResiduMedian(largest, smallest), -1.0);
    EXPECT_EQ(largest + smallest, 14.0);
    EXPECT_EQ(list.GetResiduMedianXY() + list.GetTotalError(), 0.0);
    for (const double d : {4.0, 1.0, 3.0, 2.0})
        list.push_back(Record(d, {d, 0.0, 9.0}, {10.0, 0.0, 0.0}));
    EXPECT_EQ(list.GetResiduMedian(largest, smallest), 3.0);
    EXPECT_EQ(largest, 4.0);
    EXPECT_EQ(smallest, 1.0);
    EXPECT_EQ(list.GetTotalError(), 10.0);
    // Descending planar residues 9, 8, 7, 6.
    EXPECT_EQ(list.GetResiduMedianXY(), 7.0);
    EXPECT_EQ(list.front().GetDistance(), 1.0);
    MMTransformMatrix down;
    down.MakeTranslation({0.0, 0.0, -9.0});
    EXPECT_EQ(list.GetTotalError(down), 9.0 + 8.0 + 7.0 + 6.0);
    // NaN comes last either way, and nothing is lost.
    list.push_front(Record(NAN));
    for (const bool ascending : {true, false}) {
        list.SortByDistance(ascending);
        EXPECT_EQ(list.front().GetDistance(), ascending ? 1.0 : 4.0);
        EXPECT_TRUE(std::isnan(list.back().GetDistance()));
        EXPECT_EQ(list.size(), 5U);
    }
}

} // namespace
