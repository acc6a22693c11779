#include <vxr/fills/ColorCoding.h>

#include <vxr/geometry/Color.h>
#include <vxr/host/archiving/VXACoder.h>
#include <vxr/host/archiving/VXADecoder.h>
#include <vxr/platform/base/Exceptions.h>

#include <algorithm>
#include <iterator>

namespace vxr {

namespace {

/// The colour spaces, indexed by their number in the stream.
constexpr std::string_view spaces[] = { NSCalibratedWhiteColorSpace, NSCalibratedRGBColorSpace,
    NSDeviceWhiteColorSpace, NSDeviceRGBColorSpace, NSDeviceCMYKColorSpace };

void encodeColor(const Object& object, VXACoder& coder)
{
    const auto& color = static_cast<const Color&>(object);
    const auto space = std::find(std::begin(spaces), std::end(spaces), color.colorSpaceName());
    if (space == std::end(spaces)) {
        // A named colour has no components: the colour it resolves to is written.
        encodeColor(*Color::colorWithCalibratedWhite(0, color.alphaComponent()), coder);
        return;
    }
    coder.encodeInt(int(space - std::begin(spaces)));
    for (int i = 0; i < color.componentCount(); ++i)
        coder.encodeFloat(color.component(i));
    coder.encodeFloat(color.alphaComponent());
}

std::shared_ptr<Object> decodeColor(VXADecoder& decoder)
{
    const auto next = [&] { return decoder.decodeFloat(); };
    switch (const int space = decoder.decodeInt()) {
    case 0:
    case 2: {
        const float white = next(), alpha = next();
        return space == 0 ? Color::colorWithCalibratedWhite(white, alpha)
                          : Color::colorWithDeviceWhite(white, alpha);
    }
    case 1:
    case 3: {
        const float red = next(), green = next(), blue = next(), alpha = next();
        return space == 1 ? Color::colorWithCalibratedRGB(red, green, blue, alpha)
                          : Color::colorWithDeviceRGB(red, green, blue, alpha);
    }
    case 4: {
        const float cyan = next(), magenta = next(), yellow = next(), black = next(), alpha = next();
        return Color::colorWithDeviceCMYK(cyan, magenta, yellow, black, alpha);
    }
    default:
        throw InvalidArgumentException("a coded colour names no known colour space");
    }
}

} // namespace

void registerColorCoding()
{
    [[maybe_unused]] static const bool once
        = (VXARegisterClass<Color>({ "Color", encodeColor, decodeColor }), true);
}

} // namespace vxr
