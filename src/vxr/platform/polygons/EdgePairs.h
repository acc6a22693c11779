#pragma once

#include <vxr/platform/polygons/ClipOperand.h>

namespace vxr {

/// Sum over the edges of the vertices at their heights, at least the pairs of edges that a rising sweep line
/// meets together: of two such edges one begins or ends beside the other. Clipper visits each edge about once
/// per such vertex, and no more edges than these pairs can cross. By a histogram, in linear time.
double edgePairBound(const ClipOperand& a, const ClipOperand& b);

} // namespace vxr
