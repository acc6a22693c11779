#include <vxr/images/VXRPictureRenderer.h>

#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRPDFRenderer.h>
#include <vxr/images/VXRReducedImages.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/BitmapImageRep.h>
#include <vxr/platform/pictures/PDFDocument.h>
#include <vxr/platform/pictures/PlatformImage.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

/// How often the bitmap may be halved and still has a pixel for each of the context's.
int halvingsFor(const Context& context, const Rect& rect, Size pixels)
{
    const AffineTransform t = context.currentTransform();
    double scale = std::max(std::hypot(t.m11, t.m12) * std::abs(rect.size.width) / pixels.width,
        std::hypot(t.m21, t.m22) * std::abs(rect.size.height) / pixels.height);
    int halvings = 0;
    for (; scale > 0 && scale <= 0.5; scale *= 2)
        ++halvings;
    return halvings;
}

} // namespace

VXRPictureRenderer::VXRPictureRenderer() = default;

VXRPictureRenderer::~VXRPictureRenderer() = default;

std::shared_ptr<VXRPictureRenderer> VXRPictureRenderer::rendererWithBinaryCrop(
    std::shared_ptr<VXRImageBinary> binary, std::optional<Rect> crop)
{
    auto renderer = std::make_shared<VXRPictureRenderer>();
    renderer->mBinary = std::move(binary);
    renderer->mCrop = crop;
    renderer->setNaturalSize(renderer->crop().size);
    return renderer;
}

Rect VXRPictureRenderer::crop() const
{
    return mCrop.value_or(Rect { { 0, 0 }, mBinary->naturalImageSize() });
}

bool VXRPictureRenderer::wantsToRenderDynamically() const
{
    return mBinary->isMissing() || mBinary->isCorrupted();
}

std::shared_ptr<VXRImageRenderer> VXRPictureRenderer::rendererForRect(
    const Context& context, const Rect& whole) const
{
    const Size natural = mBinary->naturalImageSize();
    const bool reduces = !isPrinting() && !dynamicallyTransforming();
    const int halvings = reduces ? halvingsFor(context, whole, natural) : 0;
    if (halvings > 0) {
        if (auto reduced = VXRReducedImages::imageOfBinary(*mBinary, halvings)) {
            auto renderer = VXRBitmapRenderer::imageRendererWithImageRef(std::move(reduced));
            renderer->setNaturalSize(natural);
            return renderer;
        }
    }
    auto renderer = mBinary->imageRenderer();
    if (const auto bitmap = std::dynamic_pointer_cast<VXRBitmapRenderer>(renderer); bitmap && halvings > 0) {
        if (auto reduced = bitmap->imageRef()->reduced(halvings)) {
            VXRReducedImages::keep(mBinary, reduced);
            bitmap->setImageRef(std::move(reduced));
            bitmap->setNaturalSize(natural);
        }
    }
    return renderer;
}

void VXRPictureRenderer::drawPart(Context& context, const Rect& rect)
{
    const Rect part = crop();
    if (part.isEmpty() || rect.isEmpty())
        return;
    const Size natural = mBinary->naturalImageSize();
    const float sx = rect.size.width / part.size.width, sy = rect.size.height / part.size.height;
    const Rect whole { { rect.minX() - part.minX() * sx,
                           rect.maxY() + part.minY() * sy - natural.height * sy },
        { natural.width * sx, natural.height * sy } };
    const auto renderer = rendererForRect(context, mCrop ? whole : rect);
    renderer->setOwner(owner());
    renderer->setDynamicallyTransforming(dynamicallyTransforming());
    renderer->setMayDrawLater(mayDrawLater() && !isPrinting());
    if (!mCrop) {
        renderer->drawInRect(rect);
    } else {
        StateSaver saved(context);
        context.clipToRect(rect);
        renderer->drawInRect(whole);
    }
    setAwaitsPixels(renderer->awaitsPixels());
}

void VXRPictureRenderer::drawInRect(const Rect& rect) { drawPart(currentDrawingPort(), rect); }

void VXRPictureRenderer::drawTileInContext(Context& context)
{
    const CurrentContextScope current(context, GraphicsContext::currentContextDrawingToScreen(), false);
    drawPart(context, naturalRect());
}

bool VXRPictureRenderer::showsPoint(Point point) const
{
    const auto renderer = mBinary->imageRenderer();
    const auto bitmap = std::dynamic_pointer_cast<VXRBitmapRenderer>(renderer);
    if (bitmap && bitmap->imageRef()->isOpaque())
        return true;
    // The one pixel that the point is in, as it is drawn.
    const auto pixel = PlatformImage::imageWithSizeDrawing({ 1, 1 }, [&](Context&) {
        const Size natural = renderer->naturalSize();
        renderer->drawInRect({ { -std::floor(point.x), 1 + std::floor(point.y) - natural.height }, natural });
    });
    const auto rep = std::dynamic_pointer_cast<const BitmapImageRep>(pixel->representation());
    return rep->planes().planes[0][3] > 0;
}

std::shared_ptr<const Image> VXRPictureRenderer::overview(int mostPixels) const
{
    const auto renderer = mBinary->imageRenderer();
    if (const auto bitmap = std::dynamic_pointer_cast<VXRBitmapRenderer>(renderer)) {
        const auto& image = bitmap->imageRef();
        int halvings = 0;
        while (std::max(image->width(), image->height()) >> halvings > mostPixels)
            ++halvings;
        return halvings > 0 ? image->reduced(halvings) : image;
    }
    if (mBinary->isMissing() || mBinary->isCorrupted())
        return nullptr;
    const Size natural = renderer->naturalSize();
    const float scale = static_cast<float>(mostPixels) / std::max(natural.width, natural.height);
    const Size size { std::max(1.0f, natural.width * scale), std::max(1.0f, natural.height * scale) };
    const auto drawn = PlatformImage::imageWithSizeDrawing(size, [&](Context&) {
        renderer->drawInRect({ { 0, 0 }, size });
    });
    const auto rep
        = drawn ? std::dynamic_pointer_cast<const BitmapImageRep>(drawn->representation()) : nullptr;
    return rep ? rep->image(nullptr) : nullptr;
}

} // namespace vxr
