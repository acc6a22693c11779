#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/strokes/VXRStrokePattern.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "StrokePatternXML.cpp";
constexpr const char* typeWords[] = { "pattern", "solid", "empty" };

void encode(const VXRStrokePattern& pattern, VXAXMLArchiver&, VXAXMLNode* node, std::uint32_t)
{
    if (!setNumber(node, "phase", pattern.phase()))
        throw GenericException(fmt::format(
            "Encoding ({}) on node {}, could not encode phase.", pattern.description(), fmt::ptr(node)));
    const int type = pattern.patternType();
    if (type < 0 || type >= int(std::size(typeWords)))
        throw GenericException(fmt::format("Cannot archive stroke style with type '{}'", type));
    setWord(node, "type", typeWords[type]);
    VXAXMLNode* const container = vxaxmlCreateChild(node, VelloraNamespace, "pattern");
    for (int i = 0; i < pattern.count(); ++i)
        setNumber(vxaxmlCreateChild(container, VelloraNamespace, "element"), "val", pattern.pattern()[i]);
}

int readType(const VXAXMLNode* node)
{
    std::string word;
    if (!vxaxmlGetNSStringNsProp(node, VelloraNamespace, "type", word)) {
        warn(thisFile,
            "No type property for stroke pattern during initialization, using empty pattern for default.");
        return VXRStrokePatternEmpty;
    }
    const int type = indexOfWord(typeWords, word);
    if (type < 0)
        warn(thisFile, fmt::format("Don't know what to do with type '{}' for stroke style", word));
    return type < 0 ? VXRStrokePatternDashed : type;
}

/// Returns how many entries were read.
int readEntries(const VXAXMLNode* node, float (&entries)[VXRStrokePattern::capacity])
{
    const VXAXMLNode* const container = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "pattern");
    if (!container) {
        warn(thisFile,
            fmt::format(
                "Warning, initializing stroke pattern from {}, there was no pattern.", fmt::ptr(node)));
        return 0;
    }
    int count = 0;
    for (const VXAXMLNode* element = vxaxmlFirstChildNsNamed(container, VelloraNamespace, "element"); element;
         element = vxaxmlNextSiblingNsNamed(element, VelloraNamespace, "element")) {
        if (count == VXRStrokePattern::capacity) {
            warn(thisFile, "WARNING, there were more elements in the pattern XML than are allowed.");
            break;
        }
        double value = 0;
        if (!vxaxmlGetDoubleNsProp(element, VelloraNamespace, "val", value))
            warn(thisFile,
                fmt::format("WARNING, an element of the stroke pattern at {} has no val.", fmt::ptr(node)));
        entries[count++] = static_cast<float>(value);
    }
    return count;
}

std::shared_ptr<VXRStrokePattern> read(VXAXMLUnarchiver&, VXAXMLNode* node, std::uint32_t)
{
    auto pattern = std::make_shared<VXRStrokePattern>(nullptr, 0, 0.0f);
    const float phase = floatAttribute(node, "phase", 0, thisFile, [&] {
        return fmt::format("WARNING, no phase property when initializing VXRStrokePattern {} from node {}",
            fmt::ptr(pattern.get()), fmt::ptr(node));
    });
    const int type = readType(node);
    float entries[VXRStrokePattern::capacity] = {};
    const int count = readEntries(node, entries);
    *pattern = VXRStrokePattern(entries, count, phase);
    pattern->_setPatternType(type);
    return pattern;
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRStrokePattern>()
{
    return recordOf<VXRStrokePattern, encode, read>("VXRStrokePattern");
}

} // namespace vxr
