#include "DrawingCanvas.h"

#include <vxr/renderables/VXRRenderable.h>

namespace app {

DrawingCanvas::DrawingCanvas(
    const vxr::Rect& frame, RenderableList renderables, float scale, bool usesCompositor)
    : VXRCanvas(frame)
    , mRenderables(std::move(renderables))
{
    setScaleScrollingToMaintainCenter(scale, false);
    for (const auto& renderable : mRenderables) {
        renderable->setCanvas(this);
        renderable->invalidateBoundingBox(); // it depends on where a compositor's pixels are
    }
    // Rebuilds layers, which may hold pixels made for another canvas.
    setUsesCompositor(usesCompositor);
}

} // namespace app
