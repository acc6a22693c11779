#include <vxr/renderables/VXRRenderable.h>

#include <vxr/compositing/layers/VXRCompositorLayer.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/protocols/PaintedExtent.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRRenderableLayer.h>
#include <vxr/protocols/VXRTexture.h>
#include <vxr/renderables/VXRTextureSet.h>

// Damage, drawing in layers, and the way to the compositor layer.

namespace vxr {

// Layer.

const std::shared_ptr<VXRRenderableLayer>& VXRRenderable::layer() const
{
    if (!mLayer)
        mLayer = const_cast<VXRRenderable*>(this)->makeLayer();
    return mLayer;
}

std::shared_ptr<VXRRenderableLayer> VXRRenderable::makeLayer()
{
    return VXRCompositorLayer::layerWithRenderable(*this);
}

/// A new layer is as invalid as can be, so there is no need to make one only to invalidate it, unless it
/// would pass the news on to a hosted view.
bool VXRRenderable::layerCanWait() const { return !mLayer && !view(); }

void VXRRenderable::setRenderingMode(int mode) { mRenderingMode = static_cast<std::int8_t>(mode); }

void VXRRenderable::flushCompositorLayer()
{
    willChangeGraphicsContext();
    mLayer = nullptr;
}

// Damage.

void VXRRenderable::erase()
{
    tellOfBounds();
    if (mCanvas)
        mCanvas->setNeedsDisplayInRect(
            integralRect(insetRect(erasableBounds(), -erasingSlack, -erasingSlack)));
}

void VXRRenderable::autoErase()
{
    if (mAutoInvalidates)
        erase();
}

void VXRRenderable::invalidate()
{
    if (mCanvas && mCanvas->usesCompositor()) {
        if (!layerCanWait())
            layer()->invalidateLayer();
        mTextureSession = nullptr;
    }
    if (mCanvas)
        mCanvas->invalidateRenderable(*this);
    erase();
}

void VXRRenderable::autoInvalidate()
{
    if (mAutoInvalidates)
        invalidate();
}

void VXRRenderable::invalidateShadow() { invalidate(); }

void VXRRenderable::setNeedsDisplay(bool flag)
{
    if (!flag || !layerCanWait())
        layer()->setNeedsDisplay(flag);
    if (flag)
        erase();
}

void VXRRenderable::setNeedsDisplayInRect(const Rect& local)
{
    if (!layerCanWait())
        layer()->setNeedsDisplayInRect(local);
    if (!mCanvas)
        return;
    const Rect damaged = shadowBoundsForRect(boundsOfTransformedRect(transform(), local));
    mCanvas->invalidateRenderableInRect(*this, damaged);
    if (mCanvas) // what it was told may have made it let go
        mCanvas->setNeedsDisplayInRect(damaged);
}

bool VXRRenderable::shouldInvalidateOnTranslation() const
{
    // At a whole zoom a move keeps pixel alignment as far as the layer can tell: its pixels are reused.
    return !mDynamicallyTranslating && mCanvas && VXRFractionalPart(mCanvas->viewScale()) != 0;
}

// Drawing.

bool VXRRenderable::_shouldLayer() const
{
    const int destination = mCanvas ? mCanvas->renderingDestination() : VXRDestinationDirect;
    if (requiresQuickdraw() && destination == VXRDestinationDirect)
        return true;
    if (opacity() == 1.0f && !shadow())
        return false;
    return !(mCanvas && mCanvas->rendersBlackAndWhite());
}

void VXRRenderable::beginLayer(Context& context)
{
    if (!_shouldLayer())
        return;
    context.saveState();
    context.setAlpha(opacity());
    const auto present = shadow();
    if (present && mRenderingMode != VXRRenderingModeShadowless)
        VXRSetupShadow(*present, mCanvas ? mCanvas->viewScale() : 1.0f);
    context.beginTransparencyLayer();
}

void VXRRenderable::endLayer(Context& context)
{
    if (!_shouldLayer())
        return;
    context.endTransparencyLayer();
    context.clearShadow();
    context.restoreState();
}

void VXRRenderable::renderPass(Context& context, int mode)
{
    setRenderingMode(mode);
    beginLayer(context);
    renderIntoContext(context);
    endLayer(context);
}

void VXRRenderable::renderLayeredIntoContext(Context& context)
{
    // Also when the drawing fails.
    const struct ModeReset {
        VXRRenderable& renderable;
        ~ModeReset() { renderable.setRenderingMode(VXRRenderingModeNone); }
    } reset { *this };
    if (mLayer && mLayer->hasMixedContent() && shadow()) {
        renderPass(context, VXRRenderingModeShadowless);
        renderPass(context, VXRRenderingModeShadowed);
    } else {
        renderPass(context, VXRRenderingModeSingle);
    }
}

void VXRRenderable::drawWhereBoundsWereComputed(const std::function<void()>& draw)
{
    alignmentBounds();
    if (mPlaceOfBounds == Point { mTransform.tX, mTransform.tY }) {
        draw();
        return;
    }
    const struct Place {
        explicit Place(VXRRenderable& moved)
            : renderable(moved)
        {
        }
        ~Place()
        {
            renderable.mTransform = transform;
            renderable.mGeometricBounds = geometric;
            renderable.mAlignmentBounds = alignment;
            renderable.mGeometricBoundsInvalid = geometricInvalid;
            renderable.mAlignmentBoundsInvalid = alignmentInvalid;
        }
        VXRRenderable& renderable;
        const AffineTransform transform = renderable.mTransform;
        const Rect geometric = renderable.mGeometricBounds, alignment = renderable.mAlignmentBounds;
        const bool geometricInvalid = renderable.mGeometricBoundsInvalid;
        const bool alignmentInvalid = renderable.mAlignmentBoundsInvalid;
    } present { *this };
    mTransform.tX = mPlaceOfBounds.x;
    mTransform.tY = mPlaceOfBounds.y;
    mGeometricBoundsInvalid = mAlignmentBoundsInvalid = true;
    draw();
}

void VXRRenderable::renderIntoContext(Context&) { }

void VXRRenderable::drawRect(const Rect&) { renderIntoContext(currentDrawingPort()); }

// Compositor and accelerated road.

void VXRRenderable::prepareToDraw()
{
    if (!mCanvas || !mCanvas->usesCompositor())
        return;
    setZoom(mCanvas->viewScale());
    const std::shared_ptr<VXRRenderableLayer> held = layer(); // drawing may flush it
    held->prepareToDraw();
}

void VXRRenderable::setZoom(float zoom)
{
    if (mCanvas && mCanvas->usesCompositor())
        layer()->setZoom(zoom);
}

void VXRRenderable::addTexturesToArray(std::vector<VXRTexture*>& textures)
{
    if (shadow()) {
        layer()->addShadowTexturesToArray(textures);
        layer()->addShadowlessTexturesToArray(textures);
    }
    layer()->addTexturesToArray(textures);
}

// Topmost first, where the textures come bottom first.
void VXRRenderable::addLayersToArray(std::vector<LayerInfo*>& infos)
{
    layer()->addLayerInfosToArray(infos);
    if (shadow()) {
        layer()->addShadowInfosToArray(infos);
        layer()->addShadowlessInfosToArray(infos);
    }
}

// Textures draw through no state that would have to be kept around them.
void VXRRenderable::drawTextures(const std::vector<VXRTexture*>& textures) const
{
    if (!mCanvas)
        return;
    const float scale = 1.0f / mCanvas->viewScale();
    for (VXRTexture* texture : textures)
        texture->drawAtOffset({ 0, 0 }, scale, 1.0f, true);
}

void VXRRenderable::blit()
{
    prepareToDraw();
    std::vector<VXRTexture*> textures;
    addTexturesToArray(textures);
    drawTextures(textures);
}

void VXRRenderable::_blitShadow()
{
    if (!shadow())
        return;
    std::vector<VXRTexture*> textures;
    layer()->addShadowTexturesToArray(textures);
    drawTextures(textures);
}

std::shared_ptr<VXRTextureSet> VXRRenderable::texture(VXXTextureSession* session)
{
    if (session != mTextureSession) {
        mTextureSession = session;
        mTexture
            = VXRTextureSet::initWithSessionAllowActiveCollapseFinalTextureSource(session, false, nullptr);
        mTexture->addRenderableZOrderChunkStage(*this, 0, 0);
    }
    return mTexture;
}

} // namespace vxr
