#pragma once

#include "alignment.h"
#include "crops.h"
#include "options.h"
#include "support/surface.h"

#include <vector>

namespace registration
{

/// Two crops, the second one moved, and the way back.
struct Pair
{
    Crop fixed;
    Crop moved;
    Alignment alignment;
};

/// Crops, each moved, and their points joined in one frame.
struct Map
{
    std::vector<Crop> crops;
    std::vector<Cloud> joined;
};

/// Writes the picture that `options` name, as SVG: a profile through the pair before and after, and
/// the map from above before and after. Throws `example::Failure` when the file cannot be written.
void WritePicture(const Options& options, const example::Surface& surface, const Pair& pair,
                  const Map& map);

} // namespace registration
