#pragma once

#include <algorithm>

namespace vxr {

/// Canvas units by which erased areas are grown, because antialiased edges may reach beyond the bounds.
inline constexpr float erasingSlack = 5;

/// In pixels: one because a layer's position is rounded to whole pixels, and one for a partly covered
/// pixel at its edge.
inline constexpr float placementSlack = 2;

/// How far a renderable may paint beyond its painted bounds, in canvas units: the erasing slack, or less at
/// large scales, where an antialiased edge covers fewer canvas units.
constexpr float paintingSlack(float scale) { return std::min(erasingSlack, 64 / scale); }

} // namespace vxr
