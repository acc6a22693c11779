#pragma once

#include <vxr/platform/graphics/EngineCaches.h>
#include <vxr/platform/graphics/Image.h>

#include <cstddef>
#include <optional>

namespace vxr {

/// An image in the form in which it is drawn: premultiplied ARGB in native byte order.
struct NativePixels {
    const std::uint32_t* pixels = nullptr;
    int width = 0, height = 0;
    std::ptrdiff_t stride = 0; ///< pixels from one row to the next
    bool opaque = false; ///< whether every alpha is 255
    std::shared_ptr<const void> owner; ///< keeps the memory alive
};

/// An image's memory, its form for drawing and the engines' caches for it.
struct Image::Impl {
    Impl(const ImageLayout& imageLayout, const std::uint8_t* imagePixels,
        std::shared_ptr<const void> pixelOwner);
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    ImageLayout layout;
    std::optional<ImageBlend> blend; ///< that every row dithers
    std::function<std::shared_ptr<const std::uint8_t>()> makePixels; ///< or none
    EngineCaches caches;
    std::shared_ptr<const Data> jpeg; ///< embedded in documents in place of the pixels; may be null
    std::shared_ptr<const Image> half; ///< created when first needed
    int halvings = 0;
    int sourceWidth, sourceHeight; ///< before halving

    const std::uint8_t* bytes(); ///< as given, or made on the first call

    /// Converted on the first call and kept; pixels already in that form are used in place. Null if memory
    /// runs out: then nothing is drawn.
    const NativePixels* native();

private:
    const std::uint8_t* mPixels;
    std::shared_ptr<const void> mOwner;
    NativePixels mNative;
};

/// Row `y` as straight r, g, b, a bytes in the output's colour space, for any layout.
void readStraightRow(const ImageLayout&, const std::uint8_t* pixels, int y, std::uint8_t* rgba);

/// Whether pixels of this layout fit into `size` bytes.
bool isPossibleLayout(const ImageLayout&, std::size_t size);

/// Limit for each side of an image.
inline constexpr int maxImageSide = 32767;

} // namespace vxr
