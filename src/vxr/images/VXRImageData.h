#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/Geometry.h>

namespace vxr {

class PlatformImage;
class VXEData;
class VXRImageRenderer;

/// The decoded form of a picture's bytes.
class VXR_EXPORT VXRImageData : public Object {
public:
    ~VXRImageData() override;
    VXRImageData(const VXRImageData&) = delete;
    VXRImageData& operator=(const VXRImageData&) = delete;

    const std::shared_ptr<VXEData>& data() const { return mData; }

    virtual Size naturalSize() const { return {}; } ///< points
    virtual std::shared_ptr<VXRImageRenderer> imageRenderer() = 0;
    virtual std::size_t bytesUsed() const = 0;
    /// What the renderer draws at natural size.
    virtual std::shared_ptr<PlatformImage> nsImage();

protected:
    explicit VXRImageData(std::shared_ptr<VXEData> data); ///< initWithVXEData:

private:
    std::shared_ptr<VXEData> mData;
};

} // namespace vxr
