#include "border/ring_area.h"

#include "border/exact_arithmetic.h"

namespace Norvek::Math::Core
{

bool RingAreas::IsLarger(std::uint32_t a, std::uint32_t b)
{
    if (a == b)
        return false;
    const LongNumber areaA = _Area(a);
    const LongNumber& areaB = _Area(b);
    if (areaA.high != areaB.high)
        return areaA.high > areaB.high;
    return areaA.low != areaB.low ? areaA.low > areaB.low : a < b;
}

// Twice the area, from the cross products of the places.
const RingAreas::LongNumber& RingAreas::_Area(std::uint32_t ring)
{
    if (_areas[ring].has_value())
        return *_areas[ring];
    LongNumber sum;
    const auto add = [&sum](double a, double b) {
        const WithError product = ExactProduct(a, b);
        const WithError high = ExactSum(sum.high, product.value);
        const WithError total = ExactSum(high.value, high.error + (sum.low + product.error));
        sum = {total.value, total.error};
    };
    const auto places = _rings.Ring(ring);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const PlanePoint& p = places[i];
        const PlanePoint& q = places[i + 1 == places.size() ? 0 : i + 1];
        add(p.x, q.y);
        add(-p.y, q.x);
    }
    if (sum.high < 0.0)
        sum = {-sum.high, -sum.low};
    _areas[ring] = sum;
    return *_areas[ring];
}

} // namespace Norvek::Math::Core
