#include "report.h"

#include "support/text.h"

#include <algorithm>
#include <cmath>
#include <iomanip>

namespace section
{

using example::Fixed;

namespace
{

// The longest contours of a section that a report lists; the rest are summed up.
constexpr std::size_t kMostContours = 8;

// Enough digits for the size of the surface.
int Digits(const Surface& surface)
{
    const MMPoint3d<double> size = surface.box.GetCornerMax() - surface.box.GetCornerMin();
    const double largest = std::max({size.x, size.y, size.z});
    return largest > 1000.0 ? 1 : largest > 10.0 ? 3 : 6;
}

std::string Equation(const MMPlaneEq<double>& reduced, const Surface& surface, int digits)
{
    const MMPoint3d<double> normal = reduced.GetNormal();
    const double offset = reduced.D() - normal.Dot(surface.centre);
    const auto term = [&](double value, const char* unknown) {
        return (value < 0.0 ? " - " : " + ") + Fixed(std::abs(value), 6) + unknown;
    };
    return Fixed(normal.x, 6) + " x" + term(normal.y, " y") + term(normal.z, " z") +
           (offset < 0.0 ? " - " : " + ") + Fixed(std::abs(offset), digits) + " = 0";
}

void WriteSummary(std::ostream& out, const std::vector<Section>& sections, int digits)
{
    out << "\nSection             closed    open      circumference               area\n";
    for (const Section& section : sections) {
        const auto closed = std::count_if(section.contours.begin(), section.contours.end(),
                                          [](const auto& c) { return c.isClosed; });
        double area = 0.0;
        double circumference = 0.0;
        for (const ContourMeasures& contour : section.contours) {
            circumference += contour.circumference;
            area += contour.isClosed ? contour.area : 0.0;
        }
        out << std::left << std::setw(18) << section.name << std::right << std::setw(8) << closed
            << std::setw(8) << section.contours.size() - static_cast<std::size_t>(closed)
            << std::setw(19) << Fixed(circumference, digits) << std::setw(19) << Fixed(area, digits)
            << '\n';
    }
    out << "Areas are those of the closed contours, holes taken off.\n";
}

void WriteContours(std::ostream& out, const Section& section, int digits)
{
    std::vector<ContourMeasures> contours = section.contours;
    std::stable_sort(contours.begin(), contours.end(), [](const auto& a, const auto& b) {
        return a.circumference > b.circumference;
    });
    out << "\nContours of " << section.name << "\n";
    for (std::size_t i = 0; i < std::min(contours.size(), kMostContours); ++i) {
        const ContourMeasures& contour = contours[i];
        out << "  " << std::left << std::setw(16)
            << (!contour.isClosed ? "open"
                : contour.isOuter ? "closed, outer"
                                  : "closed, inner")
            << std::right << std::setw(8) << contour.numPoints << " points" << std::setw(19)
            << Fixed(contour.circumference, digits) << std::setw(19)
            << (contour.isClosed ? Fixed(contour.area, digits) : "-") << '\n';
    }
    if (contours.size() > kMostContours)
        out << "  and " << contours.size() - kMostContours << " shorter ones\n";
}

// The sections in three groups, by where the point lies in them.
void WritePositions(std::ostream& out, const Options& options, const std::vector<Section>& sections)
{
    constexpr const char* words[] = {"on a contour of", "inside", "outside"};
    for (std::size_t i = 0; i < options.points.size(); ++i) {
        out << "\nPoint " << options.points[i] << '\n';
        for (std::size_t position = 0; position < std::size(words); ++position) {
            std::string names;
            for (const Section& section : sections)
                if (static_cast<std::size_t>(section.positions[i]) == position)
                    names += (names.empty() ? "" : ", ") + section.name;
            if (!names.empty())
                out << "  " << std::left << std::setw(16) << words[position] << std::right << names
                    << '\n';
        }
    }
}

} // namespace

void WriteReport(std::ostream& out, const Options& options, const Surface& surface,
                 const std::optional<PlaneFit>& fit, const std::vector<Section>& sections,
                 const Progress& progress)
{
    const int digits = Digits(surface);
    const MMPoint3d<double> low = surface.box.GetCornerMin() + surface.centre;
    const MMPoint3d<double> high = surface.box.GetCornerMax() + surface.centre;
    out << "Surface   " << surface.points.size() << " points, " << surface.triangles.size()
        << " triangles\n"
        << "          x " << Fixed(low.x, digits) << " to " << Fixed(high.x, digits) << ", y "
        << Fixed(low.y, digits) << " to " << Fixed(high.y, digits) << ", z " << Fixed(low.z, digits)
        << " to " << Fixed(high.z, digits) << '\n';
    if (fit)
        out << "Fit       " << Equation(fit->plane, surface, digits) << '\n'
            << "          deviation: rms " << Fixed(fit->rms, digits) << ", greatest "
            << Fixed(fit->greatest, digits) << '\n';
    WriteSummary(out, sections, digits);
    for (const Section& section : sections)
        if (!section.IsLevel())
            WriteContours(out, section, digits);
    WritePositions(out, options, sections);
    out << "\nTime\n";
    for (const auto& [step, seconds] : progress.Steps())
        out << "  " << std::left << std::setw(24) << step << std::right << std::setw(9)
            << Fixed(seconds * 1000.0, 1) << " ms\n";
}

} // namespace section
