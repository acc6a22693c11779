#include <vxr/images/VXRImageData.h>

#include <vxr/host/data/VXEData.h>
#include <vxr/images/VXRImageRenderer.h>
#include <vxr/platform/pictures/PlatformImage.h>

namespace vxr {

VXRImageData::VXRImageData(std::shared_ptr<VXEData> data)
    : mData(std::move(data))
{
}

VXRImageData::~VXRImageData() = default;

std::shared_ptr<PlatformImage> VXRImageData::nsImage()
{
    const auto renderer = imageRenderer();
    return PlatformImage::imageWithSizeDrawing(naturalSize(), [&](Context&) {
        renderer->drawInRect({ { 0, 0 }, naturalSize() });
    });
}

} // namespace vxr
