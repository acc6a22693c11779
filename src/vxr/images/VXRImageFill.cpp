#include <vxr/images/VXRImageFill.h>

#include <vxr/fills/PaintBlackAndWhite.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/host/utility/VXUAssertionHandler.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRBitmapRenderingQualityInfo.h>
#include <vxr/images/VXRDummyImageRenderer.h>
#include <vxr/images/VXRImageRepRenderer.h>
#include <vxr/images/VXRPDFRenderer.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/pictures/PDFDocument.h>
#include <vxr/protocols/VXRPaintedShape.h>

#include <algorithm>

namespace vxr {

namespace {

/// Draws upright in a flipped space: y runs up from `height` below the origin.
void flip(Context& context, float height)
{
    context.translate(0, height);
    context.scale(1, -1);
}

} // namespace

VXRImageFill::VXRImageFill() = default;

VXRImageFill::~VXRImageFill()
{
    if (mRenderer && mRenderer->owner() == this)
        mRenderer->setOwner(nullptr);
}

std::shared_ptr<VXRImageFill> VXRImageFill::imageFillWithImageRenderer(
    std::shared_ptr<VXRImageRenderer> renderer)
{
    auto fill = std::make_shared<VXRImageFill>();
    fill->setRenderer(std::move(renderer));
    return fill;
}

std::shared_ptr<VXRImageFill> VXRImageFill::imageFillWithImageRep(std::shared_ptr<const ImageRep> rep)
{
    return imageFillWithImageRenderer(VXRImageRepRenderer::imageRendererWithImageRep(std::move(rep)));
}

std::shared_ptr<VXRImageFill> VXRImageFill::imageFillWithImageRef(std::shared_ptr<const Image> image)
{
    return imageFillWithImageRenderer(VXRBitmapRenderer::imageRendererWithImageRef(std::move(image)));
}

std::shared_ptr<VXRImageFill> VXRImageFill::imageFillWithPDFRef(std::shared_ptr<const PDFDocument> document)
{
    return imageFillWithImageRenderer(VXRPDFRenderer::imageRendererWithPDFRef(std::move(document)));
}

std::shared_ptr<VXRImageFill> VXRImageFill::imageFillWithMissingImageOfSize(Size size)
{
    return imageFillWithImageRenderer(VXRDummyImageRenderer::missingImageRendererWithSize(size));
}

std::shared_ptr<VXRImageFill> VXRImageFill::imageFillWithBrokenImageOfSize(Size size)
{
    return imageFillWithImageRenderer(VXRDummyImageRenderer::brokenImageRendererWithSize(size));
}

void VXRImageFill::setRenderer(std::shared_ptr<VXRImageRenderer> renderer)
{
    if (mRenderer && mRenderer->owner() == this)
        mRenderer->setOwner(nullptr);
    mRenderer = std::move(renderer);
    if (mRenderer)
        mRenderer->setOwner(this);
}

VXRCanvasRole* VXRImageFill::canvas() const { return mOwner ? mOwner->canvas() : nullptr; }

bool VXRImageFill::shouldAntialias() const { return !(mOwner && mOwner->axisAlignment().value_or(false)); }

Size VXRImageFill::naturalSize() const { return mRenderer ? mRenderer->naturalSize() : Size {}; }

Size VXRImageFill::transformForShape(VXRPaintedShape& shape) const
{
    currentDrawingPort().concatTransform(shape.imageFillTransform().value_or(shape.transform()));
    return shape.naturalSize();
}

void VXRImageFill::paintShape(VXRPaintedShape& shape)
{
    if (paintedBlackAndWhite(shape))
        return;
    StateSaver saved(currentDrawingPort());
    shape.clip();
    paintRect({ { 0, 0 }, transformForShape(shape) });
}

Size VXRImageFill::scaledSize(Size area) const
{
    const Size natural = naturalSize();
    if (!(natural.width > 0 && natural.height > 0))
        return natural;
    const float sx = area.width / natural.width, sy = area.height / natural.height;
    const float scale = mTechnique == VXRImageFillScaleToFill ? std::max(sx, sy) : std::min(sx, sy);
    return { natural.width * scale, natural.height * scale };
}

Rect VXRImageFill::placementInRect(const Rect& rect) const
{
    switch (mTechnique) {
    case VXRImageFillStretch:
        return rect;
    case VXRImageFillTile:
        return { rect.origin, naturalSize() };
    case VXRImageFillNaturalSize:
    case VXRImageFillScaleToFill:
    case VXRImageFillScaleToFit: {
        const Size size = mTechnique == VXRImageFillNaturalSize ? naturalSize() : scaledSize(rect.size);
        return { { rect.minX() + (rect.size.width - size.width) * 0.5f,
                     rect.minY() + (rect.size.height - size.height) * 0.5f },
            size };
    }
    default:
        return {};
    }
}

void VXRImageFill::paintRect(const Rect& rect)
{
    Context& context = currentDrawingPort();
    StateSaver saved(context);
    const Size natural = naturalSize();
    const float x = rect.minX(), y = rect.minY(), width = rect.size.width, height = rect.size.height;
    switch (mTechnique) {
    case VXRImageFillNaturalSize: {
        context.clipToRect(rect);
        const Point place { x + (width - natural.width) * 0.5f, -(y + (height - natural.height) * 0.5f) };
        flip(context, natural.height);
        const Point error = _errorForPointContext(place, context);
        if (mRenderer)
            mRenderer->drawInRect({ { place.x - error.x, place.y - error.y }, natural });
        break;
    }
    case VXRImageFillStretch:
        context.translate(x, y);
        flip(context, height);
        context.translate(-x, -y);
        if (mRenderer)
            mRenderer->drawInRect(rect);
        break;
    case VXRImageFillTile:
        _paintTiledFillInRect(rect);
        break;
    case VXRImageFillScaleToFill:
    case VXRImageFillScaleToFit: {
        const Size drawn = scaledSize(rect.size);
        Point place { x, -y };
        if (natural.width > 0 && natural.height > 0) {
            const float sx = width / natural.width, sy = height / natural.height;
            const bool heightDecides = mTechnique == VXRImageFillScaleToFill ? sy > sx : sx > sy;
            if (heightDecides)
                place.x = x + (width - drawn.width) * 0.5f;
            else
                place.y = -y - (height - drawn.height) * 0.5f;
        }
        context.clipToRect(rect);
        flip(context, drawn.height);
        if (mRenderer)
            mRenderer->drawInRect({ place, drawn });
        break;
    }
    default:
        break;
    }
}

// Exact for unit scale, the case that it serves: it is not divided by the scale.
Point VXRImageFill::_errorForPointContext(Point p, const Context& context)
{
    const AffineTransform t = context.currentTransform();
    const Point device = t.map(p);
    Point error { device.x - VXRRound(device.x), device.y - VXRRound(device.y) };
    if (t.m11 < 0)
        error.x = -error.x;
    if (t.m22 < 0)
        error.y = -error.y;
    return error;
}

void VXRImageFill::drawSwatchInRect(const Rect& rect) const
{
    if (mRenderer)
        mRenderer->drawInRect(rect);
}

void VXRImageFill::setDynamicallyTransforming(bool flag)
{
    if (mRenderer)
        mRenderer->setDynamicallyTransforming(flag);
}

bool VXRImageFill::drawsBitmap() const { return dynamic_cast<const VXRBitmapRenderer*>(mRenderer.get()); }

void VXRImageFill::addToRenderingQualityInfoSize(VXRBitmapRenderingQualityInfo& info, Size size)
{
    const auto* renderer = dynamic_cast<const VXRBitmapRenderer*>(mRenderer.get());
    if (!renderer) {
        VXUAssertionHandler::currentHandler().handleFailureInFile(
            "VXRImageFill.cpp", __LINE__, "Bad renderer class");
        return;
    }
    switch (mTechnique) {
    case VXRImageFillNaturalSize:
    case VXRImageFillTile:
        info.addRenderer(*renderer);
        break;
    case VXRImageFillStretch:
        info.addRendererNaturalSize(*renderer, size);
        break;
    case VXRImageFillScaleToFill:
    case VXRImageFillScaleToFit:
        info.addRendererNaturalSize(*renderer, scaledSize(size));
        break;
    default:
        break;
    }
}

void VXRImageFill::addBitmapsToRenderingQualityInfoShape(
    VXRBitmapRenderingQualityInfo& info, VXRPaintedShape& shape)
{
    if (!drawsBitmap())
        return;
    StateSaver saved(currentDrawingPort());
    addToRenderingQualityInfoSize(info, transformForShape(shape));
}

void VXRImageFill::addBitmapsToRenderingQualityInfoSizeTransform(
    VXRBitmapRenderingQualityInfo& info, Size size, const AffineTransform& transform)
{
    if (!drawsBitmap())
        return;
    StateSaver saved(currentDrawingPort());
    currentDrawingPort().concatTransform(transform);
    addToRenderingQualityInfoSize(info, size);
}

} // namespace vxr
