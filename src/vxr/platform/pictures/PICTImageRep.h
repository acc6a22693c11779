#pragma once

#include <vxr/platform/pictures/ImageRep.h>
#include <vxr/platform/pictures/PDFDocument.h>

namespace vxr {

class Data;

/// A QuickDraw picture, as large as its frame.
class VXR_EXPORT PICTImageRep final : public ImageRep {
public:
    /// Bytes with or without the 512 bytes of a file's header. None when they are no picture;
    /// `reason` is then a sentence.
    static std::shared_ptr<PICTImageRep> imageRepWithData(
        const std::shared_ptr<const Data>&, std::string* reason = nullptr);

    PICTImageRep(std::shared_ptr<const Data> picture, std::shared_ptr<const PDFDocument>);
    ~PICTImageRep() override;

    const std::shared_ptr<const Data>& PICTRepresentation() const { return mPicture; } ///< without a header
    const std::shared_ptr<const PDFDocument>& document() const { return mDocument; } ///< what it draws like

    Size size() const override { return mDocument->box(PDFBox::Media).size; }
    bool drawInRect(const Rect&) const override;

private:
    std::shared_ptr<const Data> mPicture;
    std::shared_ptr<const PDFDocument> mDocument;
};

} // namespace vxr
