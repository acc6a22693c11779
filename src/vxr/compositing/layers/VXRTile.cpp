#include <vxr/compositing/layers/VXRTile.h>

#include <vxr/compositing/layers/TilePixels.h>
#include <vxr/compositing/layers/VXRCompositorLayer.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/base/UserDefaults.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/pixels/Blur.h>
#include <vxr/platform/graphics/pixels/LayerBlend.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr int defaultTileSize = 1024, largestTileSize = 2048;

/// A bitmap's side; a layer that may not be tiled can ask for more than there is.
constexpr int largestSide = 32000;

/// What may stick out of the alignment bounds, in canvas points, as for the erasing of renderables.
constexpr float overflowPoints = 5;

/// A coordinate that single precision has left a little above a whole number takes no further pixel.
int pixelsFor(float length)
{
    if (!(length > 0))
        return 0;
    return int(std::min(std::ceil(double(length) - 1.0 / 256), double(largestSide)));
}

/// The byte that, times `factor`, has `wanted` as its channel byte; the nearest one where there is none.
std::uint32_t byteForProduct(std::uint32_t wanted, double factor)
{
    if (!(factor > 0))
        return 0;
    const double guess = std::min(double(wanted) / factor, 255.0);
    for (const double byte : { std::floor(guess), std::ceil(guess), std::floor(guess) + 2 })
        if (byte <= 255 && channelByte(byte / 255 * factor) == wanted)
            return std::uint32_t(byte);
    return std::uint32_t(guess + 0.5);
}

/// A shadow's colour for a record that is faded by `fade`: such that the compositor, which multiplies it
/// out of bytes, arrives at what the drawing engine makes of the colour itself.
std::uint32_t packedShadowColor(const VXRShadow& shadow, float fade)
{
    const auto color = shadow.color();
    if (!color)
        return 0;
    const auto shaded = color->colorWithAlphaComponent(color->alphaComponent() * shadow.opacity());
    const auto rgba = VXRCGColorWithNSColor(*shaded).toRGBA();
    const double painted = double(rgba[3]) * double(fade);
    const std::uint32_t alpha = byteForProduct(channelByte(painted), double(fade));
    std::uint32_t packed = 0;
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t wanted = channelByte(double(rgba[std::size_t(i)]) * painted);
        packed = packed << 8 | byteForProduct(wanted, alpha / 255.0 * double(fade));
    }
    return packed << 8 | alpha;
}

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

VXRTile::~VXRTile() = default;

// Size.

float VXRTile::shadowScale() const
{
    const VXRCanvasRole* canvas = mLayer.renderable()->canvas();
    return canvas && !canvas->scaleShadowsWhenZooming() ? 1 : mZoom;
}

int VXRTile::neededMargin() const
{
    const auto shadow = mLayer.renderable()->shadow();
    return mOverflow + (shadow ? blurReach(float(shadow->radius()) * shadowScale() / 3) : 0);
}

void VXRTile::setArea(const Rect& scaled)
{
    if (!mFixed) {
        mAreaWide = pixelsFor(scaled.size.width);
        mAreaHigh = pixelsFor(scaled.size.height);
    }
    mOverflow = std::clamp(int(std::ceil(overflowPoints * mZoom)), 1, 64);
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
    mMask = {};
    mDirty = true;
}

Size VXRTile::areaSize() const { return { float(mAreaWide), float(mAreaHigh) }; }

std::size_t VXRTile::byteSize() const
{
    return 4 * (mShadowed.pixels.capacity() + mShadowless.pixels.capacity()) + mMask.capacity();
}

// Drawing.

Context& VXRTile::contextOf(Plane& plane)
{
    if (plane.pixels.empty())
        plane.pixels.assign(std::size_t(mWide) * std::size_t(mHigh), 0);
    if (!plane.context)
        plane.context
            = BitmapContext::createWithPixels(plane.pixels.data(), mWide, mHigh, std::size_t(mWide) * 4);
    return *plane.context;
}

