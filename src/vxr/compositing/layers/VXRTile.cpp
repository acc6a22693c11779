#include <vxr/compositing/layers/VXRTile.h>

#include <vxr/compositing/layers/VXRCompositorLayer.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/base/UserDefaults.h>
#include <vxr/protocols/PaintedExtent.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr int defaultTileSize = 1024, largestTileSize = 2048;

/// A bitmap's side; a layer that may not be tiled can ask for more than there is.
constexpr int largestSide = 32000;

/// In pixels. What sticks out further, as at scales of hundreds, is cut.
constexpr int farthestOverflow = 1024;

int pixelsFor(float length) { return std::clamp(touchedPixels(0, 0, length, 0).x1, 0, largestSide); }

} // namespace

int VXRTile::tileSizeForDefaultsValue(int value)
{
    return value >= 1 && value <= largestTileSize ? value : defaultTileSize;
}

int VXRTile::tileSize()
{
    static const int size
        = tileSizeForDefaultsValue(UserDefaults::standardUserDefaults().integerForKey("VXRenderingTileSize"));
    return size;
}

std::shared_ptr<VXRTile> VXRTile::tileWithLayer(VXRCompositorLayer& layer)
{
    return std::make_shared<VXRTile>(Key {}, layer, layer.zoomFactor(), false);
}

std::shared_ptr<VXRTile> VXRTile::fixedTileWithLayerZoom(VXRCompositorLayer& layer, float zoom)
{
    auto tile = std::make_shared<VXRTile>(Key {}, layer, zoom, true);
    tile->mAreaWide = tile->mAreaHigh = tileSize();
    tile->setArea({});
    return tile;
}

VXRTile::VXRTile(Key, VXRCompositorLayer& layer, float zoom, bool fixed)
    : mLayer(layer)
    , mFixed(fixed)
    , mZoom(zoom)
{
}

VXRTile::~VXRTile() { resize(0, 0); }

// Size.

float VXRTile::shadowScale() const
{
    const VXRCanvasRole* canvas = mLayer.renderable()->canvas();
    return canvas && !canvas->scaleShadowsWhenZooming() ? 1 : mZoom;
}

int VXRTile::neededMargin() const
{
    const auto shadow = mLayer.renderable()->shadow();
    return mOverflow + (shadow ? TileShadow::reach(*shadow, shadowScale()) : 0);
}

void VXRTile::setIndex(int index)
{
    if (index != mIndex)
        resize(mWide, mHigh);
    mIndex = index;
}

void VXRTile::setArea(const Rect& scaled)
{
    if (!mFixed) {
        mAreaWide = pixelsFor(scaled.size.width);
        mAreaHigh = pixelsFor(scaled.size.height);
    }
    const float outset = mLayer.renderable()->paintedOutset() + paintingSlack(mZoom);
    mOverflow = std::clamp(pixelCoordinate(std::ceil(outset * mZoom)), 1, farthestOverflow);
    const int margin = neededMargin();
    const int wide = std::min(mAreaWide + 2 * margin, largestSide);
    const int high = std::min(mAreaHigh + 2 * margin, largestSide);
    if (wide == mWide && high == mHigh && margin == mMargin)
        return;
    mMargin = margin;
    resize(wide, high);
}

void VXRTile::resize(int wide, int high)
{
    mWide = wide;
    mHigh = high;
    mShadowed = {};
    mShadowless = {};
    mShadow.clear();
    mDirty = true;
    VXRLayerBudget::account(*this);
}

Size VXRTile::areaSize() const { return { float(mAreaWide), float(mAreaHigh) }; }

std::size_t VXRTile::byteSize() const
{
    return mShadowed.byteSize() + mShadowless.byteSize() + mShadow.byteSize();
}

// Drawing.

void VXRTile::beginUpdate(const IntRect& part, bool clears)
{
    mPart = part;
    mClears = clears;
}

Context& VXRTile::shadowedContext() { return mShadowed.context(mWide, mHigh, mPart, mClears); }

Context& VXRTile::shadowlessContext() { return mShadowless.context(mWide, mHigh, mPart, mClears); }

void VXRTile::freeShadowlessData()
{
    mShadowless = {};
    VXRLayerBudget::account(*this);
}

void VXRTile::buildShadow(const std::shared_ptr<VXRShadow>& shadow)
{
    mShadow.clear();
    if (!shadow)
        return;
    mShadowed.keep(bitmapRect());
    mShadow.build(mShadowed, *shadow, shadowScale(), bitmapRect());
}

