#pragma once

namespace vxr::canvasdamage {

/// Slack in canvas units that renderables put around what they erase, and by which smooth edges and joins
/// may stick out of their bounds.
inline constexpr float erasingSlack = 5;

/// In pixels. A layer's pixels lie up to a pixel beside the renderable: its place is rounded to whole
/// ones, and a partly covered pixel at the edge is one more.
inline constexpr float placementSlack = 2;

} // namespace vxr::canvasdamage
