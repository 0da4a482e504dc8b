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
    /// The distances from the moved points to the fixed crop, before and after.
    std::vector<double> before;
    std::vector<double> after;
};

/// Crops, each moved, and their points joined in one frame.
struct Map
{
    std::vector<Crop> crops;
    std::vector<Cloud> joined;
};

/// Writes the picture that `options` name, as SVG: before and after, a profile through the pair,
/// its residuals, and the map from above. Throws `example::Failure` when the file cannot be
/// written.
void WritePicture(const Options& options, const example::Surface& surface, const Pair& pair,
                  const Map& map);

} // namespace registration
