#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <memory>

// The same outline with fewer elements.

namespace vxr {

/// A copy with as few curves as keep within `tolerance` of the path, and the path within it of the copy.
/// Corners stay corners, at their places: where curves turn by more than 0.1 radians, and where lines turn by
/// more than 0.6, seen at a distance of some tolerances. Sub-paths stay open or closed. What can't be made
/// simpler is kept as it is, and so is everything at tolerance 0, not a number or infinity. Sub-paths with
/// coordinates that are not finite are left out.
VXR_EXPORT std::shared_ptr<Path> simplifiedPath(const Path& path, double tolerance);

/// A copy whose curves are lines wherever they are straight within `tolerance`.
VXR_EXPORT std::shared_ptr<Path> pathWithStraightCurvesAsLines(const Path& path, double tolerance);

} // namespace vxr
