#include <vxr/images/VXRBitmapRenderer.h>

#include <vxr/images/VXRBitmapRenderingQualityInfo.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/BitmapImageRep.h>
#include <vxr/protocols/VXRImageRendererOwner.h>

namespace vxr {

VXRBitmapRenderer::VXRBitmapRenderer() = default;

VXRBitmapRenderer::~VXRBitmapRenderer() = default;

std::shared_ptr<VXRBitmapRenderer> VXRBitmapRenderer::imageRendererWithImageRef(
    std::shared_ptr<const Image> image)
{
    return imageRendererWithImageRefImageRep(std::move(image), nullptr);
}

std::shared_ptr<VXRBitmapRenderer> VXRBitmapRenderer::imageRendererWithImageRefImageRep(
    std::shared_ptr<const Image> image, std::shared_ptr<const BitmapImageRep> rep)
{
    auto renderer = std::make_shared<VXRBitmapRenderer>();
    renderer->setImageRef(std::move(image));
    renderer->mImageRep = std::move(rep);
    return renderer;
}

void VXRBitmapRenderer::setImageRef(std::shared_ptr<const Image> image)
{
    mImageRef = std::move(image);
    setNaturalSize(mImageRef
            ? Size { static_cast<float>(mImageRef->width()), static_cast<float>(mImageRef->height()) }
            : Size {});
}

std::shared_ptr<const Image> VXRBitmapRenderer::drawingImageRef() const
{
    if (const VXRBitmapRenderingQualityInfo* info = bitmapRenderingQualityInfo(); info && mImageRef) {
        if (auto reduced = info->degradedImageRefForImageRef(*mImageRef))
            return reduced;
    }
    return mCompressedImageRef && isPrinting() ? mCompressedImageRef : mImageRef;
}

void VXRBitmapRenderer::drawInRect(const Rect& rect)
{
    Context& context = currentDrawingPort();
    context.setInterpolationQuality(interpolation());
    StateSaver saved(context);
    if (owner() && !owner()->shouldAntialias())
        context.setShouldAntialias(false);
    if (const auto image = drawingImageRef())
        context.drawImage(rect, *image);
}

void VXRBitmapRenderer::drawTileInContext(Context& context)
{
    context.setInterpolationQuality(interpolation());
    if (const auto image = drawingImageRef())
        context.drawImage(naturalRect(), *image);
}

} // namespace vxr
