#include "border/ear_clipping.h"

#include "border/edge_tree.h"

#include <algorithm>
#include <cmath>

namespace Norvek::Math::Core
{

namespace
{

// Places by the cell that they lie in; about one cell a place.
class PlaceGrid
{
public:
    explicit PlaceGrid(std::span<const PlanePoint> places)
    {
        if (places.empty())
            return;
        _box = {places[0], places[0]};
        for (const PlanePoint& place : places)
            _box.Add({place, place});
        _side = static_cast<std::size_t>(std::sqrt(static_cast<double>(places.size()))) + 1;
        _cells.resize(_side * _side);
        for (std::uint32_t i = 0; i < places.size(); ++i)
            _cells[_Row(places[i].y) * _side + _Column(places[i].x)].push_back(i);
    }

    template <class Visit>
    bool Any(const PlaneBox& box, const Visit& visit) const
    {
        for (std::size_t row = _Row(box.low.y); row <= _Row(box.high.y); ++row) {
            for (std::size_t column = _Column(box.low.x); column <= _Column(box.high.x); ++column) {
                const auto& cell = _cells[row * _side + column];
                if (std::any_of(cell.begin(), cell.end(), visit))
                    return true;
            }
        }
        return false;
    }

private:
    [[nodiscard]] std::size_t _Cell(double offset, double extent) const
    {
        if (!(extent > 0.0))
            return 0;
        const double place = offset / extent * static_cast<double>(_side);
        return std::min(static_cast<std::size_t>(std::max(place, 0.0)), _side - 1);
    }

    [[nodiscard]] std::size_t _Column(double x) const
    {
        return _Cell(x - _box.low.x, _box.high.x - _box.low.x);
    }

    [[nodiscard]] std::size_t _Row(double y) const
    {
        return _Cell(y - _box.low.y, _box.high.y - _box.low.y);
    }

    PlaneBox _box{};
    std::size_t _side = 0;
    std::vector<std::vector<std::uint32_t>> _cells;
};

// The ring as it shrinks, by position in the original one, counter-clockwise on the whole.
class Ring
{
public:
    Ring(std::span<const PlanePoint> points, std::span<const std::uint32_t> ring)
        : _indices(ring.begin(), ring.end())
    {
        double doubledArea = 0.0;
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const PlanePoint p = points[ring[i]] - points[ring[0]];
            const PlanePoint q = points[ring[(i + 1) % ring.size()]] - points[ring[0]];
            doubledArea += p.x * q.y - p.y * q.x;
        }
        if (doubledArea < 0.0)
            std::reverse(_indices.begin(), _indices.end());
        const auto size = static_cast<std::uint32_t>(ring.size());
        _places.reserve(size);
        for (std::uint32_t i = 0; i < size; ++i) {
            _places.push_back(points[_indices[i]]);
            _next.push_back(i + 1 == size ? 0 : i + 1);
            _previous.push_back(i == 0 ? size - 1 : i - 1);
        }
        _isIn.assign(size, true);
        _numLeft = size;
    }

    [[nodiscard]] const std::vector<PlanePoint>& Places() const
    {
        return _places;
    }

    [[nodiscard]] std::uint32_t NumLeft() const
    {
        return _numLeft;
    }

    [[nodiscard]] std::uint32_t Next(std::uint32_t corner) const
    {
        return _next[corner];
    }

    [[nodiscard]] IndexTriangle Triangle(std::uint32_t corner) const
    {
        return {_indices[_previous[corner]], _indices[corner], _indices[_next[corner]]};
    }

    [[nodiscard]] int Turn(std::uint32_t corner) const
    {
        return Orientation(_places[_previous[corner]], _places[corner], _places[_next[corner]]);
    }

    [[nodiscard]] double DoubledArea(std::uint32_t corner) const
    {
        const PlanePoint p = _places[_previous[corner]] - _places[corner];
        const PlanePoint q = _places[_next[corner]] - _places[corner];
        return q.x * p.y - q.y * p.x;
    }

    // No other corner of the ring lies in the triangle of this one, corners at the same places as
    // its ends aside, and the cut crosses no edge that is still there.
    [[nodiscard]] bool IsFree(std::uint32_t corner, const PlaceGrid& grid,
                              const EdgeTree& edges) const
    {
        const PlanePoint& a = _places[_previous[corner]];
        const PlanePoint& b = _places[corner];
        const PlanePoint& c = _places[_next[corner]];
        const PlaneBox cut = PlaneBox::Of(a, c);
        PlaneBox box = cut;
        box.Add({b, b});
        const bool isOccupied = grid.Any(box, [&](std::uint32_t other) {
            const PlanePoint& place = _places[other];
            if (!_isIn[other] || place == a || place == b || place == c)
                return false;
            return Orientation(a, b, place) >= 0 && Orientation(b, c, place) >= 0 &&
                   Orientation(c, a, place) >= 0;
        });
        return !isOccupied && !edges.AnyEdge(cut, [&](std::uint32_t edge) {
            const PlanePoint& p = edges.Begin(edge);
            const PlanePoint& q = edges.End(edge);
            return _isIn[edge] && _isIn[edge + 1 == _isIn.size() ? 0 : edge + 1] &&
                   DoCross(a, c, p, q);
        });
    }

    // Takes the corner out and returns the one before it.
    std::uint32_t Remove(std::uint32_t corner)
    {
        _next[_previous[corner]] = _next[corner];
        _previous[_next[corner]] = _previous[corner];
        _isIn[corner] = false;
        --_numLeft;
        return _previous[corner];
    }

private:
    std::vector<std::uint32_t> _indices;
    std::vector<PlanePoint> _places;
    std::vector<std::uint32_t> _next;
    std::vector<std::uint32_t> _previous;
    std::vector<bool> _isIn;
    std::uint32_t _numLeft = 0;
};

// The corner with the smallest triangle, whichever way it turns.
std::uint32_t SmallestCorner(const Ring& ring, std::uint32_t start)
{
    std::uint32_t smallest = start;
    std::uint32_t corner = start;
    for (std::uint32_t i = 0; i < ring.NumLeft(); ++i, corner = ring.Next(corner)) {
        if (std::abs(ring.DoubledArea(corner)) < std::abs(ring.DoubledArea(smallest)))
            smallest = corner;
    }
    return smallest;
}

} // namespace

void ClipEars(std::span<const PlanePoint> points, std::span<const std::uint32_t> ring,
              std::vector<IndexTriangle>& triangles)
{
    if (ring.size() < 3)
        return;
    Ring rest(points, ring);
    const PlaceGrid grid(rest.Places());
    const EdgeTree edges(rest.Places(), true);
    std::uint32_t corner = 0;
    // Corners that have been refused since the last cut: all of them, and one is forced.
    std::uint32_t numRefused = 0;
    while (rest.NumLeft() > 2) {
        if (numRefused == rest.NumLeft())
            corner = SmallestCorner(rest, corner);
        const int turn = rest.Turn(corner);
        const bool isForced = numRefused == rest.NumLeft();
        if (isForced || turn == 0 || (turn > 0 && rest.IsFree(corner, grid, edges))) {
            if (turn > 0)
                triangles.push_back(rest.Triangle(corner));
            corner = rest.Remove(corner);
            numRefused = 0;
        } else {
            corner = rest.Next(corner);
            ++numRefused;
        }
    }
}

} // namespace Norvek::Math::Core
