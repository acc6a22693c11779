#pragma once

#include <vxr/images/VXRImageData.h>

namespace vxr {

class BitmapImageRep;
class Image;

/// A picture of any raster format.
class VXR_EXPORT VXRBitmapImageData final : public VXRImageData {
public:
    /// None for data that is not good, that is named as PDF or PICT, or that no decoder takes. A data object
    /// whose file type says PICT or PDF loses it: the bytes have turned out to be a bitmap.
    static std::shared_ptr<VXRBitmapImageData> initWithVXEData(
        const std::shared_ptr<VXEData>&, std::string* reason = nullptr);
    ~VXRBitmapImageData() override;

    const std::shared_ptr<BitmapImageRep>& imageRep() const { return mImageRep; }
    const std::shared_ptr<const Image>& imageRef(); ///< made on the first request
    /// Of the JPEG bytes, for documents; none for other files. Tried once.
    const std::shared_ptr<const Image>& compressedImageRef();
    void stripColorSyncProfile(); ///< remakes `imageRef` without the embedded profile

    Size naturalSize() const override; ///< in pixels, whatever the resolution
    std::shared_ptr<VXRImageRenderer> imageRenderer() override;
    std::size_t bytesUsed() const override;
    std::shared_ptr<PlatformImage> nsImage() override;

private:
    explicit VXRBitmapImageData(const std::shared_ptr<VXEData>&);

    std::shared_ptr<BitmapImageRep> mImageRep;
    std::shared_ptr<const Image> mImageRef, mCompressedImageRef;
    bool mMayMakeCompressedImage = true;
};

} // namespace vxr
