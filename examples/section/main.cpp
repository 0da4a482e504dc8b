// Cuts a surface with planes and measures the sections: read, fit, cut, join, clip, turn back,
// draw.

#include "options.h"
#include "picture.h"
#include "report.h"
#include "section.h"
#include "support/failure.h"
#include "support/program.h"
#include "support/progress.h"
#include "support/surface.h"
#include "support/text.h"

#include <algorithm>
#include <cmath>
#include <iostream>

namespace section
{

using example::Failure;
using example::ReadSurface;
using example::ShortNumber;

namespace
{

constexpr double kMostLevels = 10000.0;

// Up to here whole numbers are exact, so that counting levels ends.
constexpr double kMostSteps = 0x1p53;

// Horizontal planes at the multiples of the step that lie within the surface.
void AddLevels(std::vector<Section>& sections, const Surface& surface, double step)
{
    const double low = surface.box.minZ + surface.centre.z;
    const double high = surface.box.maxZ + surface.centre.z;
    if ((high - low) / step > kMostLevels ||
        std::max(std::abs(low), std::abs(high)) / step >= kMostSteps)
        throw Failure("--levels: the step is too small for a surface of this height");
    // The added zero takes the sign off a negative one.
    for (double n = std::ceil(low / step) + 0.0; n * step <= high; ++n) {
        const bool isIndex = std::fmod(n, 5.0) == 0.0;
        sections.push_back(
            MakeSection(surface, "z = " + ShortNumber(n * step),
                        isIndex ? SectionKind::IndexLevel : SectionKind::Level,
                        MMPlaneEq<double>(0.0, 0.0, 1.0, surface.centre.z - n * step)));
    }
}

// A level that only touches the surface gives no contour and is dropped; a plane that was asked for
// and misses is a failure.
void CutAll(std::vector<Section>& sections, const Surface& surface, const Options& options,
            Progress& progress)
{
    const std::size_t total = sections.size();
    std::vector<Section> kept;
    for (std::size_t i = 0; i < total; ++i) {
        progress.Show(i + 1, total, total == 1 ? " section" : " sections");
        if (CutSurface(sections[i], surface, options, progress))
            kept.push_back(std::move(sections[i]));
        else if (!sections[i].IsLevel())
            throw Failure(sections[i].name + " misses the surface" +
                          (options.clip ? " between the two points of --clip" : ""));
    }
    if (kept.empty())
        throw Failure("no level cuts the surface");
    sections = std::move(kept);
}

void Run(const Options& options)
{
    Progress progress;
    progress.Begin("read");
    const Surface surface = ReadSurface(options.surface, progress);

    std::vector<Section> sections;
    if (options.levelStep > 0.0)
        AddLevels(sections, surface, options.levelStep);
    for (std::size_t i = 0; i < options.planes.size(); ++i) {
        const MMPlaneEq<double>& plane = options.planes[i];
        const MMPlaneEq<double> reduced(plane.A(), plane.B(), plane.C(),
                                        plane.Distance(surface.centre));
        sections.push_back(
            MakeSection(surface, "plane " + std::to_string(i + 1), SectionKind::Plane, reduced));
    }
    std::optional<PlaneFit> fit;
    if (options.isFitWanted) {
        progress.Begin("fit");
        fit = FitPlane(surface);
        sections.push_back(MakeSection(surface, "fitted plane", SectionKind::Fit, fit->plane));
    }
    CutAll(sections, surface, options, progress);
    if (!options.picture.empty()) {
        progress.Begin("draw");
        WritePicture(options, surface, fit, sections);
        progress.End();
    }
    progress.Wipe();
    WriteReport(std::cout, options, surface, fit, sections, progress);
}

} // namespace

} // namespace section

int main(int argc, char** argv)
{
    return example::RunProgram("section", section::kHelp, section::ReadOptions, section::Run, argc,
                               argv);
}
