#include <vxr/images/VXRImageRepRenderer.h>

#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/pictures/ImageRep.h>

namespace vxr {

VXRImageRepRenderer::VXRImageRepRenderer() = default;

VXRImageRepRenderer::~VXRImageRepRenderer() = default;

std::shared_ptr<VXRImageRepRenderer> VXRImageRepRenderer::imageRendererWithImageRep(
    std::shared_ptr<const ImageRep> rep)
{
    auto renderer = std::make_shared<VXRImageRepRenderer>();
    renderer->setImageRep(std::move(rep));
    return renderer;
}

void VXRImageRepRenderer::setImageRep(std::shared_ptr<const ImageRep> rep)
{
    mImageRep = std::move(rep);
    setNaturalSize(mImageRep ? mImageRep->size() : Size {});
}

void VXRImageRepRenderer::drawInRect(const Rect& rect)
{
    currentDrawingPort().setInterpolationQuality(interpolation());
    if (mImageRep)
        mImageRep->drawInRect(rect);
}

void VXRImageRepRenderer::drawTileInContext(Context& context)
{
    const Size half { naturalSize().width / 2, naturalSize().height / 2 };
    context.setShouldAntialias(true);
    context.setFillColor(ColorValue::rgb(1, 0, 0));
    context.fillRect({ { 0, 0 }, half });
    context.fillRect({ { half.width, half.height }, half });
}

} // namespace vxr
