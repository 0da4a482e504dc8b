// From the orientation code of an image volume to an oblique plane through it: repair the code,
// find the matrix from voxel to world, chain it with a frame on the plane, resample, draw.

#include "options.h"
#include "picture.h"
#include "slice.h"
#include "support/program.h"
#include "support/text.h"
#include "volume.h"

#include <norvek/transform/orientation_codes.h>

#include <iomanip>
#include <iostream>

namespace slices
{

using example::ShortNumber;

namespace
{

constexpr int kDigits = 3;

std::string Narrow(const std::wstring& code)
{
    return std::string(code.begin(), code.end());
}

std::ostream& operator<<(std::ostream& out, const std::array<double, 3>& values)
{
    for (const double value : values)
        out << std::setw(11) << example::Fixed(value, kDigits);
    return out;
}

std::array<double, 3> Values(const MMPoint3d<double>& p)
{
    return {p.x, p.y, p.z};
}

void WriteReport(std::ostream& out, const Options& options, const Volume& volume,
                 const Slice& slice)
{
    out << "Volume     " << volume.size[0] << " x " << volume.size[1] << " x " << volume.size[2]
        << " voxels of " << ShortNumber(options.spacing.x) << " x "
        << ShortNumber(options.spacing.y) << " x " << ShortNumber(options.spacing.z) << " mm\n"
        << "Code       " << Narrow(volume.storedCode);
    if (volume.code == volume.storedCode)
        out << ", right-handed";
    else
        out << ", left-handed; read as " << Narrow(volume.code)
            << ", with the rows from the other end";
    out << (IsOrientationAxial(volume.code.c_str()) ? "; axial slices\n" : "; not axial\n")
        << "World      x towards R, y towards B, z towards P, in mm from the middle\n\n"
        << "Voxel to world\n";
    for (unsigned short row = 0; row < 3; ++row) {
        MMPoint3d<double> part;
        volume.voxelToWorld.GetRow(part, row);
        out << Values(part) << std::setw(11)
            << example::Fixed(volume.voxelToWorld.GetElement(row, 3, false), kDigits) << '\n';
    }
    out << "\nCorners of " << options.pixels[0] << " x " << options.pixels[1] << " pixels of "
        << ShortNumber(options.pixelSize) << " mm\n"
        << "       world R          B          P    voxel x          y          z\n";
    for (std::size_t i = 0; i < slice.corners.size(); ++i) {
        const Slice::Corner& corner = slice.corners[i];
        out << ' ' << i + 1 << ' ' << Values(corner.world) << Values(corner.voxel)
            << (corner.isInVolume ? "  inside\n" : "  outside\n");
    }
    out << "\nResampled  " << slice.insideCount << " of " << slice.values.size()
        << " pixels lie in the volume\n";
}

void Run(const Options& options)
{
    const Volume volume = MakeVolume(options);
    const Slice slice = MakeSlice(volume, options);
    if (!options.picture.empty())
        WritePicture(options, volume, slice);
    WriteReport(std::cout, options, volume, slice);
}

} // namespace

} // namespace slices

int main(int argc, char** argv)
{
    return example::RunProgram("slices", slices::kHelp, slices::ReadOptions, slices::Run, argc,
                               argv);
}
