#include "picture.h"

#include "support/svg.h"
#include "support/text.h"

#include <array>

namespace coastlines
{

using example::Fixed;
using example::SvgFile;

namespace
{

constexpr double kMargin = 30.0;
constexpr double kHeading = 46.0;
constexpr double kWidth = 1400.0;

constexpr std::array<const char*, 6> kColours{"#f3d9b1", "#cfe3c0", "#f2c9c0",
                                              "#d9d2e9", "#fbe7a1", "#c6dfe6"};

class Picture
{
public:
    explicit Picture(const Options& options)
        : _right(ToMap({180.0, 0.0}).x),
          _top(ToMap({0.0, 90.0}).y),
          _scale(kWidth / (2.0 * _right)),
          _file(options.picture, kWidth + 2.0 * kMargin,
                2.0 * _top * _scale + kHeading + 2.0 * kMargin),
          _out(_file.Out())
    {}

    void WriteSea()
    {
        _file.Text(kMargin, kMargin + 22.0, "Countries as triangles on a map with true areas",
                   "font-size=\"22\" font-weight=\"bold\"");
        // The outline of the map: up the right meridian and down the left one.
        _out << "<path fill=\"#eaf2f8\" stroke=\"#9fb4c7\" d=\"";
        for (int latitude = -90; latitude <= 90; latitude += 2)
            _out << (latitude == -90 ? 'M' : 'L') << _At(ToMap({180.0, double(latitude)}));
        for (int latitude = 90; latitude >= -90; latitude -= 2)
            _out << 'L' << _At(ToMap({-180.0, double(latitude)}));
        _out << "Z\"/>\n<path fill=\"none\" stroke=\"#cbd9e5\" stroke-width=\"0.7\" d=\"";
        for (int longitude = -150; longitude <= 150; longitude += 30)
            for (int latitude = -90; latitude <= 90; latitude += 5)
                _out << (latitude == -90 ? 'M' : 'L')
                     << _At(ToMap({double(longitude), double(latitude)}));
        for (int latitude = -60; latitude <= 60; latitude += 30)
            _out << 'M' << _At(ToMap({-180.0, double(latitude)})) << 'L'
                 << _At(ToMap({180.0, double(latitude)}));
        _out << "\"/>\n";
    }

    void WriteCountry(const Country& country, const char* colour)
    {
        _out << "<path fill=\"" << colour << "\" stroke=\"#8a8f98\" stroke-width=\"0.25\" d=\"";
        for (std::size_t i = 0; i < country.corners.size(); ++i) {
            const auto* const corner = static_cast<Land::PointType*>(country.corners[i]);
            _out << (i % 3 == 0 ? 'M' : 'L') << _At({corner->x, corner->y})
                 << (i % 3 == 2 ? "Z" : "");
        }
        _out << "\"/>\n<path fill=\"none\" stroke=\"#3a4654\" stroke-width=\"0.9\" d=\"";
        for (const auto& ring : country.land.Contours()) {
            for (const auto& point : ring)
                _out << (&point == ring.GetFirstPoint() ? 'M' : 'L') << _At({point.x, point.y});
            _out << 'Z';
        }
        _out << "\"/>\n";
    }

    void WritePlace(const Place& place, const std::string& name)
    {
        const double x = _X(place.x);
        const double y = _Y(place.y);
        _out << "<circle cx=\"" << Fixed(x, 1) << "\" cy=\"" << Fixed(y, 1)
             << "\" r=\"5\" fill=\"#c8102e\" stroke=\"#fff\" stroke-width=\"1.5\"/>\n";
        for (const char* style :
             {"fill=\"#fff\" stroke=\"#fff\" stroke-width=\"4\"", "fill=\"#c8102e\""})
            _file.Text(x + 9.0, y + 5.0, name,
                       (std::string("font-size=\"15\" font-weight=\"bold\" ") + style).c_str());
    }

    void Close()
    {
        _file.Close();
    }

private:
    [[nodiscard]] double _X(double x) const
    {
        return kMargin + (x + _right) * _scale;
    }

    [[nodiscard]] double _Y(double y) const
    {
        return kMargin + kHeading + (_top - y) * _scale;
    }

    [[nodiscard]] std::string _At(const Place& place) const
    {
        return Fixed(_X(place.x), 1) + ' ' + Fixed(_Y(place.y), 1);
    }

    double _right;
    double _top;
    double _scale;
    SvgFile _file;
    std::ostream& _out;
};

} // namespace

void WritePicture(const Options& options, const std::vector<Country>& countries)
{
    Picture picture(options);
    picture.WriteSea();
    for (std::size_t i = 0; i < countries.size(); ++i)
        picture.WriteCountry(countries[i], kColours[i % kColours.size()]);
    for (const Place& degrees : options.places) {
        const Place place = ToMap(degrees);
        const Country* const country = CountryAt(countries, place);
        picture.WritePlace(place, country != nullptr ? country->name : "at sea");
    }
    picture.Close();
}

} // namespace coastlines
