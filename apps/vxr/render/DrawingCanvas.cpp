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
    // Has layers made anew, which may have pixels from another canvas.
    setUsesCompositor(usesCompositor);
}

} // namespace app
