#include <vxr/renderables/VXRRenderable.h>

#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRRenderableLayer.h>
#include <vxr/renderables/VXRTextureSet.h>

#include <cmath>
#include <utility>

namespace vxr {

VXRRenderable::VXRRenderable() = default;

VXRRenderable::~VXRRenderable()
{
    dismissFollowers();
    if (mCanvas)
        mCanvas->unregisterRenderable(*this);
    const auto sets = std::move(mTextureSets);
    for (VXRTextureSet* set : sets)
        set->removeRenderable(*this);
}

// State.

void VXRRenderable::setCanvas(VXRCanvasRole* newCanvas)
{
    if (newCanvas == mCanvas)
        return;
    if (mCanvas)
        mCanvas->unregisterRenderable(*this);
    mCanvas = newCanvas;
    if (mLayer)
        mLayer->clearTextures();
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
    mTextureSession = nullptr;
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

} // namespace vxr
