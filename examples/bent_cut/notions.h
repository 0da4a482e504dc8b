#pragma once

#include <string>

namespace bent_cut
{

/// Draws what poly-planes, prisms and sectors are made of, as SVG, from a small outline. Throws
/// `example::Failure` when the file cannot be written.
void WriteNotions(const std::string& path);

} // namespace bent_cut
