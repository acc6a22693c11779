#include <vxr/renderables/VXRRenderable.h>

#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/protocols/PaintedExtent.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRRenderableLayer.h>
#include <vxr/protocols/VXRTexture.h>
#include <vxr/renderables/RenderableFollowers.h>
#include <vxr/renderables/VXRTextureSet.h>

#include <cmath>
#include <utility>

namespace vxr {

VXRRenderable::VXRRenderable() = default;

VXRRenderable::~VXRRenderable()
{
    if (mRare)
        mRare->followers.reset();
    if (mCanvas)
        mCanvas->unregisterRenderable(*this);
    if (!mRare)
        return;
    const auto sets = std::move(mRare->textureSets);
    for (VXRTextureSet* set : sets)
        set->removeRenderable(*this);
}

VXRRenderable::Rare& VXRRenderable::rare() const
{
    if (!mRare)
        mRare = std::make_unique<Rare>();
    return *mRare;
}

void VXRRenderable::setClipRect(const Rect& rect)
{
    if (rect != clipRect())
        rare().clipRect = rect;
}

void VXRRenderable::forgetTextureSession()
{
    if (mRare)
        mRare->textureSession = nullptr;
}

// State.

void VXRRenderable::setCanvas(VXRCanvasRole* newCanvas)
{
    if (newCanvas == mCanvas)
        return;
    if (mCanvas)
        mCanvas->unregisterRenderable(*this);
    mCanvas = newCanvas;
    if (VXRRenderableLayer* present = presentLayer())
        present->clearTextures();
    if (mCanvas)
        mCanvas->registerRenderable(*this);
}

bool VXRRenderable::hasShadow() const
{
    const auto present = shadow();
    return present && !present->isNullShadow();
}

void VXRRenderable::setShadow(std::shared_ptr<VXRShadow> newShadow)
{
    if (newShadow && newShadow->isNullShadow())
        newShadow = nullptr;
    const bool rebuild
        = mShadow ? mShadow->differenceRequiresRebuilding(newShadow.get()) : newShadow != nullptr;
    autoErase();
    mShadow = std::move(newShadow);
    tellOfBounds();
    if (rebuild && mAutoInvalidates)
        invalidateShadow();
    else
        autoErase();
    forgetTextureSession();
}

void VXRRenderable::setOpacity(float newOpacity)
{
    if (newOpacity == mOpacity)
        return;
    // The area stays the same and the layer fades as a whole, so this is all.
    mOpacity = newOpacity;
    autoErase();
}

void VXRRenderable::setTransform(const AffineTransform& newTransform)
{
    const AffineTransform old = transform();
    const bool mayShiftBounds = shouldOptimizeTranslation();
    if (!differsFrom(old, newTransform))
        return;
    autoErase();
    const bool translationOnly = differOnlyByTranslation(old, newTransform);
    const bool shiftsBounds = translationOnly && mayShiftBounds;
    if (shiftsBounds)
        _translateBoundingBox({ newTransform.tX - old.tX, newTransform.tY - old.tY });
    _setTransform(newTransform);
    if (!shiftsBounds)
        invalidateBoundingBox();
    if (!translationOnly || shouldInvalidateOnTranslation())
        autoInvalidate();
    else
        autoErase();
    outlineDidChange();
}

void VXRRenderable::setNaturalSize(Size size)
{
    mNaturalSize = size;
    invalidateBoundingBox();
    outlineDidChange();
}

void VXRRenderable::setDynamicallyTransforming(bool flag)
{
    mDynamicallyTransforming = flag;
    if (!flag)
        autoInvalidate();
}

void VXRRenderable::setDynamicallyTranslating(bool flag)
{
    const bool ends = mDynamicallyTranslating && !flag;
    mDynamicallyTranslating = flag;
    if (ends && shouldInvalidateOnTranslation())
        autoInvalidate();
}

// Placement.

void VXRRenderable::offsetBy(float dx, float dy)
{
    AffineTransform moved = transform();
    moved.tX += dx;
    moved.tY += dy;
    setTransform(moved);
}

void VXRRenderable::offsetTo(Point translation)
{
    AffineTransform moved = transform();
    moved.tX = translation.x;
    moved.tY = translation.y;
    setTransform(moved);
}

void VXRRenderable::rotateByRadiansPivot(float radians, Point pivot)
{
    AffineTransform step;
    step.translate(pivot.x, pivot.y).rotate(radians).translate(-pivot.x, -pivot.y);
    setTransform(transform().append(step));
}

void VXRRenderable::scaleXByYByPivot(float sx, float sy, Point pivot)
{
    AffineTransform step;
    step.translate(pivot.x, pivot.y).scale(sx, sy).translate(-pivot.x, -pivot.y);
    setTransform(transform().append(step));
}

// Bounds.

namespace {

Rect shadowRectOfRect(const Rect& rect, const VXRShadow& shadow, Point offset)
{
    const auto reach = static_cast<float>(shadow.radius());
    return offsetRect(insetRect(rect, -reach, -reach), offset.x, offset.y);
}

} // namespace

Rect VXRRenderable::geometricBounds() const
{
    if (mGeometricBoundsInvalid) {
        mGeometricBounds = computeGeometricBounds();
        mGeometricBoundsInvalid = false;
    }
    return mGeometricBounds;
}

Rect VXRRenderable::alignmentBounds() const
{
    if (mAlignmentBoundsInvalid) {
        mAlignmentBounds = computeAlignmentBounds();
        mPaintedOutset = computePaintedOutset();
        mPlaceOfBounds = { mTransform.tX, mTransform.tY };
        mAlignmentBoundsInvalid = false;
    }
    return mAlignmentBounds;
}

float VXRRenderable::paintedOutset() const
{
    alignmentBounds();
    return mPaintedOutset;
}

Rect VXRRenderable::computeGeometricBounds() const
{
    const Size size = naturalSize();
    return boundsOfTransformedRect(transform(), { 0, 0, size.width, size.height });
}

Rect VXRRenderable::computeAlignmentBounds() const { return geometricBounds(); }

void VXRRenderable::invalidateBoundingBox()
{
    mGeometricBoundsInvalid = true;
    mAlignmentBoundsInvalid = true;
    tellOfBounds();
}

void VXRRenderable::tellOfBounds() const
{
    if (mCanvas && mIndexEntry != UINT32_MAX)
        mCanvas->renderableBoundsMayChange(*this);
}

void VXRRenderable::_translateBoundingBox(Size delta)
{
    mGeometricBounds = offsetRect(mGeometricBounds, delta.width, delta.height);
    mAlignmentBounds = offsetRect(mAlignmentBounds, delta.width, delta.height);
    tellOfBounds();
}

Rect VXRRenderable::shadowBounds() const
{
    const auto present = shadow();
    const Rect bounds = alignmentBounds();
    return present ? shadowRectOfRect(bounds, *present, present->displacement()) : bounds;
}

Rect VXRRenderable::shadowBoundsForRect(const Rect& rect) const
{
    const auto present = shadow();
    if (!present)
        return rect;
    Point offset = present->displacement();
    if (const auto extra = mCanvas ? mCanvas->additionalShadowTransform() : std::nullopt)
        offset = extra->map(offset); // the translation too
    return unionRect(rect, shadowRectOfRect(rect, *present, offset));
}

Rect VXRRenderable::erasableBounds() const
{
    // The canvas asks every renderable for these at each redraw.
    Rect painted = alignmentBounds();
    if (mPaintedOutset != 0)
        painted = insetRect(painted, -mPaintedOutset, -mPaintedOutset);
    return unionRect(shadowBoundsForRect(painted), geometricBounds());
}

// Geometry.

float VXRRenderable::angleWithFlip(bool flip) const
{
    const AffineTransform t = transform();
    const bool mirrors = double { t.m11 } * t.m22 < 0 || double { t.m12 } * t.m21 > 0;
    if (!mirrors)
        return static_cast<float>(std::atan2(double { t.m12 }, double { t.m11 }));
    const double a = std::atan2(-double { t.m12 }, -double { t.m11 });
    return static_cast<float>(flip ? a + 3.141592653589793 : a);
}

float VXRRenderable::angle() const { return angleWithFlip(true); }

bool VXRRenderable::isAxisAligned() const
{
    const auto degrees = static_cast<float>(angle() * 57.29577951308232);
    const float whole = VXRRound(degrees);
    // A matrix in single precision comes back from half a turn a last place short of 180 degrees.
    constexpr float lastPlaces = 1e-4f;
    return std::fabs(degrees - whole) < lastPlaces && static_cast<int>(whole) % 90 == 0;
}

Point VXRRenderable::center() const { return VXRCenterOfRect(geometricBounds()); }

bool VXRRenderable::containsPoint(Point p) const
{
    const auto local = localPointForHitTest(p);
    const Size size = naturalSize();
    return local && local->x >= 0 && local->x <= size.width && local->y >= 0 && local->y <= size.height;
}

std::optional<Point> VXRRenderable::localPointForHitTest(Point p) const
{
    const auto vanishes = [](float a, float b) { return std::fabs(a) < 1e-5 && std::fabs(b) < 1e-5; };
    const AffineTransform t = transform();
    if (vanishes(t.m11, t.m12) || vanishes(t.m21, t.m22))
        return std::nullopt;
    const auto inverse = t.inverted();
    return inverse ? std::optional(inverse->map(p)) : std::nullopt;
}

bool VXRRenderable::intersectsRect(const Rect& rect) const { return rectsIntersect(rect, geometricBounds()); }

std::shared_ptr<Path> VXRRenderable::geometricBoundsAsPath() const
{
    const Size size = naturalSize();
    return pathWithRectUnderTransform({ 0, 0, size.width, size.height }, transform());
}

std::shared_ptr<Path> VXRRenderable::pathWithRectUnderTransform(const Rect& rect, const AffineTransform& t)
{
    Point upperLeft, lowerLeft, lowerRight, upperRight;
    transformRectUpperLeftLowerLeftLowerRightUpperRight(
        t, rect, upperLeft, lowerLeft, lowerRight, upperRight);
    auto path = Path::path();
    path->moveTo(upperLeft);
    path->lineTo(lowerLeft);
    path->lineTo(lowerRight);
    path->lineTo(upperRight);
    path->close();
    return path;
}

// Layer.

const std::shared_ptr<VXRRenderableLayer>& VXRRenderable::layer() const
{
    if (!presentLayer()) {
        auto made = const_cast<VXRRenderable*>(this)->makeLayer();
        rare().layer = std::move(made);
    }
    return mRare->layer;
}

std::shared_ptr<VXRRenderableLayer> VXRRenderable::makeLayer()
{
    return VXRRenderableLayer::layerWithRenderable(*this);
}

/// A new layer is as invalid as can be, so there is no need to make one only to invalidate it, unless it
/// would pass the news on to a hosted view.
bool VXRRenderable::layerCanWait() const { return !presentLayer() && !view(); }

void VXRRenderable::setRenderingMode(int mode) { mRenderingMode = static_cast<std::int8_t>(mode); }

void VXRRenderable::flushCompositorLayer()
{
    willChangeGraphicsContext();
    if (mRare)
        mRare->layer = nullptr;
}

// Followers.

unsigned VXRRenderable::followRound() { return RenderableFollowers::round(); }

void VXRRenderable::addFollower(VXRRenderableFollower& follower)
{
    auto& followers = rare().followers;
    if (!followers)
        followers = std::make_unique<RenderableFollowers>(*this);
    followers->add(follower);
}

void VXRRenderable::removeFollower(VXRRenderableFollower& follower)
{
    if (mRare && mRare->followers)
        mRare->followers->remove(follower);
}

void VXRRenderable::outlineDidChange()
{
    if (mRare && mRare->followers)
        mRare->followers->tellOfChange();
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
        forgetTextureSession();
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
    const VXRRenderableLayer* const present = presentLayer();
    if (present && present->hasMixedContent() && shadow()) {
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
    if (session != (mRare ? mRare->textureSession : nullptr)) {
        rare().textureSession = session;
        mRare->texture
            = VXRTextureSet::initWithSessionAllowActiveCollapseFinalTextureSource(session, false, nullptr);
        mRare->texture->addRenderableZOrderChunkStage(*this, 0, 0);
    }
    return mRare ? mRare->texture : nullptr;
}

} // namespace vxr
