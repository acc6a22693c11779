#pragma once

#include <vxr/compositing/canvas/VXRCanvas.h>

namespace app {

/// A canvas that shows a fixed list of renderables. They belong to one canvas at a time: the one made
/// last.
class DrawingCanvas final : public vxr::VXRCanvas {
public:
    DrawingCanvas(const vxr::Rect& frame, RenderableList renderables, float scale, bool usesCompositor);

    const RenderableList& objectsToRender() const override { return mRenderables; }

private:
    RenderableList mRenderables;
};

} // namespace app
