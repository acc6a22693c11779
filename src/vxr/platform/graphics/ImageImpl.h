#pragma once

#include <vxr/platform/graphics/EngineCaches.h>
#include <vxr/platform/graphics/Image.h>

#include <cstddef>

namespace vxr {

/// An image as it is drawn: premultiplied ARGB in native byte order.
struct NativePixels {
    const std::uint32_t* pixels = nullptr;
    int width = 0, height = 0;
    std::ptrdiff_t stride = 0; ///< pixels from row to row
    bool opaque = false; ///< every alpha is 255
    std::shared_ptr<const void> owner; ///< of the memory
};

/// An image's memory, its form for drawing and what engines keep for it.
struct Image::Impl {
    Impl(const ImageLayout& imageLayout, const std::uint8_t* imagePixels,
        std::shared_ptr<const void> pixelOwner);
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    ImageLayout layout;
    const std::uint8_t* pixels;
    std::shared_ptr<const void> owner;
    EngineCaches caches;
    std::shared_ptr<const Data> jpeg; ///< that stands for the pixels in documents; or none
    std::shared_ptr<const Image> half; ///< made when it is first needed
    int halvings = 0;
    int sourceWidth, sourceHeight; ///< before them

    /// Made on the first call and kept; pixels that already are in that form are used where they lie. Null
    /// when memory is short, then there is nothing to draw.
    const NativePixels* native();

private:
    NativePixels mNative;
};

/// Row `y` as straight r, g, b, a bytes of the output, for any layout.
void readStraightRow(const ImageLayout&, const std::uint8_t* pixels, int y, std::uint8_t* rgba);

/// Whether such pixels can exist within `size` bytes.
bool isPossibleLayout(const ImageLayout&, std::size_t size);

/// Limit for either side of an image.
inline constexpr int maxImageSide = 32767;

} // namespace vxr
