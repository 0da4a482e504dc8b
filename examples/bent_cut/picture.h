#pragma once

#include "cut.h"

namespace bent_cut
{

/// Draws the split surface from above, as SVG, with the outline of the cut. Throws
/// `example::Failure` when the file cannot be written.
void WritePicture(const std::string& path, const example::Surface& surface, MPolyPlaneSectors& cut,
                  const Split& split);

} // namespace bent_cut
