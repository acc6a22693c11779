#include <vxr/fills/VXRColorRGB64.h>

namespace vxr {

namespace {

std::uint16_t channel(float component)
{
    const float value = component * 65535.0f;
    return value >= 65535.0f ? 65535 : value > 0 ? static_cast<std::uint16_t>(value) : 0;
}

std::uint16_t mixed(std::uint16_t from, std::uint16_t to, float fraction)
{
    const float value = static_cast<float>(from) * (1.0f - fraction) + static_cast<float>(to) * fraction;
    return value >= 65535.0f ? 65535 : value > 0 ? static_cast<std::uint16_t>(value) : 0;
}

} // namespace

VXRColorRGB64::VXRColorRGB64(Color& color)
{
    const auto rgb = color.colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    if (!rgb)
        return;
    _red = channel(rgb->redComponent());
    _green = channel(rgb->greenComponent());
    _blue = channel(rgb->blueComponent());
    _alpha = channel(rgb->alphaComponent());
}

VXRColorRGB64::VXRColorRGB64(std::uint16_t red, std::uint16_t green, std::uint16_t blue, std::uint16_t alpha)
    : _red(red)
    , _green(green)
    , _blue(blue)
    , _alpha(alpha)
{
}

VXRColorRGB64::~VXRColorRGB64() = default;

std::shared_ptr<VXRColorRGB64> VXRColorRGB64::colorWithNSColor(Color& color)
{
    return std::make_shared<VXRColorRGB64>(color);
}

void VXRColorRGB64::getRedGreenBlueAlpha(
    std::uint16_t* red, std::uint16_t* green, std::uint16_t* blue, std::uint16_t* alpha) const
{
    *red = _red;
    *green = _green;
    *blue = _blue;
    *alpha = _alpha;
}

VXRColorRGB64 VXRColorRGB64::blended(float fraction, const VXRColorRGB64& other) const
{
    return { mixed(_red, other._red, fraction), mixed(_green, other._green, fraction),
        mixed(_blue, other._blue, fraction), mixed(_alpha, other._alpha, fraction) };
}

std::shared_ptr<VXRColorRGB64> VXRColorRGB64::blendedColorWithFractionOfColor(
    float fraction, const VXRColorRGB64& other) const
{
    return std::make_shared<VXRColorRGB64>(blended(fraction, other));
}

} // namespace vxr
