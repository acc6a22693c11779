#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>
#include <cstdint>

namespace vxr {

// Over `count` pixels; none for a count below 1. 32-bit pixels are numbers, their components named from the
// highest bits down; RGB and 16-bit sources are bytes in that order.
VXR_EXPORT void convertARGBtoRGBA(const std::uint32_t* argb, std::uint32_t* rgba, int count);
VXR_EXPORT void convertRGBAtoARGB(const std::uint32_t* rgba, std::uint32_t* argb, int count);
VXR_EXPORT void convertRGBtoARGB(const std::uint8_t* rgb, std::uint32_t* argb, int count); ///< opaque
VXR_EXPORT void convertRGBAtoRGB555(const std::uint8_t* rgba, std::uint16_t* rgb555, int count);
VXR_EXPORT void convertRGBtoRGB555(const std::uint8_t* rgb, std::uint16_t* rgb555, int count);

/// Copies the fourth byte of each pixel.
VXR_EXPORT void VXRExtractAlphaChannel(const std::uint8_t* source, std::size_t sourceRowBytes,
    std::uint8_t* destination, std::size_t destinationRowBytes, int width, int height);

/// Coverage becomes a premultiplied colour, its bytes in the order c3, c2, c1, alpha. Products are divided by
/// 256, so that full coverage of a full colour comes out one step short of 255.
VXR_EXPORT void VXRColorizeAlphaBuffer(const std::uint8_t* alpha, std::size_t alphaRowBytes,
    std::uint8_t* destination, std::size_t destinationRowBytes, int width, int height, std::uint8_t c1,
    std::uint8_t c2, std::uint8_t c3, std::uint8_t c4);

} // namespace vxr