void VXRTile::finishUpdate()
{
    // A shadow's mask is made of the margins too.
    const IntRect limit = mShadow.isEmpty() ? intersection(shownBox(), bitmapRect()) : bitmapRect();
    for (TilePlane* plane : { &mShadowed, &mShadowless }) {
        plane->keep(limit);
        plane->compress();
    }
    mDirty = false;
    VXRLayerBudget::noteDrawn(*this);
}

void VXRTile::dropPixels() { resize(mWide, mHigh); }

bool VXRTile::isInSight() const
{
    const VXRLayeredRenderable* renderable = mLayer.renderable();
    const VXRCanvasRole* canvas = renderable ? renderable->canvas() : nullptr;
    if (!canvas)
        return false;
    // In pixels from the renderable's corner, as the tile lies.
    const Point corner = mLayer.bounds().origin, offset = mLayer.offsetForIndex(mIndex);
    const float x = corner.x + (offset.x - float(mMargin)) / mZoom,
                y = corner.y + (offset.y - float(mMargin)) / mZoom;
    const Rect covered { x, y, float(mWide) / mZoom, float(mHigh) / mZoom };
    return rectsIntersect(renderable->shadowBoundsForRect(covered), canvas->clipViewVisibleRect());
}

// Records.

/// The part of the bitmap that this tile shows of its layer: its own square towards other tiles, and what
/// sticks out of the layer where there are none.
IntRect VXRTile::shownBox() const
{
    const int left = mShadowClip & VXRTileSideLeft ? 0 : mOverflow;
    const int right = mShadowClip & VXRTileSideRight ? 0 : mOverflow;
    const int top = mShadowClip & VXRTileSideTop ? 0 : mOverflow;
    const int bottom = mShadowClip & VXRTileSideBottom ? 0 : mOverflow;
    return { mMargin - left, mMargin - top, mMargin + mAreaWide + right, mMargin + mAreaHigh + bottom };
}

LayerInfo* VXRTile::describePlane(TilePlane& plane, LayerInfo& info)
{
    const int x = pixelCoordinate(mPosition.x) - mMargin, y = pixelCoordinate(mPosition.y) - mMargin;
    const IntRect shown = intersection(shownBox(), plane.ink()).moved(x, y);
    if (shown.isEmpty())
        return nullptr;
    const float opacity = mLayer.renderable()->opacity();
    if (opacity != 1) { // pixels and colours fade by different roundings
        plane.expand();
        VXRLayerBudget::account(*this);
    }
    info = {};
    info.layerInfoVersion = 1;
    info.fade = opacity;
    plane.describe(info, x, y, shown);
    return &info;
}

LayerInfo* VXRTile::layerInfo() { return describePlane(mShadowed, mShadowedInfo); }

LayerInfo* VXRTile::shadowlessInfo() { return describePlane(mShadowless, mShadowlessInfo); }

LayerInfo* VXRTile::shadowInfo()
{
    const auto shadow = mLayer.renderable()->shadow();
    if (!shadow || mShadow.isEmpty())
        return nullptr;
    const Point offset = TileShadow::offset(*shadow, shadowScale());
    const int x = pixelCoordinate(mPosition.x) - mMargin + pixelCoordinate(offset.x),
              y = pixelCoordinate(mPosition.y) - mMargin + pixelCoordinate(offset.y);

    LayerInfo& info = mShadowInfo;
    info = {};
    info.layerInfoVersion = 1;
    mShadow.describe(info, *shadow, mLayer.renderable()->opacity(), x, y);
    IntRect clip = info.frame();
    if (mShadowClip & VXRTileSideLeft)
        clip.x0 = x + mMargin;
    if (mShadowClip & VXRTileSideRight)
        clip.x1 = x + mMargin + mAreaWide;
    if (mShadowClip & VXRTileSideTop)
        clip.y0 = y + mMargin;
    if (mShadowClip & VXRTileSideBottom)
        clip.y1 = y + mMargin + mAreaHigh;
    info.setClip(clip);
    return &info;
}

// Hit testing.

bool VXRTile::rectIsTransparent(const Rect& r) const
{
    const IntRect touched { pixelCoordinate(std::floor(r.minX())), pixelCoordinate(std::floor(r.minY())),
        pixelCoordinate(std::ceil(r.maxX())), pixelCoordinate(std::ceil(r.maxY())) };
    const IntRect part = intersection({ 0, 0, mAreaWide, mAreaHigh }, touched).moved(mMargin, mMargin);
    return mShadowed.isTransparent(part) && mShadowless.isTransparent(part);
}

bool VXRTile::pixelIsTransparent(Point p) const
{
    return rectIsTransparent({ std::floor(p.x), std::floor(p.y), 1, 1 });
}

} // namespace vxr
