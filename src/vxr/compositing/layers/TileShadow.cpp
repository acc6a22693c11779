#include <vxr/compositing/layers/TileShadow.h>

#include <vxr/compositing/layers/TilePlane.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/pixels/Blur.h>
#include <vxr/platform/graphics/pixels/LayerInfo.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

float sigmaOf(const VXRShadow& shadow, float scale) { return float(shadow.radius()) * scale / 3; }

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
std::uint32_t packedColor(const VXRShadow& shadow, float fade)
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

int TileShadow::reach(const VXRShadow& shadow, float scale) { return blurReach(sigmaOf(shadow, scale)); }

void TileShadow::build(const TilePlane& content, const VXRShadow& shadow, float scale, const IntRect& bitmap)
{
    clear();
    const IntRect& ink = content.ink();
    if (ink.isEmpty())
        return;
    mBox = intersection(ink.grown(reach(shadow, scale)), bitmap);
    const int wide = mBox.width();
    mMask.assign(std::size_t(mBox.area()), 0);
    content.copyAlpha(mMask.data() + std::ptrdiff_t(ink.y0 - mBox.y0) * wide + (ink.x0 - mBox.x0), wide);
    blurA8(mMask.data(), wide, wide, mBox.height(), sigmaOf(shadow, scale), mMask.data(), wide);
}

Point TileShadow::offset(const VXRShadow& shadow, float scale)
{
    const double angle = double(shadow.angle()) * M_PI / 180;
    const double distance = double(shadow.offset()) * double(scale);
    return { VXRRound(float(distance * std::cos(angle))), VXRRound(float(distance * std::sin(angle))) };
}

void TileShadow::describe(LayerInfo& info, const VXRShadow& shadow, float opacity, int x, int y)
{
    info.bitmapType = LayerBitmapMask;
    info.alphaData = mMask.data();
    info.alphaBytesPerRow = mBox.width();
    info.constantColor = packedColor(shadow, opacity);
    info.fade = opacity;
    info.setFrame(mBox.moved(x, y));
}

} // namespace vxr