Context& VXRTile::shadowedContext() { return contextOf(mShadowed); }

Context& VXRTile::shadowlessContext() { return contextOf(mShadowless); }

void VXRTile::freeShadowlessData() { mShadowless = {}; }

void VXRTile::finishUpdate()
{
    mShadowed.context.reset();
    mShadowless.context.reset();
    examine(mShadowed);
    examine(mShadowless);
}

void VXRTile::examine(Plane& plane)
{
    if (plane.pixels.empty())
        return;
    const TilePixels view { plane.pixels.data(), mWide };
    const TileBox ink = inkBox(view, { 0, 0, mWide, mHigh });
    const TileBox opaque = opaqueBox(view, ink);
    plane.inkX0 = ink.x0, plane.inkY0 = ink.y0, plane.inkX1 = ink.x1, plane.inkY1 = ink.y1;
    plane.opaqueX0 = opaque.x0, plane.opaqueY0 = opaque.y0;
    plane.opaqueX1 = opaque.x1, plane.opaqueY1 = opaque.y1;
}

// Only what the blur can reach is kept: a mask as large as the ink and the reach around it.
void VXRTile::buildShadow(const std::shared_ptr<VXRShadow>& shadow)
{
    mMask = {};
    if (!shadow || mShadowed.pixels.empty())
        return;
    const float sigma = float(shadow->radius()) * shadowScale() / 3;
    const TileBox bitmap { 0, 0, mWide, mHigh };
    const TileBox ink = inkBox({ mShadowed.pixels.data(), mWide }, bitmap);
    if (ink.isEmpty())
        return;
    const TileBox box = intersection(ink.grown(blurReach(sigma)), bitmap);
    mMaskX = box.x0, mMaskY = box.y0, mMaskWide = box.width(), mMaskHigh = box.height();
    mMask.assign(std::size_t(mMaskWide) * std::size_t(mMaskHigh), 0);
    for (int y = ink.y0; y < ink.y1; ++y) {
        const std::uint32_t* from = mShadowed.pixels.data() + std::ptrdiff_t(y) * mWide + ink.x0;
        std::uint8_t* to = mMask.data() + std::ptrdiff_t(y - box.y0) * mMaskWide + (ink.x0 - box.x0);
        for (int x = 0; x < ink.width(); ++x)
            to[x] = std::uint8_t(from[x] >> 24);
    }
    blurA8(mMask.data(), mMaskWide, mMaskWide, mMaskHigh, sigma, mMask.data(), mMaskWide);
}

// Records.

/// The part of the bitmap that this tile shows of its layer: its own square towards other tiles, and what
/// sticks out of the layer where there are none.
TileBox VXRTile::shownBox() const
{
    const int left = mShadowClip & VXRTileSideLeft ? 0 : mOverflow;
    const int right = mShadowClip & VXRTileSideRight ? 0 : mOverflow;
    const int top = mShadowClip & VXRTileSideTop ? 0 : mOverflow;
    const int bottom = mShadowClip & VXRTileSideBottom ? 0 : mOverflow;
    return { mMargin - left, mMargin - top, mMargin + mAreaWide + right, mMargin + mAreaHigh + bottom };
}

