#pragma once

#include <vxr/images/VXRImageRenderer.h>

namespace vxr {

class BitmapImageRep;
class Image;

/// Draws a decoded bitmap, one point a pixel at natural size.
class VXR_EXPORT VXRBitmapRenderer final : public VXRImageRenderer {
public:
    static std::shared_ptr<VXRBitmapRenderer> imageRendererWithImageRef(std::shared_ptr<const Image>);
    static std::shared_ptr<VXRBitmapRenderer> imageRendererWithImageRefImageRep(
        std::shared_ptr<const Image>, std::shared_ptr<const BitmapImageRep>);
    VXRBitmapRenderer();
    ~VXRBitmapRenderer() override;

    const std::shared_ptr<const Image>& imageRef() const { return mImageRef; }
    void setImageRef(std::shared_ptr<const Image>); ///< sets the natural size too
    const std::shared_ptr<const BitmapImageRep>& imageRep() const { return mImageRep; }
    /// The image straight from the file's JPEG bytes, for printing; or none.
    const std::shared_ptr<const Image>& compressedImageRef() const { return mCompressedImageRef; }
    void setCompressedImageRef(std::shared_ptr<const Image> image) { mCompressedImageRef = std::move(image); }

    /// What is drawn: a reduced image where the canvas's quality record offers one, else the compressed one
    /// while printing, else the decoded one.
    std::shared_ptr<const Image> drawingImageRef() const;

    void drawInRect(const Rect&) override;
    void drawTileInContext(Context&) override;

private:
    std::shared_ptr<const Image> mImageRef, mCompressedImageRef;
    std::shared_ptr<const BitmapImageRep> mImageRep;
};

} // namespace vxr
