#pragma once

#include <norvek/search/closest_point_info.h>

#include <list>
#include <vector>

class MMTransformMatrix;

/// Records of nearest points in a doubly linked list, with the figures that tell how well two sets
/// of points fit.
///
/// Sorting is stable and loses no record: those whose distance is NaN come last, in either
/// direction. The medians sort the list, which therefore is not const, and take the upper of the
/// two middle values.
class NORVEK_MATH_API MClosestPointInfoList : public std::list<MClosestPointInfo>
{
public:
    using std::list<MClosestPointInfo>::list;

    /// Sorts by distance, ascending or descending.
    void SortByDistance(const bool& ascending);

    /// The distance at place floor(n / 2) of the ascending order; -1.0 when the list is empty.
    /// Leaves the list sorted.
    double GetResiduMedian();

    /// The same, and the largest and the smallest distance. Both are untouched when the list is
    /// empty.
    double GetResiduMedian(double& largest, double& smallest);

    /// The planar residue sqrt((qx - cx)^2 + (qy - cy)^2) at place floor(n / 2) of the descending
    /// order of planar residues; **0.0** when the list is empty, unlike the others. Leaves the list
    /// in that order.
    double GetResiduMedianXY();

    /// The sum of the distances, from the first on; 0.0 when the list is empty.
    [[nodiscard]] double GetTotalError() const;

    /// The sum of |M q - c| over the records: the error after moving the query points. Throws what
    /// the transform throws.
    [[nodiscard]] double GetTotalError(const MMTransformMatrix& matrix) const;
};

/// Records of nearest points side by side.
class NORVEK_MATH_API MClosestPointInfoVector : public std::vector<MClosestPointInfo>
{
public:
    using std::vector<MClosestPointInfo>::vector;

    /// Sorts by distance, ascending or descending; stable, NaN last.
    void SortByDistance(const bool& ascending);
};
