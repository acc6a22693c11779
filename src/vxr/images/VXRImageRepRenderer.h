#pragma once

#include <vxr/images/VXRImageRenderer.h>

namespace vxr {

class ImageRep;

/// Lets a platform's image representation draw itself.
class VXR_EXPORT VXRImageRepRenderer final : public VXRImageRenderer {
public:
    static std::shared_ptr<VXRImageRepRenderer> imageRendererWithImageRep(std::shared_ptr<const ImageRep>);
    VXRImageRepRenderer();
    ~VXRImageRepRenderer() override;

    const std::shared_ptr<const ImageRep>& imageRep() const { return mImageRep; }
    void setImageRep(std::shared_ptr<const ImageRep>); ///< sets the natural size too

    void drawInRect(const Rect&) override;
    /// Representations can't be drawn as tiles: a red checker says so.
    void drawTileInContext(Context&) override;

private:
    std::shared_ptr<const ImageRep> mImageRep;
};

} // namespace vxr
