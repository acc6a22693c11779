#include <vxr/persistence/StrokeXML.h>

#include <vxr/geometry/Color.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "StrokeXML.cpp";
constexpr int missingStyleLevel = 1; ///< a missing colour, pattern, cap or join is no more than a note

constexpr const char* capWords[] = { "butt", "round", "square" };
constexpr const char* joinWords[] = { "miter", "round", "bevel" };

const char* wordOf(std::span<const char* const> words, int code, const VXRStroke& stroke, const char* what)
{
    if (code < 0 || code >= int(words.size()))
        throw GenericException(
            fmt::format("Cannot encode {} with line {} style of {}", stroke.description(), what, code));
    return words[std::size_t(code)];
}

/// The code of an enumeration attribute: 0, logged, when it is missing or unknown.
int readWord(
    std::span<const char* const> words, const VXAXMLNode* node, const char* name, const VXRStroke& stroke)
{
    std::string word;
    if (!vxaxmlGetNSStringNsProp(node, VelloraNamespace, name, word)) {
        warn(thisFile, fmt::format("no prop val for {} on {}, using default", name, fmt::ptr(&stroke)),
            missingStyleLevel);
        return 0;
    }
    const int code = indexOfWord(words, word);
    if (code < 0)
        warn(thisFile, fmt::format("Cannot decode stroke style with line {} type of '{}'", name, word));
    return code < 0 ? 0 : code;
}

std::shared_ptr<VXRStroke> newStroke(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto stroke = VXRStroke::stroke();
    readStroke(*stroke, unarchiver, node);
    return stroke;
}

} // namespace

void encodeStroke(const VXRStroke& stroke, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    const char* const cap = wordOf(capWords, stroke.cap(), stroke, "cap");
    const char* const join = wordOf(joinWords, stroke.join(), stroke, "join");
    archiver.encodeObjectAsChildOfWithNameXmlNamespace(
        stroke.color() ? *stroke.color() : *Color::blackColor(), node, "color", VelloraNamespace);
    if (stroke.pattern())
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(
            *stroke.pattern(), node, "pattern", VelloraNamespace);
    setNumber(node, "miter-limit", stroke.miterLimit());
    setNumber(node, "width", stroke.width());
    setWord(node, "cap", cap);
    setWord(node, "join", join);
}

void readStroke(VXRStroke& stroke, VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    auto color
        = VXRObjectFromNode<Color>(unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "color"));
    if (!color) {
        warn(thisFile, fmt::format("No color on stroke {}, using black as default.", fmt::ptr(&stroke)),
            missingStyleLevel);
        color = Color::blackColor();
    }
    auto pattern = VXRObjectFromNode<VXRStrokePattern>(
        unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "pattern"));
    if (!pattern) {
        warn(thisFile, fmt::format("No pattern on stroke {}, using default.", fmt::ptr(&stroke)),
            missingStyleLevel);
        pattern = VXRStrokePattern::solidPattern();
    }
    const float miterLimit = floatAttribute(node, "miter-limit", 4, thisFile, [&] {
        return fmt::format(
            "WARNING, initializing {} from {}, miter limit not found", fmt::ptr(&stroke), fmt::ptr(node));
    });
    const float width = floatAttribute(node, "width", 1, thisFile, [&] {
        return fmt::format(
            "WARNING, initialinzg {} from {}, width not found", fmt::ptr(&stroke), fmt::ptr(node));
    });
    stroke.setColor(std::move(color));
    stroke.setWidth(width);
    stroke.setCap(readWord(capWords, node, "cap", stroke));
    stroke.setJoin(readWord(joinWords, node, "join", stroke));
    stroke.setPattern(std::move(pattern));
    stroke.setMiterLimit(miterLimit);
}

template <> const VXAXMLClass& VXRXMLClass<VXRStroke>()
{
    return recordOf<VXRStroke, encodeStroke, newStroke>("VXRStroke");
}

} // namespace vxr
