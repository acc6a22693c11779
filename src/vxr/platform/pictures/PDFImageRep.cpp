#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/pictures/PDFImageRep.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr std::size_t pictHeaderLength = 512;
constexpr double mostPixelsPerSide = 4096; ///< of a page drawn by its representation

std::shared_ptr<const PDFDocument> documentOfPicture(std::span<const std::byte> picture)
{
    const auto file = MemoryFile::createWithCopy(picture);
    const auto pdf = file ? Importer::shared().convertPICT(*file) : nullptr;
    return pdf ? PDFDocument::createWithData(Data::dataWithBytes(pdf->bytes())) : nullptr;
}

} // namespace

std::shared_ptr<PDFImageRep> PDFImageRep::imageRepWithData(const std::shared_ptr<const Data>& data)
{
    auto document = PDFDocument::createWithData(data);
    return document ? std::make_shared<PDFImageRep>(std::move(document)) : nullptr;
}

PDFImageRep::PDFImageRep(std::shared_ptr<const PDFDocument> document)
    : mDocument(std::move(document))
{
}

PDFImageRep::~PDFImageRep() = default;

bool PDFImageRep::drawInRect(const Rect& rect) const { return drawPDFDocument(*mDocument, rect); }

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

bool drawPDFDocument(const PDFDocument& document, const Rect& rect)
{
    Context& context = currentDrawingPort();
    if (rect.isEmpty() || document.drawAsVectors(context, rect))
        return true;
    const Size media = document.box(PDFBox::Media).size;
    const AffineTransform t = context.currentTransform();
    const auto pixels = [](double side, double scale) {
        const double exact = std::ceil(side * scale);
        return exact >= 1 ? static_cast<int>(std::min(exact, mostPixelsPerSide)) : 1;
    };
    const int width = pixels(rect.size.width, std::hypot(t.m11, t.m12));
    const int height = pixels(rect.size.height, std::hypot(t.m21, t.m22));
    const auto image = document.renderArea(
        { static_cast<float>(width) / media.width, static_cast<float>(height) / media.height }, 0, 0, width,
        height);
    if (image)
        context.drawImage(rect, *image);
    return image != nullptr;
}

} // namespace vxr
