#include <vxr/filters/VXRFilteredImageRenderer.h>

#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRPictureRenderer.h>
#include <vxr/platform/graphics/GraphicsContext.h>

namespace vxr {

VXRFilteredImageRenderer::VXRFilteredImageRenderer() = default;

VXRFilteredImageRenderer::~VXRFilteredImageRenderer() = default;

std::shared_ptr<VXRFilteredImageRenderer> VXRFilteredImageRenderer::rendererWithFilteredImageCrop(
    std::shared_ptr<VXRFilteredImage> image, std::optional<Rect> crop)
{
    auto renderer = std::make_shared<VXRFilteredImageRenderer>();
    renderer->mFilteredImage = std::move(image);
    renderer->mCrop = crop;
    renderer->setNaturalSize(renderer->crop().size);
    return renderer;
}

Rect VXRFilteredImageRenderer::crop() const
{
    return mCrop.value_or(Rect { { 0, 0 }, mFilteredImage->naturalSize() });
}

bool VXRFilteredImageRenderer::wantsToRenderDynamically() const
{
    const auto& binary = mFilteredImage->imageBinary();
    return binary && (binary->isMissing() || binary->isCorrupted());
}

/// A picture that is as it is, or none at all, is drawn by its own renderer: as vectors, as the JPEG that it
/// is, as a placeholder.
std::shared_ptr<VXRImageRenderer> VXRFilteredImageRenderer::renderer() const
{
    const auto& binary = mFilteredImage->imageBinary();
    auto image = binary && mFilteredImage->drawsUnfiltered() ? nullptr : mFilteredImage->drawingImage();
    if (!image)
        return binary ? VXRPictureRenderer::rendererWithBinaryCrop(binary) : nullptr;
    auto renderer = VXRBitmapRenderer::imageRendererWithImageRef(std::move(image));
    renderer->setNaturalSize(mFilteredImage->naturalSize());
    return renderer;
}

void VXRFilteredImageRenderer::drawPart(Context& context, const Rect& rect)
{
    const Rect part = crop();
    const auto drawing = renderer();
    if (part.isEmpty() || rect.isEmpty() || !drawing)
        return;
    drawing->setOwner(owner());
    drawing->setDynamicallyTransforming(dynamicallyTransforming());
    if (!mCrop)
        return drawing->drawInRect(rect);
    const Size natural = mFilteredImage->naturalSize();
    const float sx = rect.size.width / part.size.width, sy = rect.size.height / part.size.height;
    const StateSaver saved(context);
    context.clipToRect(rect);
    drawing->drawInRect(
        { { rect.minX() - part.minX() * sx, rect.maxY() + part.minY() * sy - natural.height * sy },
            { natural.width * sx, natural.height * sy } });
}

void VXRFilteredImageRenderer::drawInRect(const Rect& rect) { drawPart(currentDrawingPort(), rect); }

void VXRFilteredImageRenderer::drawTileInContext(Context& context)
{
    const CurrentContextScope current(context, GraphicsContext::currentContextDrawingToScreen(), false);
    drawPart(context, naturalRect());
}

} // namespace vxr
