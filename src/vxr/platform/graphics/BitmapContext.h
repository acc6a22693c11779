#pragma once

#include <vxr/platform/graphics/Context.h>

namespace vxr {

/// The engine that draws into a bitmap.
enum class BitmapEngine {
    Default, ///< cairo if the user default `VXRBitmapEngine` is "cairo", otherwise the library's own
    Raster, ///< the library's own
    Cairo,
};

/// A context over pixels in memory: 32-bit premultiplied ARGB in native byte order, top row first.
class VXR_EXPORT BitmapContext : public Context {
public:
    /// Owns a bitmap that starts out transparent. Throws `InvalidArgumentException` for a side below 1 or
    /// above 32767.
    static std::shared_ptr<BitmapContext> createBitmap(
        int width, int height, BitmapEngine = BitmapEngine::Default);
    /// Draws into the caller's pixels, which must outlive the context. `bytesPerRow` is a multiple of 4.
    static std::shared_ptr<BitmapContext> createWithPixels(
        void* pixels, int width, int height, std::size_t bytesPerRow, BitmapEngine = BitmapEngine::Default);

    /// The bitmap with everything drawn so far.
    virtual const std::uint32_t* pixels() const = 0;
    virtual std::uint32_t* pixels() = 0; ///< pixels written here are seen by later drawing
    virtual int width() const = 0;
    virtual int height() const = 0;
    virtual std::size_t bytesPerRow() const = 0;
    std::shared_ptr<const Image> makeImage() const; ///< a copy of the present bitmap
};

} // namespace vxr