LayerInfo* VXRTile::infoOf(Plane& plane)
{
    if (plane.pixels.empty())
        return nullptr;
    const int x = int(mPosition.x) - mMargin, y = int(mPosition.y) - mMargin;
    const TileBox shown = intersection(shownBox(), { plane.inkX0, plane.inkY0, plane.inkX1, plane.inkY1 });
    const TileBox opaque
        = intersection(shown, { plane.opaqueX0, plane.opaqueY0, plane.opaqueX1, plane.opaqueY1 });
    LayerInfo& info = plane.info;
    info = {};
    info.layerInfoVersion = 1;
    info.bitmapType = LayerBitmap32;
    info.colorData = plane.pixels.data();
    info.colorBytesPerRow = mWide * 4;
    info.frameMinX = x, info.frameMaxX = x + mWide;
    info.frameMinY = y, info.frameMaxY = y + mHigh;
    info.clipMinX = x + shown.x0, info.clipMaxX = x + shown.x1 - 1;
    info.clipMinY = y + shown.y0, info.clipMaxY = y + shown.y1 - 1;
    if (!opaque.isEmpty()) {
        info.opaqueMinX = x + opaque.x0, info.opaqueMaxX = x + opaque.x1;
        info.opaqueMinY = y + opaque.y0, info.opaqueMaxY = y + opaque.y1;
    }
    info.fade = mLayer.renderable()->opacity();
    return &info;
}

LayerInfo* VXRTile::layerInfo() { return infoOf(mShadowed); }

LayerInfo* VXRTile::shadowlessInfo() { return infoOf(mShadowless); }

// The mask stays where the content is; its place follows the shadow's present angle and offset.
LayerInfo* VXRTile::shadowInfo()
{
    const auto shadow = mLayer.renderable()->shadow();
    if (!shadow || mMask.empty())
        return nullptr;
    const double angle = double(shadow->angle()) * M_PI / 180;
    const double distance = double(shadow->offset()) * double(shadowScale());
    const int dx = int(VXRRound(float(distance * std::cos(angle))));
    const int dy = int(VXRRound(float(distance * std::sin(angle))));
    const int x = int(mPosition.x) - mMargin + dx, y = int(mPosition.y) - mMargin + dy;

    LayerInfo& info = mShadowInfo;
    info = {};
    info.layerInfoVersion = 1;
    info.bitmapType = LayerBitmapMask;
    info.alphaData = mMask.data();
    info.alphaBytesPerRow = mMaskWide;
    info.constantColor = packedShadowColor(*shadow, mLayer.renderable()->opacity());
    info.fade = mLayer.renderable()->opacity();
    info.frameMinX = x + mMaskX, info.frameMaxX = info.frameMinX + mMaskWide;
    info.frameMinY = y + mMaskY, info.frameMaxY = info.frameMinY + mMaskHigh;
    info.clipMinX = info.frameMinX, info.clipMaxX = info.frameMaxX - 1;
    info.clipMinY = info.frameMinY, info.clipMaxY = info.frameMaxY - 1;
    if (mShadowClip & VXRTileSideLeft)
        info.clipMinX = x + mMargin;
    if (mShadowClip & VXRTileSideRight)
        info.clipMaxX = x + mMargin + mAreaWide - 1;
    if (mShadowClip & VXRTileSideTop)
        info.clipMinY = y + mMargin;
    if (mShadowClip & VXRTileSideBottom)
        info.clipMaxY = y + mMargin + mAreaHigh - 1;
    return &info;
}

// Hit testing.

bool VXRTile::rectIsTransparent(const Rect& r) const
{
    const auto clamped = [](double v) { return int(std::clamp(v, -1e6, 1e6)); };
    const TileBox box = intersection({ 0, 0, mAreaWide, mAreaHigh },
        { clamped(std::floor(double(r.minX()))), clamped(std::floor(double(r.minY()))),
            clamped(std::ceil(double(r.maxX()))), clamped(std::ceil(double(r.maxY()))) });
    if (box.isEmpty())
        return true;
    const TileBox inBitmap { box.x0 + mMargin, box.y0 + mMargin, box.x1 + mMargin, box.y1 + mMargin };
    for (const Plane* plane : { &mShadowed, &mShadowless })
        if (!plane->pixels.empty() && !isTransparent({ plane->pixels.data(), mWide }, inBitmap))
            return false;
    return true;
}

bool VXRTile::pixelIsTransparent(Point p) const
{
    return rectIsTransparent({ std::floor(p.x), std::floor(p.y), 1, 1 });
}

} // namespace vxr
