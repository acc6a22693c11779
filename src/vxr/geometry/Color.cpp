#include <vxr/geometry/Color.h>

#include <vxr/geometry/VXRGeometry.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace vxr {

namespace {

using Components = std::array<float, 4>;

std::shared_ptr<Color> makeColor(std::string_view spaceName, Components components, float alpha)
{
    return std::make_shared<Color>(Color::Key {}, spaceName, components, alpha);
}

/// Null for spaces without components.
std::optional<ColorModel> modelOfSpace(std::string_view name)
{
    if (name == NSCalibratedWhiteColorSpace || name == NSDeviceWhiteColorSpace)
        return ColorModel::Gray;
    if (name == NSCalibratedRGBColorSpace || name == NSDeviceRGBColorSpace)
        return ColorModel::RGB;
    if (name == NSDeviceCMYKColorSpace)
        return ColorModel::CMYK;
    return std::nullopt;
}

/// The given name as one of the constants, which live forever.
std::string_view constantName(std::string_view name)
{
    for (std::string_view constant : { NSCalibratedWhiteColorSpace, NSCalibratedRGBColorSpace,
             NSDeviceWhiteColorSpace, NSDeviceRGBColorSpace, NSDeviceCMYKColorSpace, NSNamedColorSpace }) {
        if (name == constant)
            return constant;
    }
    return {};
}

Components rgbFrom(ColorModel model, const Components& c)
{
    switch (model) {
    case ColorModel::Gray:
        return { c[0], c[0], c[0] };
    case ColorModel::RGB:
        return c;
    case ColorModel::CMYK:
        break;
    }
    const float light = 1 - c[3];
    return { (1 - c[0]) * light, (1 - c[1]) * light, (1 - c[2]) * light };
}

float luminance(const Components& rgb)
{
    return static_cast<float>(0.3 * rgb[0] + 0.59 * rgb[1] + 0.11 * rgb[2]);
}

Components componentsFromRGB(ColorModel model, const Components& rgb)
{
    const auto [r, g, b, unused] = rgb;
    switch (model) {
    case ColorModel::Gray:
        return { luminance(rgb) }; // exact for greys: single precision hides the rounding of the sum
    case ColorModel::RGB:
        return { r, g, b };
    case ColorModel::CMYK:
        break;
    }
    const float light = std::max({ r, g, b });
    if (!(light > 0))
        return { 0, 0, 0, 1 - light };
    return { (light - r) / light, (light - g) / light, (light - b) / light, 1 - light };
}

Components converted(ColorModel from, ColorModel to, const Components& components)
{
    return from == to ? components : componentsFromRGB(to, rgbFrom(from, components));
}

} // namespace

Color::Color(Key, std::string_view spaceName, Components components, float alpha)
    : mSpaceName(spaceName)
    , mComponents(components)
    , mAlpha(alpha)
{
}

std::shared_ptr<Color> Color::colorWithCalibratedWhite(float white, float alpha)
{
    return makeColor(NSCalibratedWhiteColorSpace, { white }, alpha);
}

std::shared_ptr<Color> Color::colorWithCalibratedRGB(float red, float green, float blue, float alpha)
{
    return makeColor(NSCalibratedRGBColorSpace, { red, green, blue }, alpha);
}

std::shared_ptr<Color> Color::colorWithDeviceWhite(float white, float alpha)
{
    return makeColor(NSDeviceWhiteColorSpace, { white }, alpha);
}

std::shared_ptr<Color> Color::colorWithDeviceRGB(float red, float green, float blue, float alpha)
{
    return makeColor(NSDeviceRGBColorSpace, { red, green, blue }, alpha);
}

std::shared_ptr<Color> Color::colorWithDeviceCMYK(
    float cyan, float magenta, float yellow, float black, float alpha)
{
    return makeColor(NSDeviceCMYKColorSpace, { cyan, magenta, yellow, black }, alpha);
}

std::shared_ptr<Color> Color::namedColor(float alpha) { return makeColor(NSNamedColorSpace, {}, alpha); }

std::shared_ptr<Color> Color::blackColor()
{
    static const auto color = colorWithCalibratedWhite(0);
    return color;
}

std::shared_ptr<Color> Color::whiteColor()
{
    static const auto color = colorWithCalibratedWhite(1);
    return color;
}

