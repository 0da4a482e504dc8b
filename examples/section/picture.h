#pragma once

#include "options.h"
#include "section.h"
#include "support/surface.h"

#include <optional>
#include <vector>

namespace section
{

/// Writes the picture that `options` name, as SVG: the sections over the shaded surface, seen
/// against the normal of the first section's plane, with a legend and a scale bar. Throws `Failure`
/// when the file cannot be written.
void WritePicture(const Options& options, const Surface& surface,
                  const std::optional<PlaneFit>& fit, const std::vector<Section>& sections);

} // namespace section
