#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/AffineTransform.h>
#include <vxr/protocols/VXRImageRendererOwner.h>
#include <vxr/protocols/VXRShapePainter.h>

#include <cstdint>

namespace vxr {

class Context;
class Image;
class ImageRep;
class PDFDocument;
class VXRImageRenderer;

/// How a picture is fitted to a shape. The numbers are part of the contract; beyond them nothing is drawn.
enum VXRImageFillTechnique : std::int32_t {
    VXRImageFillNaturalSize = 0, ///< centred, on whole device pixels
    VXRImageFillStretch = 1,
    VXRImageFillTile = 2,
    VXRImageFillScaleToFill = 3, ///< covers the shape, centred where it overflows
    VXRImageFillScaleToFit = 4, ///< lies within the shape, centred where it is short
};

/// Fills a shape with a picture. Draws upright in the flipped space of a canvas.
class VXR_EXPORT VXRImageFill final : public Object,
                                      public VXRShapePainter,
                                      public VXRImageRendererOwner,
                                      public std::enable_shared_from_this<VXRImageFill> {
public:
    static std::shared_ptr<VXRImageFill> imageFillWithImageRenderer(std::shared_ptr<VXRImageRenderer>);
    static std::shared_ptr<VXRImageFill> imageFillWithImageRep(std::shared_ptr<const ImageRep>);
    static std::shared_ptr<VXRImageFill> imageFillWithImageRef(std::shared_ptr<const Image>);
    static std::shared_ptr<VXRImageFill> imageFillWithPDFRef(std::shared_ptr<const PDFDocument>);
    static std::shared_ptr<VXRImageFill> imageFillWithMissingImageOfSize(Size);
    static std::shared_ptr<VXRImageFill> imageFillWithBrokenImageOfSize(Size);
    VXRImageFill(); ///< tiles, without a renderer
    ~VXRImageFill() override;
    VXRImageFill(const VXRImageFill&) = delete;
    VXRImageFill& operator=(const VXRImageFill&) = delete;

    const std::shared_ptr<VXRImageRenderer>& renderer() const { return mRenderer; }
    void setRenderer(std::shared_ptr<VXRImageRenderer>); ///< may be none; the fill becomes its owner
    std::int32_t technique() const { return mTechnique; } ///< a `VXRImageFillTechnique`
    void setTechnique(std::int32_t technique) { mTechnique = technique; } ///< not validated
    VXRPaintedShape* owner() const { return mOwner; } ///< whose fill it is; cleared by itself
    void setOwner(VXRPaintedShape* owner) override { mOwner = owner; }

    // As the renderer's owner.
    VXRCanvasRole* canvas() const override;
    bool shouldAntialias() const override; ///< unless the owner says that it is axis-aligned

    // Painting, in the current context.
    void paintShape(VXRPaintedShape&) override;
    void paintRect(const Rect&) override;
    void drawSwatchInRect(const Rect&) const; ///< whatever the technique
    void setDynamicallyTransforming(bool) override;
    /// Where the picture lies in a rectangle, y down, not snapped to pixels; the first of its tiles.
    Rect placementInRect(const Rect&) const;
    /// Concatenates the picture space of the shape and answers its extent.
    Size transformForShape(VXRPaintedShape&) const;

    // Tiling.
    void _paintTiledFillInRect(const Rect&);
    bool useQuartzPattern() const { return true; } ///< else tiles are drawn one by one
    void _paintTilePattern(Context&, const Rect&);
    /// The grid begins at the floor of the rectangle's origin.
    void _paintTilesOneByOne(Context&, const Rect&);
    /// A small picture repeated up to 64 by 64 units; none for one that is larger.
    std::shared_ptr<const ImageRep> _megaTile() const;
    /// How far a point is from whole device pixels, in pixels of unit scale.
    static Point _errorForPointContext(Point, const Context&);

    // Rendering quality. A renderer of anything but a bitmap is reported to the assertion handler.
    void addToRenderingQualityInfoSize(VXRBitmapRenderingQualityInfo&, Size);
    void addBitmapsToRenderingQualityInfoShape(VXRBitmapRenderingQualityInfo&, VXRPaintedShape&) override;
    void addBitmapsToRenderingQualityInfoSizeTransform(
        VXRBitmapRenderingQualityInfo&, Size, const AffineTransform&);

private:
    Size naturalSize() const; ///< of the renderer; zero without one
    Size scaledSize(Size) const; ///< of the picture that fills or fits a rectangle
    bool drawsBitmap() const;

    std::int32_t mTechnique = VXRImageFillTile;
    std::shared_ptr<VXRImageRenderer> mRenderer;
    VXRPaintedShape* mOwner = nullptr;
};

/// The platform pattern's callbacks; `info` is a heap allocated shared pointer to the fill.
VXR_EXPORT void drawPattern(void* info, Context&);
VXR_EXPORT void releaseInfo(void* info);

} // namespace vxr
