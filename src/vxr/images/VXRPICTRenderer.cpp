#include <vxr/images/VXRPICTRenderer.h>

#include <vxr/images/VXRPagePixels.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/pictures/PICTImageRep.h>

namespace vxr {

VXRPICTRenderer::VXRPICTRenderer() = default;

VXRPICTRenderer::~VXRPICTRenderer() = default;

std::shared_ptr<VXRPICTRenderer> VXRPICTRenderer::imageRendererWithPICTData(
    std::shared_ptr<const Data> picture, std::shared_ptr<const PDFDocument> converted)
{
    auto renderer = std::make_shared<VXRPICTRenderer>();
    renderer->setPICTData(std::move(picture), std::move(converted));
    return renderer;
}

void VXRPICTRenderer::setPICTData(
    std::shared_ptr<const Data> picture, std::shared_ptr<const PDFDocument> converted)
{
    if (!converted) {
        if (const auto rep = PICTImageRep::imageRepWithData(picture))
            converted = rep->document();
    }
    mPICTData = std::move(picture);
    mPixels = converted ? VXRPagePixels::pixelsOfDocument(converted) : nullptr;
    setNaturalSize(converted ? converted->box(PDFBox::Media).size : Size {});
}

void VXRPICTRenderer::drawInRect(const Rect& rect)
{
    Context& context = currentDrawingPort();
    context.setInterpolationQuality(interpolation());
    if (mPixels)
        setAwaitsPixels(
            mPixels->draw(context, rect, sharpnessFor(dynamicallyTransforming(), mayDrawLater())));
}

void VXRPICTRenderer::drawTileInContext(Context& context)
{
    if (mPixels)
        mPixels->draw(context, naturalRect(), sharpnessFor(dynamicallyTransforming(), false));
}

} // namespace vxr
