#include <vxr/platform/pictures/PDFImageRep.h>

#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr double mostPixelsPerSide = 4096; ///< of a page drawn by its representation

} // namespace

std::shared_ptr<PDFImageRep> PDFImageRep::imageRepWithData(
    const std::shared_ptr<const Data>& data, std::string* reason)
{
    auto document = PDFDocument::createWithData(data, reason);
    return document ? std::make_shared<PDFImageRep>(std::move(document)) : nullptr;
}

PDFImageRep::PDFImageRep(std::shared_ptr<const PDFDocument> document)
    : mDocument(std::move(document))
{
}

PDFImageRep::~PDFImageRep() = default;

bool PDFImageRep::drawInRect(const Rect& rect) const { return drawPDFDocument(*mDocument, rect); }

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
