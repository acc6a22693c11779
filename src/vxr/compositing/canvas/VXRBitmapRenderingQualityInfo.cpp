#include <vxr/compositing/canvas/VXRBitmapRenderingQualityInfo.h>

#include <algorithm>

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

} // namespace vxr
