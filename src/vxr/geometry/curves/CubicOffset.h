#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <vector>

namespace vxr {

/// The curve at `distance` to the left of the segment (to the right of it when negative), in pieces that
/// follow each other, each within `tolerance` of the true offset. Where the segment bends tighter than the
/// distance, the offset runs backwards between two cusps, as the true one does; at a cusp of the segment
/// itself a half circle goes around it.
///
/// None when a number is not finite, and for a single point. A tolerance that is too small for single
/// precision is raised to that; no segment gives more than 256 pieces.
VXR_EXPORT std::vector<Cubic> offsetCurves(const Cubic& curve, double distance, double tolerance);

/// Arcs around `center`, from the direction `from` to the direction `to` by the shorter way, as cubics of no
/// more than a quarter circle. The directions are unit vectors.
VXR_EXPORT std::vector<Cubic> arcBetween(Vec2 center, double radius, Vec2 from, Vec2 to);

} // namespace vxr
