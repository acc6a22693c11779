#pragma once

#include <vxr/images/VXRImageRenderer.h>

namespace vxr {

class Data;
class PDFDocument;
class VXRPagePixels;

/// Draws a QuickDraw picture, as large as its frame.
class VXR_EXPORT VXRPICTRenderer final : public VXRImageRenderer {
public:
    /// `converted` is what the picture draws like where that is known; otherwise it is found out.
    static std::shared_ptr<VXRPICTRenderer> imageRendererWithPICTData(
        std::shared_ptr<const Data>, std::shared_ptr<const PDFDocument> converted = nullptr);
    VXRPICTRenderer();
    ~VXRPICTRenderer() override;

    const std::shared_ptr<const Data>& PICTData() const { return mPICTData; }
    void setPICTData(std::shared_ptr<const Data>, std::shared_ptr<const PDFDocument> converted = nullptr);

    void drawInRect(const Rect&) override;
    void drawTileInContext(Context&) override;

private:
    std::shared_ptr<const Data> mPICTData;
    std::shared_ptr<VXRPagePixels> mPixels;
};

} // namespace vxr
