#include <norvek/search/closest_point_list.h>
#include <norvek/transform/transform_matrix.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace
{

double Distance(const MClosestPointInfo& info)
{
    return info.GetDistance();
}

double PlanarResidue(const MClosestPointInfo& info)
{
    const MMPoint3d<double> d = info.GetQueryPoint() - info.GetClosestPoint();
    return std::sqrt(d.x * d.x + d.y * d.y);
}

// A strict weak order needs a place for NaN: behind all numbers.
template <double (*key)(const MClosestPointInfo&)>
bool Before(const MClosestPointInfo& a, const MClosestPointInfo& b, bool ascending)
{
    const double keyA = key(a);
    const double keyB = key(b);
    if (std::isnan(keyA) || std::isnan(keyB))
        return !std::isnan(keyA) && std::isnan(keyB);
    return ascending ? keyA < keyB : keyA > keyB;
}

const MClosestPointInfo& Middle(const MClosestPointInfoList& list)
{
    return *std::next(list.begin(), static_cast<std::ptrdiff_t>(list.size() / 2));
}

} // namespace

void MClosestPointInfoList::SortByDistance(const bool& ascending)
{
    sort([up = ascending](const MClosestPointInfo& a, const MClosestPointInfo& b) {
        return Before<Distance>(a, b, up);
    });
}

double MClosestPointInfoList::GetResiduMedian()
{
    if (empty())
        return -1.0;
    SortByDistance(true);
    return Middle(*this).GetDistance();
}

double MClosestPointInfoList::GetResiduMedian(double& largest, double& smallest)
{
    const double median = GetResiduMedian();
    if (!empty()) {
        largest = back().GetDistance();
        smallest = front().GetDistance();
    }
    return median;
}

// Another order and another answer for an empty list than the median above: both are meant.
double MClosestPointInfoList::GetResiduMedianXY()
{
    if (empty())
        return 0.0;
    sort([](const MClosestPointInfo& a, const MClosestPointInfo& b) {
        return Before<PlanarResidue>(a, b, false);
    });
    return PlanarResidue(Middle(*this));
}

double MClosestPointInfoList::GetTotalError() const
{
    double sum = 0.0;
    for (const MClosestPointInfo& info : *this)
        sum += info.GetDistance();
    return sum;
}

double MClosestPointInfoList::GetTotalError(const MMTransformMatrix& matrix) const
{
    double sum = 0.0;
    for (const MClosestPointInfo& info : *this) {
        MMPoint3d<double> moved;
        matrix.Transform(moved, info.GetQueryPoint(), false);
        sum += (moved - info.GetClosestPoint()).Length();
    }
    return sum;
}

void MClosestPointInfoVector::SortByDistance(const bool& ascending)
{
    std::stable_sort(begin(), end(),
                     [up = ascending](const MClosestPointInfo& a, const MClosestPointInfo& b) {
                         return Before<Distance>(a, b, up);
                     });
}
