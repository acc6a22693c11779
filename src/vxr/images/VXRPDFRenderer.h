#pragma once

#include <vxr/images/VXRImageRenderer.h>

namespace vxr {

class PDFDocument;
class VXRPagePixels;

/// Draws page 1 of a PDF document, as large as its media box.
class VXR_EXPORT VXRPDFRenderer final : public VXRImageRenderer {
public:
    static std::shared_ptr<VXRPDFRenderer> imageRendererWithPDFRef(std::shared_ptr<const PDFDocument>);
    VXRPDFRenderer();
    ~VXRPDFRenderer() override;

    const std::shared_ptr<const PDFDocument>& PDFDocumentRef() const { return mDocument; }
    void setPDFDocumentRef(std::shared_ptr<const PDFDocument>); ///< sets the natural size too

    void drawInRect(const Rect&) override;
    void drawTileInContext(Context&) override;

private:
    void drawPage(Context&, const Rect&);

    std::shared_ptr<const PDFDocument> mDocument;
    std::shared_ptr<VXRPagePixels> mPixels; ///< shared by all who draw the document
};

} // namespace vxr
