#pragma once

#include "options.h"
#include "section.h"
#include "support/progress.h"
#include "support/surface.h"

#include <optional>
#include <ostream>
#include <vector>

namespace section
{

/// Writes what was found: the surface, the fitted plane, a line a section, the contours of the
/// sections that were asked for one by one, the points, and the time of each step.
void WriteReport(std::ostream& out, const Options& options, const Surface& surface,
                 const std::optional<PlaneFit>& fit, const std::vector<Section>& sections,
                 const Progress& progress);

} // namespace section
