#pragma once

#include <vxr/platform/graphics/color/ColorSpace.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace vxr {

class Data;

/// Where the alpha byte stands and what it means. The numbers are part of the contract.
enum class AlphaFormat : int {
    None = 0, ///< no alpha byte at all
    PremultipliedLast = 1,
    PremultipliedFirst = 2,
    Last = 3, ///< straight alpha
    First = 4,
    NoneSkipLast = 5, ///< the byte is there and ignored
    NoneSkipFirst = 6,
};

/// How an image's pixels lie in memory: 8 bits per component, components in the order of the colour
/// space, alpha before or behind them. With `nativeOrder` a pixel of four bytes is one 32-bit number in
/// the machine's byte order, its first component in the highest bits.
struct ImageLayout {
    int width = 0;
    int height = 0;
    std::size_t bytesPerRow = 0;
    AlphaFormat alpha = AlphaFormat::None;
    bool nativeOrder = false; ///< `PremultipliedFirst` is then the form that bitmaps are drawn in
    std::shared_ptr<const ColorSpace> space; ///< none means device RGB
    /// Neighbours differ by so little that on bitmaps pixels may be left out or repeated instead of being
    /// mixed. That keeps the dither of a ramp, and is much faster.
    bool smooth = false;
    bool isFullAlpha = false; ///< an alpha byte that is ignored is 255 in every pixel

    VXR_EXPORT int bytesPerPixel() const;
    /// The layout of a bitmap context: premultiplied ARGB in native order, device RGB.
    VXR_EXPORT static ImageLayout nativeARGB(int width, int height, std::size_t bytesPerRow);
};

/// Immutable pixels, first row on top. The pixels are converted for the output once, on the first draw
/// or by `prepare`, and that form is kept; later draws copy and convert nothing.
class VXR_EXPORT Image final : public Object {
public:
    /// Copies the pixels. None when the layout is impossible (no area, a side above 32767, rows too
    /// short) or `size` bytes do not hold it.
    static std::shared_ptr<const Image> createWithCopy(
        const ImageLayout&, const void* pixels, std::size_t size);
    /// Refers to the pixels and keeps `owner` alive as long as the image lives.
    static std::shared_ptr<const Image> create(
        const ImageLayout&, const void* pixels, std::size_t size, std::shared_ptr<const void> owner);
    /// `create` with the JPEG file that the pixels were decoded from: a document takes it as it is.
    static std::shared_ptr<const Image> createWithJPEG(const ImageLayout&, const void* pixels,
        std::size_t size, std::shared_ptr<const void> owner, std::shared_ptr<const Data> jpeg);
    /// Decodes a PNG file. None, and a reason in `error`, when it can't be read.
    static std::shared_ptr<const Image> createWithPNGFile(
        const std::string& path, std::string* error = nullptr);

    ~Image() override;

    int width() const;
    int height() const;
    const ImageLayout& layout() const;
    const std::uint8_t* pixels() const;
    bool isOpaque() const; ///< by the alpha format, not by looking at the pixels

    /// The image at half its size, each side rounded up, so many times: each pixel the mean of those it
    /// covers. Kept with the image. Never smaller than a pixel; none when memory is short.
    std::shared_ptr<const Image> reduced(int halvings) const;
    int halvings() const; ///< how often the image itself has been halved
    Size sourceSize() const; ///< in pixels, before that

    void prepare() const; ///< makes the output form now
    /// Writes an 8-bit RGBA PNG. False, and a reason in `error`, when that fails; no partial file stays.
    bool writePNG(const std::string& path, std::string* error = nullptr) const;

    struct Impl;
    explicit Image(std::unique_ptr<Impl>); ///< for the factories
    Impl& impl() const { return *mImpl; } ///< for the back ends

private:
    std::unique_ptr<Impl> mImpl;
};

} // namespace vxr
