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
#include <vxr/platform/graphics/pixels/SpanKernels.h>
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
    return mOverflow + (shadow ? blurReach(float(shadow->radius()) * shadowScale() / 3) : 0);
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
    mMask = std::vector<std::uint8_t>(); // an empty list would keep the memory
    mDirty = true;
    VXRLayerBudget::account(*this);
}

Size VXRTile::areaSize() const { return { float(mAreaWide), float(mAreaHigh) }; }

std::size_t VXRTile::byteSize() const
{
    return 4 * (mShadowed.pixels.capacity() + mShadowless.pixels.capacity()) + mMask.capacity();
}

// Drawing.

void VXRTile::beginUpdate(const IntRect& part, bool clears)
{
    mPart = part;
    mClears = clears;
}

namespace {

/// Copies the pixels of `box` between two images, of which each starts at its own place.
void copyPixels(const IntRect& box, const std::uint32_t* from, const IntRect& fromBox, std::uint32_t* to,
    const IntRect& toBox)
{
    if (box.isEmpty())
        return;
    const auto at = [&](const IntRect& image, int y) {
        return std::ptrdiff_t(y - image.y0) * image.width() + (box.x0 - image.x0);
    };
    for (int y = box.y0; y < box.y1; ++y)
        std::copy_n(from + at(fromBox, y), box.width(), to + at(toBox, y));
}

bool contains(const IntRect& outer, const IntRect& inner) { return intersection(outer, inner) == inner; }

} // namespace

Context& VXRTile::contextOf(Plane& plane)
{
    if (plane.context)
        return *plane.context;
    const IntRect whole = bitmapRect();
    plane.part = plane.isDrawn ? intersection(mPart, whole) : whole;
    if (plane.part.isEmpty())
        plane.part = {};
    const IntRect& part = plane.part;
    plane.bitmap = ScratchPixels(std::size_t(mWide) * std::size_t(mHigh));
    std::uint32_t* const pixels = plane.bitmap.data();
    for (int y = part.y0; y < part.y1; ++y)
        std::fill_n(pixels + std::ptrdiff_t(y) * mWide + part.x0, part.width(), 0u);
    if (!mClears) {
        expand(plane);
        copyPixels(intersection(plane.ink, part), plane.pixels.data(), plane.ink, pixels, whole);
    }
    plane.context = BitmapContext::createWithPixels(pixels, mWide, mHigh, std::size_t(mWide) * 4);
    plane.context->clipToRect(
        { float(part.x0), float(mHigh - part.y1), float(part.width()), float(part.height()) });
    return *plane.context;
}

Context& VXRTile::shadowedContext() { return contextOf(mShadowed); }

Context& VXRTile::shadowlessContext() { return contextOf(mShadowless); }

void VXRTile::freeShadowlessData()
{
    mShadowless = {};
    VXRLayerBudget::account(*this);
}

/// A copy of a colour is no slower than one of pixels.
void VXRTile::compress(Plane& plane)
{
    constexpr std::size_t leastPixels = 1 << 16;
    const auto& pixels = plane.pixels;
    if (pixels.size() < leastPixels || pixels.front() >> 24 != 255
        || !std::equal(pixels.begin() + 1, pixels.end(), pixels.begin()))
        return;
    plane.color = pixels.front();
    plane.isUniform = true;
    plane.pixels = std::vector<std::uint32_t>();
}

void VXRTile::expand(Plane& plane)
{
    if (!plane.isUniform)
        return;
    plane.isUniform = false;
    plane.pixels.assign(std::size_t(plane.ink.area()), plane.color);
    VXRLayerBudget::account(*this);
}

/// Takes what was drawn, as far as it lies within `limit`, over from the bitmap.
void VXRTile::keep(Plane& plane, const IntRect& limit)
{
    if (!plane.context)
        return;
    plane.context.reset();
    expand(plane);
    const IntRect whole = bitmapRect();
    const std::uint32_t* const drawn = plane.bitmap.data();
    const IntRect part = intersection(plane.part, limit);
    IntRect ink = part.isEmpty() ? IntRect {} : inkBox({ drawn, mWide }, part);
    if (!contains(plane.part, plane.ink))
        ink = unionOf(ink, intersection(plane.ink, limit));
    if (ink.isEmpty())
        ink = {};
    if (ink != plane.ink) {
        std::vector<std::uint32_t> pixels(std::size_t(ink.area()));
        copyPixels(intersection(ink, plane.ink), plane.pixels.data(), plane.ink, pixels.data(), ink);
        plane.pixels = std::move(pixels);
        plane.ink = ink;
    }
    copyPixels(intersection(ink, part), drawn, whole, plane.pixels.data(), ink);
    plane.bitmap = {};
    plane.isDrawn = true;
    plane.opaque = opaqueBox({ plane.pixels.data(), ink.width() }, { 0, 0, ink.width(), ink.height() })
                       .moved(ink.x0, ink.y0);
}

