#include <vxr/fills/VXRGradientStop.h>

#include <vxr/geometry/VXRGeometry.h>

namespace vxr {

std::uint64_t VXRGradientStop::sMoves = 0;

VXRGradientStop::VXRGradientStop(std::shared_ptr<Color> color, float fraction)
    : mFraction(VXRClamp(fraction, 0, 1))
{
    _setColor(std::move(color));
}

VXRGradientStop::~VXRGradientStop() = default;

std::shared_ptr<VXRGradientStop> VXRGradientStop::gradientStopWithColorFraction(
    std::shared_ptr<Color> color, float fraction)
{
    return std::make_shared<VXRGradientStop>(std::move(color), fraction);
}

std::shared_ptr<VXRGradientStop> VXRGradientStop::cloneWithFraction(float fraction) const
{
    return std::make_shared<VXRGradientStop>(mColor, fraction);
}

std::shared_ptr<VXRGradientStop> VXRGradientStop::cloneWithColor(std::shared_ptr<Color> color) const
{
    return std::make_shared<VXRGradientStop>(std::move(color), mFraction);
}

std::shared_ptr<VXRGradientStop> VXRGradientStop::copyWithZone() const
{
    return std::make_shared<VXRGradientStop>(mColor, mFraction);
}

bool VXRGradientStop::isEqual(const Object& other) const
{
    if (this == &other)
        return true;
    const auto* stop = dynamic_cast<const VXRGradientStop*>(&other);
    return stop && mFraction == stop->mFraction && bothAbsentOrEqual(mColor, stop->mColor);
}

void VXRGradientStop::_setColor(std::shared_ptr<Color> color) { mColor = std::move(color); }

void VXRGradientStop::_setFraction(float fraction)
{
    mFraction = VXRClamp(fraction, 0, 1);
    ++sMoves;
}

} // namespace vxr
