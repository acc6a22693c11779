#pragma once

#include <vxr/compositing/canvas/VXRCanvas.h>

namespace vxr {

/// A canvas that shows one renderable, for drawing off screen.
class VXR_EXPORT VXROffscreenCanvas : public VXRCanvas {
public:
    using VXRCanvas::VXRCanvas;

    void setRenderable(std::shared_ptr<VXRRenderable>);
    std::shared_ptr<VXRRenderable> renderable() const;
    const RenderableList& objectsToRender() const override { return mRenderable; }

private:
    RenderableList mRenderable; ///< it alone, or nothing
};

} // namespace vxr
