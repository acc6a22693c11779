#include <vxr/geometry/Color.h>

#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRPaintedShape.h>

// Setting colours in the current drawing port.

namespace vxr {

namespace {

/// A colour in the port's own form. Uses the platform's colour spaces regardless of the substitution switch.
ColorValue valueOfColor(const Color& color)
{
    static const auto genericGray = ColorSpace::createWithDefaultProfile(ColorModel::Gray);
    static const auto genericRGB = ColorSpace::createWithDefaultProfile(ColorModel::RGB);
    const std::string_view name = color.colorSpaceName();
    const float a = color.alphaComponent();
    switch (color.componentCount()) {
    case 1:
        return { name == NSDeviceWhiteColorSpace ? ColorSpace::deviceGray() : genericGray,
            { color.component(0), a } };
    case 3:
        return { name == NSDeviceRGBColorSpace ? ColorSpace::deviceRGB() : genericRGB,
            { color.component(0), color.component(1), color.component(2), a } };
    case 4:
        return { ColorSpace::deviceCMYK(),
            { color.component(0), color.component(1), color.component(2), color.component(3), a } };
    default:
        return { genericGray, { 0, a } };
    }
}

} // namespace

void Color::set() const
{
    Context& port = currentDrawingPort();
    const ColorValue value = valueOfColor(*this);
    port.setFillColor(value);
    port.setStrokeColor(value);
}

void Color::drawSwatchInRect(const Rect& rect) const
{
    VXRSetColor(*this);
    currentDrawingPort().fillRect(rect);
}

void Color::paintShape(VXRPaintedShape& shape)
{
    const VXRCanvasRole* canvas = shape.canvas();
    if (canvas && canvas->rendersBlackAndWhite())
        VXRSetColor(*whiteColor());
    else if (mAlpha == 0 && canvas && canvas->renderingDestination() == VXRDestinationNonScreen)
        return;
    else
        VXRSetColor(*this);
    shape.transformedPath()->fill();
}

void Color::paintRect(const Rect& rect)
{
    if (mAlpha == 0)
        return;
    VXRSetColor(*this);
    currentDrawingPort().fillRect(rect);
}

} // namespace vxr
