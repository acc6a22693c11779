#include <vxr/images/VXRBitmapRenderingQualityInfo.h>

#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>

#include <algorithm>
#include <cmath>

namespace vxr {

VXRBitmapRenderingQualityInfo::VXRBitmapRenderingQualityInfo(int quality)
    : mQuality(quality)
{
}

void VXRBitmapRenderingQualityInfo::addBitmap(const void* bitmap, int pixelsWide, int pixelsHigh)
{
    const auto place = std::lower_bound(mBitmaps.begin(), mBitmaps.end(), bitmap);
    if (place != mBitmaps.end() && *place == bitmap)
        return;
    mBitmaps.insert(place, bitmap);
    mTotalPixels += double(pixelsWide) * pixelsHigh;
}

InterpolationQuality VXRBitmapRenderingQualityInfo::interpolationQuality() const
{
    if (mQuality <= 0)
        return InterpolationQuality::None;
    if (mQuality == 1)
        return mTotalPixels > pixelBudget ? InterpolationQuality::None : InterpolationQuality::Low;
    return mQuality == 2 ? InterpolationQuality::Default : InterpolationQuality::High;
}

void VXRBitmapRenderingQualityInfo::addRenderer(const VXRBitmapRenderer& renderer)
{
    addRendererNaturalSize(renderer, renderer.naturalSize());
}

void VXRBitmapRenderingQualityInfo::addRendererNaturalSize(const VXRBitmapRenderer& renderer, Size size)
{
    const Image* image = renderer.imageRef().get();
    if (!image)
        return;
    addBitmap(image, image->width(), image->height());
    const AffineTransform t = currentDrawingPort().currentTransform();
    const double width = std::hypot(t.m11, t.m12) * std::abs(size.width);
    const double height = std::hypot(t.m21, t.m22) * std::abs(size.height);
    int halvings = 0;
    if (!renderer.isPrinting())
        for (double scale = std::max(width / image->width(), height / image->height());
             scale > 0 && scale <= 0.5; scale *= 2)
            ++halvings;
    Use& use = mUses.try_emplace(image, Use { renderer.imageRef(), halvings }).first->second;
    if (use.image.expired())
        use = { renderer.imageRef(), halvings };
    use.halvings = std::min(use.halvings, halvings);
}

std::shared_ptr<const Image> VXRBitmapRenderingQualityInfo::degradedImageRefForImageRef(
    const Image& image) const
{
    const auto found = mUses.find(&image);
    return found != mUses.end() && !found->second.image.expired() ? image.reduced(found->second.halvings)
                                                                  : nullptr;
}

} // namespace vxr
