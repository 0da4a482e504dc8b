// Cuts a surface along a bent outline, splits its triangles and draws them; also draws what
// poly-planes are made of.

#include "cut.h"
#include "notions.h"
#include "options.h"
#include "picture.h"
#include "support/program.h"
#include "support/progress.h"
#include "support/text.h"

#include <iomanip>
#include <iostream>
#include <limits>

namespace bent_cut
{

using example::Fixed;

namespace
{

std::string Bound(double displacement)
{
    return std::abs(displacement) < std::numeric_limits<double>::max() ? Fixed(displacement, 3)
                                                                       : "any";
}

void WriteReport(std::ostream& out, const MPolyPlaneSectors& cut, const Split& split)
{
    out << "Outline        " << cut.GetNumPoints() << " points, length "
        << Fixed(cut.GetLengthOfDescribingPolyline(), 3) << "\nDisplacements  "
        << Bound(cut.GetNegDisplacement()) << " to " << Bound(cut.GetPosDisplacement())
        << "\nTriangles      " << split.sides.size() << ", " << split.numRuledOut
        << " of them ruled out by the quick test\n\n             triangles      share         "
           "area\n";
    constexpr const char* names[] = {"inside", "crossed", "outside"};
    for (std::size_t i = 0; i < split.parts.size(); ++i) {
        const Part& part = split.parts[i];
        out << std::left << std::setw(10) << names[i] << std::right << std::setw(12) << part.count
            << std::setw(9)
            << Fixed(100.0 * part.count / static_cast<double>(split.sides.size()), 2) << " %"
            << std::setw(13) << Fixed(part.area, 3) << '\n';
    }
}

void Run(const Options& options)
{
    example::Progress progress;
    progress.Begin("read");
    const example::Surface surface = example::ReadSurface(options.surface, progress);
    progress.Begin("split");
    MPolyPlaneSectors cut = MakeCut(surface, options);
    const Split split = SplitSurface(surface, cut);
    if (!options.picture.empty())
        WritePicture(options.picture, surface, cut, split);
    if (!options.notions.empty())
        WriteNotions(options.notions);
    progress.Wipe();
    WriteReport(std::cout, cut, split);
}

} // namespace

} // namespace bent_cut

int main(int argc, char** argv)
{
    return example::RunProgram("bent_cut", bent_cut::kHelp, bent_cut::ReadOptions, bent_cut::Run,
                               argc, argv);
}
