#pragma once

#include <vxr/protocols/VXRCanvasRole.h>

#include <cmath>

namespace app {

/// Bounds grown outward to whole pixels of a canvas that composites layers. A layer's pixels start at the
/// corner of its renderable's alignment bounds and are put on the nearest whole pixel; where the corner is
/// one already, nothing moves and both roads draw the same. Other canvases, and none, leave the bounds.
inline vxr::Rect boundsOnPixels(const vxr::Rect& bounds, const vxr::VXRCanvasRole* canvas)
{
    if (!canvas || !canvas->usesCompositor() || bounds.isEmpty())
        return bounds;
    const float scale = canvas->viewScale();
    const float left = std::floor(bounds.minX() * scale) / scale;
    const float top = std::floor(bounds.minY() * scale) / scale;
    return { left, top, std::ceil(bounds.maxX() * scale) / scale - left,
        std::ceil(bounds.maxY() * scale) / scale - top };
}

} // namespace app
