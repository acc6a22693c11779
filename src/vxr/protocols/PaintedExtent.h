#pragma once

#include <algorithm>

namespace vxr {

/// Canvas units by which erased areas are grown: smooth edges may stick out of a renderable's bounds.
inline constexpr float erasingSlack = 5;

/// In pixels. A layer lies up to a pixel beside its renderable, since its place is rounded to whole pixels,
/// and a partly covered pixel at its edge is one more.
inline constexpr float placementSlack = 2;

/// How far beyond its painted bounds a renderable may still paint, in canvas units: the slack of erasing,
/// less at large scales, where an edge is no wider.
constexpr float paintingSlack(float scale) { return std::min(erasingSlack, 64 / scale); }

} // namespace vxr
