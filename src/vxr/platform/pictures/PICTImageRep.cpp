#include <vxr/platform/pictures/PICTImageRep.h>

#include <vxr/platform/base/Data.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/pictures/PDFImageRep.h>

namespace vxr {

namespace {

constexpr std::size_t pictHeaderLength = 512;

std::shared_ptr<const PDFDocument> documentOfPicture(std::span<const std::byte> picture, std::string* reason)
{
    const auto file = MemoryFile::createWithCopy(picture);
    ImportFailure failure;
    const auto pdf = file ? Importer::shared().convertPICT(*file, &failure) : nullptr;
    if (!pdf && reason)
        *reason = failure.message;
    return pdf ? PDFDocument::createWithData(Data::dataWithBytes(pdf->bytes()), reason) : nullptr;
}

} // namespace

// The header says nothing. What is a picture without its first 512 bytes had one.
std::shared_ptr<PICTImageRep> PICTImageRep::imageRepWithData(
    const std::shared_ptr<const Data>& data, std::string* reason)
{
    if (!data)
        return nullptr;
    if (data->length() > pictHeaderLength) {
        const auto picture = data->bytes().subspan(pictHeaderLength);
        if (auto document = documentOfPicture(picture, reason))
            return std::make_shared<PICTImageRep>(Data::dataWithBytes(picture), std::move(document));
    }
    auto document = documentOfPicture(data->bytes(), reason);
    return document ? std::make_shared<PICTImageRep>(data, std::move(document)) : nullptr;
}

PICTImageRep::PICTImageRep(std::shared_ptr<const Data> picture, std::shared_ptr<const PDFDocument> document)
    : mPicture(std::move(picture))
    , mDocument(std::move(document))
{
}

PICTImageRep::~PICTImageRep() = default;

bool PICTImageRep::drawInRect(const Rect& rect) const { return drawPDFDocument(*mDocument, rect); }

} // namespace vxr
