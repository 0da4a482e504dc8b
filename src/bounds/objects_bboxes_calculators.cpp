#include <norvek/bounds/objects_bboxes_calculators.h>

#include <algorithm>

namespace ObjectsBBoxesCalculators
{

M3DBoundingBox<std::int32_t> GetGradientGraphEgdeBBox(const MMPoint3d<double>& p1,
                                                      const MMPoint3d<double>& p2, double r1,
                                                      double r2)
{
    const MMPoint3d<double> low(std::min(p1.x - r1, p2.x - r2), std::min(p1.y - r1, p2.y - r2),
                                std::min(p1.z - r1, p2.z - r2));
    const MMPoint3d<double> high(std::max(p1.x + r1, p2.x + r2), std::max(p1.y + r1, p2.y + r2),
                                 std::max(p1.z + r1, p2.z + r2));
    M3DBoundingBox<std::int32_t> box;
    box.AddPoint(MMPoint3d<std::int32_t>(low));
    box.AddPoint(MMPoint3d<std::int32_t>(high));
    return box;
}

} // namespace ObjectsBBoxesCalculators
