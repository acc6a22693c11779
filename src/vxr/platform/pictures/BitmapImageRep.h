#pragma once

#include <vxr/platform/pictures/ImageRep.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace vxr {

class ColorSpace;
class Data;
class Image;
class ImportedBitmap;

/// How the samples of a representation lie. A plane holds one component, or all of them side by side.
struct BitmapPlanes {
    std::array<const std::uint8_t*, 5> planes {};
    int pixelsWide = 0, pixelsHigh = 0;
    int bitsPerSample = 8; ///< 8, or 16 in the machine's byte order
    int samplesPerPixel = 3; ///< alpha included
    int bitsPerPixel = 24; ///< of one plane
    std::size_t bytesPerRow = 0;
    bool isPlanar = false;
    bool hasAlpha = false;
    std::string colorSpaceName; ///< one of those below
    unsigned bitmapFormat = 0; ///< of the flags below
};

inline constexpr const char* kDeviceWhiteColorSpace = "DeviceWhite";
inline constexpr const char* kDeviceRGBColorSpace = "DeviceRGB";
inline constexpr const char* kDeviceCMYKColorSpace = "DeviceCMYK";

// The numbers are those of the platform.
inline constexpr unsigned kBitmapAlphaFirst = 1; ///< else last
inline constexpr unsigned kBitmapAlphaNonpremultiplied = 2; ///< else premultiplied

/// A bitmap: the samples of a decoded picture, or a host's own.
class VXR_EXPORT BitmapImageRep final : public ImageRep, public std::enable_shared_from_this<BitmapImageRep> {
public:
    /// Decodes a file of any raster format that the import program reads: upright, converted to sRGB by the
    /// embedded profile, in the form that is drawn. None when the bytes are no such file;
    /// `reason` is then a sentence.
    static std::shared_ptr<BitmapImageRep> imageRepWithData(
        const std::shared_ptr<const Data>&, std::string* reason = nullptr);
    /// Over samples that `owner` keeps alive. No planes at all stand for samples that can't be reached.
    static std::shared_ptr<BitmapImageRep> imageRepWithPlanes(const BitmapPlanes&,
        std::shared_ptr<const void> owner, std::shared_ptr<const std::vector<std::byte>> profile = nullptr);
    /// What an image shows.
    static std::shared_ptr<BitmapImageRep> imageRepWithImage(std::shared_ptr<const Image>);
    ~BitmapImageRep() override;

    const BitmapPlanes& planes() const { return mPlanes; }
    int pixelsWide() const { return mPlanes.pixelsWide; }
    int pixelsHigh() const { return mPlanes.pixelsHigh; }
    std::size_t bytesPerRow() const { return mPlanes.bytesPerRow; }
    bool hasDataPlanes() const { return mPlanes.planes[0] != nullptr; }

    /// Whether the samples have been converted to sRGB already.
    bool isConverted() const { return mImported != nullptr; }
    /// The file's own, of samples that have been converted: nobody has looked at its bytes here.
    const std::shared_ptr<const std::vector<std::byte>>& colorSyncProfileData() const { return mProfile; }
    /// Whether the file is a JPEG that a document may hold as it is.
    bool isPlainJPEG() const;

    /// The samples as an image, over the same memory where its form allows. `space` says what they are; none
    /// has that follow from the colour space's name. Samples that have been converted ignore it.
    /// Without `heedsFormat` own samples are taken as premultiplied with alpha last, whatever their format
    /// says.
    std::shared_ptr<const Image> image(
        std::shared_ptr<const ColorSpace> space, bool heedsFormat = true) const;
    /// The picture decoded anew, as if it had no embedded profile; `image` without a space for own samples.
    std::shared_ptr<const Image> imageWithoutProfile(bool heedsFormat = true) const;

    Size size() const override; ///< by the resolution that the file states; 72 pixels an inch otherwise
    bool drawInRect(const Rect&) const override;
    std::shared_ptr<const Data> TIFFRepresentation() const; ///< uncompressed; none without samples

private:
    BitmapImageRep() = default;

    BitmapPlanes mPlanes;
    std::shared_ptr<const void> mOwner;
    std::shared_ptr<const std::vector<std::byte>> mProfile;
    std::shared_ptr<const ImportedBitmap> mImported; ///< none for own samples
    std::shared_ptr<const Data> mFile; ///< that it was decoded from
};

} // namespace vxr
