#pragma once

#include <vxr/platform/graphics/Image.h>

#include <cairo.h>

#include <array>
#include <vector>

namespace vxr {

/// An image's memory and its form for the output. Seen by the back end only.
struct Image::Impl {
    Impl(const ImageLayout& imageLayout, const std::uint8_t* imagePixels,
        std::shared_ptr<const void> pixelOwner);
    ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    ImageLayout layout;
    const std::uint8_t* pixels;
    std::shared_ptr<const void> owner;

    /// The image as cairo takes it: premultiplied ARGB32, or RGB24 when opaque. Made on the first call
    /// and kept; pixels that already are in that form are used where they lie. The surface keeps their
    /// owner alive. Never written to. Null when memory is short, then there is nothing to draw.
    cairo_surface_t* surface();

    /// `surface` with pixels left out: every 2^x-th kept along a row and every 2^y-th row, those in the
    /// middle. For smooth images drawn smaller: what is read then lies together. Each is kept.
    cairo_surface_t* thinnedSurface(int x, int y);
    static constexpr int mostThinning = 4; ///< for either of x and y

private:
    cairo_surface_t* mSurface = nullptr;
    std::array<cairo_surface_t*, (mostThinning + 1) * (mostThinning + 1)> mThinned {};
};

/// Row `y` as straight r, g, b, a bytes of the output, for any layout.
void readStraightRow(const ImageLayout&, const std::uint8_t* pixels, int y, std::uint8_t* rgba);

/// Whether such pixels can exist within `size` bytes.
bool isPossibleLayout(const ImageLayout&, std::size_t size);

/// Limit for either side of an image.
inline constexpr int maxImageSide = 32767;

} // namespace vxr
