#pragma once

#include <vxr/platform/base/Object.h>

#include <cstdint>
#include <span>
#include <vector>

namespace vxr {

/// The numbers are those of the colour components.
enum class BitmapModel : std::uint32_t { Gray = 1, RGB = 3, CMYK = 4 };

/// What the samples of a bitmap are and how they lie in memory. Pixels are interleaved, alpha last.
struct BitmapFormat {
    std::uint32_t width = 0, height = 0; ///< pixels, orientation applied
    BitmapModel model = BitmapModel::RGB;
    std::uint32_t samplesPerPixel = 0; ///< alpha included
    std::uint32_t bitsPerSample = 0; ///< 8 or 16; 16 in the machine's byte order
    bool hasAlpha = false;
    /// The form that bitmaps are drawn in: four bytes a pixel, premultiplied ARGB as a 32-bit number in the
    /// machine's byte order, sRGB. An opaque picture has alpha 255 everywhere and `hasAlpha` false.
    bool isDrawable = false;
    std::uint64_t bytesPerRow = 0;
};

/// What the file says of itself. Known from the header, without a look at the pixels.
struct BitmapInfo {
    std::string kind; ///< the usual extension of such files: "jpg", "png", "tif" ...
    BitmapFormat format; ///< of the samples in the file
    float horizontalResolution = 0, verticalResolution = 0; ///< pixels per inch; 0 when not stated
    std::uint32_t orientation = 1; ///< 1 to 8, as EXIF counts them; decoding applies it
    std::uint32_t frames = 1; ///< pictures in the file; the first one is decoded
    /// ICC profile of the samples, one that lcms2 accepts and whose model is the bitmap's. A PNG's gamma and
    /// chromaticities come as a profile too. Empty when the file has none.
    std::vector<std::byte> profile {};
    std::string profileName {}; ///< as the profile calls itself, in plain letters
    /// JPEG of 1 or 3 components, 8 bits, upright: what a document may hold as it is.
    bool isPlainJPEG = false;
};

/// A decoded bitmap, first row on top.
class VXR_EXPORT ImportedBitmap final : public Object {
public:
    /// Refers to `pixels` and keeps `owner` alive. The caller vouches that they hold all rows.
    ImportedBitmap(BitmapInfo, BitmapFormat, const std::byte* pixels, std::shared_ptr<const void> owner);
    ~ImportedBitmap() override;

    const BitmapInfo& info() const { return mInfo; }
    const BitmapFormat& format() const { return mFormat; } ///< of `pixels`
    std::span<const std::byte> pixels() const;
    const std::shared_ptr<const void>& owner() const { return mOwner; } ///< what keeps the pixels alive

private:
    BitmapInfo mInfo;
    BitmapFormat mFormat;
    const std::byte* mPixels;
    std::shared_ptr<const void> mOwner;
};

} // namespace vxr
