#include <vxr/images/VXRDummyImageRenderer.h>

#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/images/PlaceholderIcons.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/pictures/PDFDocument.h>
#include <vxr/protocols/VXRImageRendererOwner.h>

namespace vxr {

VXRDummyImageRenderer::VXRDummyImageRenderer(Size size, const PDFDocument& icon)
    : mIcon(&icon)
{
    setNaturalSize(size);
}

VXRDummyImageRenderer::~VXRDummyImageRenderer() = default;

std::shared_ptr<VXRDummyImageRenderer> VXRDummyImageRenderer::missingImageRendererWithSize(Size size)
{
    return std::make_shared<VXRDummyImageRenderer>(size, missingImageIcon());
}

std::shared_ptr<VXRDummyImageRenderer> VXRDummyImageRenderer::brokenImageRendererWithSize(Size size)
{
    return std::make_shared<VXRDummyImageRenderer>(size, brokenImageIcon());
}

const PDFDocument& VXRDummyImageRenderer::missingImageIcon()
{
    static const auto icon = placeholderIconNamed("missingImageIcon");
    return *icon;
}

const PDFDocument& VXRDummyImageRenderer::brokenImageIcon()
{
    static const auto icon = placeholderIconNamed("brokenImageIcon");
    return *icon;
}

std::shared_ptr<Color> VXRDummyImageRenderer::fillColor()
{
    return Color::colorWithCalibratedWhite(0.75f, 0.25f);
}

std::shared_ptr<Color> VXRDummyImageRenderer::strokeColor()
{
    return Color::colorWithCalibratedWhite(0.3f, 0.75f);
}

void VXRDummyImageRenderer::_drawInRectContext(const Rect& rect, Context& context) const
{
    const float scale = viewScale();
    const bool showsIcon = !isStatic() || isPrinting();
    StateSaver saved(context);
    context.setShouldAntialias(true);
    LineStyle line = context.lineStyle();
    line.width = 1 / scale; // one device pixel at any zoom
    context.setLineStyle(line);
    context.setFillColor(VXRCGColorWithNSColor(*fillColor()));
    context.setStrokeColor(VXRCGColorWithNSColor(*strokeColor()));
    context.fillRect(rect);
    context.beginPath();
    context.addRect(rect);
    context.strokePath();
    context.beginPath();
    context.moveTo(rect.origin);
    context.lineTo({ rect.maxX(), rect.maxY() });
    context.moveTo({ rect.maxX(), rect.minY() });
    context.lineTo({ rect.minX(), rect.maxY() });
    context.strokePath();
    if (!showsIcon)
        return;
    const Size art = mIcon->box(PDFBox::Art).size;
    const float halfWidth = art.width * 0.5f / scale, halfHeight = art.height * 0.5f / scale;
    if (rect.size.width > 2 * halfWidth && rect.size.height > 2 * halfHeight)
        mIcon->drawAsVectors(context,
            { rect.minX() + rect.size.width / 2 - halfWidth, rect.minY() + rect.size.height / 2 - halfHeight,
                2 * halfWidth, 2 * halfHeight });
}

void VXRDummyImageRenderer::drawInRect(const Rect& rect)
{
    Context& context = currentDrawingPort();
    context.setInterpolationQuality(interpolation());
    _drawInRectContext(rect, context);
}

void VXRDummyImageRenderer::drawTileInContext(Context& context)
{
    _drawInRectContext(naturalRect(), context);
}

bool VXRDummyImageRenderer::wantsToRenderDynamically() const { return owner() && owner()->isRenderable(); }

} // namespace vxr
