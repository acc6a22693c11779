#pragma once

#include <vxr/images/VXRImageRenderer.h>

namespace vxr {

class VXRFilteredImage;

/// Draws a part of a filtered image. It holds on to no pixels: the image is asked when it is drawn.
class VXR_EXPORT VXRFilteredImageRenderer final : public VXRImageRenderer {
public:
    /// `crop` is in points, y down from the upper left corner, and may reach beyond the picture. None stands
    /// for all of it.
    static std::shared_ptr<VXRFilteredImageRenderer> rendererWithFilteredImageCrop(
        std::shared_ptr<VXRFilteredImage>, std::optional<Rect> crop = std::nullopt);
    VXRFilteredImageRenderer();
    ~VXRFilteredImageRenderer() override;

    const std::shared_ptr<VXRFilteredImage>& filteredImage() const { return mFilteredImage; }
    Rect crop() const; ///< the whole picture without one

    void drawInRect(const Rect&) override;
    void drawTileInContext(Context&) override;
    bool wantsToRenderDynamically() const override; ///< a placeholder does

private:
    std::shared_ptr<VXRImageRenderer> renderer() const;
    void drawPart(Context&, const Rect&);

    std::shared_ptr<VXRFilteredImage> mFilteredImage;
    std::optional<Rect> mCrop;
};

} // namespace vxr
