#include <vxr/images/VXRBitmapImages.h>

#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/host/utility/VXUSystemVersion.h>
#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/BitmapImageRep.h>
#include <vxr/platform/pictures/PlatformImage.h>

#include <functional>

namespace vxr {

namespace {

std::shared_ptr<const BitmapImageRep> drawnRep(
    Size size, const std::function<void(Context&, const Rect&)>& draw)
{
    const auto image = PlatformImage::imageWithSizeDrawing(size, [&](Context& context) {
        context.setInterpolationQuality(InterpolationQuality::High);
        draw(context, { { 0, 0 }, size });
    });
    return image ? std::dynamic_pointer_cast<const BitmapImageRep>(image->representation()) : nullptr;
}

} // namespace

std::shared_ptr<const ColorSpace> VXRColorSpaceForRep(const BitmapImageRep& rep)
{
    // A file's own profile has been honoured where the file was read, and its bytes are opened nowhere else.
    if (rep.isConverted())
        return VXRColorSpaceForRep(
            VXRImageRep { rep.planes().samplesPerPixel, rep.planes().hasAlpha, nullptr });
    return VXRColorSpaceForRep(
        VXRImageRep { rep.planes().samplesPerPixel, rep.planes().hasAlpha, rep.colorSyncProfileData() });
}

std::shared_ptr<const Image> VXRImageRefFromBitmapImageRep(const BitmapImageRep& rep, bool useEmbeddedProfile)
{
    if (!rep.hasDataPlanes()) {
        VXULog_Fn(VXULogLevelWarning, "VXRBitmapImages.cpp", "Could not get bitmap data planes");
        return nullptr;
    }
    // The platform's representations have had a format since version 10.4.0.
    constexpr int firstVersionWithFormats = 4160;
    const bool heedsFormat = GetSystemVersion() >= firstVersionWithFormats;
    return useEmbeddedProfile ? rep.image(VXRColorSpaceForRep(rep), heedsFormat)
                              : rep.imageWithoutProfile(heedsFormat);
}

std::shared_ptr<const Image> VXRImageRefFromJPEGData(
    const std::shared_ptr<const Data>& jpeg, const BitmapImageRep& rep)
{
    const auto decoded = jpeg && rep.isPlainJPEG() ? rep.image(nullptr) : nullptr;
    if (!decoded)
        return nullptr;
    const std::size_t size
        = decoded->layout().bytesPerRow * static_cast<std::size_t>(decoded->layout().height);
    return Image::createWithJPEG(decoded->layout(), decoded->pixels(), size, decoded, jpeg);
}

std::shared_ptr<const BitmapImageRep> VXRImageRepFromImageRef(const Image& image, Size size)
{
    return drawnRep(size, [&](Context& context, const Rect& rect) { context.drawImage(rect, image); });
}

std::shared_ptr<const BitmapImageRep> VXRResampleBitmapImageRep(const BitmapImageRep& rep, Size size)
{
    return drawnRep(size, [&](Context&, const Rect& rect) { rep.drawInRect(rect); });
}

} // namespace vxr
