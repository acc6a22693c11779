#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/pictures/BitmapImageRep.h>
#include <vxr/platform/pictures/PlatformImage.h>

#include <cmath>

namespace vxr {

PlatformImage::PlatformImage(Size size, std::shared_ptr<const ImageRep> rep)
    : mSize(size)
    , mRep(std::move(rep))
{
}

PlatformImage::~PlatformImage() = default;

std::shared_ptr<PlatformImage> PlatformImage::imageWithRep(std::shared_ptr<const ImageRep> rep)
{
    if (!rep)
        return nullptr;
    const Size size = rep->size();
    return std::shared_ptr<PlatformImage>(new PlatformImage(size, std::move(rep)));
}

std::shared_ptr<PlatformImage> PlatformImage::imageWithSizeDrawing(
    Size size, const std::function<void(Context&)>& draw)
{
    constexpr float mostPixels = 32767;
    const float width = std::ceil(size.width), height = std::ceil(size.height);
    if (!(width >= 1 && height >= 1 && width <= mostPixels && height <= mostPixels))
        return nullptr;
    const auto bitmap = BitmapContext::createBitmap(static_cast<int>(width), static_cast<int>(height));
    {
        const CurrentContextScope current(*bitmap, false, false);
        draw(*bitmap);
    }
    return std::shared_ptr<PlatformImage>(
        new PlatformImage(size, BitmapImageRep::imageRepWithImage(bitmap->makeImage())));
}

std::shared_ptr<const Data> PlatformImage::TIFFRepresentation() const
{
    if (const auto* bitmap = dynamic_cast<const BitmapImageRep*>(mRep.get()))
        return bitmap->TIFFRepresentation();
    const auto drawn = imageWithSizeDrawing(mSize, [&](Context&) { mRep->drawInRect({ { 0, 0 }, mSize }); });
    return drawn ? drawn->TIFFRepresentation() : nullptr;
}

} // namespace vxr
