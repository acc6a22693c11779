#pragma once

#include <vxr/platform/polygons/ClipOperand.h>

#include <vector>

namespace vxr {

/// The contours of both operands that lie together, apart from those of every other cluster.
struct ClipCluster {
    ClipOperand a, b;
};

/// Divides the contours so that the boxes of different clusters don't meet: each can be clipped by itself.
/// Time is about linear in the number of contours.
std::vector<ClipCluster> clipClusters(const ClipOperand& a, const ClipOperand& b);

} // namespace vxr
