#pragma once

#include "heights.h"
#include "options.h"

namespace histogram
{

/// Writes the picture that `options` name, as SVG: a bar for each interval, the share of what lies
/// below, mean, spread and most frequent height. Throws `example::Failure` when the file cannot be
/// written.
void WritePicture(const Options& options, const Heights& heights);

} // namespace histogram
