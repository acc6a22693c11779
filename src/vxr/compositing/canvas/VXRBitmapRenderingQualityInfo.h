#pragma once

#include <vxr/platform/graphics/Context.h>

#include <vector>

namespace vxr {

/// How well the bitmaps of one redraw are to be scaled, from the canvas's quality level and from how much
/// there is to scale.
///
/// Level 0 takes the nearest source pixel. Level 1 interpolates, and takes the nearest source pixel where
/// all the bitmaps of the redraw together have more source pixels than `pixelBudget`. Level 2 leaves the
/// choice to the context, and higher levels ask for the best it has.
class VXR_EXPORT VXRBitmapRenderingQualityInfo {
public:
    static constexpr double pixelBudget = 32.0 * 1024 * 1024;

    explicit VXRBitmapRenderingQualityInfo(int quality); ///< initWithQuality:

    int quality() const { return mQuality; }
    /// One bitmap that will be drawn, `bitmap` only by identity; a bitmap drawn twice counts once.
    void addBitmap(const void* bitmap, int pixelsWide, int pixelsHigh);
    std::size_t bitmapCount() const { return mBitmaps.size(); }
    double totalPixels() const { return mTotalPixels; }
    InterpolationQuality interpolationQuality() const;

private:
    int mQuality;
    std::vector<const void*> mBitmaps; ///< sorted
    double mTotalPixels = 0;
};

} // namespace vxr
