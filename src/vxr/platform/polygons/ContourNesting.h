#pragma once

#include <polyclipping/clipper.hpp>

#include <vector>

namespace vxr {

/// For each contour, 1 when it lies within an odd number of the others, else 0. Contours may touch but
/// not cross. About linear in the edges: the ones near a contour's height are found through bands.
std::vector<int> holeFlags(const ClipperLib::Paths& contours);

} // namespace vxr
