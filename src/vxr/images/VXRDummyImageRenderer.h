#pragma once

#include <vxr/images/VXRImageRenderer.h>

namespace vxr {

class Color;
class PDFDocument;

/// Stands for a picture that is missing or broken: a crossed box of the size the picture should have, with an
/// icon where there is room.
class VXR_EXPORT VXRDummyImageRenderer final : public VXRImageRenderer {
public:
    static std::shared_ptr<VXRDummyImageRenderer> missingImageRendererWithSize(Size);
    static std::shared_ptr<VXRDummyImageRenderer> brokenImageRendererWithSize(Size);
    VXRDummyImageRenderer(Size, const PDFDocument& icon); ///< the icon outlives the renderer
    ~VXRDummyImageRenderer() override;

    // Resources of the library, made on first use and kept.
    static const PDFDocument& missingImageIcon();
    static const PDFDocument& brokenImageIcon();

    bool isOfBrokenImage() const { return mIcon == &brokenImageIcon(); }

    static std::shared_ptr<Color> fillColor();
    static std::shared_ptr<Color> strokeColor();

    void drawInRect(const Rect&) override;
    void drawTileInContext(Context&) override;
    bool wantsToRenderDynamically() const override; ///< if the owner is a renderable

private:
    void _drawInRectContext(const Rect&, Context&) const;

    const PDFDocument* mIcon;
};

} // namespace vxr
