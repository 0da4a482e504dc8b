#include <norvek/border/border_algorithms.h>
#include <norvek/transform/transform_matrix.h>

template <class Coord, class Payload>
    requires(std::same_as<Coord, float>&& std::same_as<Payload, float>)
void TransformBorder(M3dBorder<Coord, Payload>& border, const MMTransformMatrix& matrix)
{
    for (auto& contour : border) {
        for (auto& point : contour)
            // The payload is the z coordinate; all three are written back rounded to float.
            matrix.Transform(point.x, point.y, point.payload, false);
    }
}

template void TransformBorder<float, float>(M3dBorder<float, float>&, const MMTransformMatrix&);
