#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "ShadowXML.cpp";

void encode(const VXRShadow& shadow, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    if (shadow.isNullShadow()) {
        vxaxmlSetBoolNsProp(node, VelloraNamespace, "is-null", true);
        return;
    }
    setNumber(node, "angle", shadow.angle());
    setNumber(node, "offset", shadow.offset());
    setNumber(node, "radius", shadow.radius());
    setNumber(node, "opacity", shadow.opacity());
    archiver.encodeObjectAsChildOfWithNameXmlNamespace(
        shadow.color() ? *shadow.color() : *Color::blackColor(), node, "color", VelloraNamespace);
}

std::shared_ptr<VXRShadow> read(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    if (vxaxmlBoolNsPropDefault(node, VelloraNamespace, "is-null", false))
        return VXRShadow::nullShadow();
    const auto number = [&](const char* name, const char* message) {
        double value = 0;
        if (!vxaxmlGetDoubleNsProp(node, VelloraNamespace, name, value))
            warn(thisFile, fmt::format(fmt::runtime(message), fmt::ptr(node)));
        return value;
    };
    const auto angle = static_cast<float>(
        number("angle", "WARNING, initialzing a shadow prop from {}, cannot get angle."));
    const auto offset = static_cast<float>(
        number("offset", "WARNING, initializng a shadow prop from {}, cannot get offset."));
    const int radius
        = intFromDouble(number("radius", "WARNING, initializing a shadow prop from {}, cannot get radius."));
    const auto opacity = static_cast<float>(
        number("opacity", "WARNING, initializing a shadow prop from {}, cannot get opacity."));
    auto color
        = VXRObjectFromNode<Color>(unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "color"));
    if (!color) {
        warn(thisFile,
            fmt::format(
                "WARNING, initializing a shadow prop from {}, cannot get color.  Using black as default.",
                fmt::ptr(node)));
        // Not the shared black: a shadow of zeros in that colour would become the null shadow.
        color = Color::colorWithCalibratedWhite(0);
    }
    return VXRShadow::initWithAngleOffsetRadiusOpacityColor(angle, offset, radius, opacity, std::move(color));
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRShadow>()
{
    return recordOf<VXRShadow, encode, read>("VXRShadow");
}

} // namespace vxr
