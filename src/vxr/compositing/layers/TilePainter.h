#pragma once

#include <vxr/platform/graphics/values/IntRect.h>

#include <optional>

namespace vxr {

class Context;
class VXRCompositorLayer;
class VXRLayeredRenderable;
class VXRTile;

/// Draws a layer's renderable into one of the layer's tiles, at the layer's zoom.
class TilePainter {
public:
    TilePainter(VXRCompositorLayer&, VXRTile&);

    /// Draws the tile anew, or what `part` touches of it (canvas coordinates): in two passes where some
    /// parts of the renderable cast the shadow and others don't. When drawing fails the tile loses its
    /// pixels.
    void update(const std::optional<Rect>& part);

private:
    Rect tileRect(const Rect& canvasRect) const;
    IntRect pixelsTouchedBy(const Rect& canvasRect) const;
    void drawPasses();
    void draw(Context&) const;

    VXRCompositorLayer& mLayer;
    VXRLayeredRenderable& mRenderable;
    VXRTile& mTile;
    const float mZoom;
    const Point mOffset; ///< of the tile in the layer, in pixels
};

} // namespace vxr
