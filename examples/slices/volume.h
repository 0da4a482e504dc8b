#pragma once

#include "options.h"

#include <norvek/foundation/point3d.h>
#include <norvek/transform/transform_matrix.h>

#include <cstdint>
#include <string>
#include <vector>

namespace slices
{

/// An image volume, its grey values as stored and its place in the world.
struct Volume
{
    std::array<int, 3> size;
    /// Grey values 0 to 255, x fastest, then y, then z.
    std::vector<std::uint8_t> values;
    /// The code as stored, and the right-handed one.
    std::wstring storedCode;
    std::wstring code;
    /// From the voxel of the right-handed code to the world; invertible.
    MMTransformMatrix voxelToWorld;
    /// From the voxel of the right-handed code to the stored voxel: the rows from the other end
    /// where the code was repaired, else the identity.
    MMTransformMatrix voxelToStored;
};

/// Makes the volume that the options describe. Throws `example::Failure` when the code is none.
Volume MakeVolume(const Options& options);

/// The grey value between the stored voxels around a place, by trilinear interpolation. The place
/// lies between the first and the last voxel centre of every axis.
double ValueAt(const Volume& volume, const MMPoint3d<double>& storedVoxel);

} // namespace slices
