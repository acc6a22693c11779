#pragma once

#include <vxr/images/VXRImageData.h>

namespace vxr {

class Data;
class PICTImageRep;

/// A QuickDraw picture.
class VXR_EXPORT VXRPICTImageData final : public VXRImageData {
public:
    /// None for data that is not good, named as something else, or no picture. Gives the data object's bytes
    /// the 512-byte header that they lack, and sets its file type.
    static std::shared_ptr<VXRPICTImageData> initWithVXEData(
        const std::shared_ptr<VXEData>&, std::string* reason = nullptr);
    ~VXRPICTImageData() override;

    const std::shared_ptr<PICTImageRep>& PICTImageRepresentation() const { return mPICTImageRep; }
    std::shared_ptr<const Data> PICTData() const; ///< the data object's bytes

    Size naturalSize() const override;
    std::shared_ptr<VXRImageRenderer> imageRenderer() override;
    std::size_t bytesUsed() const override;
    std::shared_ptr<PlatformImage> nsImage() override;

private:
    explicit VXRPICTImageData(const std::shared_ptr<VXEData>&);

    std::shared_ptr<PICTImageRep> mPICTImageRep;
};

} // namespace vxr
