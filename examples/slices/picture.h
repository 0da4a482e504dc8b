#pragma once

#include "options.h"
#include "slice.h"
#include "volume.h"

namespace slices
{

/// Writes the picture that `options` name, as SVG: the volume with its axes and the plane in it,
/// the resampled image flat beside it, and the plane's corners. Throws `example::Failure` when the
/// file cannot be written.
void WritePicture(const Options& options, const Volume& volume, const Slice& slice);

} // namespace slices
