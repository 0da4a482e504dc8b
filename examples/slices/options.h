#pragma once

#include <norvek/foundation/point3d.h>

#include <array>
#include <string>

namespace slices
{

/// What the command line asks for.
struct Options
{
    /// Three upper-case letters: where the axes of the volume point, as stored.
    std::wstring code = L"LBP";
    /// Voxels along x, y and z.
    std::array<int, 3> size{96, 96, 64};
    /// Millimetres between voxel centres.
    MMPoint3d<double> spacing{2.0, 2.0, 3.0};
    /// The plane: a point on it and its normal, in the world; the turn about the normal in degrees.
    MMPoint3d<double> centre{0.0, -8.0, 0.0};
    MMPoint3d<double> normal{-0.2, -0.85, -0.5};
    double turn = 0.0;
    /// Pixels across and down, and millimetres between them.
    std::array<int, 2> pixels{120, 120};
    double pixelSize = 1.5;
    std::string picture;
    bool isHelpWanted = false;
};

/// The text of `--help`.
extern const char* const kHelp;

/// Reads the command line; throws `example::Failure` for what it does not understand.
Options ReadOptions(int argc, char** argv);

} // namespace slices