std::shared_ptr<Color> Color::clearColor()
{
    static const auto color = colorWithCalibratedWhite(0, 0);
    return color;
}

std::shared_ptr<Color> Color::randomColor()
{
    const auto draw = [] { return static_cast<float>(static_cast<double>(random() % 1000) / 1000); };
    const float red = draw();
    const float green = draw();
    const float blue = draw();
    return colorWithCalibratedRGB(red, green, blue);
}

std::shared_ptr<Color> Color::colorUsingColorSpaceName(std::string_view name) const
{
    // Colours are created non-const, but are never modified after creation.
    if (name == mSpaceName)
        return std::const_pointer_cast<Color>(shared_from_this());
    const auto from = modelOfSpace(mSpaceName), to = modelOfSpace(name);
    if (!from || !to)
        return nullptr;
    return makeColor(constantName(name), converted(*from, *to, mComponents), mAlpha);
}

int Color::componentCount() const
{
    const auto model = modelOfSpace(mSpaceName);
    return !model ? 0 : *model == ColorModel::Gray ? 1 : *model == ColorModel::RGB ? 3 : 4;
}

float Color::whiteComponent() const { return componentCount() == 1 ? mComponents[0] : 0; }
float Color::redComponent() const { return isRGB() ? mComponents[0] : 0; }
float Color::greenComponent() const { return isRGB() ? mComponents[1] : 0; }
float Color::blueComponent() const { return isRGB() ? mComponents[2] : 0; }
float Color::cyanComponent() const { return componentCount() == 4 ? mComponents[0] : 0; }
float Color::magentaComponent() const { return componentCount() == 4 ? mComponents[1] : 0; }
float Color::yellowComponent() const { return componentCount() == 4 ? mComponents[2] : 0; }
float Color::blackComponent() const { return componentCount() == 4 ? mComponents[3] : 0; }

std::shared_ptr<Color> Color::colorWithAlphaComponent(float alpha) const
{
    return makeColor(mSpaceName, mComponents, alpha);
}

std::shared_ptr<Color> Color::blendedColorWithFractionOfColor(float fraction, const Color& other) const
{
    const auto from = colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    const auto to = other.colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    if (!from || !to)
        return nullptr;
    const float t = VXRClamp(fraction, 0, 1);
    const auto mixed = [t](float a, float b) { return a * (1 - t) + b * t; };
    return colorWithCalibratedRGB(mixed(from->component(0), to->component(0)),
        mixed(from->component(1), to->component(1)), mixed(from->component(2), to->component(2)),
        mixed(from->mAlpha, to->mAlpha));
}

std::shared_ptr<Color> Color::grayscaleColor() const
{
    const auto rgb = colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    return rgb ? colorWithCalibratedWhite(luminance(rgb->mComponents), mAlpha) : nullptr;
}

std::shared_ptr<Color> Color::invertedColor() const
{
    const auto rgb = colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    if (!rgb)
        return nullptr;
    const Components& c = rgb->mComponents;
    return colorWithCalibratedRGB(1 - c[0], 1 - c[1], 1 - c[2], mAlpha)->colorUsingColorSpaceName(mSpaceName);
}

bool Color::isEqual(const Object& other) const
{
    if (this == &other)
        return true;
    const auto* color = dynamic_cast<const Color*>(&other);
    return color && mSpaceName != NSNamedColorSpace && mSpaceName == color->mSpaceName
        && mComponents == color->mComponents && mAlpha == color->mAlpha;
}

bool Color::isEquivalent(const Color& other) const
{
    if (this == &other)
        return true;
    const std::string_view common = mSpaceName == other.mSpaceName ? mSpaceName : NSCalibratedRGBColorSpace;
    const auto a = colorUsingColorSpaceName(common), b = other.colorUsingColorSpaceName(common);
    if (!a || !b || common == NSNamedColorSpace)
        return false;
    constexpr float tolerance = 0.001f;
    const auto near = [](float x, float y) { return std::fabs(x - y) <= tolerance; };
    return std::equal(a->mComponents.begin(), a->mComponents.end(), b->mComponents.begin(), near)
        && near(mAlpha, other.mAlpha);
}

std::string Color::description() const
{
    std::string text(mSpaceName);
    for (int i = 0; i < componentCount(); ++i)
        text += fmt::format(" {:g}", component(i));
    return text + fmt::format(" {:g}", mAlpha);
}

} // namespace vxr
