#pragma once

#include <vxr/images/VXRImageData.h>

namespace vxr {

class PDFDocument;
class PDFImageRep;

/// A PDF page, also what EPS is converted to.
class VXR_EXPORT VXRPDFImageData final : public VXRImageData {
public:
    /// None for data that is not good, not named as PDF, or without a page that has an area. Sets the data
    /// object's file type.
    static std::shared_ptr<VXRPDFImageData> initWithVXEData(
        const std::shared_ptr<VXEData>&, std::string* reason = nullptr);
    ~VXRPDFImageData() override;

    const std::shared_ptr<const PDFDocument>& pdfRef() const { return mPDFRef; }
    const std::shared_ptr<PDFImageRep>& pdfRep() const { return mPDFRep; }
    void setPdfRep(std::shared_ptr<PDFImageRep>); ///< its document becomes `pdfRef`

    Size naturalSize() const override;
    std::shared_ptr<VXRImageRenderer> imageRenderer() override;
    std::size_t bytesUsed() const override; ///< the file's alone
    std::shared_ptr<PlatformImage> nsImage() override;

private:
    explicit VXRPDFImageData(const std::shared_ptr<VXEData>&);
    void _setupPDF(std::string* reason = nullptr);

    std::shared_ptr<const PDFDocument> mPDFRef;
    std::shared_ptr<PDFImageRep> mPDFRep;
};

} // namespace vxr
