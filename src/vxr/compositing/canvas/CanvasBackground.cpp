#include <vxr/compositing/canvas/CanvasBackground.h>

#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/Context.h>

namespace vxr {

CanvasBackground::CanvasBackground()
    : mColor(Color::whiteColor())
{
}

void CanvasBackground::fill(const DrawRequest& request) const
{
    if (!mColor)
        return;
    VXRSetColor(*mColor);
    if (request.window && mColor->alphaComponent() >= 1) { // the levels of the layer
        const std::uint32_t packed = packedColor(*mColor);
        const auto channel = [packed](int shift) { return float(packed >> shift & 0xff) / 255; };
        VXRSetColor(*Color::colorWithDeviceRGB(channel(24), channel(16), channel(8)));
    }
    request.context.fillRect(request.dirty);
}

LayerInfo* CanvasBackground::layer()
{
    if (!mColor)
        return nullptr;
    // Limits that cover any window.
    constexpr std::int32_t right = 11280, bottom = 11024;
    LayerInfo& layer = mLayer;
    layer = {};
    layer.layerInfoVersion = 1;
    layer.fade = 1;
    layer.constantColor = packedColor(*mColor);
    layer.clipMaxX = layer.frameMaxX = layer.opaqueMaxX = right;
    layer.clipMaxY = layer.frameMaxY = layer.opaqueMaxY = bottom;
    return &layer;
}

std::uint32_t CanvasBackground::packedColor(Color& color)
{
    const auto rgb = color.colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    if (!rgb)
        return 255;
    const auto channel
        = [](float component) { return std::uint32_t(std::int32_t(VXRRound(component * 255.0f))); };
    return channel(rgb->redComponent()) << 24 | channel(rgb->greenComponent()) << 16
        | channel(rgb->blueComponent()) << 8 | 255;
}

} // namespace vxr