void VXRTile::finishUpdate()
{
    // A shadow's mask is made of the margins too.
    const IntRect limit = mMask.empty() ? intersection(shownBox(), bitmapRect()) : bitmapRect();
    keep(mShadowed, limit);
    keep(mShadowless, limit);
    compress(mShadowed);
    compress(mShadowless);
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
    const Point corner = renderable->alignmentBounds().origin, offset = mLayer.offsetForIndex(mIndex);
    const float x = corner.x + (offset.x - float(mMargin)) / mZoom,
                y = corner.y + (offset.y - float(mMargin)) / mZoom;
    const Rect covered { x, y, float(mWide) / mZoom, float(mHigh) / mZoom };
    return rectsIntersect(renderable->shadowBoundsForRect(covered), canvas->clipViewVisibleRect());
}

// Only what the blur can reach is kept: a mask as large as the ink and the reach around it.
void VXRTile::buildShadow(const std::shared_ptr<VXRShadow>& shadow)
{
    mMask = std::vector<std::uint8_t>(); // an empty list would keep the memory
    if (!shadow)
        return;
    keep(mShadowed, bitmapRect());
    const IntRect& ink = mShadowed.ink;
    if (ink.isEmpty())
        return;
    const float sigma = float(shadow->radius()) * shadowScale() / 3;
    mMaskBox = intersection(ink.grown(blurReach(sigma)), bitmapRect());
    const int wide = mMaskBox.width(), high = mMaskBox.height();
    mMask.assign(std::size_t(mMaskBox.area()), 0);
    const std::uint32_t* from = mShadowed.pixels.data();
    for (int y = ink.y0; y < ink.y1; ++y) {
        std::uint8_t* to = mMask.data() + std::ptrdiff_t(y - mMaskBox.y0) * wide + (ink.x0 - mMaskBox.x0);
        for (int x = 0; x < ink.width(); ++x)
            to[x] = std::uint8_t(*from++ >> 24);
    }
    blurA8(mMask.data(), wide, wide, high, sigma, mMask.data(), wide);
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

LayerInfo* VXRTile::infoOf(Plane& plane)
{
    const int x = int(mPosition.x) - mMargin, y = int(mPosition.y) - mMargin;
    const IntRect shown = intersection(shownBox(), plane.ink).moved(x, y);
    if (shown.isEmpty())
        return nullptr;
    const float opacity = mLayer.renderable()->opacity();
    if (opacity != 1)
        expand(plane); // pixels and colours fade by different roundings
    const IntRect frame = plane.ink.moved(x, y);
    const IntRect opaque = intersection(shown, plane.opaque.moved(x, y));
    LayerInfo& info = plane.info;
    info = {};
    info.layerInfoVersion = 1;
    if (plane.isUniform) {
        info.bitmapType = LayerBitmapConstant;
        info.constantColor = plane.color << 8 | 255;
    } else {
        info.bitmapType = LayerBitmap32;
        info.colorData = plane.pixels.data();
        info.colorBytesPerRow = frame.width() * 4;
    }
    info.frameMinX = frame.x0, info.frameMaxX = frame.x1;
    info.frameMinY = frame.y0, info.frameMaxY = frame.y1;
    info.clipMinX = shown.x0, info.clipMaxX = shown.x1 - 1;
    info.clipMinY = shown.y0, info.clipMaxY = shown.y1 - 1;
    if (!opaque.isEmpty()) {
        info.opaqueMinX = opaque.x0, info.opaqueMaxX = opaque.x1;
        info.opaqueMinY = opaque.y0, info.opaqueMaxY = opaque.y1;
    }
    info.fade = opacity;
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
    info.alphaBytesPerRow = mMaskBox.width();
    info.constantColor = packedShadowColor(*shadow, mLayer.renderable()->opacity());
    info.fade = mLayer.renderable()->opacity();
    info.frameMinX = x + mMaskBox.x0, info.frameMaxX = x + mMaskBox.x1;
    info.frameMinY = y + mMaskBox.y0, info.frameMaxY = y + mMaskBox.y1;
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
    const IntRect box = intersection({ 0, 0, mAreaWide, mAreaHigh },
        { pixelCoordinate(std::floor(r.minX())), pixelCoordinate(std::floor(r.minY())),
            pixelCoordinate(std::ceil(r.maxX())), pixelCoordinate(std::ceil(r.maxY())) });
    for (const Plane* plane : { &mShadowed, &mShadowless }) {
        const IntRect part = intersection(box.moved(mMargin, mMargin), plane->ink);
        if (!part.isEmpty()
            && (plane->isUniform
                || !isTransparent({ plane->pixels.data(), plane->ink.width() },
                    part.moved(-plane->ink.x0, -plane->ink.y0))))
            return false;
    }
    return true;
}

bool VXRTile::pixelIsTransparent(Point p) const
{
    return rectIsTransparent({ std::floor(p.x), std::floor(p.y), 1, 1 });
}

} // namespace vxr
