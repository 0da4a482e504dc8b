#include "slice.h"

#include <norvek/bounds/axes_binded.h>
#include <norvek/bounds/bounding_box.h>
#include <norvek/foundation/constants.h>
#include <norvek/transform/ortho_transform.h>
#include <norvek/transform/transform_stack.h>

#include <cmath>

namespace slices
{

namespace
{

using Point = MMPoint3d<double>;

// [frame]
// A frame on the plane, turned about its normal; from its coordinates to the world.
MMTransformMatrix FrameToWorld(const Options& options)
{
    M3DAxesBinded frame;
    frame.SetCenter(options.centre);
    frame.SetNormal(options.normal);
    MMOrthoTransform turn;
    turn.MakeRotation(Point(), frame.Z_Axis(), options.turn * CMathConst::kPi / 180.0, true);
    Point x;
    Point y;
    turn.Rotate(x, frame.X_Axis());
    turn.Rotate(y, frame.Y_Axis());
    frame.SetXYAxes(x, y);
    MMTransformMatrix matrix;
    frame.GetTransformationTo(matrix);
    return matrix;
}
// [frame]

// The middle of the pixels is the origin of the frame.
MMTransformMatrix PixelToFrame(const Options& options)
{
    const double size = options.pixelSize;
    MMTransformMatrix matrix;
    matrix.MakeTransformation(
        {-size * (options.pixels[0] - 1) / 2.0, -size * (options.pixels[1] - 1) / 2.0, 0.0},
        {size, 0.0, 0.0}, {0.0, size, 0.0}, {0.0, 0.0, 1.0});
    return matrix;
}

} // namespace

Slice MakeSlice(const Volume& volume, const Options& options)
{
    Slice slice;
    // [chain]
    slice.pixelToWorld = FrameToWorld(options) * PixelToFrame(options);
    MMTransformMatrix worldToVoxel = volume.voxelToWorld;
    worldToVoxel.Invert();

    // The last one acts first: pixel, world, voxel, stored voxel.
    MMTransformStack pixelToStored;
    pixelToStored.PostMultiply(volume.voxelToStored);
    pixelToStored.PostMultiply(worldToVoxel);
    pixelToStored.PostMultiply(slice.pixelToWorld);
    // [chain]

    const double right = options.pixels[0] - 1;
    const double bottom = options.pixels[1] - 1;
    M3DBoundingBox<double> box;
    box.AddPoint(Point(0.0, 0.0, 0.0));
    box.AddPoint(Point(volume.size[0] - 1, volume.size[1] - 1, volume.size[2] - 1));
    const Point pixels[4]{
        {0.0, 0.0, 0.0}, {right, 0.0, 0.0}, {right, bottom, 0.0}, {0.0, bottom, 0.0}};
    for (std::size_t i = 0; i < 4; ++i) {
        Slice::Corner& corner = slice.corners[i];
        slice.pixelToWorld.Transform(corner.world, pixels[i], false);
        worldToVoxel.Transform(corner.voxel, corner.world, false);
        corner.isInVolume = box.HasPoint(corner.voxel);
    }

    std::vector<Point> places;
    for (int row = 0; row < options.pixels[1]; ++row) {
        for (int column = 0; column < options.pixels[0]; ++column)
            places.emplace_back(column, row, 0.0);
    }
    pixelToStored.Transform(places);
    slice.values.reserve(places.size());
    for (const Point& place : places) {
        const bool isInside = box.HasPoint(place);
        slice.insideCount += isInside ? 1 : 0;
        slice.values.push_back(isInside ? static_cast<int>(std::lround(ValueAt(volume, place)))
                                        : -1);
    }
    return slice;
}

} // namespace slices
