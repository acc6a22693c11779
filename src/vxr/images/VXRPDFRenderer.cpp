#include <vxr/images/VXRPDFRenderer.h>

#include <vxr/images/VXRPagePixels.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/pictures/PDFDocument.h>

namespace vxr {

VXRPDFRenderer::VXRPDFRenderer() = default;

VXRPDFRenderer::~VXRPDFRenderer() = default;

std::shared_ptr<VXRPDFRenderer> VXRPDFRenderer::imageRendererWithPDFRef(
    std::shared_ptr<const PDFDocument> document)
{
    auto renderer = std::make_shared<VXRPDFRenderer>();
    renderer->setPDFDocumentRef(std::move(document));
    return renderer;
}

void VXRPDFRenderer::setPDFDocumentRef(std::shared_ptr<const PDFDocument> document)
{
    mDocument = std::move(document);
    mPixels = mDocument ? VXRPagePixels::pixelsOfDocument(mDocument) : nullptr;
    setNaturalSize(mDocument ? mDocument->box(PDFBox::Media).size : Size {});
}

void VXRPDFRenderer::drawPage(Context& context, const Rect& rect)
{
    if (!mPixels)
        return;
    StateSaver saved(context);
    context.clipToRect(rect);
    setAwaitsPixels(mPixels->draw(context, rect, sharpnessFor(dynamicallyTransforming(), mayDrawLater())));
}

void VXRPDFRenderer::drawInRect(const Rect& rect)
{
    Context& context = currentDrawingPort();
    context.setInterpolationQuality(interpolation());
    drawPage(context, rect);
}

void VXRPDFRenderer::drawTileInContext(Context& context)
{
    context.setInterpolationQuality(interpolation());
    drawPage(context, naturalRect());
}

} // namespace vxr
