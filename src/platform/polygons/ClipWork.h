#pragma once

#include <vxr/platform/polygons/gpc.h>

#include <span>

namespace vxr {

/// Whether clipping these contours together stays within `gpcMaximumVertices`, `gpcMaximumEdgePairs` and
/// `gpcMaximumCrossings`. Linear in the vertices: the pairs are bounded with a histogram of heights
/// and only when that bound is high are a fixed few edges compared with all the others.
bool clipWorkIsBounded(std::span<const gpc_vertex_list* const> contours);

} // namespace vxr
