#include "FocalGradient.h"

#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Shading.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRPaintedShape.h>

namespace app {

FocalGradient::FocalGradient(
    std::shared_ptr<vxr::Color> first, std::shared_ptr<vxr::Color> last, vxr::Point focus, float focusRadius)
    : VXRTransformGradient(std::move(first), std::move(last), vxr::VXRRadialGradient)
    , mFocus(focus)
    , mFocusRadius(focusRadius)
{
}

FocalGradient::~FocalGradient() = default;

void FocalGradient::paintShape(vxr::VXRPaintedShape& shape)
{
    if (const vxr::VXRCanvasRole* canvas = shape.canvas(); canvas && canvas->rendersBlackAndWhite()) {
        vxr::VXRSetColor(*vxr::Color::whiteColor());
        shape.transformedPath()->fill();
        return;
    }
    vxr::Context& context = vxr::currentDrawingPort();
    const vxr::StateSaver saved(context);
    shape.clip();
    context.concatTransform(shape.transform());
    drawInto(context);
}

void FocalGradient::paintRect(const vxr::Rect& rect)
{
    vxr::Context& context = vxr::currentDrawingPort();
    const vxr::StateSaver saved(context);
    context.clipToRect(rect);
    drawInto(context);
}

void FocalGradient::drawInto(vxr::Context& context)
{
    if (!mShading) {
        // The function is sampled at once, so it doesn't outlive this object.
        const auto function = std::make_shared<vxr::ShadingFunction>(
            static_cast<VXRGradient*>(this), vxr::_evaluateGradient, nullptr);
        std::vector<float> jumps;
        for (const auto& stop : gradientStops())
            jumps.push_back(stop->fraction());
        mShading = vxr::Shading::createRadial(
            vxr::VXRGenericRGBColorSpace(), mFocus, mFocusRadius, {}, 1, function, true, true, jumps);
    }
    const vxr::Point center = startPoint();
    const float radius = vxr::VXRDistance(center, endPoint());
    context.concatTransform(transform());
    _setAlpha(context);
    context.translate(center.x, center.y);
    context.scale(radius, radius);
    context.drawShading(*mShading);
}

} // namespace app
