#include "border/orientation.h"

#include "border/exact_arithmetic.h"

#include <array>
#include <cstddef>

namespace Norvek::Math::Core
{

namespace
{

// An exact sum: components that do not overlap, in ascending order of magnitude, none of them zero.
// The determinant has six products of two components each.
struct Expansion
{
    std::array<double, 12> components{};
    std::size_t size = 0;

    // The sum is carried up through the components and takes the largest part along.
    void Add(double value)
    {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const WithError sum = ExactSum(value, components[i]);
            if (sum.error != 0.0)
                components[kept++] = sum.error;
            value = sum.value;
        }
        if (value != 0.0)
            components[kept++] = value;
        size = kept;
    }

    void AddProduct(double a, double b)
    {
        const WithError product = ExactProduct(a, b);
        Add(product.error);
        Add(product.value);
    }
};

} // namespace

// The differences of coordinates are not exact; the six products of the coordinates themselves are.
int ExactOrientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c)
{
    Expansion sum;
    sum.AddProduct(a.x, b.y);
    sum.AddProduct(-a.y, b.x);
    sum.AddProduct(b.x, c.y);
    sum.AddProduct(-b.y, c.x);
    sum.AddProduct(c.x, a.y);
    sum.AddProduct(-c.y, a.x);
    if (sum.size == 0)
        return 0;
    return sum.components[sum.size - 1] > 0.0 ? 1 : -1;
}

} // namespace Norvek::Math::Core
