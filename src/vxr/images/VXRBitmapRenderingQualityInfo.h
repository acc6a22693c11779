#pragma once

#include <vxr/platform/graphics/Context.h>

#include <map>
#include <memory>
#include <vector>

namespace vxr {

class Image;
class VXRBitmapRenderer;

/// How well the bitmaps of one redraw are to be scaled, from the canvas's quality level and from how much
/// there is to scale, and which of them may be drawn from reduced images.
///
/// Level 0 takes the nearest source pixel. Level 1 interpolates, and takes the nearest source pixel where
/// all the bitmaps of the redraw together have more source pixels than `pixelBudget`. Level 2 leaves the
/// choice to the context, and higher levels ask for the best it has.
class VXR_EXPORT VXRBitmapRenderingQualityInfo
    : public std::enable_shared_from_this<VXRBitmapRenderingQualityInfo> {
public:
    static constexpr double pixelBudget = 32.0 * 1024 * 1024;

    explicit VXRBitmapRenderingQualityInfo(int quality); ///< initWithQuality:

    int quality() const { return mQuality; }
    /// One bitmap that will be drawn, `bitmap` only by identity; a bitmap drawn twice counts once.
    void addBitmap(const void* bitmap, int pixelsWide, int pixelsHigh);
    std::size_t bitmapCount() const { return mBitmaps.size(); }
    double totalPixels() const { return mTotalPixels; }
    InterpolationQuality interpolationQuality() const;

    /// The renderer's bitmap will be drawn at its natural size, or at that size, in the space of the current
    /// drawing port. A renderer that prints forbids reduced images of its bitmap.
    void addRenderer(const VXRBitmapRenderer&);
    void addRendererNaturalSize(const VXRBitmapRenderer&, Size);
    /// The image at a half, a quarter ... of its size, the smallest that still has a pixel for each of the
    /// device's wherever the image will be drawn. None for one that is needed as it is or was never added.
    /// Drawing it shows what drawing the image itself shows.
    std::shared_ptr<const Image> degradedImageRefForImageRef(const Image&) const;

private:
    int mQuality;
    std::vector<const void*> mBitmaps; ///< sorted
    double mTotalPixels = 0;
    struct Use {
        std::weak_ptr<const Image> image; ///< to tell another one that has taken its place in memory
        int halvings; ///< the least that any use allows
    };
    std::map<const Image*, Use> mUses;
};

} // namespace vxr
