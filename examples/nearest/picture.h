#pragma once

#include "hall.h"
#include "options.h"

#include <norvek/search/kd_tree_point_locator.h>

namespace nearest
{

/// What the tree answered.
struct Answers
{
    MClosestPointInfo nearest;
    std::vector<MFoundPoint> eight;
    std::vector<MFoundPoint> within;
};

/// Draws the hall, the cells of the tree, and the answers; throws `example::Failure` when the file
/// cannot be written.
void WritePicture(const Options& options, const Cloud& scan, const std::vector<Cell>& cells,
                  const Answers& answers);

} // namespace nearest
