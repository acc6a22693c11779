#pragma once

#include <vxr/platform/pictures/ImageRep.h>
#include <vxr/platform/pictures/PDFDocument.h>

namespace vxr {

class Data;

/// Page 1 of a PDF document, as large as its media box.
class VXR_EXPORT PDFImageRep final : public ImageRep {
public:
    /// None when the bytes are no document; `reason` is then a sentence.
    static std::shared_ptr<PDFImageRep> imageRepWithData(
        const std::shared_ptr<const Data>&, std::string* reason = nullptr);

    explicit PDFImageRep(std::shared_ptr<const PDFDocument>);
    ~PDFImageRep() override;

    const std::shared_ptr<const PDFDocument>& document() const { return mDocument; }
    const std::shared_ptr<const Data>& PDFRepresentation() const { return mDocument->data(); }

    Size size() const override { return mDocument->box(PDFBox::Media).size; }
    bool drawInRect(const Rect&) const override;

private:
    std::shared_ptr<const PDFDocument> mDocument;
};

/// Draws the page into the current graphics context: as vectors where that can be, else as pixels made for
/// the occasion, at the resolution of the context.
VXR_EXPORT bool drawPDFDocument(const PDFDocument&, const Rect&);

} // namespace vxr
