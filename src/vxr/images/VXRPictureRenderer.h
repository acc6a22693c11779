#pragma once

#include <vxr/images/VXRImageRenderer.h>

namespace vxr {

class Image;
class VXRImageBinary;

/// Draws a part of an imported picture. It holds on to no decoded form: what is decoded is asked for when it
/// is drawn and may be flushed right after, and a bitmap that is drawn much smaller than it is comes from a
/// reduced image that is kept instead.
class VXR_EXPORT VXRPictureRenderer final : public VXRImageRenderer {
public:
    /// `crop` is in the picture's own points, y down from its upper left corner, and may reach beyond it.
    /// None stands for the whole picture.
    static std::shared_ptr<VXRPictureRenderer> rendererWithBinaryCrop(
        std::shared_ptr<VXRImageBinary>, std::optional<Rect> crop = std::nullopt);
    VXRPictureRenderer();
    ~VXRPictureRenderer() override;

    const std::shared_ptr<VXRImageBinary>& binary() const { return mBinary; }
    Rect crop() const; ///< the whole picture without one

    void drawInRect(const Rect&) override;
    void drawTileInContext(Context&) override;
    bool wantsToRenderDynamically() const override;

    /// Whether the picture is not wholly transparent there, a point as in `crop`.
    bool showsPoint(Point) const;

    /// The picture at up to `mostPixels` a side, for finding out what can be seen; none for one that can't be
    /// decoded.
    std::shared_ptr<const Image> overview(int mostPixels) const;

private:
    void drawPart(Context&, const Rect&);
    std::shared_ptr<VXRImageRenderer> rendererForRect(const Context&, const Rect& whole) const;

    std::shared_ptr<VXRImageBinary> mBinary;
    std::optional<Rect> mCrop;
};

} // namespace vxr
