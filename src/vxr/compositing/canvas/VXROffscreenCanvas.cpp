#include <vxr/compositing/canvas/VXROffscreenCanvas.h>

#include <vxr/renderables/VXRRenderable.h>

namespace vxr {

void VXROffscreenCanvas::setRenderable(std::shared_ptr<VXRRenderable> renderable)
{
    mRenderable.clear();
    if (renderable)
        mRenderable.push_back(std::move(renderable));
}

std::shared_ptr<VXRRenderable> VXROffscreenCanvas::renderable() const
{
    return mRenderable.empty() ? nullptr : mRenderable.front();
}

} // namespace vxr
