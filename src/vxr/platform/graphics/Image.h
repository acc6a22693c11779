#pragma once

#include <vxr/platform/graphics/color/ColorSpace.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace vxr {

class Data;

/// Position and meaning of the alpha byte. The numbers are part of the contract.
enum class AlphaFormat : int {
    None = 0, ///< no alpha byte
    PremultipliedLast = 1,
    PremultipliedFirst = 2,
    Last = 3, ///< straight alpha
    First = 4,
    NoneSkipLast = 5, ///< the byte is present but ignored
    NoneSkipFirst = 6,
};

/// Memory layout of an image's pixels: 8 bits per component, components in the order of the colour
/// space, alpha before or after them. With `nativeOrder` a pixel of four bytes is one 32-bit number in
/// the machine's byte order, its first component in the highest bits.
struct ImageLayout {
    int width = 0;
    int height = 0;
    std::size_t bytesPerRow = 0;
    AlphaFormat alpha = AlphaFormat::None;
    bool nativeOrder = false; ///< with `PremultipliedFirst`, the layout of bitmap contexts
    std::shared_ptr<const ColorSpace> space; ///< null means device RGB
    /// Neighbouring pixels differ so little that bitmaps may skip or repeat pixels instead of interpolating.
    /// That preserves the dither of a ramp, and is much faster.
    bool smooth = false;
    bool isFullAlpha = false; ///< an ignored alpha byte is 255 in every pixel

    VXR_EXPORT int bytesPerPixel() const;
    /// The layout of a bitmap context: premultiplied ARGB in native order, device RGB.
    VXR_EXPORT static ImageLayout nativeARGB(int width, int height, std::size_t bytesPerRow);
};

/// A horizontal blend of two colours: column x of an image is start + (end - start) x / width. Components are
/// alpha, red, green, blue, not premultiplied; 65535 is full.
struct ImageBlend {
    std::array<std::uint16_t, 4> start {}, end {};
};

/// Immutable pixels, first row on top. They are converted for the output once, on the first draw or by
/// `prepare`, and the converted form is kept; later draws copy and convert nothing.
class VXR_EXPORT Image final : public Object, public std::enable_shared_from_this<Image> {
public:
    /// Copies the pixels. Null if the layout is impossible (no area, a side above 32767, rows too short) or
    /// `size` bytes do not hold it.
    static std::shared_ptr<const Image> createWithCopy(
        const ImageLayout&, const void* pixels, std::size_t size);
    /// Refers to the pixels and keeps `owner` alive as long as the image exists.
    static std::shared_ptr<const Image> create(
        const ImageLayout&, const void* pixels, std::size_t size, std::shared_ptr<const void> owner);
    /// Like `create`, with the JPEG file the pixels were decoded from: a document embeds it unchanged.
    static std::shared_ptr<const Image> createWithJPEG(const ImageLayout&, const void* pixels,
        std::size_t size, std::shared_ptr<const void> owner, std::shared_ptr<const Data> jpeg);
    /// An image whose rows all dither the same blend. Engines that can draw the blend itself do so;
    /// `makePixels` is called when the pixels are first needed.
    static std::shared_ptr<const Image> createWithBlend(const ImageLayout&, const ImageBlend&,
        std::function<std::shared_ptr<const std::uint8_t>()> makePixels);
    /// Decodes a PNG file. Null, with a reason in `error`, if it cannot be read.
    static std::shared_ptr<const Image> createWithPNGFile(
        const std::string& path, std::string* error = nullptr);

    ~Image() override;

    int width() const;
    int height() const;
    const ImageLayout& layout() const;
    const std::uint8_t* pixels() const;
    bool isOpaque() const; ///< judged by the alpha format, not by the pixels

    /// The image halved `times` times, each side rounded up; each pixel is the mean of those it covers. Kept
    /// with the image. Never smaller than one pixel; null if memory runs out.
    std::shared_ptr<const Image> reduced(int halvings) const;
    int halvings() const; ///< how many times the image itself has been halved
    Size sourceSize() const; ///< in pixels, before halving

    void prepare() const; ///< converts the pixels now
    /// Writes an 8-bit RGBA PNG. False, with a reason in `error`, on failure; no partial file remains.
    bool writePNG(const std::string& path, std::string* error = nullptr) const;

    struct Impl;
    explicit Image(std::unique_ptr<Impl>); ///< for the factories
    Impl& impl() const { return *mImpl; } ///< for the back ends

private:
    std::unique_ptr<Impl> mImpl;
};

} // namespace vxr
