#include <norvek/search/closest_point_list.h>
#include <norvek/transform/transform_matrix.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>

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
    Point query(1.0, 2.0, 3.0), closest(4.0, 6.0, 3.0), outside;
    MClosestPointInfo original;
    original.PointQueryAt(&query);
    original.PointClosestAt(&closest);
    original.SetInputIndex(7);
    original.SetFoundIndex(3);
    original.UpdateResidues();
    // What a record pointed at before stays as it was; the other may point into the new copy.
    MClosestPointInfo assigned;
    assigned.PointQueryAt(&outside);
    assigned.PointClosestAt(&outside);
    assigned = original;
    MClosestPointInfo copied;
    original.PointClosestAt(const_cast<Point*>(&copied.GetQueryPoint()));
    original.SetClosestPoint(closest);
    copied.Copy(original);
    original.PointClosestAt(&closest);
    original.SetDefaultsInput();
    original.SetDefaultsOutput();
    EXPECT_EQ(original.GetInputIndex() + original.GetFoundIndex(), -2);
    EXPECT_TRUE(outside == Point() && query == Point(-1.0, -1.0, -1.0) && closest == query);
    for (const MClosestPointInfo& copy : {assigned, copied}) {
        EXPECT_TRUE(copy.GetQueryPoint() == Point(1.0, 2.0, 3.0) && copy.GetInputIndex() == 7);
        EXPECT_TRUE(copy.GetClosestPoint() == Point(4.0, 6.0, 3.0) && copy.GetFoundIndex() == 3);
        EXPECT_TRUE(copy.GetDistance() == 5.0 && copy == assigned && !(copy > assigned));
        EXPECT_TRUE(copy < original && original > copy);
    }
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
    EXPECT_TRUE(largest == 4.0 && smallest == 1.0);
    // Descending planar residues 9, 8, 7, 6.
    EXPECT_EQ(list.GetResiduMedianXY(), 7.0);
    EXPECT_EQ(list.front().GetDistance(), 1.0);
    MMTransformMatrix down;
    down.MakeTranslation({0.0, 0.0, -9.0});
    EXPECT_EQ(list.GetTotalError(down), 9.0 + 8.0 + 7.0 + 6.0);
    EXPECT_EQ(list.GetTotalError(), 10.0);
    // NaN comes last either way, also where growing and sorting move the records about.
    list.push_front(Record(NAN));
    MClosestPointInfoVector records;
    for (const MClosestPointInfo& record : list)
        records.push_back(record);
    for (const bool ascending : {true, false}) {
        list.SortByDistance(ascending);
        records.SortByDistance(ascending);
        EXPECT_TRUE(std::equal(list.begin(), std::prev(list.end()), records.begin()));
        EXPECT_EQ(records[0].GetQueryPoint().x, ascending ? 1.0 : 4.0);
        EXPECT_TRUE(std::isnan(list.back().GetDistance() + records.back().GetDistance()));
        EXPECT_TRUE(list.size() == 5 && records.size() == 5);
    }
}

} // namespace
