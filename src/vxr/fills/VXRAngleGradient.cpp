#include <vxr/fills/VXRAngleGradient.h>

#include <vxr/fills/PaintBlackAndWhite.h>
#include <vxr/fills/VXRShadingRep.h>
#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/protocols/VXRPaintedShape.h>

#include <cmath>
#include <numbers>

namespace vxr {

namespace {

AffineTransform rotationAbout(Point center, float angle)
{
    return AffineTransform {}.translate(center.x, center.y).rotate(angle).translate(-center.x, -center.y);
}

} // namespace

VXRAngleGradient::VXRAngleGradient() = default;

VXRAngleGradient::VXRAngleGradient(
    std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor, int type)
    : VXRGradient(std::move(startColor), std::move(endColor), type)
{
}

VXRAngleGradient::~VXRAngleGradient() = default;

std::shared_ptr<VXRAngleGradient> VXRAngleGradient::linearGradientWithStartColorEndColor(
    std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor)
{
    return std::make_shared<VXRAngleGradient>(std::move(startColor), std::move(endColor), VXRLinearGradient);
}

std::shared_ptr<VXRAngleGradient> VXRAngleGradient::radialGradientWithStartColorEndColor(
    std::shared_ptr<Color> startColor, std::shared_ptr<Color> endColor)
{
    return std::make_shared<VXRAngleGradient>(std::move(startColor), std::move(endColor), VXRRadialGradient);
}

float VXRAngleGradient::gradientAngleInDegrees() const
{
    return static_cast<float>(_angle * 57.29577951308232);
}

void VXRAngleGradient::setGradientAngleInDegrees(float degrees)
{
    setGradientAngle(static_cast<float>(degrees * std::numbers::pi / 180));
}

// The rectangle is rotated so that the direction lies along x. Its corners then form two pairs of opposites
// about the centre; the member of a pair that lies closer to the axis reaches further along it.
float VXRAngleGradient::_bestGradientLengthForRectAtAngle(const Rect& rect, float angle) const
{
    const Point middle { rect.size.width * 0.5f, rect.size.height * 0.5f };
    const AffineTransform turn = rotationAbout(middle, -angle);
    const Point p0 = turn.map(Point { 0, 0 });
    const Point p1 = turn.map(Point { rect.size.width, 0 });
    if (p0.y == middle.y)
        return VXRDistance(p0, middle);
    if (p1.y == middle.y)
        return VXRDistance(p1, middle);
    const Point corner = std::abs(p0.y - middle.y) < std::abs(p1.y - middle.y) ? p0 : p1;
    return VXRDistance(middle, { corner.x, middle.y });
}

float VXRAngleGradient::_bestGradientLengthForShapeAtAngle(const VXRPaintedShape& shape, float angle) const
{
    const auto outline = shape.path();
    if (!outline)
        return 0;
    const auto path = outline->transformedBy(shape.transform());
    path->transformUsingAffineTransform(rotationAbout(shape.center(), -shape.angle()));
    return _bestGradientLengthForRectAtAngle(path->bounds(), angle);
}

void VXRAngleGradient::drawShadingAround(Context& context, Point center, float length) const
{
    const auto offset = [&](double angle) {
        return Point { static_cast<float>(length * std::cos(angle)),
            static_cast<float>(length * std::sin(angle)) };
    };
    const Point p1 = VXRAddPoints(center, offset(-_angle));
    const Point p2 = VXRAddPoints(center, offset(std::numbers::pi - _angle));
    _setAlpha(context);
    drawShading(context, p2, -_angle, VXRDistance(p2, p1));
}

/// The ramp over `area`, rotated about its centre and wide enough to cover it. Draws nothing without colours.
void VXRAngleGradient::drawRamp(Context& context, const Rect& area) const
{
    const auto start = firstColor(), end = lastColor();
    if (!start || !end)
        return;
    const Point middle = VXRCenterOfRect(area);
    const Rect extent = boundsOfTransformedRect(rotationAbout(middle, _angle), area);
    context.concatTransform(rotationAbout(middle, -_angle));
    context.setInterpolationQuality(InterpolationQuality::High);
    context.drawImage(extent, *VXRShadingRep::shadingWithStartEnd(start, end)->imageRef());
}

void VXRAngleGradient::paintRect(const Rect& rect)
{
    Context& context = currentDrawingPort();
    const StateSaver saved(context);
    context.clipToRect(rect);
    if (usesQuartzShadings())
        drawShadingAround(context, VXRCenterOfRect(rect), _bestGradientLengthForRectAtAngle(rect, -_angle));
    else
        drawRamp(context, rect);
}

void VXRAngleGradient::paintShape(VXRPaintedShape& shape)
{
    if (paintedBlackAndWhite(shape))
        return;
    Context& context = currentDrawingPort();
    const StateSaver saved(context);
    shape.clip();
    if (usesQuartzShadings()) {
        drawShadingAround(context, shape.center(), _bestGradientLengthForShapeAtAngle(shape, -_angle));
        return;
    }
    const Size natural = shape.naturalSize();
    context.concatTransform(shape.gradientTransform().value_or(shape.transform()));
    drawRamp(context, insetRect({ { 0, 0 }, natural }, -1, -1));
}

bool VXRAngleGradient::isEqual(const Object& other) const
{
    const auto* gradient = dynamic_cast<const VXRAngleGradient*>(&other);
    return gradient && VXRGradient::isEqual(other) && _angle == gradient->_angle;
}

std::shared_ptr<VXRGradient> VXRAngleGradient::copyWithZone() const
{
    auto copy = std::make_shared<VXRAngleGradient>();
    copyGradientTo(*copy);
    copy->setGradientAngle(_angle);
    return copy;
}

} // namespace vxr
