#pragma once

#include "atlas.h"
#include "options.h"

namespace coastlines
{

/// Draws the countries with their triangles and the places; throws `example::Failure` when the file
/// cannot be written.
void WritePicture(const Options& options, const std::vector<Country>& countries);

} // namespace coastlines
