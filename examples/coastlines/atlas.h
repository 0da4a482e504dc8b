#pragma once

#include <norvek/border/border.h>

#include <string>
#include <vector>

namespace coastlines
{

/// Rings of land on the map, in km; each payload is the point's place in the atlas.
using Land = M3dBorder<double, void*>;
using Place = MMPoint2d<double>;

/// One country.
struct Country
{
    std::string name;
    Land land;
    /// Three places each.
    std::vector<void*> corners;
    std::int32_t numTriangles = 0;
    /// In square kilometres: of the rings, and of the triangles.
    double area = 0.0;
    double triangleArea = 0.0;
    /// Whether no edges cross.
    bool isExact = true;
};

/// Where a place of the world lies on the map: the Equal Earth projection, which keeps areas (B.
/// Savric, T. Patterson, B. Jenny, The Equal Earth map projection, International Journal of
/// Geographical Information Science 33, 2019), for a sphere of the Earth's area. Degrees to km.
Place ToMap(const Place& degrees);

/// Reads outlines, lays them on the map, nests them and turns outer rings clockwise and holes
/// the other way; then triangulates. Throws `example::Failure` for a file that cannot be read and
/// for a malformed line, with its number.
std::vector<Country> ReadAtlas(const std::string& path);

/// The country in which a place of the map lies, or null.
const Country* CountryAt(const std::vector<Country>& countries, const Place& place);

} // namespace coastlines
