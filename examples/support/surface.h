#pragma once

#include "support/progress.h"

#include <norvek/bounds/bounding_box.h>
#include <norvek/foundation/point3d.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace example
{

/// A triangulated surface. The points are reduced: `centre` has been subtracted from them, so that
/// surfaces far from the origin keep their digits in single precision.
struct Surface
{
    using Triangle = std::array<std::uint32_t, 3>;

    std::vector<MMPoint3d<double>> points;
    /// Corner numbers, counter-clockwise seen from outside (of a height grid: from above).
    std::vector<Triangle> triangles;
    MMPoint3d<double> centre;
    /// The box of the reduced points.
    M3DBoundingBox<double> box;
    /// A height grid, over which no vertical line meets two triangles.
    bool isHeightGrid = false;
};

/// Reads a height grid (text, `ncols`, `nrows`, `cellsize` or `dx` and `dy`, then the rows from
/// north to south) or, by the ending `.obj`, a mesh (`v` and `f`). Throws `Failure` for a file that
/// cannot be read, for a malformed line (with its number) and for a surface without triangles.
Surface ReadSurface(const std::string& path, Progress& progress);

} // namespace example
