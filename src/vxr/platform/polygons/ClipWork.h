#pragma once

#include <vxr/platform/polygons/gpc.h>

#include <cstddef>
#include <span>

namespace vxr {

/// So few vertices stay within every bound, however their edges cross.
constexpr std::size_t clipWorkNeverTooMuch = 2048;

/// Whether clipping these contours, of `vertices` in all, stays within `gpcMaximumVertices`,
/// `gpcMaximumEdgePairs` and `gpcMaximumCrossings`. Linear in the vertices: the pairs are bounded with a
/// histogram of heights and only when that bound is high are a fixed few edges compared with all the
/// others.
bool clipWorkIsBounded(std::span<const gpc_vertex_list* const> contours, std::size_t vertices);

} // namespace vxr
