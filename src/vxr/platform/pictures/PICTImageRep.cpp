#include <vxr/platform/pictures/PICTImageRep.h>

#include <vxr/platform/base/Data.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/pictures/PDFImageRep.h>

namespace vxr {

namespace {

constexpr std::size_t pictHeaderLength = 512;

std::shared_ptr<const PDFDocument> documentOfPicture(std::span<const std::byte> picture)
{
    const auto file = MemoryFile::createWithCopy(picture);
    const auto pdf = file ? Importer::shared().convertPICT(*file) : nullptr;
    return pdf ? PDFDocument::createWithData(Data::dataWithBytes(pdf->bytes())) : nullptr;
}

} // namespace

// The header says nothing. What is a picture without its first 512 bytes had one.
std::shared_ptr<PICTImageRep> PICTImageRep::imageRepWithData(const std::shared_ptr<const Data>& data)
{
    if (!data)
        return nullptr;
    if (data->length() > pictHeaderLength) {
        const auto picture = data->bytes().subspan(pictHeaderLength);
        if (auto document = documentOfPicture(picture))
            return std::make_shared<PICTImageRep>(Data::dataWithBytes(picture), std::move(document));
    }
    auto document = documentOfPicture(data->bytes());
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
