#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <optional>

// Places on whole paths.

namespace vxr {

/// The point of the outline (closing lines included) that is nearest to `p`. None for a path without a finite
/// point, and for a `p` that isn't.
VXR_EXPORT std::optional<Vec2> nearestPointOnPath(const Path& path, Vec2 p);

/// Where the line from `start` to `end` first meets the outline.
VXR_EXPORT std::optional<Vec2> firstCrossingOfPath(const Path& path, Vec2 start, Vec2 end);

} // namespace vxr
