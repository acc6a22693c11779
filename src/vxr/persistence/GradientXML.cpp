#include <vxr/persistence/GradientXML.h>

#include <vxr/fills/VXRGradient.h>
#include <vxr/persistence/ElementNames.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/platform/base/Exceptions.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "GradientXML.cpp";
constexpr const char* typeWords[] = { "linear", "radial" };

using Stops = VXRGradient::Stops;

std::shared_ptr<VXRGradientStop> stopOf(std::shared_ptr<Color> color, float fraction)
{
    return VXRGradientStop::gradientStopWithColorFraction(std::move(color), fraction);
}

int readType(const VXAXMLNode* node, int initialType)
{
    std::string word;
    if (!vxaxmlGetNSStringNsProp(node, VelloraNamespace, "type", word)) {
        warn(thisFile, "Couldn't get type for gradient, assuming linear.");
        return VXRLinearGradient;
    }
    // The first letter decides.
    if (word.starts_with('l'))
        return VXRLinearGradient;
    return word.starts_with('r') ? int(VXRRadialGradient) : initialType;
}

Stops readStops(VXAXMLUnarchiver& unarchiver, const VXAXMLNode* node)
{
    Stops stops;
    const VXAXMLNode* const container = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "stops");
    for (VXAXMLNode* at = vxaxmlFirstChildNsNamed(container, VelloraNamespace, kElementName_GradientStop); at;
         at = vxaxmlNextSiblingNsNamed(at, VelloraNamespace, kElementName_GradientStop)) {
        if (auto stop = VXRObjectFromNode<VXRGradientStop>(unarchiver, at))
            stops.push_back(std::move(stop));
    }
    return stops;
}

/// Gives a single stop a partner of its colour at the end that is farther away.
void addSecondStop(Stops& stops)
{
    const std::shared_ptr<Color> color = stops[0]->color();
    if (stops[0]->fraction() <= 0.5f)
        stops.push_back(stopOf(color, 1));
    else
        stops.insert(stops.begin(), stopOf(color, 0));
}

/// Moves stops that lie before the first one. Each is compared with the first, not with its predecessor.
void repairOrder(const VXRGradient& gradient, const Stops& stops)
{
    const double first = stops[0]->fraction();
    for (std::size_t i = 1; i < stops.size(); ++i) {
        const double next = i + 1 < stops.size() ? stops[i + 1]->fraction() : 1.0f;
        if (!(first > stops[i]->fraction()))
            continue;
        warn(thisFile,
            fmt::format("WARNING, unarchiving gradient {}, stop {} was invalid.  Attempting to fix.",
                gradient.description(), stops[i]->description()));
        stops[i]->p_setFractionForUnarchivingFixup(
            static_cast<float>(next > first ? (next + first) * 0.5 : first + 0.01));
    }
}

std::shared_ptr<VXRGradient> newGradient(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto gradient = std::make_shared<VXRGradient>();
    readGradient(*gradient, unarchiver, node);
    return gradient;
}

void encodeStop(const VXRGradientStop& stop, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    setNumber(node, "fraction", stop.fraction());
    archiver.encodeObjectAsChildOfWithNameXmlNamespace(
        stop.color() ? *stop.color() : *Color::blackColor(), node, "color", VelloraNamespace);
}

std::shared_ptr<VXRGradientStop> newStop(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const float fraction = floatAttribute(node, "fraction", 0, thisFile, [&] {
        return fmt::format(
            "WARNING, initializing gradient stop from {}, could not get fraction", fmt::ptr(node));
    });
    auto color
        = VXRObjectFromNode<Color>(unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "color"));
    if (!color) {
        warn(thisFile, "Could not get color initializing gradient stop.  Returning nil.");
        return nullptr;
    }
    return stopOf(std::move(color), fraction);
}

} // namespace

void encodeGradient(const VXRGradient& gradient, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    setNumber(node, "opacity", gradient.opacity());
    const int type = gradient.gradientType();
    if (type < 0 || type >= int(std::size(typeWords)))
        throw GenericException(fmt::format("Cannot encode gradient with type {}", type));
    setWord(node, "type", typeWords[type]);
    VXAXMLNode* const container = vxaxmlCreateChild(node, VelloraNamespace, "stops");
    for (const auto& stop : gradient.gradientStops())
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(
            *stop, container, kElementName_GradientStop, VelloraNamespace);
}

void readGradient(VXRGradient& gradient, VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    gradient.setOpacity(floatAttribute(node, "opacity", 0, thisFile, [&] {
        return fmt::format("WARNING, VXRGradient initializing from {} couldn't get opacity.", fmt::ptr(node));
    }));
    gradient.setGradientType(readType(node, gradient.gradientType()));
    Stops stops = readStops(unarchiver, node);
    if (stops.empty()) {
        warn(thisFile,
            fmt::format("Initializing {}, no stops were found.  Making something up.", fmt::ptr(&gradient)),
            1);
        stops = { stopOf(Color::blackColor(), 1), stopOf(Color::whiteColor(), 0) };
    } else if (stops.size() == 1) {
        warn(thisFile,
            fmt::format("WARNING, unarchiving gradient {}, there was only one stop.  Attempting to fix.",
                gradient.description()));
        addSecondStop(stops);
    } else {
        repairOrder(gradient, stops);
    }
    gradient.setGradientStops(stops);
}

template <> const VXAXMLClass& VXRXMLClass<VXRGradient>()
{
    return recordOf<VXRGradient, encodeGradient, newGradient>("VXRGradient");
}

template <> const VXAXMLClass& VXRXMLClass<VXRGradientStop>()
{
    return recordOf<VXRGradientStop, encodeStop, newStop>("VXRGradientStop");
}

} // namespace vxr
