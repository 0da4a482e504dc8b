#include "hall.h"

#include <norvek/foundation/constants.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <random>
#include <span>

namespace nearest
{

namespace
{

using Wall = std::pair<Point, Point>;

void AddRing(std::vector<Wall>& walls, const std::vector<Point>& corners)
{
    for (std::size_t i = 0; i < corners.size(); ++i)
        walls.emplace_back(corners[i], corners[(i + 1) % corners.size()]);
}

// How far along the ray the wall stands; infinite when the ray passes it.
double DistanceAlong(const Point& station, const Point& ray, const Wall& wall)
{
    const Point along = wall.second - wall.first;
    const Point to = wall.first - station;
    const double turn = ray.x * along.y - ray.y * along.x;
    const double distance = (to.x * along.y - to.y * along.x) / turn;
    const double part = (to.x * ray.y - to.y * ray.x) / turn;
    const bool isMet = distance > 0.0 && part >= 0.0 && part <= 1.0;
    return isMet ? distance : std::numeric_limits<double>::infinity();
}

void Split(std::span<Point> points, Cell cell, std::size_t bucketSize, std::vector<Cell>& cells)
{
    const auto coordinate = [](const Point& p, int axis) {
        return axis == 0 ? p.x : p.y;
    };
    cell.isLeaf = points.size() <= bucketSize;
    if (cell.isLeaf) {
        cells.push_back(cell);
        return;
    }
    double extent[2];
    for (int axis = 0; axis < 2; ++axis) {
        const auto ends =
            std::minmax_element(points.begin(), points.end(), [&](const Point& a, const Point& b) {
                return coordinate(a, axis) < coordinate(b, axis);
            });
        extent[axis] = coordinate(*ends.second, axis) - coordinate(*ends.first, axis);
    }
    cell.axis = extent[1] > extent[0] ? 1 : 0;
    std::sort(points.begin(), points.end(), [&](const Point& a, const Point& b) {
        return coordinate(a, cell.axis) < coordinate(b, cell.axis);
    });
    const std::size_t middle = (points.size() + 1) / 2;
    cell.split =
        (coordinate(points[middle - 1], cell.axis) + coordinate(points[middle], cell.axis)) * 0.5;
    cells.push_back(cell);
    Cell left = cell;
    Cell right = cell;
    left.depth = right.depth = cell.depth + 1;
    left.high[cell.axis] = right.low[cell.axis] = cell.split;
    Split(points.first(middle), left, bucketSize, cells);
    Split(points.subspan(middle), right, bucketSize, cells);
}

} // namespace

std::vector<Wall> Walls()
{
    std::vector<Wall> walls;
    AddRing(walls, {{0, 0, 0}, {24, 0, 0}, {24, 9, 0}, {15, 9, 0}, {15, 14, 0}, {0, 14, 0}});
    for (const double x : {3.0, 8.0, 13.0, 18.0}) {
        AddRing(walls, {{x, 2.6, 0}, {x + 0.7, 2.6, 0}, {x + 0.7, 3.3, 0}, {x, 3.3, 0}});
        if (x < 14.0)
            AddRing(walls, {{x, 10.2, 0}, {x + 0.7, 10.2, 0}, {x + 0.7, 10.9, 0}, {x, 10.9, 0}});
    }
    AddRing(walls, {{9.5, 5.6, 0}, {12.5, 5.6, 0}, {11.0, 8.2, 0}});
    return walls;
}

Cloud Scan(int rays, double noise)
{
    const std::vector<Wall> walls = Walls();
    std::mt19937 engine(2026);
    std::normal_distribution<double> bell(0.0, 1.0);
    Cloud scan;
    for (const Point& station : kStations) {
        for (int i = 0; i < rays; ++i) {
            // A part of a step off the axes, so that no ray runs along a wall.
            const double angle = 2.0 * CMathConst::kPi * (i + 0.37) / rays;
            const Point ray{std::cos(angle), std::sin(angle), 0.0};
            double distance = std::numeric_limits<double>::infinity();
            for (const Wall& wall : walls)
                distance = std::min(distance, DistanceAlong(station, ray, wall));
            scan.push_back(station + (distance + noise * bell(engine)) * ray);
        }
    }
    return scan;
}

std::vector<Cell> CellsOf(Cloud scan, std::size_t bucketSize)
{
    std::vector<Cell> cells;
    Split(scan, Cell{{0.0, 0.0}, {kHallLength, kHallDepth}, 0, false, 0, 0.0}, bucketSize, cells);
    return cells;
}

} // namespace nearest
