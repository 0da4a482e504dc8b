#pragma once

#include "options.h"
#include "volume.h"

#include <norvek/foundation/point3d.h>
#include <norvek/transform/transform_matrix.h>

#include <array>
#include <vector>

namespace slices
{

/// A plane through the volume, resampled.
struct Slice
{
    /// A corner pixel of the plane.
    struct Corner
    {
        MMPoint3d<double> world;
        MMPoint3d<double> voxel;
        bool isInVolume;
    };

    /// From the pixel (column, row, 0) to the world: columns along the plane's x axis, rows along
    /// its y axis.
    MMTransformMatrix pixelToWorld;
    /// First and last pixel of the first row, then last and first pixel of the last row.
    std::array<Corner, 4> corners;
    /// Grey values 0 to 255 row by row; -1 outside the volume.
    std::vector<int> values;
    /// Pixels inside the volume.
    std::size_t insideCount = 0;
};

/// Lays the plane of the options through the volume and interpolates the grey values on it.
Slice MakeSlice(const Volume& volume, const Options& options);

} // namespace slices
