#include <vxr/fills/VXRShadow.h>

#include <vxr/fills/ColorCoding.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/host/archiving/VXACoder.h>
#include <vxr/host/archiving/VXADecoder.h>
#include <vxr/platform/graphics/GraphicsContext.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vxr {

namespace {

constexpr double radiansPerDegree = 0.017453292519943295;

} // namespace

std::shared_ptr<VXRShadow> VXRShadow::initWithAngleOffsetRadiusOpacityColor(
    float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color)
{
    // Black is recognised by identity: a different object of equal colour makes an ordinary shadow.
    if (angle == 0 && offset == 0 && radius == 0 && opacity == 0 && (!color || color == Color::blackColor()))
        return nullShadow();
    return std::shared_ptr<VXRShadow>(new VXRShadow(angle, offset, radius, opacity, std::move(color)));
}

std::shared_ptr<VXRShadow> VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
    float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color)
{
    return initWithAngleOffsetRadiusOpacityColor(angle, offset, radius, opacity, std::move(color));
}

std::shared_ptr<VXRShadow> VXRShadow::nullShadow()
{
    static const std::shared_ptr<VXRShadow> shared(new VXRShadow);
    return shared;
}

VXRShadow::VXRShadow(float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color)
    : mRadius(radius)
    , mOpacity(opacity)
    , mColor(color ? std::move(color) : Color::blackColor())
{
    place(angle, offset);
}

VXRShadow::~VXRShadow() = default;

std::shared_ptr<VXRShadow> VXRShadow::initWithNSShadow(const NSShadow& shadow)
{
    const float dx = shadow.offset.width, dy = shadow.offset.height;
    const float opacity = shadow.color ? shadow.color->alphaComponent() : 0;
    const float degrees = static_cast<float>(VXRAngleFromDelta(dx, -dy) / radiansPerDegree);
    constexpr float most = 1 << 30;
    const int radius = static_cast<int>(std::lrintf(std::clamp(shadow.blurRadius, -most, most)));
    return initWithAngleOffsetRadiusOpacityColor(degrees, VXRDistance({ 0, 0 }, { dx, -dy }), radius, opacity,
        shadow.color ? shadow.color->colorWithAlphaComponent(1) : nullptr);
}

bool VXRShadow::isNullShadow() const { return isEqual(*nullShadow()); }

std::uint32_t VXRShadow::sChangeCount = 0;

void VXRShadow::setAngle(float degrees)
{
    ++sChangeCount;
    place(degrees, mOffset);
}

void VXRShadow::setOffset(float offset)
{
    ++sChangeCount;
    mOffset = offset;
    VXROriginRotate(mOffset, static_cast<float>(mAngle * radiansPerDegree), &mDisplacement);
}

void VXRShadow::setRadius(int radius)
{
    ++sChangeCount;
    mRadius = radius;
}

void VXRShadow::place(float degrees, float offset)
{
    mAngle = std::fmod(degrees, 360.0f);
    if (mAngle < 0)
        mAngle += 360.0f;
    mOffset = offset;
    VXROriginRotate(mOffset, static_cast<float>(mAngle * radiansPerDegree), &mDisplacement);
}

void VXRShadow::setColor(std::shared_ptr<Color> color) { mColor = std::move(color); }

Rect VXRShadow::shadowBoundsForRectAngle(const Rect& rect, float extra) const
{
    const double a = (double { mAngle } + extra) * radiansPerDegree;
    const auto reach = static_cast<float>(mRadius);
    const Rect moved = offsetRect(insetRect(rect, -reach, -reach), static_cast<float>(mOffset * std::cos(a)),
        static_cast<float>(mOffset * std::sin(a)));
    return unionRect(rect, moved);
}

bool VXRShadow::differenceRequiresRebuilding(const VXRShadow* other) const
{
    return !other || mRadius != other->mRadius || mOpacity != other->mOpacity
        || !bothAbsentOrEqual(mColor, other->mColor);
}

