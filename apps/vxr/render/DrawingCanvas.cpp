#include "DrawingCanvas.h"

#include <vxr/renderables/VXRRenderable.h>

namespace app {

DrawingCanvas::DrawingCanvas(const vxr::Rect& frame, RenderableList renderables)
    : VXRCanvas(frame)
    , mRenderables(std::move(renderables))
{
    for (const auto& renderable : mRenderables)
        renderable->setCanvas(this);
}

} // namespace app
