#pragma once

#include <vxr/platform/graphics/Context.h>

namespace vxr {

/// What draws into a bitmap.
enum class BitmapEngine {
    Default, ///< cairo where the user's default `VXRBitmapEngine` is "cairo", else the library's own
    Raster, ///< the library's own
    Cairo,
};

/// A context over pixels in memory: 32-bit premultiplied ARGB in native byte order, top row first.
class VXR_EXPORT BitmapContext : public Context {
public:
    /// A bitmap of its own, transparent at first. Throws `InvalidArgumentException` for a side below 1 or
    /// above 32767.
    static std::shared_ptr<BitmapContext> createBitmap(
        int width, int height, BitmapEngine = BitmapEngine::Default);
    /// The caller's pixels, which outlive the context. `bytesPerRow` is a multiple of 4.
    static std::shared_ptr<BitmapContext> createWithPixels(
        void* pixels, int width, int height, std::size_t bytesPerRow, BitmapEngine = BitmapEngine::Default);

    /// The bitmap after everything drawn so far.
    virtual const std::uint32_t* pixels() const = 0;
    virtual std::uint32_t* pixels() = 0; ///< what the caller writes is seen by what is drawn next
    virtual int width() const = 0;
    virtual int height() const = 0;
    virtual std::size_t bytesPerRow() const = 0;
    std::shared_ptr<const Image> makeImage() const; ///< a copy of the bitmap as it is now
};

} // namespace vxr
