#pragma once

#include <norvek/foundation/point3d.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace nearest
{

using Point = MMPoint3d<double>;
using Cloud = std::vector<Point>;

/// The size of the hall; its corner is the origin.
inline constexpr double kHallLength = 24.0;
inline constexpr double kHallDepth = 14.0;

/// Where the scanner stands, in turn.
inline const Point kStations[]{{5.0, 7.5, 0.0}, {19.0, 4.0, 0.0}};

/// The walls and pillars, each from one end to the other.
std::vector<std::pair<Point, Point>> Walls();

/// What the scanner meets from both stations: `rays` rays a station, evenly around, each distance
/// with noise. All points lie in the plane z = 0.
Cloud Scan(int rays, double noise);

/// One cell of the tree in the plane z = 0. Inner cells carry the line that splits them.
struct Cell
{
    double low[2];
    double high[2];
    int depth;
    bool isLeaf;
    int axis;
    double split;
};

/// The cells of the tree that `MKDTreePointLocator` builds over a scan without equal coordinates:
/// the widest axis is split midway between the two middle points until `bucketSize` points remain.
std::vector<Cell> CellsOf(Cloud scan, std::size_t bucketSize);

} // namespace nearest
