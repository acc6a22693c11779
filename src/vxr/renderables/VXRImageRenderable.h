#pragma once

#include <vxr/images/VXRImageFill.h>
#include <vxr/protocols/VXRPaintedShape.h>
#include <vxr/renderables/VXRRenderable.h>

#include <optional>

namespace vxr {

class Path;
class VXRFilteredImage;
class VXRImageBinary;
class VXRPictureRenderer;

/// What limits the picture within its frame.
enum class VXRImageMask : int {
    None, ///< the frame
    Path, ///< a path within the frame
    Alpha, ///< what the picture itself shows
};

/// A placed picture. The local frame is the frame on the page; the crop is the part of the picture that is
/// fitted to it by a fill technique, and the mask cuts the result.
class VXR_EXPORT VXRImageRenderable : public VXRRenderable, public VXRPaintedShape {
public:
    /// At the picture's natural size, the upper left corner at the canvas's origin, uncropped, without a
    /// mask.
    static std::shared_ptr<VXRImageRenderable> imageRenderableWithImageBinary(
        std::shared_ptr<VXRImageBinary>);
    VXRImageRenderable();
    ~VXRImageRenderable() override;

    const std::shared_ptr<VXRImageBinary>& imageBinary() const { return mBinary; }
    void setImageBinary(std::shared_ptr<VXRImageBinary>); ///< drops crop and filters; the frame stays
    /// A picture with levels and filters, drawn in place of its own binary's; it may be shared, and redraws
    /// itself when they change. None draws the binary as it is. Throws `InvalidArgumentException` for one
    /// that was not made of a binary.
    const std::shared_ptr<VXRFilteredImage>& filteredImage() const { return mFilteredImage; }
    void setFilteredImage(std::shared_ptr<VXRFilteredImage>); ///< takes its binary; the crop and frame stay
    std::int32_t technique() const { return mFill->technique(); } ///< `VXRImageFillStretch` at first
    void setTechnique(std::int32_t technique);
    void setFrame(const Rect&); ///< in canvas coordinates, unturned; the mask keeps its place in the frame

    // Crop, in the picture's points, y down from its upper left corner.
    Rect crop() const; ///< the whole picture when none is set
    void setCrop(const Rect&); ///< cut to the picture; one without an area takes the crop away
    bool hasCrop() const { return mCrop.has_value(); }
    /// For whoever reads pictures: keeps the crop as it is, of a picture that is missing too. One without an
    /// area takes it away.
    void _setCrop(const Rect&);
    /// Moves the picture in its frame by a way in the local frame, as far as there is picture.
    void dragPictureBy(Size delta);

    // Mask.
    VXRImageMask maskKind() const { return mMaskKind; }
    /// In the local frame. Takes a copy; none takes the mask away.
    void setMaskPath(const Path*);
    void setMasksByAlpha(bool);
    std::shared_ptr<Path> maskPath() const; ///< a copy; none unless that is the mask

    /// The outline of what is shown, in canvas coordinates, for text to flow around: the mask's, or, masked
    /// by alpha, that of what is at least half opaque. The frame's when the picture can't be decoded.
    std::shared_ptr<Path> textWrapPath() const;

    // The renderable's operations.
    Rect computeAlignmentBounds() const override;
    void renderIntoContext(Context&) override;
    /// Within frame and mask, and not where the picture is transparent.
    bool containsPoint(Point) const override;
    void setDynamicallyTransforming(bool) override;
    void addBitmapsToRenderingQualityInfo(VXRBitmapRenderingQualityInfo&) override;

    // As the shape that its fill paints: the visible part of the frame.
    VXRCanvasRole* canvas() const override { return VXRRenderable::canvas(); }
    std::shared_ptr<Path> path() const override; ///< in the local frame
    std::shared_ptr<Path> transformedPath() const override;
    AffineTransform transform() const override { return VXRRenderable::transform(); }
    Size naturalSize() const override { return VXRRenderable::naturalSize(); }
    Point center() const override { return VXRRenderable::center(); }
    float angle() const override { return VXRRenderable::angle(); }
    Rect alignmentBounds() const override { return VXRRenderable::alignmentBounds(); }
    bool wantsInteriorStroke() const override { return false; }
    void clip() const override;
    std::optional<bool> axisAlignment() const override { return isAxisAligned(); }

private:
    Rect frame() const { return { { 0, 0 }, VXRRenderable::naturalSize() }; }
    void setMask(VXRImageMask kind, std::shared_ptr<const Path> path);
    void takePicture(); ///< into the fill
    void pictureDidChange();
    void awaitPixels(); ///< to be drawn again with them
    /// Local frame to the picture's points; none while nothing is shown.
    std::optional<AffineTransform> pictureTransform() const;

    void observe(std::shared_ptr<VXRFilteredImage>);

    std::shared_ptr<VXRImageBinary> mBinary;
    std::shared_ptr<VXRFilteredImage> mFilteredImage;
    std::optional<Rect> mCrop;
    VXRImageMask mMaskKind = VXRImageMask::None;
    std::shared_ptr<const Path> mMaskPath;
    std::shared_ptr<VXRImageFill> mFill;
    std::shared_ptr<VXRPictureRenderer> mRenderer;
    mutable std::shared_ptr<const Path> mAlphaOutline; ///< in the picture's points; made when asked for
};

} // namespace vxr
