#pragma once

#include <vxr/platform/graphics/pixels/LayerInfo.h>

namespace vxr {

/// Blends chains of layers into pixels.
///
/// Every result is that of compositing the chain from the bottom up with source-over in 8 bits, rounding
/// after each product. A fade, and a colour multiplied by its alpha and the fade, enter as the upper bytes
/// of 16-bit values. What is hidden behind opaque bounds, lies outside the destination's clip or frame,
/// or is faded to nothing, is found first and costs no pixel.
class VXR_EXPORT LayerCompositor {
public:
    /// Blends the chain that starts with its topmost layer `top` into `destination`, a record of type
    /// `LayerBitmap32` or `LayerBitmap16` whose `colorData` is the pixel at its frame's minimum; its fade
    /// is not used, and a separate alpha plane is left alone. Layers of constant colour, of 32-bit pixels
    /// and of masks are blended, others skipped. Draws nothing without pixels to draw into.
    static void composite(const LayerInfo& destination, const LayerInfo* top);
};

} // namespace vxr
