#include <vxr/fills/VXRTransformGradient.h>

#include <vxr/fills/PaintBlackAndWhite.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/protocols/VXRPaintedShape.h>

namespace vxr {

VXRTransformGradient::VXRTransformGradient() = default;

VXRTransformGradient::VXRTransformGradient(
    std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor, int type)
    : VXRGradient(std::move(startColor), std::move(endColor), type)
{
}

VXRTransformGradient::~VXRTransformGradient() = default;

std::shared_ptr<VXRTransformGradient> VXRTransformGradient::linearGradientWithStartColorEndColor(
    std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor)
{
    return std::make_shared<VXRTransformGradient>(
        std::move(startColor), std::move(endColor), VXRLinearGradient);
}

std::shared_ptr<VXRTransformGradient> VXRTransformGradient::radialGradientWithStartColorEndColor(
    std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor)
{
    return std::make_shared<VXRTransformGradient>(
        std::move(startColor), std::move(endColor), VXRRadialGradient);
}

void VXRTransformGradient::drawAlongAxis(Context& context) const
{
    context.concatTransform(_transform);
    _setAlpha(context);
    drawShading(
        context, _start, VXRAngleFromDelta(_end.x - _start.x, _end.y - _start.y), VXRDistance(_start, _end));
}

void VXRTransformGradient::paintRect(const Rect& rect)
{
    Context& context = currentDrawingPort();
    const StateSaver saved(context);
    context.clipToRect(rect);
    drawAlongAxis(context);
}

void VXRTransformGradient::paintShape(VXRPaintedShape& shape)
{
    if (paintedBlackAndWhite(shape))
        return;
    Context& context = currentDrawingPort();
    const StateSaver saved(context);
    shape.clip();
    context.concatTransform(shape.transform());
    drawAlongAxis(context);
}

bool VXRTransformGradient::isEqual(const Object& other) const
{
    if (this == &other)
        return true;
    const auto* gradient = dynamic_cast<const VXRTransformGradient*>(&other);
    return gradient && VXRGradient::isEqual(other) && _start == gradient->_start && _end == gradient->_end
        && _transform == gradient->_transform;
}

std::shared_ptr<VXRGradient> VXRTransformGradient::copyWithZone() const
{
    auto copy = std::make_shared<VXRTransformGradient>();
    copyGradientTo(*copy);
    copy->setStartPoint(_start);
    copy->setEndPoint(_end);
    copy->setTransform(_transform);
    return copy;
}

} // namespace vxr
