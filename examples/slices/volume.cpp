#include "volume.h"

#include "support/failure.h"

#include <norvek/transform/orientation_codes.h>

#include <algorithm>
#include <cmath>

namespace slices
{

using example::Failure;

namespace
{

using Point = MMPoint3d<double>;

std::string Narrow(const std::wstring& code)
{
    return std::string(code.begin(), code.end());
}

void CheckCode(const std::wstring& code)
{
    const auto isLetter = [](wchar_t c) {
        return c < 128 && GetOpposite(c) != L'X';
    };
    if (code.size() != 3 || !std::all_of(code.begin(), code.end(), isLetter))
        throw Failure("--code takes three letters of A, P, L, R, T and B");
    if (!IsOrientationValid(code.c_str()))
        throw Failure("--code: two axes of " + Narrow(code) + " lie along the same line");
}

// The unit vector of a letter in the world, whose axes point to R, B and P.
Point Direction(wchar_t letter)
{
    switch (letter) {
    case L'R':
        return {1.0, 0.0, 0.0};
    case L'L':
        return {-1.0, 0.0, 0.0};
    case L'B':
        return {0.0, 1.0, 0.0};
    case L'T':
        return {0.0, -1.0, 0.0};
    case L'P':
        return {0.0, 0.0, 1.0};
    default:
        return {0.0, 0.0, -1.0};
    }
}

// [voxel-to-world]
// Columns: one voxel along each axis, in mm. The middle of the volume becomes the origin.
MMTransformMatrix VoxelToWorld(const std::wstring& code, const Options& options)
{
    const Point x = Direction(code[0]) * options.spacing.x;
    const Point y = Direction(code[1]) * options.spacing.y;
    const Point z = Direction(code[2]) * options.spacing.z;
    const Point middle = x * ((options.size[0] - 1) / 2.0) + y * ((options.size[1] - 1) / 2.0) +
                         z * ((options.size[2] - 1) / 2.0);
    MMTransformMatrix matrix;
    matrix.MakeTransformation(-middle, x, y, z);
    return matrix;
}
// [voxel-to-world]

struct Ellipsoid
{
    Point centre;
    Point radii;
    int value;
};

// The later ones lie on top. Lengths are shares of the half extent of the volume along the world's
// axes.
constexpr Ellipsoid kHead[]{
    {{0.0, 0.05, 0.0}, {0.74, 0.88, 0.86}, 225},    {{0.0, 0.05, 0.0}, {0.67, 0.81, 0.79}, 95},
    {{0.26, -0.05, 0.0}, {0.34, 0.55, 0.62}, 130},  {{-0.26, -0.05, 0.0}, {0.34, 0.55, 0.62}, 130},
    {{0.11, -0.1, 0.0}, {0.08, 0.2, 0.34}, 40},     {{-0.11, -0.1, 0.0}, {0.08, 0.2, 0.34}, 40},
    {{0.0, 0.45, 0.42}, {0.36, 0.22, 0.26}, 150},   {{0.0, 0.52, 0.05}, {0.1, 0.28, 0.12}, 165},
    {{0.24, 0.22, -0.66}, {0.13, 0.12, 0.13}, 205}, {{-0.24, 0.22, -0.66}, {0.13, 0.12, 0.13}, 205},
    {{0.0, 0.38, -0.84}, {0.09, 0.14, 0.12}, 180},  {{0.42, -0.28, 0.2}, {0.13, 0.13, 0.13}, 255},
};

std::uint8_t HeadAt(const Point& place)
{
    int value = 0;
    for (const Ellipsoid& part : kHead) {
        const Point d = place - part.centre;
        const Point ratio(d.x / part.radii.x, d.y / part.radii.y, d.z / part.radii.z);
        if (ratio.LengthSquared() <= 1.0)
            value = part.value;
    }
    return static_cast<std::uint8_t>(value);
}

} // namespace

Volume MakeVolume(const Options& options)
{
    CheckCode(options.code);
    Volume volume;
    volume.size = options.size;
    volume.storedCode = options.code;
    // [repair]
    volume.code = options.code;
    MAAK_RECHTSHANDIG(volume.code.data());
    if (volume.code != volume.storedCode) {
        const double lastRow = options.size[1] - 1;
        volume.voxelToStored.MakeTransformation({0.0, lastRow, 0.0}, {1.0, 0.0, 0.0},
                                                {0.0, -1.0, 0.0}, {0.0, 0.0, 1.0});
    }
    // [repair]
    volume.voxelToWorld = VoxelToWorld(volume.code, options);

    const MMTransformMatrix storedToWorld = VoxelToWorld(volume.storedCode, options);
    Point half;
    storedToWorld.Transform(half, {0.0, 0.0, 0.0}, false);
    half = {std::abs(half.x), std::abs(half.y), std::abs(half.z)};
    volume.values.reserve(static_cast<std::size_t>(volume.size[0]) *
                          static_cast<std::size_t>(volume.size[1]) *
                          static_cast<std::size_t>(volume.size[2]));
    for (int z = 0; z < volume.size[2]; ++z) {
        for (int y = 0; y < volume.size[1]; ++y) {
            for (int x = 0; x < volume.size[0]; ++x) {
                Point place(x, y, z);
                storedToWorld.Transform(place, false);
                volume.values.push_back(
                    HeadAt({place.x / half.x, place.y / half.y, place.z / half.z}));
            }
        }
    }
    return volume;
}

double ValueAt(const Volume& volume, const MMPoint3d<double>& storedVoxel)
{
    const double place[3]{storedVoxel.x, storedVoxel.y, storedVoxel.z};
    std::size_t step[3]{1, static_cast<std::size_t>(volume.size[0]), 0};
    step[2] = step[1] * static_cast<std::size_t>(volume.size[1]);
    std::size_t first = 0;
    double share[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const int cell = std::clamp(static_cast<int>(place[i]), 0, volume.size[i] - 2);
        share[i] = place[i] - cell;
        first += static_cast<std::size_t>(cell) * step[i];
    }
    double sum = 0.0;
    for (unsigned int corner = 0; corner < 8; ++corner) {
        double weight = 1.0;
        std::size_t index = first;
        for (unsigned int i = 0; i < 3; ++i) {
            const bool isUpper = (corner >> i & 1U) != 0;
            weight *= isUpper ? share[i] : 1.0 - share[i];
            index += isUpper ? step[i] : 0;
        }
        sum += weight * volume.values[index];
    }
    return sum;
}

} // namespace slices
