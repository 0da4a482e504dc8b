#include "atlas.h"

#include "support/failure.h"

#include <norvek/foundation/constants.h>

#include <cmath>
#include <fstream>
#include <sstream>

namespace coastlines
{

namespace
{

// The radius of the sphere with the surface of the Earth's ellipsoid, in km.
constexpr double kEarthRadius = 6371.0072;

class Reader
{
public:
    explicit Reader(const std::string& path) : _path(path), _in(path)
    {
        if (!_in)
            throw example::Failure("cannot read " + path);
    }

    std::vector<Country> Read()
    {
        std::vector<Country> countries;
        Land::ContourType* ring = nullptr;
        for (std::string line; std::getline(_in, line);) {
            ++_line;
            if (line.starts_with("country ")) {
                countries.emplace_back().name = line.substr(8);
                ring = nullptr;
            } else if (line == "ring") {
                if (countries.empty())
                    _Fail("a ring of no country");
                ring = countries.back().land.AddContourAtEnd();
            } else if (ring == nullptr) {
                _Fail("'" + line + "' stands in no ring");
            } else {
                const Place place = ToMap(_ReadDegrees(line));
                ring->InsertAtEnd(place.x, place.y, nullptr);
            }
        }
        if (countries.empty())
            throw example::Failure(_path + " has no country");
        return countries;
    }

private:
    [[noreturn]] void _Fail(const std::string& what) const
    {
        throw example::Failure(_path + ", line " + std::to_string(_line) + ": " + what);
    }

    [[nodiscard]] Place _ReadDegrees(const std::string& line) const
    {
        std::istringstream words(line);
        Place degrees;
        std::string rest;
        if (!(words >> degrees.x >> degrees.y) || words >> rest)
            _Fail("'" + line + "' is no longitude and latitude");
        if (std::abs(degrees.x) > 180.0 || std::abs(degrees.y) > 90.0)
            _Fail("'" + line + "' is not on the Earth");
        return degrees;
    }

    std::string _path;
    std::ifstream _in;
    std::size_t _line = 0;
};

// The triangles are counter-clockwise.
double AreaOfTriangles(const std::vector<void*>& corners)
{
    double area = 0.0;
    for (std::size_t i = 0; i < corners.size(); i += 3) {
        const auto* const a = static_cast<Land::PointType*>(corners[i]);
        const auto* const b = static_cast<Land::PointType*>(corners[i + 1]);
        const auto* const c = static_cast<Land::PointType*>(corners[i + 2]);
        area += 0.5 * ((b->x - a->x) * (c->y - a->y) - (b->y - a->y) * (c->x - a->x));
    }
    return area;
}

} // namespace

Place ToMap(const Place& degrees)
{
    constexpr double a1 = 1.340264;
    constexpr double a2 = -0.081106;
    constexpr double a3 = 0.000893;
    constexpr double a4 = 0.003796;
    const double longitude = degrees.x * CMathConst::kPi / 180.0;
    const double theta =
        std::asin(0.5 * std::sqrt(3.0) * std::sin(degrees.y * CMathConst::kPi / 180.0));
    const double t2 = theta * theta;
    const double t6 = t2 * t2 * t2;
    const double slope = a1 + 3.0 * a2 * t2 + t6 * (7.0 * a3 + 9.0 * a4 * t2);
    return {kEarthRadius * 2.0 / std::sqrt(3.0) * longitude * std::cos(theta) / slope,
            kEarthRadius * theta * (a1 + a2 * t2 + t6 * (a3 + a4 * t2))};
}

std::vector<Country> ReadAtlas(const std::string& path)
{
    std::vector<Country> countries = Reader(path).Read();
    for (Country& country : countries) {
        for (auto& ring : country.land.Contours())
            for (auto& point : ring)
                point.payload = &point;
        // [region]
        country.land.DetermineOuterContours();
        country.land.AdjustTurningSenseToOuterContourParameter();
        country.area = country.land.SurfaceAreaWithSignXY();
        country.isExact = country.land.FillWithTriangles(country.numTriangles, country.corners);
        // [region]
        country.triangleArea = AreaOfTriangles(country.corners);
    }
    return countries;
}

const Country* CountryAt(const std::vector<Country>& countries, const Place& place)
{
    for (const Country& country : countries) {
        if (country.land.CalculatePosition(place.x, place.y) != 2)
            return &country;
    }
    return nullptr;
}

} // namespace coastlines
