#include <vxr/geometry/Color.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "ColorXML.cpp";

struct Space {
    const char* word;
    std::string_view name;
    std::array<const char*, 4> components;
    int count;
    std::shared_ptr<Color> (*make)(const std::array<float, 4>&, float alpha);
};

const Space spaces[] = {
    { "calibrated-white", NSCalibratedWhiteColorSpace, { "white" }, 1,
        [](const auto& c, float alpha) { return Color::colorWithCalibratedWhite(c[0], alpha); } },
    { "calibrated-rgb", NSCalibratedRGBColorSpace, { "red", "green", "blue" }, 3,
        [](const auto& c, float alpha) { return Color::colorWithCalibratedRGB(c[0], c[1], c[2], alpha); } },
    { "device-white", NSDeviceWhiteColorSpace, { "white" }, 1,
        [](const auto& c, float alpha) { return Color::colorWithDeviceWhite(c[0], alpha); } },
    { "device-rgb", NSDeviceRGBColorSpace, { "red", "green", "blue" }, 3,
        [](const auto& c, float alpha) { return Color::colorWithDeviceRGB(c[0], c[1], c[2], alpha); } },
    { "device-cmyk", NSDeviceCMYKColorSpace, { "cyan", "magenta", "yellow", "black" }, 4,
        [](const auto& c, float alpha) {
            return Color::colorWithDeviceCMYK(c[0], c[1], c[2], c[3], alpha);
        } },
    { "named", NSNamedColorSpace, {}, 0, [](const auto&, float alpha) { return Color::namedColor(alpha); } },
};

void encode(const Color& color, VXAXMLArchiver&, VXAXMLNode* node, std::uint32_t)
{
    for (const Space& space : spaces) {
        if (space.name != color.colorSpaceName())
            continue;
        setWord(node, "space", space.word);
        for (int i = 0; i < space.count; ++i)
            setNumber(node, space.components[std::size_t(i)], color.component(i));
        setNumber(node, "alpha", color.alphaComponent());
    }
}

/// None without a known space: whoever asked has a default.
std::shared_ptr<Color> read(VXAXMLUnarchiver&, VXAXMLNode* node, std::uint32_t)
{
    std::string word;
    vxaxmlGetNSStringNsProp(node, VelloraNamespace, "space", word);
    for (const Space& space : spaces) {
        if (word != space.word)
            continue;
        const auto component = [&](const char* name, float fallback) {
            return floatAttribute(node, name, fallback, thisFile, [&] {
                return fmt::format(
                    "WARNING, initializing a color from {}, cannot get {}.", fmt::ptr(node), name);
            });
        };
        std::array<float, 4> components {};
        for (std::size_t i = 0; i < std::size_t(space.count); ++i)
            components[i] = component(space.components[i], 0);
        return space.make(components, component("alpha", 1));
    }
    warn(thisFile, fmt::format("WARNING, a color at {} has no known space, but '{}'.", fmt::ptr(node), word));
    return nullptr;
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<Color>() { return recordOf<Color, encode, read>("Color"); }

} // namespace vxr
