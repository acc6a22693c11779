#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <memory>

namespace vxr {

/// The parallel outline at `distance` in path units, within `tolerance` of the true one away from joins.
///
/// A closed sub-path grows by a positive distance and shrinks by a negative one; those that run the other way
/// round than the largest are holes and do the opposite. An open one moves to its left (y up) or right.
/// Corners that open are mitred up to twice the distance from the corner, else rounded; corners that close
/// are cut off where their sides meet. What shrinks to nothing is left out. Where sides that aren't
/// neighbours come closer than the distance, the outline crosses itself.
VXR_EXPORT std::shared_ptr<Path> outsetPath(const Path& path, double distance, double tolerance);

/// How far, in distances, an outset outline may lie from the path.
inline constexpr double mostOutsetReach = 2;

} // namespace vxr
