#include <vxr/compositing/canvas/VXRTransformableViewRenderable.h>

#include <vxr/compositing/canvas/VXRSubviewAbsolverView.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/Context.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRRenderableLayer.h>

#include <utility>

namespace vxr {

VXRTransformableViewRenderable::VXRTransformableViewRenderable(std::shared_ptr<View> view)
    : mView(std::move(view))
{
    if (!mView)
        throw InvalidArgumentException("A view renderable needs a view.");
    setNaturalSize(mView->bounds().size);
}

VXRTransformableViewRenderable::~VXRTransformableViewRenderable() { mView->removeFromSuperview(); }

void VXRTransformableViewRenderable::setViewShouldRender(bool should)
{
    mViewShouldRender = should;
    if (!should)
        return;
    const Rect bounds = mView->bounds(), dirty = mView->unionDirtyRects();
    const float top = mView->isFlipped() ? dirty.minY() - bounds.minY() : bounds.maxY() - dirty.maxY();
    layer()->setNeedsDisplayInRect(
        { dirty.minX() - bounds.minX(), top, dirty.size.width, dirty.size.height });
}

void VXRTransformableViewRenderable::setCanvas(VXRCanvasRole* newCanvas)
{
    if (newCanvas == canvas())
        return;
    mView->removeFromSuperview();
    VXRRenderable::setCanvas(newCanvas);
    if (auto* host = dynamic_cast<VXRSubviewAbsolverView*>(newCanvas))
        host->addSubview(mView);
}

void VXRTransformableViewRenderable::renderIntoContext(Context& context)
{
    const StateSaver saved(context);
    context.concatTransform(transform());
    auto* host = dynamic_cast<VXRSubviewAbsolverView*>(mView->superview());
    if (host)
        host->drawSubviewIntoContext(*mView, context);
    mView->setNeedsDisplay(false);
}

} // namespace vxr
