#include "foundation/safe_length.h"

#include <norvek/border/border_algorithms.h>
#include <norvek/foundation/coordinate.h>
#include <norvek/transform/transform_matrix.h>

#include <vector>

namespace Norvek::Math::Core
{

namespace
{

using Border = M3dBorder<float, float>;
using Contour = Border::ContourType;
using Vertex = MMPoint3d<float>;

// Cuts contours, given as rows of points in ring order, to the slab low <= x <= high and appends
// what is left to a border.
class SlabClipper
{
public:
    SlabClipper(float low, float high, Border& result) : _low(low), _high(high), _result(result)
    {}

    void Clip(const std::vector<Vertex>& points, bool isClosed)
    {
        _runs.clear();
        for (std::size_t i = 0; i < points.size(); ++i)
            _Step(i > 0 ? &points[i - 1] : nullptr, points[i]);
        if (isClosed && !points.empty())
            _CloseRing(points.back(), points.front());
    }

private:
    // Strict: a point on a limit is inside, and so is NaN.
    [[nodiscard]] bool _IsOutside(const Vertex& point) const
    {
        return point.x < _low || point.x > _high;
    }

    // Where the edge from `outside` to `other` meets the limit that `outside` violates.
    [[nodiscard]] Vertex _Crossing(const Vertex& outside, const Vertex& other) const
    {
        if (outside.x == other.x)
            return {};
        const float limit = outside.x < _low ? _low : _high;
        const float t = (limit - other.x) / (outside.x - other.x);
        return other + t * (outside - other);
    }

    // Each new contour has a pool of its own.
    Contour& _AddOpenContour()
    {
        Contour* const contour = _result.AddContourAtEnd(std::make_unique<Contour>().release());
        contour->SetIsClosed(false);
        return *contour;
    }

    static void _Append(Contour& contour, const Vertex& point)
    {
        contour.InsertAtEnd(point.x, point.y, point.z);
    }

    // The next point of the walk, with the edge that leads to it; there is none to the first point.
    void _Step(const Vertex* previous, const Vertex& point)
    {
        const bool comesFromOutside = previous != nullptr && _IsOutside(*previous);
        if (_IsOutside(point)) {
            if (comesFromOutside)
                _AddPassage(*previous, point);
            else if (previous != nullptr)
                _Append(*_runs.back(), _Crossing(point, *previous));
            return;
        }
        if (previous == nullptr || comesFromOutside) {
            _runs.push_back(&_AddOpenContour());
            if (comesFromOutside)
                _Append(*_runs.back(), _Crossing(*previous, point));
        }
        _Append(*_runs.back(), point);
    }

    // An edge between two outside points. The sign test tells one side from the other because the
    // slab begins at 0.
    void _AddPassage(const Vertex& previous, const Vertex& point)
    {
        if (!(previous.x * point.x < 0.0F))
            return;
        Contour& passage = _AddOpenContour();
        _Append(passage, _Crossing(previous, point));
        _Append(passage, _Crossing(point, previous));
    }

    // The edge from the last point of a closed contour to its first.
    void _CloseRing(const Vertex& last, const Vertex& first)
    {
        const bool isLastOutside = _IsOutside(last);
        const bool isFirstOutside = _IsOutside(first);
        if (isLastOutside && isFirstOutside) {
            _AddPassage(last, first);
        } else if (isLastOutside) {
            const Vertex crossing = _Crossing(last, first);
            _runs.front()->InsertAtFront(crossing.x, crossing.y, crossing.z);
        } else if (isFirstOutside) {
            _Append(*_runs.back(), _Crossing(first, last));
        } else if (_runs.size() == 1) {
            _runs.front()->SetIsClosed(true);
        } else {
            // The last run keeps its place in the list; the first one disappears into it.
            _runs.back()->InsertAtEnd(*_runs.front());
            _result.RemoveContour(_runs.front());
        }
    }

    float _low;
    float _high;
    Border& _result;
    // The runs of inside points of the contour at hand.
    std::vector<Contour*> _runs;
};

// In single precision, as the frame is; a zero vector stays as it is.
float FrameLength(const Vertex& axis)
{
    return CoordinateCast<float>(SafeLength(MMPoint3d<double>(axis)));
}

MMPoint3d<double> UnitAxis(const Vertex& axis)
{
    const float length = FrameLength(axis);
    return MMPoint3d<double>(length != 0.0F ? axis / length : axis);
}

} // namespace

} // namespace Norvek::Math::Core

// The border itself is only read until the result is complete.
template <class Coord, class Payload, class FrameCoord>
    requires(
        std::same_as<Coord, float>&& std::same_as<Payload, float>&& std::same_as<FrameCoord, float>)
void ClipBorderInFrame(M3dBorder<Coord, Payload>& border, const MFrame<FrameCoord>& frame)
{
    using namespace Norvek::Math::Core;
    MMTransformMatrix matrix;
    matrix.MakeTransformation(MMPoint3d<double>(frame.origin), UnitAxis(frame.xAxis),
                              UnitAxis(frame.yAxis), UnitAxis(frame.zAxis));
    if (!matrix.Invert())
        return;
    M3dBorder<Coord, Payload> result;
    SlabClipper clipper(0.0F, FrameLength(frame.xAxis), result);
    std::vector<MMPoint3d<float>> points;
    for (const auto& contour : border) {
        points.clear();
        for (const auto& point : contour) {
            points.emplace_back(point.x, point.y, point.payload);
            matrix.Transform(points.back(), false);
        }
        clipper.Clip(points, contour.GetIsClosed());
    }
    matrix.Invert();
    TransformBorder(result, matrix);
    border.Swap(result);
}

template void ClipBorderInFrame<float, float, float>(M3dBorder<float, float>&,
                                                     const MFrame<float>&);