std::shared_ptr<VXRShadow> VXRShadow::desaturatedShadow() const
{
    // The null shadow is shared and has no colour to desaturate.
    return makeOfSameClass(mAngle, mOffset, mRadius, mOpacity, mColor ? mColor->grayscaleColor() : nullptr);
}

std::optional<NSShadow> VXRShadow::nsShadow() const
{
    if (isNullShadow())
        return std::nullopt;
    const float a = mAngle * static_cast<float>(radiansPerDegree);
    // The opacity takes over the colour's alpha; VXRSetupShadow multiplies the two.
    return NSShadow { { mOffset * std::cos(a), -mOffset * std::sin(a) }, static_cast<float>(mRadius),
        mColor ? mColor->colorWithAlphaComponent(mOpacity) : nullptr };
}

CGShadowStyle VXRShadow::cgShadowStyle() const
{
    return { 0, 45, 180 - mAngle, 1 - mOpacity, mOffset, static_cast<float>(mRadius), 1 };
}

void VXRShadow::encodeWithCoder(VXACoder& coder) const
{
    registerColorCoding();
    coder.encodeFloat(mAngle);
    coder.encodeFloat(mOffset);
    coder.encodeInt(mRadius);
    coder.encodeFloat(mOpacity);
    coder.encodeObject(mColor.get());
}

std::shared_ptr<VXRShadow> VXRShadow::initWithCoder(VXADecoder& decoder)
{
    registerColorCoding();
    const float angle = decoder.decodeFloat();
    const float offset = decoder.decodeFloat();
    const int radius = decoder.decodeInt();
    const float opacity = decoder.decodeFloat();
    auto color = std::dynamic_pointer_cast<Color>(decoder.decodeObject());
    return initWithAngleOffsetRadiusOpacityColor(angle, offset, radius, opacity, std::move(color));
}

bool VXRShadow::isEqual(const Object& object) const
{
    if (!isOfReceiversClass(object))
        return false;
    const auto& other = static_cast<const VXRShadow&>(object);
    return mAngle == other.mAngle && mOffset == other.mOffset && mOpacity == other.mOpacity
        && mRadius == other.mRadius && bothAbsentOrEqual(mColor, other.mColor);
}

std::shared_ptr<VXRShadow> VXRShadow::copyWithZone() const
{
    return makeOfSameClass(mAngle, mOffset, mRadius, mOpacity, mColor);
}

std::string VXRShadow::description() const
{
    return fmt::format("VXRShadow<{}>: angle={:g} offset={:g} radius={} opacity={:g} color={}",
        static_cast<const void*>(this), mAngle, mOffset, mRadius, mOpacity,
        mColor ? mColor->description() : "(null)");
}

std::shared_ptr<VXRShadow> VXRShadow::makeOfSameClass(
    float angle, float offset, int radius, float opacity, std::shared_ptr<Color> color) const
{
    return initWithAngleOffsetRadiusOpacityColor(angle, offset, radius, opacity, std::move(color));
}

bool VXRShadow::isOfReceiversClass(const Object& other) const
{
    return dynamic_cast<const VXRShadow*>(&other) != nullptr;
}

void VXRSetupShadow(const VXRShadow& shadow, float scale)
{
    const double a = shadow.angle() * radiansPerDegree;
    // Context shadow offsets are y up; the angle refers to a y-down view.
    const Size offset { static_cast<float>(scale * (shadow.offset() * std::cos(-a))),
        static_cast<float>(scale * (shadow.offset() * std::sin(-a))) };
    const auto color = shadow.color() ? shadow.color() : Color::blackColor();
    const auto faded = color->colorWithAlphaComponent(color->alphaComponent() * shadow.opacity());
    currentDrawingPort().setShadow(
        offset, static_cast<float>(shadow.radius()) * scale, VXRCGColorWithNSColor(*faded));
}

} // namespace vxr
