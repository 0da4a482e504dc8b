// Nests the outlines of countries, measures and triangulates them, and tells in which country
// places lie.

#include "atlas.h"
#include "options.h"
#include "picture.h"
#include "support/failure.h"
#include "support/program.h"
#include "support/text.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace coastlines
{

using example::Fixed;

namespace
{

constexpr std::size_t kNumLargest = 6;
constexpr double kThousand = 1000.0;

void ReportWhole(const std::vector<Country>& countries)
{
    std::size_t numRings = 0;
    std::size_t numHoles = 0;
    std::size_t numPoints = 0;
    std::int64_t numTriangles = 0;
    double area = 0.0;
    double triangleArea = 0.0;
    for (const Country& country : countries) {
        for (const auto& ring : country.land.Contours()) {
            ++numRings;
            numHoles += ring.GetIsOuterContour() ? 0U : 1U;
        }
        numPoints += country.land.GetNumPoints();
        numTriangles += country.numTriangles;
        area += country.area;
        triangleArea += country.triangleArea;
        if (!country.isExact)
            std::cout << country.name << " has edges that cross\n";
    }
    std::cout << "Countries  " << countries.size() << "\nRings      " << numRings << ", "
              << numHoles << " of them holes\nPoints     " << numPoints << "\nTriangles  "
              << numTriangles << "\nArea       " << Fixed(area / kThousand, 0)
              << " thousand km2, as triangles " << Fixed(triangleArea / kThousand, 0) << "\n\n";
}

void ReportLargest(const std::vector<Country>& countries)
{
    std::vector<const Country*> largest;
    largest.reserve(countries.size());
    for (const Country& country : countries)
        largest.push_back(&country);
    const std::size_t count = std::min(kNumLargest, largest.size());
    std::partial_sort(largest.begin(), largest.begin() + static_cast<std::ptrdiff_t>(count),
                      largest.end(),
                      [](const Country* a, const Country* b) { return a->area > b->area; });
    std::cout << "Largest                    thousand km2  rings  triangles\n";
    for (std::size_t i = 0; i < count; ++i)
        std::cout << std::left << std::setw(28) << largest[i]->name << std::right << std::setw(11)
                  << Fixed(largest[i]->area / kThousand, 0) << std::setw(7)
                  << largest[i]->land.GetNumContours() << std::setw(11) << largest[i]->numTriangles
                  << '\n';
    std::cout << '\n';
}

void Run(const Options& options)
{
    const std::vector<Country> countries = ReadAtlas(options.outlines);
    ReportWhole(countries);
    ReportLargest(countries);
    for (const Place& degrees : options.places) {
        const Country* const country = CountryAt(countries, ToMap(degrees));
        std::cout << "At " << std::setw(8) << Fixed(degrees.x, 2) << std::setw(8)
                  << Fixed(degrees.y, 2) << "  " << (country != nullptr ? country->name : "at sea")
                  << '\n';
    }
    if (!options.picture.empty())
        WritePicture(options, countries);
}

} // namespace

} // namespace coastlines

int main(int argc, char** argv)
{
    return example::RunProgram("coastlines", coastlines::kHelp, coastlines::ReadOptions,
                               coastlines::Run, argc, argv);
}
